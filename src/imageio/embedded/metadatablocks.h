// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/filecomments.h"
#include "imageio/embedded/pngtexts.h"

#include <QByteArray>
#include <QIODevice>

#include <optional>

namespace plexa
{

/// The metadata of a file as stored in its container, undecoded.
struct MetadataBlocks {
    QByteArray exif;           ///< a TIFF structure
    QByteArray iptc;           ///< IIM records
    QByteArray imageResources; ///< Photoshop image resources, the one with the IIM records among them
    QByteArray xmp;            ///< the packet, UTF-8
    QByteArray moreXmp;        ///< a JPEG's second packet, for properties that do not fit into one segment
    FileComments comments;     ///< JPEG's or GIF's
    QList<PngText> texts;
};

/// Larger blocks are ignored; cameras and editors write far smaller ones.
inline constexpr qsizetype kMaxMetadataBytes = 16 * 1024 * 1024;

/// Collects the blocks of a JPEG, PNG, WebP, HEIF or GIF file without touching its pixels. Damaged blocks are
/// left out.
/// @param device  open for reading, random access, at any position
/// @return none when the contents are of another format
std::optional<MetadataBlocks> readMetadataBlocks(QIODevice &device);

} // namespace plexa
