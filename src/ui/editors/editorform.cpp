// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/editorform.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QRegularExpression>
#include <QSpinBox>

namespace plexa
{
namespace
{

// Of a number field: its longest usual text, and what is beside that.
const QString kLongestNumber = QStringLiteral("0000");
constexpr int kStepperWidth = 32;

/// Swallows the wheel events of controls that do not have the focus, so that their panel scrolls.
class WheelGuard final : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Wheel || static_cast<QWidget *>(watched)->hasFocus())
            return false;
        event->ignore();
        return true;
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
    box->setFixedWidth(box->fontMetrics().horizontalAdvance(kLongestNumber) + kStepperWidth);
    guardWheel(*box);
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
    guardWheel(*box);
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

void EditorForm::guardWheel(QWidget &control)
{
    control.setFocusPolicy(Qt::StrongFocus); // the wheel gives no focus
    control.installEventFilter(new WheelGuard(&control));
}

} // namespace plexa
