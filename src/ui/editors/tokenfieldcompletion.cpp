// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldcompletion.h"

#include "ui/widgets/look.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>

namespace plexa
{
namespace
{
constexpr int kVisibleNames = 8;
constexpr int kValueDistance = 24; // from the longest name
constexpr int kMargin = 8;

/// Names at the left, values at the right.
class NameDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QString value = index.data(Qt::UserRole).toString();
        const int width = value.isEmpty() ? 0 : option.fontMetrics.horizontalAdvance(value) + kValueDistance;
        return QStyledItemDelegate::sizeHint(option, index) + QSize(width + kMargin, look::kSmallGap);
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        painter->setPen(look::kSecondaryText);
        painter->drawText(option.rect.adjusted(kMargin, 0, -kMargin, 0),
                          Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                          index.data(Qt::UserRole).toString());
    }
};
} // namespace

QVariant TokenFieldCompletion::Offered::data(const QModelIndex &index, int role) const
{
    if (role != Qt::UserRole && role != Qt::AccessibleTextRole)
        return QStringListModel::data(index, role);
    const QString name = QStringListModel::data(index, Qt::DisplayRole).toString();
    const QString shown = shownValue(value, name);
    return role == Qt::UserRole ? shown : name + u' ' + shown;
}

TokenFieldCompletion::TokenFieldCompletion(QTextEdit &field)
    : QObject(&field)
    , m_field(field)
{
    m_completer.setModel(&m_offered);
    m_completer.setCompletionMode(QCompleter::UnfilteredPopupCompletion);
    m_completer.setWidget(&field);
    m_completer.setMaxVisibleItems(kVisibleNames);
    m_completer.popup()->setObjectName(QStringLiteral("tokenCompletion"));
    m_completer.popup()->setAccessibleName(tr("Tokens"));
    m_completer.popup()->setItemDelegate(new NameDelegate(this));
    connect(&m_completer, qOverload<const QString &>(&QCompleter::activated), this,
            &TokenFieldCompletion::choose);
}

bool TokenFieldCompletion::isOpen() const
{
    return m_completer.popup()->isVisible();
}

void TokenFieldCompletion::keyHandled(bool isText)
{
    const int caret = m_field.textCursor().position();
    const QTextDocument &document = *m_field.document();
    const auto isBrace = [&](int position) {
        return position >= 0 && document.characterAt(position) == u'{';
    };
    if (m_brace.isNull() && isText && isBrace(caret - 1) && !isBrace(caret - 2)) { // a doubled brace is text
        m_brace = m_field.textCursor();
        m_brace.setPosition(caret - 1);
        m_brace.setKeepPositionOnInsert(true);
    }
    if (!m_brace.isNull())
        update();
}

void TokenFieldCompletion::update()
{
    const QTextCursor caret = m_field.textCursor();
    QTextCursor typed = m_brace;
    typed.setPosition(caret.position(), QTextCursor::KeepAnchor);
    const QString text = typed.selectedText();
    const bool isOutside = caret.hasSelection() || caret.position() <= m_brace.position() ||
                           caret.block() != m_brace.block() || !text.startsWith(u'{') ||
                           text.startsWith(QLatin1String("{{"));
    if (isOutside)
        close();
    else if (text.endsWith(u'}') && m_names.contains(text.mid(1).chopped(1)))
        choose(text.mid(1).chopped(1));
    else
        show(text.mid(1));
}

void TokenFieldCompletion::show(const QString &typed)
{
    QStringList names = m_names.filter(typed, Qt::CaseInsensitive);
    const auto startsAsTyped = [&](const QString &name) {
        return name.startsWith(typed, Qt::CaseInsensitive);
    };
    const auto hasValue = [this](const QString &name) { return !m_offered.value || m_offered.value(name); };
    const auto others = std::stable_partition(names.begin(), names.end(), startsAsTyped);
    std::stable_partition(names.begin(), others, hasValue);
    std::stable_partition(others, names.end(), hasValue);
    m_offered.setStringList(names);
    QAbstractItemView &list = *m_completer.popup();
    if (names.isEmpty()) {
        list.hide();
        return;
    }
    QRect place = m_field.cursorRect(m_brace).translated(m_field.viewport()->pos());
    place.setHeight(place.height() + look::kSmallGap); // does not cover descenders
    place.setWidth(list.sizeHintForColumn(0) + list.verticalScrollBar()->sizeHint().width() +
                   2 * list.frameWidth());
    if (m_field.isRightToLeft())
        place.moveRight(place.left()); // the completer begins at the right side
    m_completer.complete(place);
    list.setCurrentIndex(m_completer.completionModel()->index(0, 0));
}

bool TokenFieldCompletion::keyPressed(const QKeyEvent &event)
{
    if (!isOpen())
        return false;
    switch (event.key()) {
    case Qt::Key_Enter:
    case Qt::Key_Return:
    case Qt::Key_Tab:
        choose(m_completer.popup()->currentIndex().data().toString());
        return true;
    case Qt::Key_Escape:
        close();
        return true;
    default:
        return false;
    }
}

void TokenFieldCompletion::close()
{
    m_brace = QTextCursor();
    m_completer.popup()->hide();
}

void TokenFieldCompletion::choose(const QString &name)
{
    QTextCursor typed = std::exchange(m_brace, QTextCursor());
    close();
    if (typed.isNull() || name.isEmpty())
        return;
    typed.setKeepPositionOnInsert(false);
    typed.setPosition(m_field.textCursor().position(), QTextCursor::KeepAnchor);
    m_field.setTextCursor(typed);
    Q_EMIT chosen(name);
}

} // namespace plexa
