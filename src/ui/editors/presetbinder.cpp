// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/presetbinder.h"

#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/colorwell.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSpinBox>

#include <algorithm>
#include <cmath>
#include <utility>

namespace plexa
{
namespace
{

int integerOf(const FieldValue &value)
{
    return std::get<WholeNumber>(value).value_or(0);
}

FieldValue integer(int value)
{
    return WholeNumber(value);
}

/// Wide enough for any value that a preset may hold: one out of the table's range is shown, not changed.
constexpr int kWidest = 1'000'000;

} // namespace

PresetBinder::PresetBinder(QObject *parent)
    : QObject(parent)
{
}

void PresetBinder::setPreset(const std::shared_ptr<WPreset> &preset)
{
    if (m_preset == preset)
        return;
    if (m_preset)
        m_preset->disconnect(this);
    m_preset = preset;
    if (m_preset) {
        connect(m_preset.get(), &WPreset::fieldChanged, this, [this](FieldId field) {
            for (const Binding &binding : m_bindings) {
                if (binding.field == field)
                    show(binding);
            }
            showConditions();
        });
        std::for_each(m_bindings.begin(), m_bindings.end(),
                      [this](const Binding &binding) { show(binding); });
        showConditions();
    }
    Q_EMIT presetChanged();
}

void PresetBinder::bind(FieldId field, const Show &show)
{
    m_bindings.push_back({field, show});
    if (m_preset)
        this->show(m_bindings.back());
}

void PresetBinder::show(const Binding &binding)
{
    const bool wasShowing = std::exchange(m_isShowing, true);
    binding.show(m_preset->value(binding.field));
    m_isShowing = wasShowing;
}

void PresetBinder::apply(const Rule &rule, const std::function<void(bool)> &apply)
{
    m_conditions.push_back({rule, apply});
    if (m_preset)
        apply(rule(m_preset->values()));
}

void PresetBinder::showConditions()
{
    for (const Condition &condition : m_conditions)
        condition.apply(condition.rule(m_preset->values()));
}

void PresetBinder::write(FieldId field, const FieldValue &value)
{
    if (m_preset && !m_isShowing)
        m_preset->setValue(field, value);
}

void PresetBinder::bind(FieldId field, QSpinBox &box)
{
    const FieldLimits limits = limitsOf(wPresetField(field));
    box.setRange(int(std::max<double>(limits.lowest, -kWidest)),
                 int(std::min<double>(limits.highest, kWidest)));
    connect(&box, &QSpinBox::valueChanged, this, [this, field](int value) { write(field, integer(value)); });
    bind(field, [&box, limits](const FieldValue &value) {
        const int number = integerOf(value);
        if (number < box.minimum() || number > box.maximum())
            box.setRange(std::min(box.minimum(), number), std::max(box.maximum(), number));
        box.setValue(number);
    });
}

void PresetBinder::bind(FieldId field, QDoubleSpinBox &box)
{
    connect(&box, &QDoubleSpinBox::valueChanged, this,
            [this, field](double value) { write(field, FloatNumber(float(value))); });
    bind(field, [&box](const FieldValue &value) {
        box.setValue(double(std::get<FloatNumber>(value).value_or(0.0F)));
    });
}

void PresetBinder::bind(FieldId field, QAbstractSlider &slider)
{
    const FieldLimits limits = limitsOf(wPresetField(field));
    slider.setRange(int(limits.lowest), int(limits.highest));
    connect(&slider, &QAbstractSlider::valueChanged, this,
            [this, field](int value) { write(field, integer(value)); });
    bind(field, [&slider](const FieldValue &value) { slider.setValue(integerOf(value)); });
}

void PresetBinder::bind(FieldId field, QAbstractButton &box)
{
    connect(&box, &QAbstractButton::toggled, this, [this, field](bool isOn) { write(field, isOn); });
    bind(field, [&box](const FieldValue &value) { box.setChecked(std::get<bool>(value)); });
}

void PresetBinder::bind(FieldId field, ChoiceButtons &choices)
{
    const QStringList names = limitsOf(wPresetField(field)).choices;
    connect(&choices, &ChoiceButtons::chosen, this, [this, field, names](int index) {
        write(field, names.isEmpty() ? integer(index) : FieldValue(names.value(index)));
    });
    bind(field, [&choices, names](const FieldValue &value) {
        choices.setIndex(names.isEmpty() ? integerOf(value) : int(names.indexOf(std::get<QString>(value))));
    });
}

void PresetBinder::bind(FieldId field, ColorWell &well)
{
    connect(&well, &ColorWell::colorChosen, this,
            [this, field](const QColor &color) { write(field, color); });
    bind(field, [&well](const FieldValue &value) { well.setColor(std::get<QColor>(value)); });
}

void PresetBinder::bind(FieldId field, QComboBox &box)
{
    if (box.count() == 0) {
        for (const QString &choice : limitsOf(wPresetField(field)).choices)
            box.addItem(choice, choice);
    }
    connect(&box, &QComboBox::activated, this,
            [this, field, &box](int index) { write(field, box.itemData(index).toString()); });
    bind(field,
         [&box](const FieldValue &value) { box.setCurrentIndex(box.findData(std::get<QString>(value))); });
}

} // namespace plexa
