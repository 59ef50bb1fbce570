// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

#include <QList>

namespace plexa
{

/// One marker segment of a JPEG to be written.
struct JpegSegment {
    int marker;         ///< second byte of the marker: 0xE1 for APP1
    QByteArray payload; ///< at most kMaxJpegSegmentPayload bytes
};

/// Everything that a written JPEG carries besides JFIF and the picture: EXIF, XMP (in several segments where
/// one is too short), IPTC and other image resources, the sRGB profile, the comment. Made from `options`
/// alone, so that nothing of a source's segments slips through.
/// @return the failure when the EXIF structure is longer than kMaxJpegExif
[[nodiscard]] Result<QList<JpegSegment>> jpegMetadataSegments(const WriteOptions &options);

} // namespace plexa
