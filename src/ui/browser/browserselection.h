// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <Qt>

namespace plexa
{

/// The selected images and the focus image of a grid, and how presses and keys change them. A value; knows no
/// widget.
class BrowserSelection
{
public:
    static constexpr int kNone = -1;

    /// Extend adds to the selection. Range also adds the images between.
    enum class Mode { Replace, Extend, Range };
    /// Shift: Range; else Ctrl: Extend.
    static Mode modeOf(Qt::KeyboardModifiers modifiers);

    int count() const { return m_count; }
    /// Sets the length of the list and removes indexes beyond it from selection and focus.
    void setCount(int count);

    /// Ascending, each once.
    const QList<int> &indexes() const { return m_indexes; }
    bool isSelected(int index) const;
    int focus() const { return m_focus; }
    /// An index outside the list: no focus.
    void setFocus(int index);

    /// Adds an index, or all between `from` and it if `from` is valid. Without `extend`, clears first.
    /// Ignores an index outside the list.
    void select(int index, bool extend, int from = kNone);
    /// Selects these, with `extend` additionally; ignores indexes outside the list.
    void select(const QList<int> &indexes, bool extend);
    void deselect(int first, int last);
    void deselect(int index) { deselect(index, index); }
    void selectAll();
    /// Also removes the focus.
    void selectNone();

    /// A press of the pointer on a cell: it gets the focus. An unselected image is selected, with Range all
    /// from the former focus to it. Extend deselects a selected image.
    void press(int index, Mode mode);

    /// One step to the next or previous image.
    void stepTo(bool next, Mode mode);
    /// Moves the focus by a number of images, such as a row or a page; stops at the ends.
    void jumpBy(int images, Mode mode);
    /// Moves the focus to an image; selects as jumpBy() does.
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
