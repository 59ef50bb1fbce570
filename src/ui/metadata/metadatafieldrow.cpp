// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/metadata/metadatafieldrow.h"

#include "metadata/metadatainput.h"
#include "ui/editors/editorform.h"
#include "ui/metadata/fieldkeys.h"
#include "ui/metadata/keywordsfield.h"
#include "ui/widgets/look.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QToolButton>
#include <QWidgetAction>

namespace plexa
{
namespace
{

constexpr int kLinesOfText = 4;

/// The color of the control's text while it is disabled.
void setDisabledText(QWidget &control, const QColor &color)
{
    QPalette palette = control.palette();
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, color);
    control.setPalette(palette);
}

class ReadoutRow final : public MetadataFieldRow
{
public:
    ReadoutRow(const MetadataPageRow &row, MetadataEditing &editing)
        : ReadoutRow(row, editing, new QLabel)
    {
    }

    void refresh() override
    {
        const MetadataEditing::Common value = common();
        m_label->setText(value.isMultiple ? multipleValues() : row().text(value.value));
        m_label->setForegroundRole(value.isMultiple ? QPalette::PlaceholderText : QPalette::WindowText);
    }

private:
    ReadoutRow(const MetadataPageRow &row, MetadataEditing &editing, QLabel *label)
        : MetadataFieldRow(row, editing, label, "Label")
        , m_label(label)
    {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        label->setSizePolicy(policy);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setToolTip(MetadataFieldRow::tr("A fact of the file; it cannot be edited"));
    }

    QLabel *const m_label;
};

/// One line, also for dates, which can be picked from a calendar.
class LineRow final : public MetadataFieldRow
{
public:
    LineRow(const MetadataPageRow &row, MetadataEditing &editing)
        : LineRow(row, editing, new QWidget)
    {
    }

    void refresh() override
    {
        const MetadataEditing::Common value = common();
        const QString text = row().text(value.value);
        if (m_line->hasFocus() && m_line->text() != m_shown && text == m_value)
            return; // the user is typing while another fact has changed
        m_value = text;
        m_line->setText(text);
        m_shown = m_line->text(); // the control changes some characters
        if (!m_line->hasFocus())
            m_line->setCursorPosition(0); // the beginning of a long text is visible
        m_line->setPlaceholderText(value.isMultiple ? multipleValues() : QString());
    }

    void commit() override
    {
        const QString text = m_line->text();
        if (text == m_shown)
            return;
        m_line->setText(m_shown);
        apply(text);
    }

    void setEditable(bool isEditable) override
    {
        MetadataFieldRow::setEditable(isEditable);
        m_line->setFrame(isEditable);
        m_line->setReadOnly(!isEditable);
        setDisabledText(*m_line, isEditable ? look::kDisabledText : look::kText);
        m_line->setStyleSheet(isEditable ? QString() : QStringLiteral("background: transparent;"));
        if (m_calendarButton)
            m_calendarButton->setVisible(isEditable);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (isEscape(*event) && m_line->text() != m_shown) {
            m_line->setText(m_shown);
            return true;
        }
        return leavesUndoToWindow(*event, m_line->isUndoAvailable(), m_line->isRedoAvailable()) ||
               MetadataFieldRow::eventFilter(watched, event);
    }

private:
    LineRow(const MetadataPageRow &row, MetadataEditing &editing, QWidget *box)
        : MetadataFieldRow(row, editing, box, "Box")
        , m_line(new QLineEdit)
    {
        auto *const layout = new QHBoxLayout(box);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(look::kSmallGap);
        layout->addWidget(m_line, 1);
        box->setFocusProxy(m_line);
        m_line->setObjectName(row.name() + QLatin1StringView("TextField"));
        m_line->setAccessibleName(row.shownLabel());
        m_line->setToolTip(MetadataFieldRow::tr("Press Return to change all selected photos"));
        m_line->installEventFilter(this);
        connect(m_line, &QLineEdit::editingFinished, this, &LineRow::commit);
        if (row.control == MetadataControl::Date)
            layout->addWidget(makeCalendarButton());
    }

