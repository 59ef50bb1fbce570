// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistview.h"

#include "app/imageset.h"
#include "ui/browser/imagelistmodel.h"
#include "ui/widgets/emptyhint.h"
#include "ui/widgets/filedrops.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr int kMargin = 12;
constexpr int kEditorMargin = 4; // between a line edit's edge and its text
constexpr int kMinEditorWidth = 220;

/// A path shortened to a width.
struct ShownPath {
    QString folder;
    QString name;
    int folderWidth;

    ShownPath(const QString &path, const QFontMetrics &metrics, int width)
    {
        const qsizetype nameAt = path.lastIndexOf(QLatin1Char('/')) + 1;
        name = metrics.elidedText(path.mid(nameAt), Qt::ElideMiddle, width);
        folder =
            metrics.elidedText(path.left(nameAt), Qt::ElideLeft, width - metrics.horizontalAdvance(name));
        folderWidth = metrics.horizontalAdvance(folder);
    }
};

QRect roomIn(const QStyleOptionViewItem &option)
{
    return option.rect.adjusted(kMargin, 0, -kMargin, 0);
}

/// Draws a path with the file's name more visible than its folder, and readable even if the path is too long.
/// The editor edits the name in its place.
class PathDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        if (option.state.testFlag(QStyle::State_Selected))
            painter->fillRect(option.rect, QColor(255, 255, 255, 153)); // white, 0.6
        const QRect room = roomIn(option);
        const ShownPath path(index.data().toString(), option.fontMetrics, room.width());

        const int align = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;
        QColor color = option.palette.color(QPalette::Text);
        painter->save();
        painter->setFont(option.font);
        painter->setPen(color);
        painter->drawText(room.adjusted(path.folderWidth, 0, 0, 0), align, path.name);
        color.setAlphaF(0.6F);
        painter->setPen(color);
        painter->drawText(room, align, path.folder);
        if (option.state.testFlag(QStyle::State_HasFocus)) { // the current row need not be selected
            painter->setPen(option.palette.color(QPalette::Link));
            painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
        }
        painter->restore();
    }

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *const editor = new QLineEdit(parent);
        editor->setPalette(QGuiApplication::palette()); // not the palette of a view that marks rows itself
        editor->setValidator(
            new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^/]*")), editor));
        editor->setMaxLength(255);
        return editor;
    }

    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override
    {
        const QRect room = roomIn(option);
        const ShownPath path(index.data().toString(), option.fontMetrics, room.width());
        const int width = std::min(room.width(), std::max(kMinEditorWidth, room.width() - path.folderWidth));
        editor->setGeometry(room.right() + 1 - width - kEditorMargin, option.rect.y(), width + kEditorMargin,
                            option.rect.height());
    }
};

IndexList rowsOf(const QItemSelection &selection)
{
    IndexList rows;
    for (const QItemSelectionRange &range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
}

/// Neighbors form one range: a selection of all photos is a single range.
QItemSelection selectionOf(const IndexList &rows, const QAbstractItemModel &model)
{
    QItemSelection selection;
    for (qsizetype begin = 0; begin < rows.size();) {
        qsizetype end = begin + 1;
        while (end < rows.size() && rows[end] == rows[end - 1] + 1)
            ++end;
        selection.append(QItemSelectionRange(model.index(rows[begin], 0), model.index(rows[end - 1], 0)));
        begin = end;
    }
    return selection;
}

} // namespace

ImageListView::ImageListView(ImageSet &set, QWidget *parent)
    : QTableView(parent)
    , m_set(set)
    , m_model(new ImageListModel(set, this))
{
    setModel(m_model);
    setUpLook();
    setAcceptDrops(true);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &ImageListView::giveSelectionToSet);
    connect(&m_set.selection(), &ImageSelection::selectionChanged, this,
            &ImageListView::takeSelectionFromSet);
    connect(&m_set.selection(), &ImageSelection::scrollToFocusRequested, this,
            &ImageListView::scrollToFirstSelected);
    connect(m_model, &ImageListModel::settled, this, &ImageListView::takeSelectionFromSet);
    connect(&m_set, &ImageSet::listReset, this, &ImageListView::scrollToTop); // a new list
    connect(&m_set, &ImageSet::orderChanged, this, &ImageListView::scrollToFirstSelected);
    connect(&m_set, &ImageSet::refreshed, viewport(), qOverload<>(&QWidget::update));
}

