// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointF>

#include <memory>
#include <optional>
#include <unordered_map>
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
        const auto found = m_places.find(preset);
        return found == m_places.cend() ? std::nullopt : std::optional(found->second.origin);
    }

    // These return whether anything changed.
    bool set(const std::shared_ptr<const WPreset> &preset, QPointF origin)
    {
        const bool isChanged = originFor(preset.get()) != origin;
        m_places.insert_or_assign(preset.get(), Place{preset, origin});
        return isChanged;
    }
    bool reset(const WPreset *preset) { return m_places.erase(preset) > 0; }
    bool operator==(const CustomOrigins &) const = default;
    bool clear() { return !std::exchange(m_places, {}).empty(); }

private:
    struct Place {
        std::shared_ptr<const WPreset> preset;
        QPointF origin;
        bool operator==(const Place &) const = default;
    };

    std::unordered_map<const WPreset *, Place> m_places;
};

} // namespace plexa
