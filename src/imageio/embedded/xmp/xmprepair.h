// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

namespace plexa
{

struct RepairedXmp {
    QByteArray packet;   ///< UTF-8; empty: what is wrong cannot be mended
    QStringList dropped; ///< what was taken out: "XMP dc:title"
};

/// A packet that the metadata library refuses, without the faults that programs are known for: bytes that
/// are no UTF-8 (taken for Windows-1252), characters that XML cannot hold, stray "&" and entities of HTML,
/// prefixes that nobody declared, properties that stand there twice (the first one stays), list items
/// outside of lists, and XML in the place of a text (its text stays). To be called after
/// prepareMetadataLibrary().
RepairedXmp repairedXmp(const QByteArray &packet);

} // namespace plexa
