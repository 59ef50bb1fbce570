// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/editorform.h"

#include "ui/widgets/look.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QRegularExpression>
#include <QSpinBox>

namespace plexa
{
namespace
{

// Of a number field: its longest usual text before the suffix, and what is beside that.
const QString kLongestNumber = QStringLiteral("00000");
constexpr int kStepperWidth = 32;

/// Swallows the wheel events of controls that do not have the focus, so that their panel scrolls, and the
/// claim of fields to undo their text.
class ControlGuard final : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const bool isForPanel =
            event->type() == QEvent::Wheel && !static_cast<QWidget *>(watched)->hasFocus();
        if (!isForPanel && !isUndoOfValue(*watched, *event))
            return false;
        event->ignore();
        return true;
    }

private:
    /// An editable pop-up may hold a text that is not in the preset yet.
    static bool isUndoOfValue(const QObject &control, const QEvent &event)
    {
        if (event.type() != QEvent::ShortcutOverride)
            return false;
        const auto &key = static_cast<const QKeyEvent &>(event);
        const auto *const popUp = qobject_cast<const QComboBox *>(&control);
        return (key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo)) &&
               (popUp ? popUp->currentText() == popUp->itemText(popUp->currentIndex())
                      : qobject_cast<const QAbstractSpinBox *>(&control) != nullptr);
    }
};

/// Takes a point and a comma for the decimal point of any language: "12,5" would else be 125.
class DecimalBox final : public QDoubleSpinBox
{
public:
    using QDoubleSpinBox::QDoubleSpinBox;

protected:
    QValidator::State validate(QString &text, int &at) const override
    {
        text.replace(u'.', locale().decimalPoint()).replace(u',', locale().decimalPoint());
        return QDoubleSpinBox::validate(text, at);
    }
};

/// Rounds a number with decimals, which would else lose its point or comma and be ten times as large.
class WholeNumberBox final : public QSpinBox
{
public:
    using QSpinBox::QSpinBox;

protected:
    QValidator::State validate(QString &text, int &at) const override
    {
        QString whole = rounded(text);
        return whole == text ? QSpinBox::validate(text, at) : QSpinBox::validate(whole, at);
    }
    int valueFromText(const QString &text) const override { return QSpinBox::valueFromText(rounded(text)); }

private:
    QString rounded(QString text) const
    {
        static const QRegularExpression kNumber(QStringLiteral(R"((?<!\d)-?\d{1,9}([.,])(\d*))"));
        const QRegularExpressionMatch match = kNumber.match(text);
        if (!match.hasMatch())
            return text;
        if (match.captured(1) != locale().decimalPoint() && match.capturedLength(2) == 3)
            return text.remove(match.capturedStart(1), 1); // between the thousands
        const double number = match.captured().replace(u',', u'.').toDouble();
        return text.replace(match.capturedStart(), match.capturedLength(), QString::number(qRound(number)));
    }
};

QString controlName(FieldId field, const char *kind)
{
    return wPresetField(field).name + QLatin1String(kind);
}

} // namespace

EditorForm::EditorForm(PresetBinder &binder, QWidget *parent)
    : QWidget(parent)
    , m_binder(binder)
    , m_layout(new QFormLayout(this))
{
    m_layout->setContentsMargins(4, 0, 0, 8);
    m_layout->setHorizontalSpacing(8);
    m_layout->setVerticalSpacing(8);
    m_layout->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_layout->setRowWrapPolicy(QFormLayout::WrapLongRows); // with large fonts
}

QWidget *EditorForm::addRow(const QString &label, std::initializer_list<QWidget *> controls)
{
    if (label.isEmpty()) {
        QWidget *const row = makeRow(controls);
        m_layout->addRow(row);
        return row;
    }
    auto *const text = new QLabel(label);
    text->setBuddy(*controls.begin());
    return addLabeledRow(text, controls);
}

QWidget *EditorForm::addLabeledRow(QWidget *label, std::initializer_list<QWidget *> controls)
{
    QWidget *const row = makeRow(controls);
    // The layout puts labels of higher rows at their top.
    if (const int height = row->sizeHint().height(); height < 3 * label->sizeHint().height())
        label->setMinimumHeight(height);
    m_layout->addRow(label, row);
    m_labels.push_back(label);
    return row;
}

QWidget *EditorForm::makeRow(std::initializer_list<QWidget *> controls)
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    bool takesAllRoom = false;
    for (QWidget *const control : controls) {
        const bool grows = control->sizePolicy().horizontalPolicy() & QSizePolicy::ExpandFlag;
        layout->addWidget(control, grows ? 1 : 0);
        takesAllRoom = takesAllRoom || grows;
    }
    if (!takesAllRoom)
        layout->addStretch();
    return row;
}

void EditorForm::alignLabels(const QWidget &editor)
{
    int width = 0;
    const auto forms = editor.findChildren<EditorForm *>();
    for (const EditorForm *const form : forms) {
        for (const QWidget *const label : form->m_labels)
            width = std::max(width, label->sizeHint().width());
    }
    for (const EditorForm *const form : forms) {
        for (QWidget *const label : form->m_labels)
            label->setMinimumWidth(width);
    }
}

void EditorForm::showWhile(std::initializer_list<QWidget *> rows, const PresetBinder::Rule &rule)
{
    m_binder.apply(rule, [this, rows = std::vector<QWidget *>(rows)](bool isShown) {
        for (QWidget *const row : rows)
            m_layout->setRowVisible(row, isShown);
    });
}

QWidget *EditorForm::number(FieldId field, const QString &purpose, const QString &suffix)
{
    auto *const box = new WholeNumberBox;
    box->setObjectName(controlName(field, "TextField"));
    box->setAccessibleName(purpose);
    box->setToolTip(purpose);
    box->setAccelerated(true);
    box->setSuffix(suffix);
    m_binder.bind(field, *box);
    // Its range is wider than what people enter.
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(kLongestNumber + suffix) + kStepperWidth);
    guard(*box);
    return box;
}

QWidget *EditorForm::angle(FieldId field, const QString &purpose)
{
    auto *const box = new DecimalBox;
    box->setObjectName(controlName(field, "Field"));
    box->setAccessibleName(purpose);
    box->setToolTip(purpose);
    box->setDecimals(1);
    box->setRange(-360, 360);
    box->setSuffix(QStringLiteral("°"));
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(QStringLiteral("-000.0°")) + look::kPageGap +
                       look::kGap);
    m_binder.bind(field, *box);
    guard(*box);
    return box;
}

QWidget *EditorForm::unit(FieldId field, const QString &purpose)
{
    auto *const box = new QComboBox;
    box->setObjectName(controlName(field, "PopUp"));
    box->setAccessibleName(purpose);
    box->setToolTip(purpose);
    box->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    box->setMinimumContentsLength(6);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_binder.bind(field, *box);
    guard(*box);
    return box;
}

QWidget *EditorForm::check(FieldId field, const QString &text)
{
    auto *const box = new QCheckBox(text);
    box->setObjectName(controlName(field, "CheckBox"));
    box->setToolTip(text);
    m_binder.bind(field, *box);
    return box;
}

void EditorForm::guard(QWidget &control)
{
    control.setFocusPolicy(Qt::StrongFocus); // the wheel gives no focus
    control.installEventFilter(new ControlGuard(&control));
}

} // namespace plexa
