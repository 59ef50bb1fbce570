// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <Qt>

namespace plexa
{

/// What is selected in a grid and which image has the focus, and how presses and keys change that. A value;
/// knows no widget.
class BrowserSelection
{
public:
    static constexpr int kNone = -1;

    /// Extend: keys or clicks join what is selected. Range: also what lies between.
    enum class Mode { Replace, Extend, Range };
    /// Shift: Range; else Ctrl: Extend.
    static Mode modeOf(Qt::KeyboardModifiers modifiers);

    int count() const { return m_count; }
    /// The list has another length now; what is beyond it is neither selected nor focused any more.
    void setCount(int count);

    /// Ascending, each once.
    const QList<int> &indexes() const { return m_indexes; }
    bool isSelected(int index) const;
    int focus() const { return m_focus; }
    /// An index that is not in the list is none.
    void setFocus(int index);

    /// Adds an index, or all from `from` to it where `from` is given; without `extend`, after clearing.
    /// Nothing is added for an index that is not in the list.
    void select(int index, bool extend, int from = kNone);
    /// Exactly these, or these also; what is not in the list is left out.
    void select(const QList<int> &indexes, bool extend);
    void deselect(int first, int last);
    void deselect(int index) { deselect(index, index); }
    void selectAll();
    /// The focus goes, too.
    void selectNone();
    /// The first selected index gets the focus.
    void invert();

    /// A press of the pointer on a cell: it gets the focus, an unselected one is selected, Range: with all
    /// from the former focus on. Extend takes a selected one out.
    void press(int index, Mode mode);

    /// One step to the next or previous image.
    void stepTo(bool next, Mode mode);
    /// So many images on (or back), as a row or a page is; at most to the ends.
    void jumpBy(int images, Mode mode);
    /// Focus to that image, as jumpBy() does.
    void jumpTo(int index, Mode mode);

    bool operator==(const BrowserSelection &) const = default;

private:
    bool isValid(int index) const { return index >= 0 && index < m_count; }
    void add(int first, int last);

    int m_count = 0;
    int m_focus = kNone;
    QList<int> m_indexes;
};

} // namespace plexa