    QWidget *makeCalendarButton()
    {
        m_line->setToolTip(MetadataFieldRow::tr(
            "A date such as 2024-12-31 23:59:59; press Return to change all selected photos"));
        auto *const calendar = new QCalendarWidget;
        calendar->setGridVisible(false);
        calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
        auto *const menu = new QMenu(widget());
        auto *const action = new QWidgetAction(menu);
        action->setDefaultWidget(calendar);
        menu->addAction(action);
        m_calendarButton = new QToolButton;
        m_calendarButton->setObjectName(m_line->objectName() + QStringLiteral("CalendarButton"));
        m_calendarButton->setIcon(QIcon(QStringLiteral(":/icons/calendar.svg")));
        m_calendarButton->setAccessibleName(MetadataFieldRow::tr("Pick the date"));
        m_calendarButton->setToolTip(MetadataFieldRow::tr("Pick the date; the time of day stays"));
        m_calendarButton->setAutoRaise(true);
        m_calendarButton->setFocusPolicy(Qt::TabFocus);
        m_calendarButton->setPopupMode(QToolButton::InstantPopup);
        m_calendarButton->setMenu(menu);
        m_calendarButton->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
        connect(menu, &QMenu::aboutToShow, this, [this, calendar] {
            const QDate date = QDate::fromString(m_line->text().left(10), Qt::ISODate);
            calendar->setSelectedDate(date.isValid() ? date : QDate::currentDate());
            calendar->setFocus();
        });
        const auto pick = [this, menu](QDate date) {
            menu->close();
            commit(); // a time of day that was typed
            editing().setDay(this->row().property, date);
        };
        connect(calendar, &QCalendarWidget::clicked, this, pick);
        connect(calendar, &QCalendarWidget::activated, this, pick);
        return m_calendarButton;
    }

    QLineEdit *const m_line;
    QToolButton *m_calendarButton = nullptr;
    QString m_value; ///< of the photos
    QString m_shown;
};

/// Several lines. Return ends the edit, Shift+Return begins a line.
class TextRow final : public MetadataFieldRow
{
public:
    TextRow(const MetadataPageRow &row, MetadataEditing &editing)
        : TextRow(row, editing, new QPlainTextEdit)
    {
    }

    void refresh() override
    {
        const MetadataEditing::Common value = common();
        const QString text = row().text(value.value);
        if (m_edit->hasFocus() && m_edit->toPlainText() != m_shown && text == m_value)
            return; // the user is typing while another fact has changed
        if (text != m_value || m_edit->toPlainText() != m_shown) { // else a scrolled text stays where it is
            m_value = text;
            m_edit->setPlainText(text);
            m_shown = m_edit->toPlainText(); // the control changes some characters
        }
        m_edit->setPlaceholderText(value.isMultiple ? multipleValues() : QString());
    }

    void commit() override
    {
        const QString text = m_edit->toPlainText();
        if (text == m_shown)
            return;
        m_edit->setPlainText(m_shown);
        apply(text);
    }

    void setEditable(bool isEditable) override
    {
        MetadataFieldRow::setEditable(isEditable);
        m_edit->setFrameShape(isEditable ? QFrame::StyledPanel : QFrame::NoFrame);
        setDisabledText(*m_edit, isEditable ? look::kDisabledText : look::kText);
        m_edit->viewport()->setAutoFillBackground(isEditable);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusOut &&
            static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
            commit();
        const QTextDocument &document = *m_edit->document();
        if (leavesUndoToWindow(*event, document.isUndoAvailable(), document.isRedoAvailable()))
            return true;
        if (isEscape(*event) && m_edit->toPlainText() != m_shown) {
            m_edit->setPlainText(m_shown);
            return true;
        }
        if (event->type() == QEvent::KeyPress) {
            const auto *const key = static_cast<QKeyEvent *>(event);
            const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
            if (isReturn && !(key->modifiers() & Qt::ShiftModifier)) {
                commit();
                return true;
            }
        }
        return MetadataFieldRow::eventFilter(watched, event);
    }

private:
    TextRow(const MetadataPageRow &row, MetadataEditing &editing, QPlainTextEdit *edit)
        : MetadataFieldRow(row, editing, edit, "TextField")
        , m_edit(edit)
    {
        edit->setTabChangesFocus(true);
        edit->setFixedHeight(kLinesOfText * edit->fontMetrics().lineSpacing() + 2 * look::kGap);
        edit->setToolTip(
            MetadataFieldRow::tr("Press Return to change all selected photos, Shift+Return for a new line"));
        edit->installEventFilter(this);
    }

