// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"
#include "metadata/clearedgroups.h"

#include <memory>

namespace plexa
{

class ImageSource;

/// The parts of a copy besides its pixels.
struct CopyRequest {
    QString type;           ///< MIME name of the format to write
    QVariantMap properties; ///< the property dictionary of the copy, with
                            ///< "kCGImageDestinationLossyCompressionQuality" (0..1) for lossy formats
    const ImageSource *source = nullptr; ///< of other metadata, chroma sampling, ...; may be null
    QStringList *omitted = nullptr; ///< receives the names of metadata too long for the copy; may be null
    ClearedGroups cleared = {};     ///< of the properties
    bool isTurned = false; ///< are the copy's pixels rotated, mirrored or scaled relative to the source's?
    int orientation = 1;   ///< 1..8: how the copy's pixels are turned relative to the source's
};

/// Opens a writer for one picture with its metadata, the sRGB profile and a new thumbnail if the source has
/// one.
/// @param device  open for writing, random access, empty; it must outlive the writer
/// @param format  of the rows: upright pixels. The writer flattens alpha on white for formats without alpha.
[[nodiscard]] Result<std::unique_ptr<RowWriter>> openDestination(QIODevice &device, const RowFormat &format,
                                                                 const CopyRequest &request);

/// Upper bound of the memory (bytes) of such a writer besides the caller's strips; 0 if the rows stream. To
/// be reserved before openDestination().
qint64 destinationBytes(const RowFormat &format, const CopyRequest &request);

/// Can copies in the source's own format be written by writeRetouched()? Some sources turn out later to have
/// a form for which that is not possible.
bool canRetouch(const CopyRequest &request);

/// Writes the same file as openDestination(), but from the encoded source, of which only the parts that are
/// drawn on are decoded and encoded again.
/// @return as RetouchFunction; the device has to be emptied if there is none, and the copy to be written by
///         openDestination(), which also knows the reason of a failure
std::optional<QString> writeRetouched(QIODevice &device, const CopyRequest &request, const Retouch &retouch);

/// Upper bound of the memory (bytes) of writeRetouched().
qint64 retouchBytes(const CopyRequest &request, int orientation);

/// Writes a whole picture through openDestination().
[[nodiscard]] Result<void> writeImage(QIODevice &device, const QImage &image, const CopyRequest &request);

/// Names of the source's pictures that a copy lacks and a message mentions: "gain map", "animation".
QStringList droppedPictures(const ImageSource &source);

} // namespace plexa
