// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace plexa
{

/// The changes of a list of presets of either kind. Rows count from 0; a range includes its last row. The
/// arguments are those of the functions of QAbstractItemModel that announce the same change. A slot may edit
/// presets, but must not change the list.
class PresetListSignals : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void aboutToInsert(int first, int last);
    void inserted(int first, int last);
    void aboutToRemove(int first, int last);
    void removed(int first, int last);
    /// @param toRow  the preset moves to the place before this row of the former order
    void aboutToMove(int fromRow, int toRow);
    void moved(int fromRow, int toRow);
    /// A field of this preset has a new value.
    void edited(int row);
};

/// An ordered list of presets, known by their identity, each in it once. `Preset` is WPreset or SavingPreset.
/// Rows that are not in the list are ignored. Main thread.
template<class Preset>
class PresetList final : public PresetListSignals
{
public:
    using Presets = std::vector<std::shared_ptr<Preset>>;
    using Rows = QList<int>;

    /// @param newPreset  returns a new preset with default values
    explicit PresetList(std::function<std::shared_ptr<Preset>()> newPreset)
        : m_newPreset(std::move(newPreset))
    {
    }

    const Presets &presets() const { return m_presets; }

    /// Inserts presets as a block after the last of these rows; at the end when there are no rows.
    /// @return the first row of the block
    int insertAfter(const Rows &rows, const Presets &presets);
    int append(const Presets &presets) { return insertAfter({}, presets); }

    /// Inserts a new preset after the last of these rows. @return its row
    int insertNew(const Rows &rows) { return insertAfter(rows, {m_newPreset()}); }

    /// Inserts a copy of each of these presets, named "NAME - copy", as a block after the last of them.
    /// @return the first row of the block
    int duplicate(const Rows &rows);

    /// Moves these presets, in their order, to the place before `toRow` of the former order; 0..size.
    void move(const Rows &rows, int toRow);

    /// Makes these presets the list, in their order. What is in both stays in it.
    void restore(const Presets &presets);

    /// @return the row to select now: of the preset that followed the last removed one, else the last row; -1
    ///         when the list is empty or nothing was removed
    int remove(const Rows &rows);

private:
    int size() const { return static_cast<int>(m_presets.size()); }
    std::set<int> existing(const Rows &rows) const;
    void insertAt(int first, const Presets &presets);
    void moveOne(int fromRow, int toRow);
    void removeRange(int first, int last);
    void observe(const std::shared_ptr<Preset> &preset);

    std::function<std::shared_ptr<Preset>()> m_newPreset;
    Presets m_presets;
};

template<class Preset>
std::set<int> PresetList<Preset>::existing(const Rows &rows) const
{
    const std::set<int> sorted(rows.begin(), rows.end());
    return {sorted.lower_bound(0), sorted.lower_bound(size())};
}

template<class Preset>
void PresetList<Preset>::observe(const std::shared_ptr<Preset> &preset)
{
    connect(preset.get(), &Preset::fieldChanged, this, [this, changed = preset.get()] {
        const auto row = std::find_if(m_presets.begin(), m_presets.end(),
                                      [changed](const auto &one) { return one.get() == changed; });
        Q_EMIT edited(static_cast<int>(row - m_presets.begin()));
    });
}

template<class Preset>
int PresetList<Preset>::insertAfter(const Rows &rows, const Presets &presets)
{
    const std::set<int> after = existing(rows);
    const int first = after.empty() ? size() : *after.rbegin() + 1;
    if (!presets.empty())
        insertAt(first, presets);
    return first;
}

template<class Preset>
void PresetList<Preset>::insertAt(int first, const Presets &presets)
{
    const int last = first + static_cast<int>(presets.size()) - 1;
    m_presets.reserve(m_presets.size() + presets.size()); // a failure must not come between the signals
    Q_EMIT aboutToInsert(first, last);
    m_presets.insert(m_presets.begin() + first, presets.begin(), presets.end());
    for (const auto &preset : presets)
        observe(preset);
    Q_EMIT inserted(first, last);
}

template<class Preset>
void PresetList<Preset>::restore(const Presets &presets)
{
    Rows others;
    for (int row = 0; row < size(); ++row) {
        if (std::find(presets.begin(), presets.end(), m_presets[static_cast<std::size_t>(row)]) ==
            presets.end())
            others.append(row);
    }
    remove(others);
    for (int row = 0; row < static_cast<int>(presets.size()); ++row) {
        const auto &preset = presets[static_cast<std::size_t>(row)];
        const auto found = std::find(m_presets.begin() + row, m_presets.end(), preset);
        if (found == m_presets.end())
            insertAt(row, {preset});
        else
            moveOne(static_cast<int>(found - m_presets.begin()), row);
    }
}

template<class Preset>
int PresetList<Preset>::duplicate(const Rows &rows)
{
    Presets copies;
    for (const int row : existing(rows)) {
        const auto &preset = m_presets[static_cast<std::size_t>(row)];
        copies.push_back(preset->copy());
        copies.back()->setName(preset->name() + QStringLiteral(" - copy"));
    }
    return insertAfter(rows, copies);
}

template<class Preset>
void PresetList<Preset>::move(const Rows &rows, int toRow)
{
    toRow = std::clamp(toRow, 0, size());
    const std::set<int> all = existing(rows);
    const auto split = all.lower_bound(toRow);
    // From the target outwards, so that the rows that are still to move keep their numbers.
    int target = toRow;
    for (auto row = std::make_reverse_iterator(split); row != all.rend(); ++row)
        moveOne(*row, target--);
    target = toRow;
    for (auto row = split; row != all.end(); ++row)
        moveOne(*row, target++);
}

template<class Preset>
void PresetList<Preset>::moveOne(int fromRow, int toRow)
{
    if (toRow == fromRow || toRow == fromRow + 1)
        return;
    Q_EMIT aboutToMove(fromRow, toRow);
    const auto from = m_presets.begin() + fromRow;
    if (toRow < fromRow)
        std::rotate(m_presets.begin() + toRow, from, from + 1);
    else
        std::rotate(from, from + 1, m_presets.begin() + toRow);
    Q_EMIT moved(fromRow, toRow);
}

template<class Preset>
int PresetList<Preset>::remove(const Rows &rows)
{
    const std::set<int> all = existing(rows);
    // From the end, so that the rows that are still to be removed keep their numbers.
    for (auto row = all.rbegin(); row != all.rend();) {
        const int last = *row;
        int first = last;
        while (++row != all.rend() && *row == first - 1)
            first = *row;
        removeRange(first, last);
    }
    return all.empty() ? -1 : std::min(*all.rbegin() + 1 - static_cast<int>(all.size()), size() - 1);
}

template<class Preset>
void PresetList<Preset>::removeRange(int first, int last)
{
    Q_EMIT aboutToRemove(first, last);
    const auto begin = m_presets.begin() + first;
    const auto end = m_presets.begin() + last + 1;
    for (auto preset = begin; preset != end; ++preset)
        (*preset)->disconnect(this);
    m_presets.erase(begin, end);
    Q_EMIT removed(first, last);
}

} // namespace plexa