ImageListView::~ImageListView() = default;

void ImageListView::setUpLook()
{
    setObjectName(QStringLiteral("imageListTable"));
    setAccessibleName(tr("Images"));
    setWhatsThis(tr("The photos that are watermarked together. Drop photos and folders here."));
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setWordWrap(false);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(EditKeyPressed | DoubleClicked);
    setVerticalScrollMode(ScrollPerPixel);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setItemDelegate(new PathDelegate(this));
    horizontalHeader()->hide();
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    // Rows of one height: a hundred thousand rows need no measuring.
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    QPalette colors = palette();
    colors.setBrush(QPalette::Highlight, Qt::transparent); // the delegate marks selected rows
    setPalette(colors);
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setAutoFillBackground(true);
}

void ImageListView::takeSelectionFromSet()
{
    const IndexList &rows = m_set.selection().selectedIndexes();
    if (m_isFollowing || m_model->isChanging() || rows == rowsOf(selectionModel()->selection()))
        return;
    const QScopedValueRollback guard(m_isFollowing, true);
    selectionModel()->select(selectionOf(rows, *m_model), QItemSelectionModel::ClearAndSelect);
    if (!rows.isEmpty())
        selectionModel()->setCurrentIndex(m_model->index(rows.first(), 0), QItemSelectionModel::NoUpdate);
}

void ImageListView::giveSelectionToSet()
{
    // The set knows of inserted and removed rows.
    if (m_isFollowing || m_model->isChanging() || !isVisible())
        return;
    const QScopedValueRollback guard(m_isFollowing, true);
    const IndexList rows = rowsOf(selectionModel()->selection());
    m_set.selection().select(rows, rows.isEmpty() ? ImageSelection::kNone : rows.first());
}

void ImageListView::scrollToFirstSelected()
{
    const IndexList &rows = m_set.selection().selectedIndexes();
    if (!rows.isEmpty())
        scrollTo(m_model->index(rows.first(), 0));
}

void ImageListView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (m_model->rowCount() == 0)
        paintEmptyHint(viewport(), tr("Drag & drop images here"));
}

void ImageListView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    scrollToFirstSelected();
}

/// With one column, both keys apply to the rows.
QModelIndex ImageListView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    if (action == MoveHome || action == MoveEnd)
        modifiers |= Qt::ControlModifier;
    return QTableView::moveCursor(action, modifiers);
}

void ImageListView::keyPressEvent(QKeyEvent *event)
{
    // With modifiers they are shortcuts, which arrive here while their commands are disabled.
    const bool isBare = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isBare && (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete)) {
        Q_EMIT deletePressed();
        return;
    }
    if (event->text() == QLatin1String("/")) { // goes to the search field
        event->ignore();
        return;
    }
    QTableView::keyPressEvent(event);
}

void ImageListView::contextMenuEvent(QContextMenuEvent *event)
{
    if (m_contextMenu)
        m_contextMenu->popup(event->globalPos());
}

void ImageListView::dragEnterEvent(QDragEnterEvent *event)
{
    acceptFiles(event);
}

void ImageListView::dragMoveEvent(QDragMoveEvent *event)
{
    // The photos are appended wherever the drop is, so no row is marked.
    acceptFiles(event);
}

void ImageListView::dropEvent(QDropEvent *event)
{
    Q_EMIT filesDropped(droppedFiles(event->mimeData()));
    // The files stay where they are, so the source of the drag must not remove them.
    event->setDropAction(Qt::IgnoreAction);
    event->ignore();
}

} // namespace plexa
