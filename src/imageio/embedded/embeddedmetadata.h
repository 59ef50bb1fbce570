// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/jpegmarkers.h"
#include "imageio/embedded/pngtexts.h"
#include "metadata/clearedgroups.h"
#include "platform/result.h"

#include <QByteArray>
#include <QIODevice>
#include <QSize>
#include <QStringList>
#include <QVariantMap>

#include <memory>

namespace plexa
{

/// The EXIF, IPTC and XMP of a file, whole: also the facts that the property dictionary does not model
/// (maker notes, unknown tags). Immutable after reading, so threads may share it. The metadata library and
/// its exceptions stay inside.
class EmbeddedMetadata final
{
public:
    /// Reads a file's metadata. Damaged metadata never fail a photo: invalid parts are left out. Parts that
    /// the device fails to read are left out, too: the caller has to ask the device. Never null; throws
    /// std::bad_alloc.
    /// @param device  open for reading, random access; left at any position
    static std::shared_ptr<const EmbeddedMetadata> read(QIODevice &device);

    /// No metadata.
    static std::shared_ptr<const EmbeddedMetadata> none();

    ~EmbeddedMetadata();
    EmbeddedMetadata(const EmbeddedMetadata &) = delete;
    EmbeddedMetadata &operator=(const EmbeddedMetadata &) = delete;

    /// The part of the property dictionary that comes from metadata: "Orientation", "DPIWidth", "DPIHeight",
    /// "{TIFF}", "{Exif}", "{ExifAux}", "{IPTC}", "{GPS}", "{PNG}" (its texts) as far as the file has them
    /// (keys: metadata/propertykeys.h). The author, copyright, title and description of a PNG's texts stand
    /// in where no other place holds them, and creator, copyright notice and caption of EXIF in "{IPTC}"
    /// where IPTC and XMP have none. Size, depth, color model and profile come from the codec.
    QVariantMap properties() const;

    /// Does the EXIF carry a thumbnail?
    bool hasThumbnail() const;

    /// What a copy carries.
    struct Encoded {
        QByteArray exif = {};           ///< TIFF structure, little or big endian as in the source
        QByteArray iptc = {};           ///< IIM records
        QByteArray imageResources = {}; ///< Photoshop image resources without IIM records
        QByteArray xmp = {};            ///< packet, UTF-8
        QByteArray comment = {};        ///< JPEG comment
        QList<PngText> texts = {};      ///< for a PNG: the source's, as far as it was one, and the software
        QByteArray thumbnailPlaceholder =
            {};                   ///< the bytes in `exif` that reserve the place of the new thumbnail
        QStringList omitted = {}; ///< parts that are left out: "maker note", "user comment"
    };

    /// How a copy differs from its source.
    struct CopyFacts {
        QSize pixelSize;                       ///< of the copy
        qsizetype thumbnailBytes = 0;          ///< room to keep for a new EXIF thumbnail, 0: none
        qsizetype maxExifBytes = kMaxJpegExif; ///< the longest EXIF that the copy's format holds
        bool holdsIptc = true; ///< else the facts of IIM records go into the XMP, as far as it has a place
        ClearedGroups cleared = {}; ///< by the user
        bool isTurned = false; ///< are the copy's pixels rotated, mirrored or stretched against the source's?
        bool holdsExif = true; ///< else author, copyright, description and software go into the XMP
    };

    /// Metadata for a copy: the file's own, changed where `properties` differs from properties(), freed from
    /// every picture that shows the unmarked photo (thumbnails, previews in maker notes, XMP thumbnails),
    /// sRGB, upright. A cleared group is removed from all places that store something of it.
    Encoded encodeForCopy(const QVariantMap &properties, const CopyFacts &facts) const;

private:
    struct Data;
    explicit EmbeddedMetadata(std::unique_ptr<Data> data);
    std::unique_ptr<Data> m_data;
};

} // namespace plexa
