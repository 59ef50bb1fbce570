// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/wpresetfields.h"

#include <QObject>
#include <QSizeF>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

class PhotoFacts;

/// One watermark preset of a list: an identity with change signals around its values. Positions that were
/// chosen by hand are kept by identity. Lives on one thread; work elsewhere gets a copy of values().
class WPreset final : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool offsetHorizontalHidden READ offsetHorizontalHidden NOTIFY offsetHidingChanged)
    Q_PROPERTY(bool offsetVerticalHidden READ offsetVerticalHidden NOTIFY offsetHidingChanged)
    Q_PROPERTY(bool offsetHidden READ offsetHidden NOTIFY offsetHidingChanged)
    Q_PROPERTY(bool validPreset READ validPreset)

public:
    using Observer =
        std::function<void(const WPresetField &field, const FieldValue &old, const FieldValue &now)>;

    explicit WPreset(WPresetValues values, QObject *parent = nullptr);

    /// A new preset with the values of WPresetValues::forNewPreset().
    explicit WPreset(const FontCatalog &fonts, QObject *parent = nullptr);

    /// As the constructor: a preset has no file of its own yet, and `path` is ignored.
    static std::unique_ptr<WPreset> initWithFile(const QString &path, const FontCatalog &fonts);

    /// Another preset with the same values, the name included, without parent and observers.
    std::unique_ptr<WPreset> copy() const;

    const WPresetValues &values() const { return m_values; }

    /// Sets every field, in declaration order.
    void setValues(const WPresetValues &values);

    FieldValue value(FieldId id) const;

    /// Every setter calls this one. Setting a field to its present value does nothing.
    /// @param value  must be of the field's kind
    void setValue(FieldId id, const FieldValue &value);

#define PLEXA_FIELD_ACCESSORS(name, Name, Type, initial)                                                     \
    const Type &name() const                                                                                 \
    {                                                                                                        \
        return m_values.name;                                                                                \
    }                                                                                                        \
    void set##Name(const Type &value)                                                                        \
    {                                                                                                        \
        setValue(FieldId::Name, FieldValue(std::in_place_type<Type>, value));                                \
    }
    PLEXA_WPRESET_FIELDS(PLEXA_FIELD_ACCESSORS)
#undef PLEXA_FIELD_ACCESSORS

    /// The horizontal (vertical, either) offset has no effect with the anchor point.
    bool offsetHorizontalHidden() const;
    bool offsetVerticalHidden() const;
    bool offsetHidden() const;

    /// As in WPresetValues; no signal is sent when damage is found while the picture is drawn.
    bool validPreset() const
    {
        return m_values.validPreset();
    }

    /// Calls `observer` at every change of a field, until `context` or the preset is destroyed.
    void addObserverForAllKeys(QObject *context, Observer observer);
    void removeObserverForAllKeys(QObject *context);

    /// As the free functions.
    static float absoluteValueForSize(float value, const QString &forPercentUnit, QSizeF forImageSize);
    std::optional<QString> watermarkTextForImage(const PhotoFacts &image) const;

Q_SIGNALS:
    void fieldChanged(plexa::FieldId id, const plexa::FieldValue &old, const plexa::FieldValue &now);
    void offsetHidingChanged();

private:
    WPresetValues m_values;
};

/// Watermark presets in the order in which they are drawn.
using WPresetList = std::vector<std::shared_ptr<WPreset>>;

} // namespace plexa
