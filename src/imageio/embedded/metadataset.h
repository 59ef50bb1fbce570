// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/filecomments.h"
#include "imageio/embedded/pngtexts.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <exiv2/exiv2.hpp>

#include <string>

namespace plexa
{

/// A file's metadata, decoded. XMP stays the packet that it was: its prefixes mean something only while the
/// table of namespaces is held still (lockXmpNamespaces()).
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

/// Decodes the XMP, both packets as one, after mending what can be mended; without a packet that is damaged
/// beyond that, or beyond all measure (size, nesting, number of elements and attributes).
/// To be called under lockXmpNamespaces(); the result is changed and encoded under the same lock, but may be
/// read without it.
/// @param omitted  gets the names of what is left out: "XMP" for a packet, "XMP dc:title" for a property
Exiv2::XmpData decodedXmp(const MetadataSet &set, QStringList *omitted = nullptr);

} // namespace plexa
