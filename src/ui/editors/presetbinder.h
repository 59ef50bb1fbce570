// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpreset.h"
#include "ui/editors/fieldchoices.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/colorwell.h"
#include "watermark/wpreset.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QObject>
#include <QSpinBox>

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace plexa
{

/// Connects controls to the fields of one preset, in both directions: a control shows its field, also when
/// that changes elsewhere, and what the user does in it is written to the preset at once. Ranges and choices
/// come from the table of fields. `Preset` is WPreset or SavingPreset, `Field` the number of one of its
/// fields. Main thread.
template<class Preset, class Field>
class BinderOf final
{
public:
    using Values = std::decay_t<decltype(std::declval<Preset>().values())>;
    using Show = std::function<void(const FieldValue &)>;
    using Rule = std::function<bool(const Values &)>;
    using Edited = std::function<void(const std::shared_ptr<Preset> &preset, Field field,
                                      const FieldValue &before, const FieldValue &now)>;

    /// The preset that is edited; null: none, and the controls keep what they show.
    const std::shared_ptr<Preset> &preset() const { return m_preset; }
    void setPreset(const std::shared_ptr<Preset> &preset);

    // The controls outlive the binder's use. An absent number is shown as 0.
    void bind(Field field, QSpinBox &box);
    void bind(Field field, QDoubleSpinBox &box);
    void bind(Field field, QAbstractSlider &slider);
    /// A check box.
    void bind(Field field, QAbstractButton &box);
    /// A number by its index, or a string by the choices of the field's table.
    void bind(Field field, ChoiceButtons &choices);
    void bind(Field field, ColorWell &well);
    /// Items are filled in from the table if there are none, and the data of an item is the field's string.
    /// A string without an item selects none.
    void bind(Field field, QComboBox &box);
    void bind(Field field, TokenFieldWithInsertPopup &tokens);
    /// Calls `show` with the field's value, now and at each change. Other controls use it, with write().
    void bind(Field field, const Show &show);

    /// Calls `apply` with what the rule says for the preset, now and at each change of it.
    void apply(const Rule &rule, const std::function<void(bool)> &apply);

    /// Sets a field of the preset, for a change by the user; nothing without a preset, or while controls are
    /// made to show a value.
    void write(Field field, const FieldValue &value);
    /// The same for any preset.
    void write(const std::shared_ptr<Preset> &preset, Field field, const FieldValue &value);

    /// Called after each change by the user.
    void setEdited(const Edited &edited) { m_edited = edited; }

private:
    struct Binding {
        Field field;
        Show show;
    };
    struct Condition {
        Rule rule;
        std::function<void(bool)> apply;
    };

    /// Wide enough for any value that a preset may hold: one out of the table's range is shown, not changed.
    static constexpr int kWidest = 1'000'000;

    static FieldLimits limits(FieldId field) { return limitsOf(wPresetField(field)); }
    static FieldLimits limits(SavingField field) { return savingPresetField(field).limits(); }
    static int integerOf(const FieldValue &value) { return std::get<WholeNumber>(value).value_or(0); }
    static FieldValue integer(int value) { return WholeNumber(value); }

    void show(const Binding &binding);
    void showConditions();

    std::shared_ptr<Preset> m_preset;
    std::vector<Binding> m_bindings;
    std::vector<Condition> m_conditions;
    Edited m_edited;
    bool m_isShowing = false;
    QObject m_context; // of all connections; destroyed first
};

using PresetBinder = BinderOf<WPreset, FieldId>;
using SavingPresetBinder = BinderOf<SavingPreset, SavingField>;

template<class Preset, class Field>
void BinderOf<Preset, Field>::setPreset(const std::shared_ptr<Preset> &preset)
{
    if (m_preset == preset)
        return;
    if (m_preset)
        m_preset->disconnect(&m_context);
    m_preset = preset;
    if (m_preset) {
        QObject::connect(m_preset.get(), &Preset::fieldChanged, &m_context, [this](Field field) {
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
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, const Show &show)
{
    m_bindings.push_back({field, show});
    if (m_preset)
        this->show(m_bindings.back());
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::show(const Binding &binding)
{
    const bool wasShowing = std::exchange(m_isShowing, true);
    binding.show(m_preset->value(binding.field));
    m_isShowing = wasShowing;
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::apply(const Rule &rule, const std::function<void(bool)> &apply)
{
    m_conditions.push_back({rule, apply});
    if (m_preset)
        apply(rule(m_preset->values()));
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::showConditions()
{
    for (const Condition &condition : m_conditions)
        condition.apply(condition.rule(m_preset->values()));
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::write(Field field, const FieldValue &value)
{
    if (m_preset && !m_isShowing)
        write(std::shared_ptr(m_preset), field, value); // a listener may show another one
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::write(const std::shared_ptr<Preset> &preset, Field field,
                                    const FieldValue &value)
{
    const FieldValue before = preset->value(field);
    preset->setValue(field, value);
    if (m_edited && preset->value(field) != before)
        m_edited(preset, field, before, preset->value(field));
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, QSpinBox &box)
{
    const FieldLimits range = limits(field);
    box.setRange(int(std::max<double>(range.lowest, -kWidest)),
                 int(std::min<double>(range.highest, kWidest)));
    QObject::connect(&box, &QSpinBox::valueChanged, &m_context,
                     [this, field](int value) { write(field, integer(value)); });
    bind(field, [&box](const FieldValue &value) {
        const int number = integerOf(value);
        if (number < box.minimum() || number > box.maximum())
            box.setRange(std::min(box.minimum(), number), std::max(box.maximum(), number));
        if (number != box.value()) // else the text that is being entered stays
            box.setValue(number);
    });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, QDoubleSpinBox &box)
{
    QObject::connect(&box, &QDoubleSpinBox::valueChanged, &m_context,
                     [this, field](double value) { write(field, FloatNumber(float(value))); });
    bind(field, [&box](const FieldValue &value) {
        const float number = std::get<FloatNumber>(value).value_or(0.0F);
        if (number != float(box.value()))
            box.setValue(double(number));
    });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, QAbstractSlider &slider)
{
    const FieldLimits range = limits(field);
    slider.setRange(int(range.lowest), int(range.highest));
    QObject::connect(&slider, &QAbstractSlider::valueChanged, &m_context,
                     [this, field](int value) { write(field, integer(value)); });
    bind(field, [&slider](const FieldValue &value) { slider.setValue(integerOf(value)); });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, QAbstractButton &box)
{
    QObject::connect(&box, &QAbstractButton::toggled, &m_context,
                     [this, field](bool isOn) { write(field, isOn); });
    bind(field, [&box](const FieldValue &value) { box.setChecked(std::get<bool>(value)); });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, ChoiceButtons &choices)
{
    const QStringList names = limits(field).choices;
    QObject::connect(&choices, &ChoiceButtons::chosen, &m_context, [this, field, names](int index) {
        write(field, names.isEmpty() ? integer(index) : FieldValue(names.value(index)));
    });
    bind(field, [&choices, names](const FieldValue &value) {
        choices.setIndex(names.isEmpty() ? integerOf(value) : int(names.indexOf(std::get<QString>(value))));
    });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, ColorWell &well)
{
    QObject::connect(&well, &ColorWell::colorChosen, &m_context,
                     [this, field](const QColor &color) { write(field, color); });
    bind(field, [&well](const FieldValue &value) { well.setColor(std::get<QColor>(value)); });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, QComboBox &box)
{
    if (box.count() == 0) {
        for (const QString &choice : limits(field).choices)
            box.addItem(shownChoice(choice), choice);
    }
    QObject::connect(&box, &QComboBox::activated, &m_context,
                     [this, field, &box](int index) { write(field, box.itemData(index).toString()); });
    bind(field,
         [&box](const FieldValue &value) { box.setCurrentIndex(box.findData(std::get<QString>(value))); });
}

template<class Preset, class Field>
void BinderOf<Preset, Field>::bind(Field field, TokenFieldWithInsertPopup &tokens)
{
    QObject::connect(&tokens, &TokenFieldWithInsertPopup::textTokensChanged, &m_context,
                     [this, field](const QStringList &list) { write(field, list); });
    bind(field, [&tokens](const FieldValue &value) { tokens.setTextTokens(std::get<QStringList>(value)); });
}

} // namespace plexa
