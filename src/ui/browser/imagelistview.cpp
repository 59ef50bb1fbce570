// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/imagelistview.h"

#include "app/imageset.h"
#include "ui/browser/imagelistmodel.h"
#include "ui/widgets/emptyhint.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/look.h"

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

constexpr int kRowHeight = 40;
constexpr QSize kPicture(48, 32);
constexpr int kBar = 4;          // at the left of selected rows
constexpr int kEditorMargin = 4; // between a line edit's edge and its text
constexpr int kMinEditorWidth = 220;

QFont nameFont(QFont font)
{
    font.setWeight(QFont::DemiBold);
    return font;
}

/// A path shortened to a width: the name comes first.
struct ShownPath {
    QString folder;
    QString name;
    int nameWidth;

    ShownPath(const QString &path, const QFont &font, int width)
    {
        const QFontMetrics names(nameFont(font));
        const qsizetype nameAt = path.lastIndexOf(QLatin1Char('/')) + 1;
        name = names.elidedText(path.mid(nameAt), Qt::ElideMiddle, width);
        nameWidth = names.horizontalAdvance(name) + look::kLargeGap;
        folder =
            QFontMetrics(font).elidedText(path.left(nameAt), Qt::ElideLeft, std::max(0, width - nameWidth));
    }
};

/// Of the texts.
QRect roomIn(const QStyleOptionViewItem &option)
{
    return option.rect.adjusted(2 * look::kLargeGap + kPicture.width(), 0, -look::kLargeGap, 0);
}

/// Draws a photo with its name and, less visible, its folder. The editor edits the name in its place.
class PathDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const bool isSelected = option.state.testFlag(QStyle::State_Selected);
        if (isSelected) {
            painter->fillRect(option.rect, QColor(255, 255, 255, 153)); // white, 0.6
            painter->fillRect(QRect(option.rect.topLeft(), QSize(kBar, option.rect.height())), look::kMark);
        }
        paintPicture(*painter, option, index.data(Qt::DecorationRole).value<QImage>());

        const QRect room = roomIn(option);
        const ShownPath path(index.data().toString(), option.font, room.width());
        const int align = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine;
        painter->save();
        painter->setLayoutDirection(Qt::LeftToRight); // of paths in every language
        painter->setFont(nameFont(option.font));
        painter->setPen(option.palette.color(QPalette::Text));
        painter->drawText(room, align, path.name);
        painter->setFont(option.font);
        painter->setPen(isSelected ? look::kSecondaryTextOnSelection : look::kSecondaryTextOnPhotoGround);
        painter->drawText(room.adjusted(path.nameWidth, 0, 0, 0), align, path.folder);
        // The current row need not be selected.
        if (isSelected || option.state.testFlag(QStyle::State_HasFocus)) {
            painter->setPen(QPen(look::kMark, 2));
            painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
        }
        painter->restore();
    }

    static void paintPicture(QPainter &painter, const QStyleOptionViewItem &option, const QImage &picture)
    {
        if (picture.isNull())
            return;
        QRect place(QPoint(), picture.size().scaled(kPicture, Qt::KeepAspectRatio));
        place.moveCenter(
            {option.rect.x() + look::kLargeGap + kPicture.width() / 2, option.rect.center().y()});
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, picture);
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
        const ShownPath path(index.data().toString(), option.font, room.width());
        const int width = std::min(room.width(), std::max(kMinEditorWidth, path.nameWidth));
        const int height = std::min(option.rect.height(), editor->sizeHint().height());
        editor->setGeometry(room.x() - kEditorMargin, option.rect.center().y() - height / 2,
                            width + kEditorMargin, height);
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

ImageListView::ImageListView(ImageSet &set, const FontCatalog &fonts, int threads, QWidget *parent)
    : QTableView(parent)
    , m_set(set)
    , m_model(new ImageListModel(set, fonts, threads, this))
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
    connect(m_model, &ImageListModel::pictureChanged, this,
            [this](const QModelIndex &index) { update(index); });
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
    verticalHeader()->setDefaultSectionSize(std::max(kRowHeight, fontMetrics().height() + 2 * look::kGap));
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
    const int last = rowAt(viewport()->height() - 1);
    m_model->setVisibleRows(rowAt(0), last < 0 ? m_model->rowCount() : last + 1,
                            qRound(kPicture.width() * devicePixelRatioF()));
}

void ImageListView::hideEvent(QHideEvent *event)
{
    QTableView::hideEvent(event);
    m_model->setVisibleRows(0, 0, 0);
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