    QPlainTextEdit *const m_edit;
    QString m_value; ///< of the photos
    QString m_shown;
};

class PopUpRow final : public MetadataFieldRow
{
public:
    PopUpRow(const MetadataPageRow &row, MetadataEditing &editing)
        : PopUpRow(row, editing, new QComboBox)
    {
    }

    void refresh() override
    {
        const MetadataEditing::Common value = common();
        const QVariant choice = value.value.isValid() ? QVariant(value.value.toInt()) : QVariant();
        m_box->setPlaceholderText(value.isMultiple   ? multipleValues()
                                  : choice.isValid() ? MetadataFieldRow::tr("unknown")
                                                     : QString());
        m_box->setCurrentIndex(choice.isValid() ? m_box->findData(choice) : -1);
    }

private:
    PopUpRow(const MetadataPageRow &row, MetadataEditing &editing, QComboBox *box)
        : MetadataFieldRow(row, editing, box, "PopUp")
        , m_box(box)
    {
        for (const MetadataChoice &choice : metadataChoices(row.property))
            box->addItem(choice.text, choice.value);
        setDisabledText(*box, look::kSecondaryText); // it can be read all the same
        box->setToolTip(MetadataFieldRow::tr("The choice changes all selected photos"));
        EditorForm::guard(*box);
        connect(box, &QComboBox::activated, this, [this](int index) {
            this->editing().setValue(this->row().property, m_box->itemData(index));
        });
    }

    QComboBox *const m_box;
};

class KeywordsRow final : public MetadataFieldRow
{
public:
    KeywordsRow(const MetadataPageRow &row, MetadataEditing &editing)
        : KeywordsRow(row, editing, new KeywordsField)
    {
    }

    void refresh() override
    {
        const MetadataEditing::Keywords keywords = editing().keywords();
        m_shown = keywords.all;
        m_field->setKeywords(m_shown);
        m_field->setPlaceholderText(keywords.isMultiple ? multipleValues() : QString());
    }

    void commit() override { m_field->commit(); }

private:
    KeywordsRow(const MetadataPageRow &row, MetadataEditing &editing, KeywordsField *field)
        : MetadataFieldRow(row, editing, field, "Field")
        , m_field(field)
    {
        connect(field, &KeywordsField::entered, this,
                [this] { m_field->setCompletions(this->editing().knownKeywords()); });
        connect(field, &KeywordsField::edited, this, [this](const QStringList &now) {
            this->editing().setKeywords(m_shown, now);
            m_shown = now;
        });
    }

    KeywordsField *const m_field;
    QStringList m_shown;
};

} // namespace

std::unique_ptr<MetadataFieldRow> MetadataFieldRow::make(const MetadataPageRow &row, MetadataEditing &editing)
{
    switch (row.control) {
    case MetadataControl::Readout:
        return std::make_unique<ReadoutRow>(row, editing);
    case MetadataControl::Text:
        return std::make_unique<TextRow>(row, editing);
    case MetadataControl::PopUp:
        return std::make_unique<PopUpRow>(row, editing);
    case MetadataControl::Keywords:
        return std::make_unique<KeywordsRow>(row, editing);
    case MetadataControl::Line:
    case MetadataControl::Date:
        break;
    }
    return std::make_unique<LineRow>(row, editing);
}

MetadataFieldRow::MetadataFieldRow(const MetadataPageRow &row, MetadataEditing &editing, QWidget *widget,
                                   const char *kindOfControl)
    : m_row(row)
    , m_editing(editing)
    , m_widget(widget)
{
    widget->setObjectName(row.name() + QLatin1StringView(kindOfControl));
    widget->setAccessibleName(row.shownLabel());
}

MetadataEditing::Common MetadataFieldRow::common() const
{
    return m_editing.common([this](const ImageMetadata &metadata) { return m_row.value(metadata); });
}

void MetadataFieldRow::apply(const QString &text)
{
    const Result<QVariant> value = metadataOfText(m_row.property, text, QLocale());
    if (value)
        m_editing.setValue(m_row.property, *value);
    else
        Q_EMIT refused(QStringLiteral("%1: %2.").arg(m_row.shownLabel(), value.error().text));
    refresh();
}

QString MetadataFieldRow::multipleValues()
{
    return tr("Multiple values");
}

} // namespace plexa
