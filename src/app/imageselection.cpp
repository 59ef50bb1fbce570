// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageselection.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace plexa
{

bool ImageSelection::isSelected(int index) const
{
    return std::binary_search(m_selectedIndexes.begin(), m_selectedIndexes.end(), index);
}

int ImageSelection::shownImageIndex() const
{
    if (m_view == View::Grid)
        return m_focusIndex;
    return m_selectedIndexes.isEmpty() ? kNone : m_selectedIndexes.first();
}

void ImageSelection::select(const IndexList &indexes, int focus)
{
    change(cleanedIndexes(indexes, static_cast<std::size_t>(m_count)),
           focus >= 0 && focus < m_count ? focus : kNone);
}

/// Changes both before a signal is sent.
void ImageSelection::change(const IndexList &indexes, int focus)
{
    const bool isOtherSelection = indexes != m_selectedIndexes;
    const int formerFocus = std::exchange(m_focusIndex, focus);
    m_selectedIndexes = indexes;
    noteChange(isOtherSelection, focus != formerFocus ? std::optional(formerFocus) : std::nullopt);
}

void ImageSelection::noteChange(bool isOtherSelection, std::optional<int> formerFocus)
{
    m_isOtherSelection |= isOtherSelection;
    if (!m_formerFocus)
        m_formerFocus = formerFocus;
    send();
}

void ImageSelection::send()
{
    if (m_holds > 0)
        return;
    if (std::exchange(m_isOtherSelection, false))
        Q_EMIT selectionChanged();
    if (const std::optional<int> from = std::exchange(m_formerFocus, std::nullopt))
        Q_EMIT focusImageChanged(m_focusIndex, *from);
    if (std::exchange(m_isScrollWanted, false) && m_focusIndex != kNone)
        Q_EMIT scrollToFocusRequested();
}

void ImageSelection::selectIndexes(const IndexList &indexes)
{
    const Hold hold(*this);
    const IndexList clean = cleanedIndexes(indexes, static_cast<std::size_t>(m_count));
    change(clean, clean.isEmpty() ? kNone : clean.first());
    m_isScrollWanted = true;
}

void ImageSelection::selectAll()
{
    IndexList all(m_count);
    std::iota(all.begin(), all.end(), 0);
    select(all, m_view == View::Grid ? m_focusIndex : 0);
}

void ImageSelection::selectNone()
{
    change({}, kNone);
}

void ImageSelection::invertSelection()
{
    IndexList others;
    for (int index = 0; index < m_count; ++index) {
        if (!isSelected(index))
            others.append(index);
    }
    selectIndexes(others);
}

void ImageSelection::reset(int count)
{
    m_count = count;
    selectNone();
}

void ImageSelection::insertIndexes(int first, int count)
{
    m_count += count;
    bool isMoved = false;
    for (int &index : m_selectedIndexes) {
        if (index >= first) {
            index += count;
            isMoved = true;
        }
    }
    if (m_focusIndex >= first) {
        m_focusIndex += count;
        isMoved = true;
    }
    noteChange(isMoved, std::nullopt);
}

void ImageSelection::removeIndexes(const IndexList &removed)
{
    m_count -= static_cast<int>(removed.size());
    const auto indexAfter = [&removed](int index) {
        const auto place = std::lower_bound(removed.begin(), removed.end(), index);
        const bool isRemoved = place != removed.end() && *place == index;
        return isRemoved ? kNone : index - static_cast<int>(place - removed.begin());
    };
    IndexList remaining;
    for (const int index : std::as_const(m_selectedIndexes)) {
        if (indexAfter(index) != kNone)
            remaining.append(indexAfter(index));
    }
    const int formerFocus = m_focusIndex;
    m_focusIndex = formerFocus == kNone ? kNone : indexAfter(formerFocus);
    const bool isFocusGone = m_focusIndex == kNone && formerFocus != kNone;
    const bool isOtherSelection =
        remaining != m_selectedIndexes || (m_focusIndex != formerFocus && !isFocusGone);
    m_selectedIndexes = remaining;
    noteChange(isOtherSelection, isFocusGone ? std::optional(formerFocus) : std::nullopt);
}

void ImageSelection::reorder(const IndexList &selected, int focus)
{
    m_selectedIndexes = selected;
    m_focusIndex = focus;
    noteChange(true, std::nullopt);
}

} // namespace plexa
