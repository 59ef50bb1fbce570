// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/uprighting.h"
#include "metadata/imagemetadata.h"
#include "platform/fileversion.h"

#include <functional>
#include <optional>

namespace plexa
{

/// Changes the metadata of a photo.
using MetadataEdit = std::function<void(ImageMetadata &)>;

/// The version of a photo's file that was read last: its metadata and geometry, with the user's turns and
/// edits.
///
/// A copy of the photo that overwrites its file contains the turns and the edited metadata already, so
/// neither is applied to that version again. The other copies of the run are written from the original that
/// was overwritten; the class keeps what they need of it.
///
/// A value; its owner guards it.
class PhotoVersion final
{
public:
    /// What a file that is about to be read needs.
    struct Arrival {
        std::optional<FileVersion> version;
        bool isOwnCopy = false; ///< a copy of this photo that overwrote its file
        int turns = 1;          ///< the user's turns that its pixels do not contain, as an orientation
    };
    /// What a copy of a file carries.
    struct Edits {
        std::optional<ImageMetadata> metadata;
        int turns = 1; ///< as an orientation
    };

    const std::optional<FileVersion> &version() const { return m_version; }
    const std::optional<ImageMetadata> &metadata() const { return m_metadata; }
    const Uprighting &uprighting() const { return m_uprighting; }

    /// Edited metadata, which later versions of the file keep.
    void setMetadata(const ImageMetadata &metadata);

    /// An edit of the metadata of each version that is read from now on.
    void setEdit(const MetadataEdit &edit) { m_edit = edit; }
    const MetadataEdit &edit() const { return m_edit; }
    ImageMetadata edited(ImageMetadata metadata) const;

    /// Adds a turn of the user's.
    void turn(ImageTransform transform);

    /// The user's turns that the present file does not contain, as an orientation.
    int turns() const;
    /// The edits that the present file does not contain.
    Edits pendingEdits() const { return {m_isMetadataEdited ? m_metadata : std::nullopt, turns()}; }
    /// Before the first file is read.
    void restoreTurns(int orientation) { m_turns = orientation >= 1 && orientation <= 8 ? orientation : 1; }

    Arrival arrivalOf(const std::optional<FileVersion> &version) const;

    /// The file was read.
    /// @param metadata    of the file
    /// @param uprighting  with the turns of the arrival
    /// @return whether an earlier version had another size
    bool adopt(const Arrival &arrival, const ImageMetadata &metadata, const Uprighting &uprighting);

    /// Forgets the file and the turns; the metadata stay until the file is read again.
    void forget();

    /// What a copy of that version of the file carries: that of the overwritten original, or of the current
    /// one.
    Edits editsOf(const std::optional<FileVersion> &version) const;

    /// A copy made from that version is about to overwrite the file.
    /// @return for cancelOverwriting()
    std::optional<int> beginOverwriting(const std::optional<FileVersion> &version);
    /// The copy failed.
    void cancelOverwriting(std::optional<int> before) { m_turnsOfOwnCopy = before; }

private:
    bool isOriginal(const std::optional<FileVersion> &version) const;

    struct Original {
        std::optional<FileVersion> version;
        Edits edits;
    };

    std::optional<FileVersion> m_version;
    std::optional<ImageMetadata> m_metadata;
    bool m_isMetadataEdited = false;
    MetadataEdit m_edit;
    Uprighting m_uprighting; // the user's turns included
    int m_turns = 1;         // the user's alone
    // Set from the overwriting until the new file is read: the turns in its pixels.
    std::optional<int> m_turnsOfOwnCopy;
    std::optional<Original> m_original;
};

} // namespace plexa
