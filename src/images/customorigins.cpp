// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/customorigins.h"

#include <algorithm>
#include <utility>

namespace plexa
{

std::vector<CustomOrigins::Place>::const_iterator CustomOrigins::find(const WPreset *preset) const
{
    return std::find_if(m_places.begin(), m_places.end(),
                        [&](const Place &place) { return place.preset.get() == preset; });
}

std::optional<QPointF> CustomOrigins::originFor(const WPreset *preset) const
{
    const auto found = find(preset);
    return found == m_places.end() ? std::nullopt : std::optional(found->origin);
}

bool CustomOrigins::set(const std::shared_ptr<const WPreset> &preset, QPointF origin)
{
    const auto found = find(preset.get());
    if (found == m_places.end()) {
        m_places.push_back({preset, origin});
        return true;
    }
    QPointF &old = m_places[static_cast<std::size_t>(found - m_places.begin())].origin;
    return std::exchange(old, origin) != origin;
}

bool CustomOrigins::reset(const WPreset *preset)
{
    const auto found = find(preset);
    if (found == m_places.end())
        return false;
    m_places.erase(found);
    return true;
}

bool CustomOrigins::clear()
{
    return !std::exchange(m_places, {}).empty();
}

} // namespace plexa
