// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/help/helpwindow.h"

#include "platform/applicationname.h"
#include "ui/widgets/look.h"

#include <QAction>
#include <QDesktopServices>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <algorithm>

namespace plexa
{

namespace
{

const QString kFirstPage = QStringLiteral("index.html");

constexpr QSize kSize(940, 680);
constexpr int kSideWidth = 250;
constexpr int kPictureWidth = 600;
constexpr int kMaxZoom = 12;
constexpr int kMinZoom = -3;

/// A page of the guide. Pictures are scaled smoothly to the width of the page.
class GuideBrowser final : public QTextBrowser
{
public:
    using QTextBrowser::QTextBrowser;

    QVariant loadResource(int type, const QUrl &name) override
    {
        const QVariant resource = QTextBrowser::loadResource(type, name);
        if (type != QTextDocument::ImageResource)
            return resource;
        QImage picture = QImage::fromData(resource.toByteArray());
        const qreal scale = devicePixelRatioF();
        const int width = qRound(kPictureWidth * scale);
        if (picture.width() > width)
            picture =
                picture.convertToFormat(QImage::Format_RGB32).scaledToWidth(width, Qt::SmoothTransformation);
        picture.setDevicePixelRatio(scale);
        return picture;
    }
};

/// The guide in the language of the window, below the scheme "qrc".
QString guideFolder()
{
    //: The name of a folder in docs, which has another guide for each language.
    const QString folder = QStringLiteral("/docs/") + HelpWindow::tr("guide");
    return QFileInfo::exists(u':' + folder) ? folder : QStringLiteral("/docs/guide");
}

QString styleOfPages()
{
    return QStringLiteral("body { color: %1; line-height: 135%; }"
                          "h1 { font-size: xx-large; margin-bottom: 12px; }"
                          "h2 { font-size: large; margin-top: 20px; margin-bottom: 4px; }"
                          "p, li { margin-bottom: 8px; }"
                          "a { color: %2; }"
                          "code { font-family: monospace; background: %3; }"
                          "td, th { padding: 3px 16px 3px 0; }"
                          "th { text-align: left; }")
        .arg(look::kText.name(), look::kDarkAccent.name(), look::kWindow.name());
}

/// @returns where a section begins; the begin of the page for an unknown one
QTextCursor startOf(QTextDocument &page, const QString &section)
{
    for (QTextBlock block = page.begin(); !section.isEmpty() && block.isValid(); block = block.next())
        for (auto each = block.begin(); !each.atEnd(); ++each)
            if (each.fragment().charFormat().anchorNames().contains(section))
                return QTextCursor(block);
    return QTextCursor(&page);
}

QToolButton *makeButton(QAction *action, const QKeySequence &shortcut)
{
    action->setShortcut(shortcut);
    action->setToolTip(
        QStringLiteral("%1 (%2)").arg(action->text(), shortcut.toString(QKeySequence::NativeText)));
    auto *const button = new QToolButton;
    button->setObjectName(action->objectName() + QStringLiteral("Button"));
    button->setDefaultAction(action);
    button->setAccessibleName(action->text());
    button->setAutoRaise(true);
    button->setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

} // namespace

HelpWindow::HelpWindow()
    : m_folder(guideFolder())
    , m_guide(u':' + m_folder)
    , m_browser(new GuideBrowser)
    , m_contents(new QTreeWidget)
    , m_hits(new QListWidget)
    , m_contentsOrHits(new QStackedWidget)
    , m_search(new QLineEdit)
{
    setObjectName(QStringLiteral("helpWindow"));
    setWindowTitle(tr("%1 Help").arg(applicationName()));
    m_browser->setObjectName(QStringLiteral("page"));
    m_browser->setAccessibleName(tr("Page of the guide"));
    m_browser->setOpenLinks(false);
    m_browser->document()->setDefaultStyleSheet(styleOfPages());
    m_browser->document()->setDocumentMargin(look::kPageGap);
    m_browser->setFrameShape(QFrame::NoFrame);
    connect(m_browser, &QTextBrowser::sourceChanged, this, &HelpWindow::followPage);
    connect(m_browser, &QTextBrowser::anchorClicked, this, &HelpWindow::openLink);

    auto *const sides = new QSplitter;
    sides->setChildrenCollapsible(false);
    sides->addWidget(makeSide());
    sides->addWidget(m_browser);
    sides->setStretchFactor(1, 1);
    sides->setSizes({kSideWidth, kSize.width() - kSideWidth});
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addWidget(makeBar());
    layout->addWidget(sides, 1);
    for (const QKeySequence &key : {QKeySequence(QKeySequence::Close), QKeySequence(Qt::Key_Escape)})
        connect(new QShortcut(key, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    resize(kSize.boundedTo(screen()->availableSize()));
    fillContents();
}

QWidget *HelpWindow::makeBar()
{
    const auto makeAction = [this](const char *name, const char *icon, const QString &text, auto &&handler) {
        auto *const action =
            new QAction(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1StringView(icon))), text, this);
        action->setObjectName(QLatin1StringView(name));
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    // Where the writing goes from right to left, back is to the right.
    const bool isReversed = layoutDirection() == Qt::RightToLeft;
    auto *const back = makeAction("back", isReversed ? "go-right" : "go-left", tr("Back"),
                                  [this] { m_browser->backward(); });
    auto *const forward = makeAction("forward", isReversed ? "go-left" : "go-right", tr("Forward"),
                                     [this] { m_browser->forward(); });
    auto *const home = makeAction("home", "list", tr("First Page"), [this] { m_browser->home(); });
    auto *const smaller = makeAction("smaller", "zoom-out", tr("Smaller Text"), [this] { zoom(-1); });
    auto *const larger = makeAction("larger", "zoom-in", tr("Larger Text"), [this] { zoom(1); });
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(m_browser, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);

    auto *const bar = new QWidget;
    auto *const row = new QHBoxLayout(bar);
    row->setContentsMargins(look::kGap, look::kSmallGap, look::kGap, look::kSmallGap);
    row->setSpacing(look::kSmallGap);
    row->addWidget(makeButton(back, QKeySequence::Back));
    row->addWidget(makeButton(forward, QKeySequence::Forward));
    row->addWidget(makeButton(home, Qt::ALT | Qt::Key_Home));
    row->addStretch();
    row->addWidget(makeButton(smaller, QKeySequence::ZoomOut));
    row->addWidget(makeButton(larger, QKeySequence::ZoomIn));
    return bar;
}

QWidget *HelpWindow::makeSide()
{
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search the guide"));
    m_search->setToolTip(tr("Show the parts of the guide that contain these words (Ctrl+F)"));
    m_search->setClearButtonEnabled(true);
    m_search->addAction(QIcon(QStringLiteral(":/icons/search.svg")), QLineEdit::LeadingPosition);
    connect(m_search, &QLineEdit::textChanged, this, &HelpWindow::search);
    connect(m_search, &QLineEdit::returnPressed, this,
            [this] { showHit(std::max(0, m_hits->currentRow())); });

    m_contents->setObjectName(QStringLiteral("contents"));
    m_contents->setAccessibleName(tr("Contents"));
    m_contents->setHeaderHidden(true);
    connect(m_contents, &QTreeWidget::currentItemChanged, this, [this](const QTreeWidgetItem *item) {
        if (item && m_contents->hasFocus())
            m_browser->setSource(addressOf(item->data(0, Qt::UserRole).toString()));
    });
    m_hits->setObjectName(QStringLiteral("hits"));
    m_hits->setAccessibleName(tr("Places that were found"));
    m_hits->setWordWrap(true);
    m_hits->setSpacing(2);
    connect(m_hits, &QListWidget::itemActivated, this, [this] { showHit(m_hits->currentRow()); });
    connect(m_hits, &QListWidget::itemClicked, this, [this] { showHit(m_hits->currentRow()); });
    m_contentsOrHits->addWidget(m_contents);
    m_contentsOrHits->addWidget(m_hits);

    auto *const side = new QWidget;
    auto *const layout = new QVBoxLayout(side);
    const bool isReversed = layoutDirection() == Qt::RightToLeft;
    layout->setContentsMargins(isReversed ? 0 : look::kGap, 0, isReversed ? look::kGap : 0, look::kGap);
    layout->setSpacing(look::kGap);
    layout->addWidget(m_search);
    layout->addWidget(m_contentsOrHits, 1);
    return side;
}

void HelpWindow::fillContents()
{
    for (const HelpPage &page : m_guide.pages()) {
        auto *const item = new QTreeWidgetItem(m_contents, {page.title});
        item->setData(0, Qt::UserRole, page.file);
        for (const HelpSection &section : page.sections.mid(1)) {
            auto *const child = new QTreeWidgetItem(item, {section.title});
            child->setData(0, Qt::UserRole, section.place);
        }
    }
}

void HelpWindow::search(const QString &text)
{
    m_hits->clear();
    for (const HelpHit &hit : m_guide.find(text)) {
        auto *const item = new QListWidgetItem(hit.title + u'\n' + hit.excerpt, m_hits);
        item->setData(Qt::UserRole, hit.place);
    }
    const bool isSearching = !text.trimmed().isEmpty();
    if (isSearching && m_hits->count() == 0) {
        auto *const none = new QListWidgetItem(tr("No part of the guide contains these words."), m_hits);
        none->setFlags(Qt::NoItemFlags);
    }
    m_contentsOrHits->setCurrentWidget(isSearching ? static_cast<QWidget *>(m_hits) : m_contents);
}

/// Selects the first word that was searched for.
void HelpWindow::showHit(int row)
{
    const QListWidgetItem *const item = m_hits->item(row);
    if (!item || item->flags() == Qt::NoItemFlags)
        return;
    m_hits->setCurrentRow(row);
    m_browser->setSource(addressOf(item->data(Qt::UserRole).toString()));
    m_browser->setTextCursor(startOf(*m_browser->document(), m_browser->source().fragment()));
    m_browser->find(m_search->text().simplified().section(u' ', 0, 0));
}

/// Selects the page in the contents.
void HelpWindow::followPage(const QUrl &page)
{
    const QString place = page.toString().section(u'/', -1);
    for (QTreeWidgetItemIterator each(m_contents); *each; ++each) {
        if ((*each)->data(0, Qt::UserRole) != place)
            continue;
        const QSignalBlocker noJump(m_contents);
        m_contents->setCurrentItem(*each);
        m_contents->scrollToItem(*each);
        return;
    }
}

void HelpWindow::openLink(const QUrl &link)
{
    const QUrl target = m_browser->source().resolved(link);
    if (target.scheme() == QLatin1StringView("qrc"))
        m_browser->setSource(target);
    else
        QDesktopServices::openUrl(target);
}

QUrl HelpWindow::addressOf(const QString &place) const
{
    return QUrl(QStringLiteral("qrc:%1/%2").arg(m_folder, place));
}

void HelpWindow::zoom(int steps)
{
    const int wanted = std::clamp(m_zoom + steps, kMinZoom, kMaxZoom);
    m_browser->zoomIn(wanted - m_zoom);
    m_zoom = wanted;
}

void HelpWindow::showPlace(const QString &place)
{
    const QString file = place.section(u'#', 0, 0);
    const auto &pages = m_guide.pages();
    const bool isKnown =
        std::any_of(pages.begin(), pages.end(), [&](const HelpPage &page) { return page.file == file; });
    m_search->clear();
    if (m_browser->source().isEmpty())
        m_browser->setSource(addressOf(kFirstPage)); // where "First Page" leads to
    m_browser->setSource(addressOf(isKnown ? place : kFirstPage));
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

} // namespace plexa
