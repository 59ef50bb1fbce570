// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/photoversion.h"

#include <utility>

namespace plexa
{

void PhotoVersion::setMetadata(const ImageMetadata &metadata)
{
    m_metadata = metadata;
    m_isMetadataEdited = true;
}

ImageMetadata PhotoVersion::edited(ImageMetadata metadata) const
{
    if (m_edit)
        m_edit(metadata);
    return metadata;
}

void PhotoVersion::turn(ImageTransform transform)
{
    m_turns = orientationAfter(m_turns, transform);
    m_uprighting.orientation = orientationAfter(m_uprighting.orientation, transform);
    if (m_original)
        m_original->edits.turns = orientationAfter(m_original->edits.turns, transform);
}

int PhotoVersion::turns() const
{
    return m_turnsOfOwnCopy ? composedOrientation(inverseOrientation(*m_turnsOfOwnCopy), m_turns) : m_turns;
}

PhotoVersion::Arrival PhotoVersion::arrivalOf(const std::optional<FileVersion> &version) const
{
    if (!m_turnsOfOwnCopy || version == m_version)
        return {version, false, m_turns};
    return {version, true, turns()};
}

bool PhotoVersion::adopt(const Arrival &arrival, const ImageMetadata &metadata, const Uprighting &uprighting)
{
    if (arrival.isOwnCopy) {
        m_original = {m_version, {m_metadata, m_turns}};
        m_turnsOfOwnCopy.reset();
        m_isMetadataEdited = false;
    }
    if (m_isMetadataEdited)
        m_metadata->setOrientation(metadata.orientationCorrected());
    else
        m_metadata = edited(metadata);
    m_turns = arrival.turns;
    const bool hadVersion = std::exchange(m_version, arrival.version).has_value();
    return std::exchange(m_uprighting, uprighting).size() != uprighting.size() && hadVersion;
}

void PhotoVersion::forget()
{
    m_version.reset();
    m_turnsOfOwnCopy.reset();
    m_original.reset();
    m_isMetadataEdited = false;
    m_turns = 1;
}

bool PhotoVersion::isOriginal(const std::optional<FileVersion> &version) const
{
    return m_original && version == m_original->version && version != m_version;
}

PhotoVersion::Edits PhotoVersion::editsOf(const std::optional<FileVersion> &version) const
{
    return isOriginal(version) ? m_original->edits : Edits{m_metadata, m_turns};
}

std::optional<int> PhotoVersion::beginOverwriting(const std::optional<FileVersion> &version)
{
    // All copies of one original have the same turns.
    return std::exchange(m_turnsOfOwnCopy, isOriginal(version) ? 1 : m_turns);
}

} // namespace plexa
