// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/metadata/keywordsfield.h"

#include "ui/editors/tokenfieldpill.h"
#include "ui/metadata/fieldkeys.h"
#include "ui/widgets/look.h"

#include <QAbstractButton>
#include <QCompleter>
#include <QEvent>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QPainter>
#include <QStringListModel>
#include <QVBoxLayout>

#include <algorithm>
#include <memory>
#include <vector>

namespace plexa
{
namespace
{

constexpr int kPillPadding = 8;
constexpr int kCrossSize = 6;

/// Items beside each other, in as many lines as they need.
class FlowLayout final : public QLayout
{
public:
    using QLayout::QLayout;
    ~FlowLayout() override
    {
        while (QLayoutItem *const item = FlowLayout::takeAt(0))
            delete item;
    }

    void addItem(QLayoutItem *item) override { m_items.push_back(item); }
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem *itemAt(int index) const override
    {
        return index >= 0 && index < count() ? m_items[static_cast<std::size_t>(index)] : nullptr;
    }
    QLayoutItem *takeAt(int index) override
    {
        QLayoutItem *const item = itemAt(index);
        if (item)
            m_items.erase(m_items.begin() + index);
        return item;
    }
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return arrange(QRect(0, 0, width, 0), false); }
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSize() const override
    {
        QSize size;
        for (const QLayoutItem *const item : m_items)
            size = size.expandedTo(QSize(0, item->sizeHint().height()));
        return size;
    }
    void setGeometry(const QRect &area) override
    {
        QLayout::setGeometry(area);
        arrange(area, true);
    }

private:
    /// @return the height
    int arrange(const QRect &area, bool places) const
    {
        int x = area.x();
        int y = area.y();
        int lineHeight = 0;
        for (QLayoutItem *const item : m_items) {
            const QSize size(std::min(item->sizeHint().width(), area.width()), item->sizeHint().height());
            if (x > area.x() && x + size.width() > area.right() + 1) {
                x = area.x();
                y += lineHeight + look::kSmallGap;
                lineHeight = 0;
            }
            if (places)
                item->setGeometry(QRect(QPoint(x, y), size));
            x += size.width() + look::kSmallGap;
            lineHeight = std::max(lineHeight, size.height());
        }
        return y + lineHeight - area.y();
    }

    std::vector<QLayoutItem *> m_items;
};

/// A keyword; a click, Delete or the space bar removes it.
class KeywordPill final : public QAbstractButton
{
public:
    explicit KeywordPill(const QString &keyword)
    {
        setText(keyword);
        setObjectName(QStringLiteral("keywordPill"));
        setAccessibleName(KeywordsField::tr("Keyword “%1”").arg(keyword));
        setToolTip(KeywordsField::tr("Remove the keyword “%1”").arg(keyword));
        setFocusPolicy(Qt::StrongFocus);
        setCursor(Qt::ArrowCursor);
    }

    QSize sizeHint() const override
    {
        const QFontMetrics metrics = fontMetrics();
        // The width of a text is rounded, which must not cost its last letters.
        return {metrics.horizontalAdvance(text()) + 1 + 3 * kPillPadding + kCrossSize,
                metrics.height() + look::kSmallGap};
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
        const PillColors colors = pillColors(palette(), group, hasFocus() || isDown());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF body = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        painter.setPen(colors.outline);
        painter.setBrush(colors.fill);
        painter.drawRoundedRect(body, body.height() / 2, body.height() / 2);
        painter.setPen(QPen(colors.text, 1.5, Qt::SolidLine, Qt::RoundCap));
        const int textWidth = width() - 3 * kPillPadding - kCrossSize;
        painter.drawText(QRect(kPillPadding, 0, textWidth, height()), Qt::AlignVCenter,
                         fontMetrics().elidedText(text(), Qt::ElideRight, textWidth));
        const QRectF cross(width() - kPillPadding - kCrossSize, (height() - kCrossSize) / 2.0, kCrossSize,
                           kCrossSize);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.bottomLeft(), cross.topRight());
    }
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace)
            click();
        else
            QAbstractButton::keyPressEvent(event);
    }
};

