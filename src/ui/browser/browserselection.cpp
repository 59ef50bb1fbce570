// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/browserselection.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace plexa
{

BrowserSelection::Mode BrowserSelection::modeOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ShiftModifier)
        return Mode::Range;
    return modifiers & Qt::ControlModifier ? Mode::Extend : Mode::Replace;
}

void BrowserSelection::setCount(int count)
{
    m_count = std::max(count, 0);
    deselect(m_count, std::numeric_limits<int>::max());
    if (m_focus >= m_count)
        m_focus = kNone;
}

bool BrowserSelection::isSelected(int index) const
{
    return std::binary_search(m_indexes.begin(), m_indexes.end(), index);
}

void BrowserSelection::setFocus(int index)
{
    m_focus = isValid(index) ? index : kNone;
}

void BrowserSelection::select(int index, bool extend, int from)
{
    if (!extend)
        m_indexes = {};
    if (!isValid(index))
        return;
    const int other = isValid(from) ? from : index;
    add(std::min(index, other), std::max(index, other));
}

void BrowserSelection::select(const QList<int> &indexes, bool extend)
{
    if (!extend)
        m_indexes = {};
    for (const int index : indexes)
        if (isValid(index))
            m_indexes.append(index);
    std::sort(m_indexes.begin(), m_indexes.end());
    m_indexes.erase(std::unique(m_indexes.begin(), m_indexes.end()), m_indexes.end());
}

void BrowserSelection::deselect(int first, int last)
{
    if (first > last)
        std::swap(first, last);
    m_indexes.erase(std::lower_bound(m_indexes.begin(), m_indexes.end(), first),
                    std::upper_bound(m_indexes.begin(), m_indexes.end(), last));
    if (m_indexes.isEmpty())
        m_indexes = {}; // without memory, like all other empty lists: Qt compares these by address
}

void BrowserSelection::selectAll()
{
    m_indexes = {};
    if (m_count > 0)
        add(0, m_count - 1);
}

void BrowserSelection::selectNone()
{
    m_indexes = {};
    m_focus = kNone;
}

void BrowserSelection::press(int index, Mode mode)
{
    if (!isValid(index))
        return;
    const int from = m_focus;
    m_focus = index;
    if (!isSelected(index))
        select(index, mode != Mode::Replace, mode == Mode::Range ? from : kNone);
    else if (mode == Mode::Extend)
        deselect(index);
}

void BrowserSelection::stepTo(bool next, Mode mode)
{
    if (m_count == 0)
        return;
    const int from = m_focus;
    int to = next ? 0 : m_count - 1;
    if (from != kNone)
        to = std::clamp(from + (next ? 1 : -1), 0, m_count - 1);
    // Back onto a selected image: the selection shrinks from this end.
    if (mode == Mode::Range && from != kNone && to != from && isSelected(to))
        deselect(from);
    m_focus = to;
    select(to, mode != Mode::Replace);
}

void BrowserSelection::jumpBy(int images, Mode mode)
{
    if (m_count == 0)
        return;
    if (m_focus == kNone)
        jumpTo(images > 0 ? 0 : m_count - 1, mode);
    else
        jumpTo(std::clamp(m_focus + images, 0, m_count - 1), mode);
}

void BrowserSelection::jumpTo(int index, Mode mode)
{
    if (!isValid(index))
        return;
    const int from = m_focus;
    m_focus = index;
    if (mode != Mode::Range)
        select(index, mode == Mode::Extend);
    else if (!isSelected(index) || from == kNone)
        select(index, true, from);
    else if (from < index)
        deselect(from, index - 1);
    else if (from > index)
        deselect(index + 1, from);
}

void BrowserSelection::add(int first, int last)
{
    QList<int> range(last - first + 1);
    std::iota(range.begin(), range.end(), first);
    select(range, true);
}

} // namespace plexa
