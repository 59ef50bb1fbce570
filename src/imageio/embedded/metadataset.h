// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/filecomments.h"
#include "imageio/embedded/pngtexts.h"

#include <QByteArray>
#include <QString>

#include <exiv2/exiv2.hpp>

#include <string>

namespace plexa
{

/// A file's metadata, decoded; XMP as its packets (decodedXmp()).
struct MetadataSet {
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    QByteArray iptcBlock;        ///< the records as they came, empty where only the library saw them
    bool hasDamagedIptc = false; ///< some of the records cannot be read
    QByteArray imageResources;   ///< Photoshop image resources as they came
    std::string xmpPacket;
    std::string moreXmpPacket; ///< what a JPEG keeps in a second packet
    FileComments comments;
    QList<PngText> texts;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian;
};

/// Reads what the file carries; nothing is thrown, what cannot be read is left out.
MetadataSet readMetadataSet(const QString &path);

} // namespace plexa
