// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appliedpresets.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/testenvironment.h"

#include <QSignalSpy>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

using Rows = IndexList;

class AppliedPresetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_applied.reset();
        m_folder = std::make_unique<TestFolder>();
        m_fonts = std::make_unique<FontCatalog>();
        m_defaults = std::make_unique<UserDefaults>(QStringLiteral("Quorvel"), QStringLiteral("Plexa"));
        registerDefaults(*m_defaults);
        m_applied = std::make_unique<AppliedPresets>(*m_defaults);
    }

    void modes()
    {
        const auto quick = preset(QStringLiteral("Quick Preset"));
        m_applied->setQuickWPreset(quick);
        apply(QStringLiteral("a b"));
        const WPresetList applied = m_applied->wPresetsApplied();
        m_applied->addWPresetsToApplied(applied); // each once
        QCOMPARE(m_applied->wPresetsApplied().size(), 2U);

        QVERIFY(m_applied->isInSingleMode());
        QVERIFY(m_applied->effectivePresets() == WPresetList{quick} && m_applied->currentWPreset() == quick);
        m_applied->modeDidChange(1);
        QCOMPARE(m_defaults->integerForKey(settings::lastUsedMode), 1);
        QVERIFY(m_applied->effectivePresets() == applied && !m_applied->currentWPreset());
        m_applied->selectRows({1});
        QVERIFY(m_applied->currentWPreset() == applied[1]);
        m_applied->selectRows({0, 1});
        QVERIFY(!m_applied->currentWPreset());

        m_applied->selectRows({1});
        m_applied->removeFromApplied(applied[0].get());
        QVERIFY(m_applied->currentWPreset() == applied[1]);
        m_applied->removeSelectedAppliedPresets();
        QVERIFY(m_applied->effectivePresets().empty() && m_applied->selectedRows().isEmpty());
    }

    void neighbors_data()
    {
        QTest::addColumn<QString>("presets");
        QTest::addColumn<Rows>("selected");
        QTest::addColumn<Rows>("next");
        QTest::addColumn<Rows>("previous");
        QTest::newRow("nothing applied") << "" << Rows{} << Rows{} << Rows{};
        QTest::newRow("nothing selected") << "a b c" << Rows{} << Rows{0} << Rows{2};
        QTest::newRow("first") << "a b c" << Rows{0} << Rows{1} << Rows{2};
        QTest::newRow("last") << "a b c" << Rows{2} << Rows{0} << Rows{1};
        QTest::newRow("the only one") << "a" << Rows{0} << Rows{0} << Rows{0};
    }

    void neighbors()
    {
        QFETCH(QString, presets);
        QFETCH(Rows, selected);
        apply(presets);
        m_applied->selectRows(selected);
        m_applied->selectNeighborAppliedPreset(AppliedPresets::Neighbor::Next);
        QTEST(m_applied->selectedRows(), "next");
        m_applied->selectRows(selected);
        m_applied->selectNeighborAppliedPreset(AppliedPresets::Neighbor::Previous);
        QTEST(m_applied->selectedRows(), "previous");
    }

    void moves_data()
    {
        QTest::addColumn<Rows>("rows");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<Rows>("selected"); // "b" is, before
        QTest::newRow("down") << Rows{0} << 3 << "b c a d" << Rows{0};
        QTest::newRow("up, apart") << Rows{1, 3} << 0 << "b d a c" << Rows{0};
        QTest::newRow("to the end") << Rows{1, 2} << 4 << "a d b c" << Rows{2};
        QTest::newRow("around the target") << Rows{0, 3} << 2 << "b a d c" << Rows{0};
        QTest::newRow("from elsewhere") << Rows{9, -1} << -5 << "a b c d" << Rows{1};
    }

    void moves()
    {
        QFETCH(Rows, rows);
        QFETCH(int, target);
        apply(QStringLiteral("a b c d"));
        m_applied->selectRows({1});
        m_applied->moveAppliedPresets(rows, target);
        QTEST(appliedNames(), "expected");
        QTEST(m_applied->selectedRows(), "selected");
    }

    void remembers()
    {
        const WPresetList all{preset(QStringLiteral("a")), preset(QStringLiteral("b")),
                              preset(QStringLiteral("b")), preset(QStringLiteral("c"))};
        m_applied->addWPresetsToApplied({all[3], all[1]});
        m_defaults->setObject(settings::wPresetsAppliedLastTime, QStringList{QStringLiteral("kept")});
        m_applied->rememberAppliedPresets(); // not wanted, so the former names stay
        QCOMPARE(m_defaults->stringArrayForKey(settings::wPresetsAppliedLastTime),
                 QStringList(QStringLiteral("kept")));

        m_defaults->setObject(settings::rememberWPresetsAppliedLastTime, true);
        m_applied->rememberAppliedPresets();
        m_applied->clearAppliedPresets();
        m_applied->restoreAppliedPresets({all[0], all[1], all[2], all[3]});
        QCOMPARE(appliedNames(), QStringLiteral("c b b"));

        // Two of one name are stored twice and come back once each; a name that is gone is passed over.
        m_applied->rememberAppliedPresets();
        m_applied->clearAppliedPresets();
        m_applied->restoreAppliedPresets({all[0], all[1], all[2]});
        QCOMPARE(appliedNames(), QStringLiteral("b b"));
    }

    void editsOutdateThePreview()
    {
        const auto quick = preset(QStringLiteral("Quick Preset"));
        const auto applied = preset(QStringLiteral("a"));
        m_applied->setQuickWPreset(quick);
        m_applied->addWPresetsToApplied({applied});
        m_applied->modeDidChange(1);
        const QSignalSpy outdated(m_applied.get(), &AppliedPresets::previewOutdated);
        quick->setOpacity(31);
        applied->setOpacity(32);
        QCOMPARE(outdated.size(), 2);
        m_applied->clearAppliedPresets();
        QCOMPARE(outdated.size(), 3);
        applied->setOpacity(33); // not drawn any more
        QCOMPARE(outdated.size(), 3);
        const auto other = preset(QStringLiteral("other"));
        m_applied->setQuickWPreset(other);
        QCOMPARE(outdated.size(), 4);
        quick->setOpacity(34);
        QCOMPARE(outdated.size(), 4);
    }

private:
    std::shared_ptr<WPreset> preset(const QString &name)
    {
        auto made = std::make_shared<WPreset>(*m_fonts);
        made->setName(name);
        return made;
    }

    QString appliedNames() const
    {
        QStringList names;
        for (const auto &one : m_applied->wPresetsApplied())
            names.append(one->name());
        return names.join(QLatin1Char(' '));
    }

    void apply(const QString &names)
    {
        WPresetList presets;
        for (const QString &name : names.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            presets.push_back(preset(name));
        m_applied->addWPresetsToApplied(presets);
    }

    std::unique_ptr<TestFolder> m_folder;
    std::unique_ptr<FontCatalog> m_fonts;
    std::unique_ptr<UserDefaults> m_defaults;
    std::unique_ptr<AppliedPresets> m_applied;
};

QTEST_GUILESS_MAIN(AppliedPresetsTest)
#include "appliedpresets_test.moc"
