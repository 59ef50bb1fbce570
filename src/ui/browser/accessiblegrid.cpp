// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/accessiblegrid.h"

#include "ui/browser/browserselection.h"
#include "ui/browser/imagebrowserview.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHash>

#include <cmath>

namespace plexa
{
namespace
{

class AccessibleCell final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    AccessibleCell(ImageBrowserView *view, int index)
        : m_view(view)
        , m_index(index)
    {
    }

    int index() const { return m_index; }

    bool isValid() const override { return m_view && m_index < m_view->numberImages(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_view ? m_view->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override
    {
        return m_view ? QAccessible::queryAccessibleInterface(m_view) : nullptr;
    }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QString text(QAccessible::Text what) const override
    {
        return isValid() && what == QAccessible::Name ? m_view->filename(m_index) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}

    QRect rect() const override
    {
        const auto cell = isValid() ? m_view->cellForIndex(m_index) : std::nullopt;
        if (!cell)
            return {};
        const QRect inViewport = m_view->viewportRect(*cell).toAlignedRect();
        return {m_view->viewport()->mapToGlobal(inViewport.topLeft()), inViewport.size()};
    }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.selectable = state.multiSelectable = state.focusable = true;
        state.selected = m_view->isIndexSelected(m_index);
        state.focused = m_view->hasFocus() && m_view->focusImageIndex() == m_index;
        state.offscreen = !m_view->cellIsVisible(m_index);
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override { return {pressAction(), toggleAction(), setFocusAction()}; }
    void doAction(const QString &action) override
    {
        if (!isValid())
            return;
        m_view->changeSelection([&](BrowserSelection &selection) {
            if (action == pressAction())
                selection.select(m_index, false);
            else if (action == toggleAction() && selection.isSelected(m_index))
                selection.deselect(m_index);
            else if (action == toggleAction())
                selection.select(m_index, true);
            selection.setFocus(m_index);
        });
        m_view->scrollFocusImageToVisible();
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    const QPointer<ImageBrowserView> m_view;
    const int m_index;
};

class AccessibleList final : public QAccessibleWidget
{
public:
    explicit AccessibleList(ImageBrowserView *view)
        : QAccessibleWidget(view, QAccessible::List)
        , m_view(*view)
    {
    }

    int childCount() const override { return m_view.numberImages(); }

    QAccessibleInterface *child(int index) const override
    {
        if (index < 0 || index >= m_view.numberImages())
            return nullptr;
        auto id = m_cells.constFind(index);
        if (id == m_cells.constEnd())
            id = m_cells.insert(index,
                                QAccessible::registerAccessibleInterface(new AccessibleCell(&m_view, index)));
        return QAccessible::accessibleInterface(*id);
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        const auto *cell = dynamic_cast<const AccessibleCell *>(child);
        return cell ? cell->index() : -1;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        return child(
            m_view.cellIndexAtPoint(m_view.gridPoint(m_view.viewport()->mapFromGlobal(QPoint(x, y)))));
    }

    QAccessibleInterface *focusChild() const override
    {
        return m_view.hasFocus() ? child(m_view.focusImageIndex()) : nullptr;
    }

protected:
    ~AccessibleList() override
    {
        for (const QAccessible::Id id : std::as_const(m_cells))
            QAccessible::deleteAccessibleInterface(id);
    }

private:
    ImageBrowserView &m_view; // outlives this object
    mutable QHash<int, QAccessible::Id> m_cells;
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *view = qobject_cast<ImageBrowserView *>(object);
    return view ? new AccessibleList(view) : nullptr;
}

} // namespace

void AccessibleGrid::install()
{
    QAccessible::installFactory(makeInterface); // ignores a factory that is installed already
}

void AccessibleGrid::announceChange(ImageBrowserView &view, const BrowserSelection &before,
                                    const BrowserSelection &now)
{
    if (!QAccessible::isActive())
        return;
    if (now.indexes() != before.indexes()) {
        QAccessibleEvent event(&view, QAccessible::SelectionWithin);
        QAccessible::updateAccessibility(&event);
    }
    if (now.focus() != before.focus() && now.focus() != BrowserSelection::kNone && view.hasFocus()) {
        QAccessibleEvent event(&view, QAccessible::Focus);
        event.setChild(now.focus());
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace plexa
