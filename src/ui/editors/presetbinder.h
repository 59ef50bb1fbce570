// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpreset.h"

#include <QObject>

#include <functional>
#include <vector>

class QAbstractSlider;
class QAbstractButton;
class QComboBox;
class QDoubleSpinBox;
class QSpinBox;

namespace plexa
{

class ChoiceButtons;
class ColorWell;

/// Connects controls to the fields of one preset, in both directions: a control shows its field, also when
/// that changes elsewhere, and what the user does in it is written to the preset at once. Ranges and choices
/// come from the table of fields. Main thread.
class PresetBinder final : public QObject
{
    Q_OBJECT

public:
    using Show = std::function<void(const FieldValue &)>;
    using Rule = std::function<bool(const WPresetValues &)>;

    explicit PresetBinder(QObject *parent = nullptr);

    /// The preset that is edited; null: none, and the controls keep what they show.
    const std::shared_ptr<WPreset> &preset() const { return m_preset; }
    void setPreset(const std::shared_ptr<WPreset> &preset);

    // The controls outlive the binder's use. An absent number is shown as 0.
    void bind(FieldId field, QSpinBox &box);
    void bind(FieldId field, QDoubleSpinBox &box);
    void bind(FieldId field, QAbstractSlider &slider);
    /// A check box.
    void bind(FieldId field, QAbstractButton &box);
    /// A number by its index, or a string by the choices of the field's table.
    void bind(FieldId field, ChoiceButtons &choices);
    void bind(FieldId field, ColorWell &well);
    /// Items are filled in from the table if there are none, and the data of an item is the field's string.
    /// A string without an item selects none.
    void bind(FieldId field, QComboBox &box);
    /// Calls `show` with the field's value, now and at each change. Other controls use it, with write().
    void bind(FieldId field, const Show &show);

    /// Calls `apply` with what the rule says for the preset, now and at each change of it.
    void apply(const Rule &rule, const std::function<void(bool)> &apply);

    /// Sets a field of the preset, for a change by the user; nothing without a preset, or while controls are
    /// made to show a value.
    void write(FieldId field, const FieldValue &value);

Q_SIGNALS:
    void presetChanged();

private:
    struct Binding {
        FieldId field;
        Show show;
    };
    struct Condition {
        Rule rule;
        std::function<void(bool)> apply;
    };

    void show(const Binding &binding);
    void showConditions();

    std::shared_ptr<WPreset> m_preset;
    std::vector<Binding> m_bindings;
    std::vector<Condition> m_conditions;
    bool m_isShowing = false;
};

} // namespace plexa
