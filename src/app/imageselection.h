// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/indexlist.h"

#include <QObject>

#include <optional>

namespace plexa
{

/// What is selected in the shown list, and which photo has the focus, for the grid and the table alike. Knows
/// how many photos are shown, not which. Main thread.
class ImageSelection final : public QObject
{
    Q_OBJECT

public:
    static constexpr int kNone = -1;

    /// While one exists, the signals wait; what happened meanwhile is told once when the last one goes. For
    /// changes of the list, whose own signals have to come first.
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

    /// What stands for the shown photo: in the grid the focus, in the table the first selected row.
    enum class View { Grid, Table };

    /// Ascending, each once.
    const IndexList &selectedIndexes() const { return m_selectedIndexes; }
    bool isSelected(int index) const;
    int focusIndex() const { return m_focusIndex; }
    int shownImageIndex() const;

    View view() const { return m_view; }
    void setView(View view) { m_view = view; }

    /// Selects exactly these and gives the focus to `focus`. For a view that handles keys and clicks itself.
    /// Indexes that are not in the list are left out; such a focus is none.
    void select(const IndexList &indexes, int focus);

    /// Selects exactly these; the first of them gets the focus, and is to be seen.
    void selectIndexes(const IndexList &indexes);

    /// The focus stays in the grid; in the table it goes to the first row.
    void selectAll();
    void selectNone();
    /// What was not selected is; the first of it gets the focus.
    void invertSelection();

    /// How many photos there are, and that all are others than before: nothing is selected any more.
    void reset(int count);
    /// Photos have joined or left the list; what is selected stays so under its new index.
    void insertIndexes(int first, int count);
    /// @param removed  ascending
    void removeIndexes(const IndexList &removed);
    /// Photos have changed places: these are selected now, and the one with the focus stands at `focus`.
    void reorder(const IndexList &selected, int focus);

Q_SIGNALS:
    /// Other photos are selected, or the same ones under other indexes.
    void selectionChanged();
    /// Another photo has the focus. An index that follows its photo sends only selectionChanged().
    void focusImageChanged(int to, int from);
    /// The photo with the focus is to be scrolled into view.
    void scrollToFocusRequested();

private:
    void take(const IndexList &indexes, int focus);
    void noteChange(bool isOtherSelection, std::optional<int> formerFocus);
    void send();

    int m_count = 0;
    View m_view = View::Grid;
    IndexList m_selectedIndexes;
    int m_focusIndex = kNone;

    // What nobody has been told yet.
    int m_holds = 0;
    bool m_isOtherSelection = false;
    bool m_isScrollWanted = false;
    std::optional<int> m_formerFocus;
};

} // namespace plexa