QStringList wordsOf(const QString &text)
{
    QStringList words;
    for (const QString &part : text.split(u',')) {
        if (const QString word = part.trimmed(); !word.isEmpty())
            words.append(word);
    }
    return words;
}

} // namespace

KeywordsField::KeywordsField(QWidget *parent)
    : QFrame(parent)
    , m_line(new QLineEdit)
    , m_pills(new QWidget)
{
    setFocusProxy(m_line);
    auto *const pills = new FlowLayout(m_pills);
    pills->setContentsMargins(0, 0, 0, 0);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    m_pills->setSizePolicy(policy);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(look::kSmallGap);
    layout->addWidget(m_pills);
    layout->addWidget(m_line);
    m_pills->hide();

    m_line->setObjectName(QStringLiteral("keywordsTextField"));
    m_line->setAccessibleName(tr("New keywords"));
    m_line->setToolTip(tr("Add keywords to all selected photos; press Return or a comma after each"));
    m_line->installEventFilter(this);
    auto *const completer = new QCompleter(new QStringListModel(this), this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->setFilterMode(Qt::MatchContains);
    m_line->setCompleter(completer);
    connect(completer, QOverload<const QString &>::of(&QCompleter::activated), this, &KeywordsField::commit,
            Qt::QueuedConnection); // the line gets the word afterwards
    connect(m_line, &QLineEdit::editingFinished, this, &KeywordsField::commit);
    connect(m_line, &QLineEdit::textEdited, this, [this](const QString &text) {
        if (text.contains(u','))
            commit();
    });
}

KeywordsField::~KeywordsField()
{
    m_line->disconnect(this); // it loses the focus when it is destroyed
    m_line->removeEventFilter(this);
}

void KeywordsField::setKeywords(const QStringList &keywords)
{
    if (keywords == m_keywords)
        return;
    m_keywords = keywords;
    QLayout *const layout = m_pills->layout();
    while (const std::unique_ptr<QLayoutItem> item{layout->takeAt(0)}) {
        item->widget()->hide();
        item->widget()->deleteLater(); // it may be the sender
    }
    for (const QString &keyword : keywords) {
        auto *const pill = new KeywordPill(keyword);
        connect(pill, &QAbstractButton::clicked, this, [this, keyword] { remove(keyword); });
        layout->addWidget(pill);
    }
    m_pills->setVisible(!keywords.isEmpty());
    m_pills->updateGeometry();
}

void KeywordsField::setPlaceholderText(const QString &text)
{
    m_line->setPlaceholderText(text.isEmpty() ? tr("Add keywords") : text);
}

void KeywordsField::setCompletions(const QStringList &words)
{
    static_cast<QStringListModel *>(m_line->completer()->model())->setStringList(words);
}

void KeywordsField::commit()
{
    const QStringList words = wordsOf(m_line->text());
    m_line->setText({}); // its undo would bring the words back into the line
    QStringList keywords = m_keywords;
    for (const QString &word : words) {
        if (!keywords.contains(word))
            keywords.append(word);
    }
    change(keywords);
}

void KeywordsField::change(const QStringList &keywords)
{
    if (keywords == m_keywords)
        return;
    setKeywords(keywords);
    Q_EMIT edited(keywords);
}

void KeywordsField::remove(const QString &keyword)
{
    QStringList keywords = m_keywords;
    keywords.removeAll(keyword);
    m_line->setFocus();
    change(keywords);
}

bool KeywordsField::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn)
        Q_EMIT entered();
    if (isEscape(*event) && !m_line->text().isEmpty()) {
        m_line->setText({});
        return true;
    }
    return leavesUndoToWindow(*event, m_line->isUndoAvailable(), m_line->isRedoAvailable()) ||
           QFrame::eventFilter(watched, event);
}

} // namespace plexa
