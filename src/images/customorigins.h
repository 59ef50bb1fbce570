// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QPointF>

#include <memory>
#include <optional>
#include <utility>

namespace plexa
{

class WPreset;

/// The places of one photo's watermarks that the user chose by hand: photo pixels, origin at the bottom left.
/// Presets are compared by identity and kept alive. A value; its owner guards it.
class CustomOrigins final
{
public:
    std::optional<QPointF> originFor(const WPreset *preset) const
    {
        const auto found = m_places.constFind(preset);
        return found == m_places.cend() ? std::nullopt : std::optional(found->origin);
    }

    // These return whether anything changed.
    bool set(const std::shared_ptr<const WPreset> &preset, QPointF origin)
    {
        const bool isChanged = originFor(preset.get()) != origin;
        m_places.insert(preset.get(), {preset, origin});
        return isChanged;
    }
    bool reset(const WPreset *preset) { return m_places.remove(preset); }
    bool operator==(const CustomOrigins &) const = default;
    bool clear() { return !std::exchange(m_places, {}).isEmpty(); }

private:
    struct Place {
        std::shared_ptr<const WPreset> preset;
        QPointF origin;
        bool operator==(const Place &) const = default;
    };

    QHash<const WPreset *, Place> m_places;
};

} // namespace plexa
