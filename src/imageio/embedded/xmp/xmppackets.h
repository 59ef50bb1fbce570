// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QString>

#include <exiv2/exiv2.hpp>

#include <string>

namespace plexa
{

/// The namespaces of the prefixes that the library knew before any packet was read, by prefix.
const QHash<QString, QString> &knownXmpNamespaces();

/// A packet as the metadata library understands it rightly. The library keeps one table of prefixes for the
/// whole process, so that a packet which binds a well-known prefix to another namespace would change all
/// later ones: such prefixes get other names here. And it takes the beginning "type=" of a text for a
/// command. To be called after prepareMetadataLibrary(). A packet that needs neither, or is no XML, comes
/// back as it is.
std::string packetForLibrary(const std::string &packet);

/// Takes back from decoded properties what packetForLibrary() put into texts.
void restoreTexts(Exiv2::XmpData &xmp);

/// The library takes some old names for a home of Dublin Core (xmpDM:copyright for dc:rights) and puts two
/// line ends in front of their texts, as if something stood before them. Takes these away.
void removeBreaksOfAliases(Exiv2::XmpData &xmp);

/// A simple XMP value with just this text; the library's own reading looks for commands in it.
Exiv2::XmpTextValue plainXmpText(const std::string &text);

} // namespace plexa
