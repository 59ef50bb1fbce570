// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointF>

#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

class WPreset;

/// The places of one photo's watermarks that the user chose by hand: photo pixels, origin at the bottom left.
/// Presets are compared by identity and kept alive. A value; its owner guards it.
class CustomOrigins final
{
public:
    std::optional<QPointF> originFor(const WPreset *preset) const;

    // These return whether anything changed.
    bool set(const std::shared_ptr<const WPreset> &preset, QPointF origin);
    bool reset(const WPreset *preset);
    bool clear();

private:
    struct Place {
        std::shared_ptr<const WPreset> preset;
        QPointF origin;
    };

    std::vector<Place>::const_iterator find(const WPreset *preset) const;

    std::vector<Place> m_places;
};

} // namespace plexa
