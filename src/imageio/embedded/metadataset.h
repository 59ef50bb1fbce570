// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/filecomments.h"
#include "imageio/embedded/pngtexts.h"

#include <QByteArray>
#include <QIODevice>

#include <exiv2/exiv2.hpp>

#include <string>

namespace plexa
{

/// A file's metadata, decoded; XMP as its packets (decodedXmp()).
struct MetadataSet {
    Exiv2::ExifData exif;
    Exiv2::IptcData iptc;
    QByteArray iptcBlock;        ///< the records as stored; empty where only the library has read them
    bool hasDamagedIptc = false; ///< some of the records cannot be read
    QByteArray imageResources;   ///< Photoshop image resources as stored
    std::string xmpPacket;
    std::string moreXmpPacket; ///< a JPEG's second packet
    FileComments comments;
    QList<PngText> texts;
    Exiv2::ByteOrder byteOrder = Exiv2::littleEndian;
};

/// Reads the metadata of a file. Invalid parts are left out, and those that the device fails to read. Throws
/// std::bad_alloc only.
/// @param device  open for reading, random access; left at any position
MetadataSet readMetadataSet(QIODevice &device);

} // namespace plexa
