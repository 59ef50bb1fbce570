// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetlist.h"
#include "presets/savingpreset.h"
#include "watermark/wpreset.h"

#include <QtTest>

using namespace plexa;

namespace
{

/// A list that knows of another one only what its signals tell, as a model of a view does.
template<class Preset>
class Mirror
{
public:
    explicit Mirror(PresetList<Preset> &list)
        : m_list(list)
    {
        using Signals = PresetListSignals;
        const auto expectOld = [this] { m_isLate = m_isLate || m_presets != m_list.presets(); };
        QObject::connect(&list, &Signals::aboutToInsert, &m_context, expectOld);
        QObject::connect(&list, &Signals::aboutToRemove, &m_context, expectOld);
        QObject::connect(&list, &Signals::aboutToMove, &m_context, expectOld);
        QObject::connect(&list, &Signals::inserted, &m_context, [this](int first, int last) {
            const auto begin = m_list.presets().begin();
            m_presets.insert(m_presets.begin() + first, begin + first, begin + last + 1);
        });
        QObject::connect(&list, &Signals::removed, &m_context, [this](int first, int last) {
            m_presets.erase(m_presets.begin() + first, m_presets.begin() + last + 1);
        });
        QObject::connect(&list, &Signals::moved, &m_context, [this](int from, int to) {
            const auto preset = m_presets[static_cast<std::size_t>(from)];
            m_presets.insert(m_presets.begin() + to, preset);
            m_presets.erase(m_presets.begin() + (to < from ? from + 1 : from));
        });
    }

    bool isTrue() const { return !m_isLate && m_presets == m_list.presets(); }

private:
    PresetList<Preset> &m_list;
    typename PresetList<Preset>::Presets m_presets;
    bool m_isLate = false;
    QObject m_context;
};

QString namesOf(const auto &list)
{
    QString names;
    for (const auto &preset : list.presets())
        names += preset->name() + u' ';
    return names.trimmed();
}

template<class Preset>
using Change = std::function<int(PresetList<Preset> &list)>;

/// Makes a change to the list "a b c d e".
template<class Preset, class Maker>
void checkChange(const Change<Preset> &change, const Maker &maker)
{
    QFETCH(QString, names);
    QFETCH(int, row);
    PresetList<Preset> list(maker);
    const Mirror<Preset> mirror(list);
    for (const char *name : {"a", "b", "c", "d", "e"}) {
        list.append({maker()});
        list.presets().back()->setName(QString::fromLatin1(name));
    }
    QCOMPARE(change(list), row);
    QCOMPARE(namesOf(list), names);
    QVERIFY(mirror.isTrue());
    // Every preset in it reports its edits, and none that has left it.
    const QSignalSpy edits(&list, &PresetListSignals::edited);
    const auto presets = list.presets();
    for (const auto &preset : presets)
        preset->setName(QStringLiteral("edited"));
    QCOMPARE(edits.size(), static_cast<qsizetype>(presets.size()));
    for (qsizetype i = 0; i < edits.size(); ++i)
        QCOMPARE(edits[i][0].toInt(), static_cast<int>(i));
    list.remove({0, 1, 2, 3, 4, 5, 6, 7});
    for (const auto &preset : presets)
        preset->setName(QStringLiteral("removed"));
    QCOMPARE(edits.size(), static_cast<qsizetype>(presets.size()));
    QVERIFY(mirror.isTrue() && list.presets().empty());
}

} // namespace

class PresetListTest : public QObject
{
    Q_OBJECT

    enum Operation { InsertNew, Duplicate, Move, Remove };

private Q_SLOTS:
    void changes_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("names");
        QTest::addColumn<int>("row"); // the one that the operation returns
        const auto add = [](Operation operation, const QList<int> &rows, int to, const char *names, int row) {
            QString title = QString::number(operation);
            for (const int each : rows)
                title += QStringLiteral(" %1").arg(each);
            QTest::addRow("%s to %d", qPrintable(title), to)
                << static_cast<int>(operation) << rows << to << QString::fromLatin1(names) << row;
        };
        add(InsertNew, {}, 0, "a b c d e New Preset", 5);
        add(InsertNew, {3, 1}, 0, "a b c d New Preset e", 4);
        add(InsertNew, {1, 9, -1}, 0, "a b New Preset c d e", 2);
        add(Duplicate, {}, 0, "a b c d e", 5);
        add(Duplicate, {2, 0}, 0, "a b c a - copy c - copy d e", 3);
        add(Move, {1, 2}, 4, "a d b c e", 0);
        add(Move, {4, 3}, 1, "a d e b c", 0);
        add(Move, {0, 1, 4}, 3, "c a b e d", 0);
        add(Move, {0}, 99, "b c d e a", 0);
        add(Move, {1, 2}, 2, "a b c d e", 0);
        add(Remove, {4, 1, 2}, 0, "a d", 1);
        add(Remove, {1}, 0, "a c d e", 1);
        add(Remove, {0, 1, 2, 3, 4}, 0, "", -1);
        add(Remove, {5}, 0, "a b c d e", -1);
    }

    void changes()
    {
        QFETCH(int, operation);
        QFETCH(QList<int>, rows);
        QFETCH(int, to);
        const auto change = [&](auto &list) {
            if (operation == InsertNew)
                return list.insertNew(rows);
            if (operation == Duplicate)
                return list.duplicate(rows);
            if (operation == Remove)
                return list.remove(rows);
            list.move(rows, to);
            return 0;
        };
        checkChange<WPreset>(change, [] { return std::make_shared<WPreset>(WPresetValues()); });
        checkChange<SavingPreset>(change, [] { return std::make_shared<SavingPreset>(); });
    }

    /// A saving preset that was duplicated is another one.
    void copiesHaveTheirOwnIDs()
    {
        PresetList<SavingPreset> list([] { return std::make_shared<SavingPreset>(); });
        list.insertNew({});
        list.duplicate({0});
        list.duplicate({1});
        QCOMPARE(namesOf(list), QStringLiteral("New Preset New Preset - copy New Preset - copy - copy"));
        QVERIFY(list.presets()[0]->presetID() != list.presets()[1]->presetID());
    }
};

QTEST_GUILESS_MAIN(PresetListTest)
#include "presetlist_test.moc"
