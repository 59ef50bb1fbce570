// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/appliedpresets.h"

#include "platform/settings.h"
#include "platform/userdefaults.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace plexa
{

namespace
{

bool isIn(const WPresetList &presets, const WPreset *preset)
{
    return std::any_of(presets.begin(), presets.end(),
                       [preset](const auto &one) { return one.get() == preset; });
}

} // namespace

AppliedPresets::AppliedPresets(UserDefaults &defaults)
    : m_defaults(defaults)
{
}

AppliedPresets::~AppliedPresets() = default;

void AppliedPresets::setQuickWPreset(const std::shared_ptr<WPreset> &preset)
{
    if (preset == m_quickWPreset)
        return;
    m_quickWPreset = preset;
    observePresets();
    Q_EMIT quickWPresetChanged();
    Q_EMIT previewOutdated();
}

/// Follows the edits of the quick preset and the applied ones, and of no others.
void AppliedPresets::observePresets()
{
    m_observer = std::make_unique<QObject>();
    WPresetList presets = m_wPresetsApplied;
    if (m_quickWPreset && !isIn(presets, m_quickWPreset.get()))
        presets.push_back(m_quickWPreset);
    for (const std::shared_ptr<WPreset> &preset : presets) {
        connect(preset.get(), &WPreset::fieldChanged, m_observer.get(), [this, edited = preset.get()] {
            if (edited == m_quickWPreset.get() || !isInSingleMode())
                Q_EMIT previewOutdated();
        });
    }
}

bool AppliedPresets::isInSingleMode() const
{
    return m_defaults.integerForKey(settings::lastUsedMode) == 0;
}

void AppliedPresets::modeDidChange(Mode mode)
{
    m_defaults.setObject(settings::lastUsedMode, static_cast<int>(mode));
    Q_EMIT modeChanged(isInSingleMode());
    Q_EMIT previewOutdated();
}

WPresetList AppliedPresets::effectivePresets() const
{
    if (!isInSingleMode())
        return m_wPresetsApplied;
    return m_quickWPreset ? WPresetList{m_quickWPreset} : WPresetList();
}

std::vector<AppliedPreset> AppliedPresets::effectivePresetsNow() const
{
    std::vector<AppliedPreset> now;
    for (const std::shared_ptr<WPreset> &preset : effectivePresets())
        now.push_back({preset, preset->values()});
    return now;
}

bool AppliedPresets::areCombined() const
{
    return !isInSingleMode() && m_defaults.boolForKey(settings::combineAllAppliedPresetsInImage);
}

void AppliedPresets::setCombined(bool areCombined)
{
    m_defaults.setObject(settings::combineAllAppliedPresetsInImage, areCombined);
    Q_EMIT combinedChanged();
    Q_EMIT previewOutdated();
}

std::vector<AppliedPreset> AppliedPresets::presetsOfOneCopyNow() const
{
    std::vector<AppliedPreset> now = effectivePresetsNow();
    if (now.size() < 2 || areCombined())
        return now;
    if (const std::shared_ptr<WPreset> current = currentWPreset())
        return {{current, current->values()}};
    return {now.front()};
}

std::shared_ptr<WPreset> AppliedPresets::currentWPreset() const
{
    if (isInSingleMode())
        return m_quickWPreset;
    if (m_selectedRows.size() != 1)
        return nullptr;
    const std::shared_ptr<WPreset> &selected =
        m_wPresetsApplied[static_cast<std::size_t>(m_selectedRows.first())];
    return selected->validPreset() ? selected : nullptr;
}

void AppliedPresets::setApplied(WPresetList presets, const IndexList &selectedRows)
{
    if (presets == m_wPresetsApplied)
        return;
    Q_EMIT appliedAboutToChange();
    const WPresetList formerlySelected = selectedWPresets();
    const bool hasMoved = selectedRows != m_selectedRows;
    m_wPresetsApplied = std::move(presets);
    m_selectedRows = selectedRows;
    observePresets();
    Q_EMIT appliedChanged();
    if (hasMoved || selectedWPresets() != formerlySelected)
        Q_EMIT selectedRowsChanged();
    Q_EMIT previewOutdated();
}

void AppliedPresets::edit(EditKind kind, WPresetList presets, const IndexList &selectedRows)
{
    const Applied before = applied();
    setApplied(std::move(presets), selectedRows);
    if (m_wPresetsApplied != before.presets)
        Q_EMIT appliedEdited(kind, before);
}

void AppliedPresets::startWith(const WPresetList &presets)
{
    setApplied(presets, cleanedIndexes({0}, presets.size()));
}

void AppliedPresets::restoreApplied(const Applied &applied)
{
    setApplied(applied.presets, cleanedIndexes(applied.selectedRows, applied.presets.size()));
}

/// The applied presets, and those of the list that are not applied.
WPresetList AppliedPresets::appliedAnd(const WPresetList &presets) const
{
    WPresetList applied = m_wPresetsApplied;
    for (const std::shared_ptr<WPreset> &preset : presets) {
        if (!isIn(applied, preset.get()))
            applied.push_back(preset);
    }
    return applied;
}

void AppliedPresets::addWPresetsToApplied(const WPresetList &presets, std::optional<int> toRow)
{
    if (presets.empty())
        return;
    const int end = static_cast<int>(m_wPresetsApplied.size());
    const int row = std::clamp(toRow.value_or(end), 0, end);
    WPresetList all = appliedAnd(presets);
    std::rotate(all.begin() + row, all.begin() + end, all.end());
    const auto first = static_cast<int>(std::find(all.begin(), all.end(), presets.front()) - all.begin());
    edit(EditKind::Apply, std::move(all), {first});
    selectRows({first}); // if it was applied already
}

void AppliedPresets::removeSelectedAppliedPresets()
{
    WPresetList remaining;
    for (std::size_t row = 0; row < m_wPresetsApplied.size(); ++row) {
        if (!m_selectedRows.contains(static_cast<int>(row)))
            remaining.push_back(m_wPresetsApplied[row]);
    }
    IndexList selected;
    if (!remaining.empty() && !m_selectedRows.isEmpty())
        selected.append(std::min(m_selectedRows.first(), static_cast<int>(remaining.size()) - 1));
    edit(EditKind::Remove, std::move(remaining), selected);
}

void AppliedPresets::clearAppliedPresets()
{
    edit(EditKind::Clear, {}, {});
}

void AppliedPresets::removeFromApplied(const WPreset *preset)
{
    const auto found = std::find_if(m_wPresetsApplied.begin(), m_wPresetsApplied.end(),
                                    [preset](const auto &one) { return one.get() == preset; });
    if (found == m_wPresetsApplied.end())
        return;
    const auto removed = static_cast<int>(found - m_wPresetsApplied.begin());
    IndexList selected;
    for (const int row : std::as_const(m_selectedRows)) {
        if (row != removed)
            selected.append(row < removed ? row : row - 1);
    }
    WPresetList remaining = m_wPresetsApplied;
    remaining.erase(remaining.begin() + removed);
    setApplied(std::move(remaining), selected);
}

void AppliedPresets::moveAppliedPresets(const IndexList &rows, int toRow)
{
    const IndexList moved = cleanedIndexes(rows, m_wPresetsApplied.size());
    // The new order as former rows, for presets and selection.
    IndexList order(static_cast<qsizetype>(m_wPresetsApplied.size()));
    std::iota(order.begin(), order.end(), 0);
    const auto target = order.begin() + std::clamp<qsizetype>(toRow, 0, order.size());
    const auto isMoved = [&moved](int row) { return moved.contains(row); };
    std::stable_partition(order.begin(), target, std::not_fn(isMoved));
    std::stable_partition(target, order.end(), isMoved);
    setOrder(order);
}

void AppliedPresets::stepSelectedAppliedPresets(Step step)
{
    IndexList order(static_cast<qsizetype>(m_wPresetsApplied.size()));
    std::iota(order.begin(), order.end(), 0);
    // From the end that they move to, so that each one follows those before it.
    IndexList rows = m_selectedRows;
    if (step == Step::Down)
        std::reverse(rows.begin(), rows.end());
    for (const int row : std::as_const(rows)) {
        const int neighbor = step == Step::Up ? row - 1 : row + 1;
        if (neighbor >= 0 && neighbor < order.size() && !m_selectedRows.contains(order[neighbor]))
            order.swapItemsAt(row, neighbor);
    }
    setOrder(order);
}

/// @param formerRows  the former row of each preset in the new order
void AppliedPresets::setOrder(const IndexList &formerRows)
{
    WPresetList presets;
    IndexList selected;
    for (const int formerRow : formerRows) {
        if (m_selectedRows.contains(formerRow))
            selected.append(static_cast<int>(presets.size()));
        presets.push_back(m_wPresetsApplied[static_cast<std::size_t>(formerRow)]);
    }
    edit(EditKind::Reorder, std::move(presets), selected);
}

WPresetList AppliedPresets::selectedWPresets() const
{
    WPresetList selected;
    for (const int row : m_selectedRows)
        selected.push_back(m_wPresetsApplied[static_cast<std::size_t>(row)]);
    return selected;
}

void AppliedPresets::selectRows(const IndexList &rows)
{
    const IndexList clean = cleanedIndexes(rows, m_wPresetsApplied.size());
    if (clean == m_selectedRows)
        return;
    m_selectedRows = clean;
    Q_EMIT selectedRowsChanged();
}

void AppliedPresets::selectNeighborAppliedPreset(Neighbor neighbor)
{
    const auto count = static_cast<int>(m_wPresetsApplied.size());
    if (count == 0)
        return;
    const bool isNext = neighbor == Neighbor::Next;
    int row = isNext ? 0 : count - 1;
    if (!m_selectedRows.isEmpty())
        row = (m_selectedRows.first() + (isNext ? 1 : count - 1)) % count;
    selectRows({row});
}

void AppliedPresets::rememberAppliedPresets()
{
    // Otherwise the names of an earlier time are kept.
    if (!m_defaults.boolForKey(settings::rememberWPresetsAppliedLastTime))
        return;
    QStringList names;
    for (const std::shared_ptr<WPreset> &preset : m_wPresetsApplied)
        names.append(preset->name());
    m_defaults.setObject(settings::wPresetsAppliedLastTime, names);
}

void AppliedPresets::restoreAppliedPresets(const WPresetList &wPresets)
{
    if (!m_defaults.boolForKey(settings::rememberWPresetsAppliedLastTime))
        return;
    WPresetList named;
    for (const QString &name : m_defaults.stringArrayForKey(settings::wPresetsAppliedLastTime)) {
        std::copy_if(wPresets.begin(), wPresets.end(), std::back_inserter(named),
                     [&name](const auto &preset) { return preset->name() == name; });
    }
    startWith(appliedAnd(named));
}

} // namespace plexa
