// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Photoshop's image resources ("8BIM" blocks), as a JPEG keeps them in APP13, a TIFF in field 34377 and a
/// PNG in a raw profile. Layout: Adobe Photoshop File Formats Specification, "Image Resource Blocks".

/// The IIM records among the resources (resource 0x0404); may be empty.
QByteArray iptcOfImageResources(const QByteArray &resources);

/// The facts for the resources of a copy.
struct ImageResourceFacts {
    QByteArray iptcBefore;     ///< IIM records of the source
    QByteArray iptcAfter;      ///< and of the copy
    double dpi[2] = {0, 0};    ///< of the copy, horizontal and vertical; 0: unknown
    bool clearsRights = false; ///< copyright mark and links go with the IPTC data
};

/// The resources for a copy without the IIM records: only small ones about print, rights and resolution, and
/// none that contains a picture. The resolution is the copy's, and so is the digest by which programs compare
/// XMP with the IIM records.
QByteArray imageResourcesForCopy(const QByteArray &resources, const ImageResourceFacts &facts);

/// The resources of a file: one with the IIM records, if any, and the others.
QByteArray imageResourceBlocks(const QByteArray &iptc, const QByteArray &others);

} // namespace plexa
