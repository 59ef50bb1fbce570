// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/imageselection.h"

#include <algorithm>
#include <numeric>

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
    take(cleanedIndexes(indexes, static_cast<std::size_t>(m_count)),
         focus >= 0 && focus < m_count ? focus : kNone);
}

/// Both are settled before anybody hears of either.
void ImageSelection::take(const IndexList &indexes, int focus)
{
    const bool isOtherSelection = indexes != m_selectedIndexes;
    const int formerFocus = std::exchange(m_focusIndex, focus);
    m_selectedIndexes = indexes;
    if (isOtherSelection)
        Q_EMIT selectionChanged();
    if (focus != formerFocus)
        Q_EMIT focusImageChanged(focus, formerFocus);
}

void ImageSelection::selectIndexes(const IndexList &indexes)
{
    const IndexList clean = cleanedIndexes(indexes, static_cast<std::size_t>(m_count));
    take(clean, clean.isEmpty() ? kNone : clean.first());
}

void ImageSelection::selectAll()
{
    IndexList all(m_count);
    std::iota(all.begin(), all.end(), 0);
    select(all, m_view == View::Grid ? m_focusIndex : 0);
}

void ImageSelection::selectNone()
{
    take({}, kNone);
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
    if (isMoved)
        Q_EMIT selectionChanged();
}

void ImageSelection::removeIndexes(int first, int count)
{
    m_count -= count;
    const int end = first + count;
    const auto indexAfter = [=](int index) {
        return index < first ? index : index < end ? kNone : index - count;
    };
    IndexList remaining;
    for (const int index : std::as_const(m_selectedIndexes)) {
        if (indexAfter(index) != kNone)
            remaining.append(indexAfter(index));
    }
    const int formerFocus = m_focusIndex;
    const bool isOtherSelection = remaining != m_selectedIndexes;
    m_selectedIndexes = remaining;
    m_focusIndex = formerFocus == kNone ? kNone : indexAfter(formerFocus);
    if (isOtherSelection || (m_focusIndex != formerFocus && m_focusIndex != kNone))
        Q_EMIT selectionChanged();
    if (m_focusIndex == kNone && formerFocus != kNone)
        Q_EMIT focusImageChanged(kNone, formerFocus);
}

} // namespace plexa
