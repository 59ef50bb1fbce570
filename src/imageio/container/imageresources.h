// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Photoshop's image resources ("8BIM" blocks), as a JPEG keeps them in APP13, a TIFF in field 34377 and a
/// PNG in a raw profile. Layout: Adobe Photoshop File Formats Specification, "Image Resource Blocks".

/// The IIM records among the resources (resource 0x0404); empty when there are none.
QByteArray iptcOfImageResources(const QByteArray &resources);

/// What a copy says about itself in resources.
struct ImageResourceFacts {
    QByteArray iptcBefore;     ///< IIM records of the source
    QByteArray iptcAfter;      ///< and of the copy
    double dpi[2] = {0, 0};    ///< of the copy, horizontal and vertical; 0: unknown
    bool clearsRights = false; ///< copyright mark and links go with the IPTC data
};

/// The resources for a copy without the IIM records: an allow-list of small ones that describe print, rights
/// and resolution. Thumbnails, paths, slices, layers and second copies of EXIF and XMP stay behind, and so
/// does anything that a picture begins in. The resolution is the copy's, and so is the digest by which
/// programs see whether XMP knows the newest IIM records.
QByteArray imageResourcesForCopy(const QByteArray &resources, const ImageResourceFacts &facts);

/// The resources that a file carries: one with the IIM records, where there are any, and the others.
QByteArray imageResourceBlocks(const QByteArray &iptc, const QByteArray &others);

} // namespace plexa
