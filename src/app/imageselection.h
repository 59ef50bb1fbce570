// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"

#include <QObject>

#include <optional>

namespace plexa
{

/// The selection and the focus in the shown list, for grid and table. Knows the number of the shown photos
/// only. Main thread.
class ImageSelection final : public QObject
{
    Q_OBJECT

public:
    static constexpr int kNone = -1;

    /// While one exists, the signals wait; the last one sends each of them at most once. For changes of the
    /// list, whose own signals have to come first.
    class Hold final
    {
    public:
        explicit Hold(ImageSelection &selection)
            : m_selection(selection)
        {
            ++m_selection.m_holds;
        }
        ~Hold()
        {
            --m_selection.m_holds;
            m_selection.send();
        }
        Q_DISABLE_COPY_MOVE(Hold)

    private:
        ImageSelection &m_selection;
    };

    /// The shown photo has the focus in the grid, and is the first selected row in the table.
    enum class View { Grid, Table };

    /// Ascending, each once.
    const IndexList &selectedIndexes() const { return m_selectedIndexes; }
    bool isSelected(int index) const;
    int focusIndex() const { return m_focusIndex; }
    int shownImageIndex() const;

    View view() const { return m_view; }
    void setView(View view) { m_view = view; }

    /// For a view that handles keys and clicks itself. Indexes that are not in the list are ignored.
    void select(const IndexList &indexes, int focus);

    /// Selects exactly these; the first one gets the focus and is scrolled into view.
    void selectIndexes(const IndexList &indexes);

    /// The focus stays in the grid; in the table it goes to the first row.
    void selectAll();
    void selectNone();
    /// As selectIndexes() with the others.
    void invertSelection();

    /// The list has other photos: nothing is selected.
    void reset(int count);
    /// Photos have joined or left the list; selected ones stay selected under their new indexes.
    void insertIndexes(int first, int count);
    /// @param removed  ascending
    void removeIndexes(const IndexList &removed);
    /// Photos have changed places.
    void reorder(const IndexList &selected, int focus);

Q_SIGNALS:
    /// Other photos are selected, or the same ones under other indexes.
    void selectionChanged();
    /// Another photo has the focus. A new index of the same photo sends only selectionChanged().
    void focusImageChanged(int to, int from);
    /// The photo with the focus is to be scrolled into view.
    void scrollToFocusRequested();

private:
    void change(const IndexList &indexes, int focus);
    void noteChange(bool isOtherSelection, std::optional<int> formerFocus);
    void send();

    int m_count = 0;
    View m_view = View::Grid;
    IndexList m_selectedIndexes;
    int m_focusIndex = kNone;

    // Signals that are not sent yet.
    int m_holds = 0;
    bool m_isOtherSelection = false;
    bool m_isScrollWanted = false;
    std::optional<int> m_formerFocus;
};

} // namespace plexa
