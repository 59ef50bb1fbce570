// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/presetlist.h"
#include "presets/savingpreset.h"
#include "support/words.h"
#include "watermark/wpreset.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;

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

QStringList namesOf(const auto &list)
{
    QStringList names;
    for (const auto &preset : list.presets())
        names.append(preset->name());
    return names;
}

enum Operation { InsertNew, Duplicate, Move, Remove };

/// Changes the list "a b c d e".
/// @param row  the one that the operation returns
template<class Preset, class Maker>
void checkChange(const Maker &maker, Operation operation, const QList<int> &rows, int to, const char *names,
                 int row)
{
    PresetList<Preset> list(maker);
    const Mirror<Preset> mirror(list);
    for (const QString &letter : words("a b c d e")) {
        list.append({maker()});
        list.presets().back()->setName(letter);
    }
    if (operation == Move)
        list.move(rows, to);
    else
        QCOMPARE(operation == InsertNew   ? list.insertNew(rows)
                 : operation == Duplicate ? list.duplicate(rows)
                                          : list.remove(rows),
                 row);
    QCOMPARE(namesOf(list), words(names));
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

private Q_SLOTS:
    void changes()
    {
        using Row = std::tuple<Operation, QList<int>, int, const char *, int>;
        for (const auto &[operation, rows, to, names, row] :
             std::initializer_list<Row>{{InsertNew, {}, 0, "a b c d e 'New Preset'", 5},
                                        {InsertNew, {3, 1}, 0, "a b c d 'New Preset' e", 4},
                                        {InsertNew, {1, 9, -1}, 0, "a b 'New Preset' c d e", 2},
                                        {Duplicate, {}, 0, "a b c d e", 5},
                                        {Duplicate, {2, 0}, 0, "a b c 'a - copy' 'c - copy' d e", 3},
                                        {Move, {1, 2}, 4, "a d b c e", 0},
                                        {Move, {4, 3}, 1, "a d e b c", 0},
                                        {Move, {0, 1, 4}, 3, "c a b e d", 0},
                                        {Move, {0}, 99, "b c d e a", 0},
                                        {Move, {1, 2}, 2, "a b c d e", 0},
                                        {Remove, {4, 1, 2}, 0, "a d", 1},
                                        {Remove, {1}, 0, "a c d e", 1},
                                        {Remove, {0, 1, 2, 3, 4}, 0, "", -1},
                                        {Remove, {5}, 0, "a b c d e", -1}}) {
            checkChange<WPreset>([] { return std::make_shared<WPreset>(WPresetValues()); }, operation, rows,
                                 to, names, row);
            checkChange<SavingPreset>([] { return std::make_shared<SavingPreset>(); }, operation, rows, to,
                                      names, row);
        }
    }
};

QTEST_GUILESS_MAIN(PresetListTest)
#include "presetlist_test.moc"
