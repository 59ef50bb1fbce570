// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appliedpresets.h"
#include "app/workingset.h"

#include <QSignalSpy>

using namespace plexa;
using namespace plexa::test;

namespace
{

} // namespace

class AppliedPresetsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_applied.reset();
        m_work = std::make_unique<WorkingSet>();
        m_applied = std::make_unique<AppliedPresets>(m_work->defaults);
    }

    void modes()
    {
        const auto quick = namedPreset(u"Quick Preset"_qs);
        m_applied->setQuickWPreset(quick);
        apply(u"a b"_qs);
        const WPresetList applied = m_applied->wPresetsApplied();
        m_applied->addWPresetsToApplied(applied); // each once
        QCOMPARE(m_applied->wPresetsApplied().size(), 2U);

        QVERIFY(m_applied->isInSingleMode());
        QVERIFY(m_applied->effectivePresets() == WPresetList{quick} && m_applied->currentWPreset() == quick);
        m_applied->modeDidChange(AppliedPresets::Mode::Presets);
        QCOMPARE(m_work->defaults.integerForKey(settings::lastUsedMode), 1);
        QVERIFY(m_applied->effectivePresets() == applied && m_applied->currentWPreset() == applied[0]);
        m_applied->addWPresetsToApplied({applied[1]}); // which is applied already
        QVERIFY(m_applied->currentWPreset() == applied[1]);
        m_applied->selectRows({0, 1});
        QVERIFY(!m_applied->currentWPreset());

        m_applied->selectRows({1});
        m_applied->removeFromApplied(applied[0].get());
        QVERIFY(m_applied->currentWPreset() == applied[1]);
        m_applied->removeSelectedAppliedPresets();
        QVERIFY(m_applied->effectivePresets().empty() && m_applied->selectedRows().isEmpty());

        apply(u"c d e"_qs);
        m_applied->selectRows({1});
        for (const char *const next : {"e", "c"}) { // the one after it, or the last one
            m_applied->removeSelectedAppliedPresets();
            QCOMPARE(m_applied->currentWPreset()->name(), QString::fromLatin1(next));
        }
    }

    void moves()
    {
        using Row = std::tuple<IndexList, int, Text, IndexList>;
        for (const auto &[rows, target, expected, selected] :
             std::initializer_list<Row>{{{0}, 3, "b c a d", {0}},
                                        {{1, 3}, 0, "b d a c", {0}},
                                        {{1, 2}, 4, "a d b c", {2}},
                                        {{0, 3}, 2, "b a d c", {0}},
                                        {{9, -1}, -5, "a b c d", {1}}}) {
            init();
            apply(u"a b c d"_qs);
            m_applied->selectRows({1});
            m_applied->moveAppliedPresets(rows, target);
            QCOMPARE(names(m_applied->wPresetsApplied()), expected);
            QCOMPARE(m_applied->selectedRows(), selected);
        }
    }

    void steps()
    {
        using Row = std::tuple<IndexList, Step, Text, IndexList, bool>;
        for (const auto &[rows, step, expected, selected, isPossible] :
             std::initializer_list<Row>{{{1, 2}, Step::Up, "b c a d", {0, 1}, true},
                                        {{0, 2}, Step::Up, "a c b d", {0, 1}, true},
                                        {{1, 3}, Step::Down, "a c b d", {2, 3}, true},
                                        {{0, 2}, Step::Down, "b a d c", {1, 3}, true},
                                        {{2, 3}, Step::Down, "a b c d", {2, 3}, false},
                                        {{0, 1}, Step::Up, "a b c d", {0, 1}, false},
                                        {{}, Step::Up, "a b c d", {}, false}}) {
            init();
            apply(u"a b c d"_qs);
            QCOMPARE(canStep(rows, 4, step), isPossible);
            m_applied->selectRows(rows);
            m_applied->stepSelectedAppliedPresets(step);
            QCOMPARE(names(m_applied->wPresetsApplied()), expected);
            QCOMPARE(m_applied->selectedRows(), selected);
        }
    }

    void remembers()
    {
        const WPresetList all{namedPreset(u"a"_qs), namedPreset(u"b"_qs), namedPreset(u"b"_qs),
                              namedPreset(u"c"_qs)};
        m_applied->addWPresetsToApplied({all[3], all[1]});
        m_work->defaults.setObject(settings::wPresetsAppliedLastTime, QStringList{u"kept"_qs});
        m_applied->rememberAppliedPresets(); // not wanted, so the former names stay
        QCOMPARE(m_work->defaults.stringArrayForKey(settings::wPresetsAppliedLastTime),
                 QStringList(u"kept"_qs));

        m_work->defaults.setObject(settings::rememberWPresetsAppliedLastTime, true);
        m_applied->rememberAppliedPresets();
        m_applied->clearAppliedPresets();
        m_applied->restoreAppliedPresets({all[0], all[1], all[2], all[3]});
        QCOMPARE(names(m_applied->wPresetsApplied()), u"c b b"_qs);

        // Two of one name are stored twice and come back once each; a name that is gone is passed over.
        m_applied->rememberAppliedPresets();
        m_applied->clearAppliedPresets();
        m_applied->restoreAppliedPresets({all[0], all[1], all[2]});
        QCOMPARE(names(m_applied->wPresetsApplied()), u"b b"_qs);
    }

    void editsOutdateThePreview()
    {
        const auto quick = namedPreset(u"Quick Preset"_qs);
        const auto applied = namedPreset(u"a"_qs);
        m_applied->setQuickWPreset(quick);
        m_applied->addWPresetsToApplied({applied});
        m_applied->modeDidChange(AppliedPresets::Mode::Presets);
        const QSignalSpy outdated(m_applied.get(), &AppliedPresets::previewOutdated);
        quick->setOpacity(31);
        applied->setOpacity(32);
        QCOMPARE(outdated.size(), 2);
        m_applied->clearAppliedPresets();
        QCOMPARE(outdated.size(), 3);
        applied->setOpacity(33); // not drawn any more
        QCOMPARE(outdated.size(), 3);
        const auto other = namedPreset(u"other"_qs);
        m_applied->setQuickWPreset(other);
        QCOMPARE(outdated.size(), 4);
        quick->setOpacity(34);
        QCOMPARE(outdated.size(), 4);
    }

private:
    void apply(const QString &names)
    {
        WPresetList presets;
        for (const QString &name : names.split(u' ', Qt::SkipEmptyParts))
            presets.push_back(namedPreset(name));
        m_applied->addWPresetsToApplied(presets);
    }

    std::unique_ptr<WorkingSet> m_work;
    std::unique_ptr<AppliedPresets> m_applied;
};

QTEST_GUILESS_MAIN(AppliedPresetsTest)
#include "appliedpresets_test.moc"
