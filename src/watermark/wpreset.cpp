// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/wpreset.h"

#include "watermark/texttokens.h"
#include "watermark/watermarklayout.h"

#include <utility>

namespace plexa
{

WPreset::WPreset(WPresetValues values, QObject *parent)
    : QObject(parent)
    , m_values(std::move(values))
{
}

WPreset::WPreset(const FontCatalog &fonts, QObject *parent)
    : WPreset(WPresetValues::forNewPreset(fonts), parent)
{
}

std::unique_ptr<WPreset> WPreset::initWithFile([[maybe_unused]] const QString &path, const FontCatalog &fonts)
{
    return std::make_unique<WPreset>(fonts);
}

std::unique_ptr<WPreset> WPreset::copy() const
{
    return std::make_unique<WPreset>(m_values);
}

void WPreset::setValues(const WPresetValues &values)
{
    // An observer may change the preset, and `values` with it.
    const WPresetValues wanted = values;
    for (const WPresetField &field : wPresetFields())
        setValue(field.id, field.value(wanted));
}

FieldValue WPreset::value(FieldId id) const
{
    return wPresetField(id).value(m_values);
}

void WPreset::setValue(FieldId id, const FieldValue &value)
{
    const WPresetField &field = wPresetField(id);
    const FieldValue old = field.value(m_values);
    if (old == value)
        return;
    const FieldValue now = value;
    field.setValue(m_values, now);
    Q_EMIT fieldChanged(id, old, now);
    if (id == FieldId::AnchorPoint)
        Q_EMIT offsetHidingChanged();
}

bool WPreset::offsetHorizontalHidden() const
{
    const int anchor = m_values.anchorPoint.value_or(0);
    return anchor == 1 || anchor == 4 || anchor == 7;
}

bool WPreset::offsetVerticalHidden() const
{
    const int anchor = m_values.anchorPoint.value_or(0);
    return anchor == 3 || anchor == 4 || anchor == 5;
}

bool WPreset::offsetHidden() const
{
    return m_values.anchorPoint.value_or(0) == 4;
}

void WPreset::addObserverForAllKeys(QObject *context, Observer observer)
{
    connect(this, &WPreset::fieldChanged, context,
            [observer = std::move(observer)](FieldId id, const FieldValue &old, const FieldValue &now) {
                observer(wPresetField(id), old, now);
            });
}

void WPreset::removeObserverForAllKeys(QObject *context)
{
    disconnect(this, &WPreset::fieldChanged, context, nullptr);
}

float WPreset::absoluteValueForSize(float value, const QString &forPercentUnit, QSizeF forImageSize)
{
    return plexa::absoluteValueForSize(value, forPercentUnit, forImageSize);
}

std::optional<QString> WPreset::watermarkTextForImage(const PhotoFacts &image) const
{
    return plexa::watermarkTextForImage(m_values, image);
}

} // namespace plexa
