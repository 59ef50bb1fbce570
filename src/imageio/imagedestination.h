// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"
#include "metadata/clearedgroups.h"

#include <memory>

namespace plexa
{

class ImageSource;

/// What a copy is made of besides its pixels.
struct CopyRequest {
    QString type;           ///< MIME name of the format to write
    QVariantMap properties; ///< the property dictionary to be found in the copy, with
                            ///< "kCGImageDestinationLossyCompressionQuality" (0..1) where it applies
    const ImageSource *source =
        nullptr; ///< whose unmodelled metadata, sampling and so on are kept; may be null
    QStringList *omitted =
        nullptr;                ///< is appended what of the metadata was too long for the copy; may be null
    ClearedGroups cleared = {}; ///< of the properties
    bool isTurned = false; ///< are the copy's pixels rotated, mirrored or stretched against the source's?
};

/// Opens a writer for one picture with its metadata, sRGB profile and, where the source had one, a new
/// thumbnail.
/// @param device  open for writing, random access, empty; it must outlive the writer
/// @param format  of the rows to come: upright pixels. A picture with alpha for a format without it is
///                flattened on white by the writer.
[[nodiscard]] Result<std::unique_ptr<RowWriter>> openDestination(QIODevice &device, const RowFormat &format,
                                                                 const CopyRequest &request);

/// The most memory (bytes) that such a writer takes besides the caller's strips: 0 where the rows stream,
/// the coefficients of a progressive JPEG. To be reserved before openDestination().
qint64 destinationBytes(const RowFormat &format, const CopyRequest &request);

/// Writes a whole picture through openDestination().
[[nodiscard]] Result<void> writeImage(QIODevice &device, const QImage &image, const CopyRequest &request);

/// What of the source's pictures a copy leaves out and people should hear of: "gain map",
/// "animation".
QStringList droppedPictures(const ImageSource &source);

} // namespace plexa
