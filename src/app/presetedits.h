// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/editruns.h"
#include "app/indexlist.h"
#include "presets/presetlist.h"
#include "presets/savingpreset.h"
#include "watermark/wpreset.h"

#include <QCoreApplication>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>

namespace plexa
{

/// What the user does to one list of presets, as steps that can be undone. Rows are those of the list. Main
/// thread.
template<class Preset, class Field>
class PresetEditsOf final
{
    Q_DECLARE_TR_FUNCTIONS(plexa::PresetEdits)

public:
    using List = PresetList<Preset>;
    using Presets = typename List::Presets;
    /// As UndoHistory::record().
    using Record = std::function<void(const QString &text, const std::function<bool()> &restore,
                                      const std::function<bool()> &repeat)>;
    /// Returns what puts back the references to presets that get lost when they are removed.
    using RememberLinks = std::function<std::function<void()>()>;

    /// @param list  outlives this object
    PresetEditsOf(List &list, Record record, RememberLinks rememberLinks);

    List &list() { return m_list; }

    // As the functions of PresetList.
    int insertNew(const IndexList &rows);
    int append(const Presets &presets);
    int duplicate(const IndexList &rows);
    int remove(const IndexList &rows);
    void move(const IndexList &rows, int toRow);
    /// Moves these presets one place up or down; those at the end of the list stay there.
    void step(const IndexList &rows, Step step);

    /// All changes of the list by this function are one step; none if it changes nothing.
    void edit(const QString &text, const std::function<void()> &change);

    /// A field of a preset has been edited. Changes of one field without a pause, as by a slider, are one
    /// step.
    void fieldEdited(const std::shared_ptr<Preset> &preset, Field field, const FieldValue &before,
                     const FieldValue &now);
    /// Called with the rows of presets that have come back, or changed back, because a step was undone or
    /// made again. May be empty.
    void setShowRows(const std::function<void(const IndexList &rows)> &show) { m_showRows = show; }

    /// Something else was done or undone: the next change of a field is a step of its own.
    void endRun() { m_run.reset(); }

private:
    struct Run {
        std::shared_ptr<Preset> preset;
        Field field;
        int number; ///< of EditRuns
        FieldValue before;
        FieldValue now;
    };

    bool restore(const Presets &presets);
    bool exchange(const Run &run, const FieldValue &expected, const FieldValue &wanted) const;

    List &m_list;
    const Record m_record;
    const RememberLinks m_rememberLinks;
    std::function<void(const IndexList &rows)> m_showRows;
    std::shared_ptr<Run> m_run; ///< that the next change of its field joins
    EditRuns m_runs;
};

using WPresetEdits = PresetEditsOf<WPreset, FieldId>;
using SavingPresetEdits = PresetEditsOf<SavingPreset, SavingField>;

template<class Preset, class Field>
PresetEditsOf<Preset, Field>::PresetEditsOf(List &list, Record record, RememberLinks rememberLinks)
    : m_list(list)
    , m_record(std::move(record))
    , m_rememberLinks(std::move(rememberLinks))
{
}

template<class Preset, class Field>
void PresetEditsOf<Preset, Field>::edit(const QString &text, const std::function<void()> &change)
{
    const Presets before = m_list.presets();
    const std::function<void()> putBackLinks = m_rememberLinks();
    change();
    const Presets after = m_list.presets();
    if (before == after)
        return;
    m_record(
        text,
        [this, before, putBackLinks] {
            restore(before);
            putBackLinks();
            return true;
        },
        [this, after] { return restore(after); });
}

/// Makes these presets the list.
template<class Preset, class Field>
bool PresetEditsOf<Preset, Field>::restore(const Presets &presets)
{
    const Presets before = m_list.presets();
    m_list.restore(presets);
    IndexList rows; // of those that have come back
    for (std::size_t row = 0; row < presets.size(); ++row) {
        if (std::find(before.begin(), before.end(), presets[row]) == before.end())
            rows.append(static_cast<int>(row));
    }
    if (m_showRows && !rows.isEmpty())
        m_showRows(rows);
    return true;
}

template<class Preset, class Field>
int PresetEditsOf<Preset, Field>::insertNew(const IndexList &rows)
{
    int row = -1;
    edit(tr("Add Preset"), [&] { row = m_list.insertNew(rows); });
    return row;
}

template<class Preset, class Field>
int PresetEditsOf<Preset, Field>::append(const Presets &presets)
{
    int row = -1;
    edit(tr("Add Preset"), [&] { row = m_list.append(presets); });
    return row;
}

template<class Preset, class Field>
int PresetEditsOf<Preset, Field>::duplicate(const IndexList &rows)
{
    int row = -1;
    edit(rows.size() == 1 ? tr("Duplicate Preset") : tr("Duplicate Presets"),
         [&] { row = m_list.duplicate(rows); });
    return row;
}

template<class Preset, class Field>
int PresetEditsOf<Preset, Field>::remove(const IndexList &rows)
{
    int row = -1;
    edit(rows.size() == 1 ? tr("Remove Preset") : tr("Remove Presets"), [&] { row = m_list.remove(rows); });
    return row;
}

template<class Preset, class Field>
void PresetEditsOf<Preset, Field>::move(const IndexList &rows, int toRow)
{
    edit(tr("Move Presets"), [&] { m_list.move(rows, toRow); });
}

template<class Preset, class Field>
void PresetEditsOf<Preset, Field>::step(const IndexList &rows, Step step)
{
    edit(tr("Move Presets"), [&] {
        IndexList sorted = cleanedIndexes(rows, m_list.presets().size());
        int free = 0; // the first place that nothing has moved to
        if (step == Step::Down) {
            std::reverse(sorted.begin(), sorted.end());
            free = static_cast<int>(m_list.presets().size()) - 1;
        }
        for (const int row : std::as_const(sorted)) {
            const int by = row == free ? 0 : step == Step::Up ? -1 : 1;
            if (by != 0)
                m_list.move({row}, by < 0 ? row - 1 : row + 2);
            free = row + by + (step == Step::Up ? 1 : -1);
        }
    });
}

template<class Preset, class Field>
void PresetEditsOf<Preset, Field>::fieldEdited(const std::shared_ptr<Preset> &preset, Field field,
                                               const FieldValue &before, const FieldValue &now)
{
    const int number = m_runs.numberOf(now);
    if (m_run && m_run->number == number && m_run->preset == preset && m_run->field == field) {
        m_run->now = now;
    } else {
        const auto run = std::make_shared<Run>(Run{preset, field, number, before, now});
        m_record(
            tr("Edit Preset"), [this, run] { return exchange(*run, run->now, run->before); },
            [this, run] { return exchange(*run, run->before, run->now); });
        m_run = run;
    }
}

/// Leaves a preset alone that is gone, and a field that something else has changed.
template<class Preset, class Field>
bool PresetEditsOf<Preset, Field>::exchange(const Run &run, const FieldValue &expected,
                                            const FieldValue &wanted) const
{
    const Presets &all = m_list.presets();
    const auto found = std::find(all.begin(), all.end(), run.preset);
    if (found == all.end() || run.preset->value(run.field) != expected || expected == wanted)
        return false;
    run.preset->setValue(run.field, wanted);
    if (m_showRows)
        m_showRows({static_cast<int>(found - all.begin())});
    return true;
}

} // namespace plexa
