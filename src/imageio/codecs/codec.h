// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/readlimits.h"
#include "imageio/base/rowstream.h"
#include "imageio/embedded/pngtexts.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>
#include <QList>
#include <QStringList>
#include <QVariantMap>

#include <memory>

namespace plexa
{

/// What a codec finds out about a picture without decoding it.
struct PictureInfo {
    RowFormat rows; ///< of image 0, as its rows will be handed out
    int imageCount = 1;
    int depth = 8;         ///< bits a component in the file
    QString colorModel;    ///< "RGB", "Gray", "CMYK" or "Lab", of the file
    QByteArray iccProfile; ///< embedded, or the one that the file names without it; empty: none
    double dpiWidth = 0;   ///< 0 when the container says nothing
    double dpiHeight = 0;
    bool isProgressive = false; ///< JPEG only
    QByteArray chromaSampling;  ///< horizontal and vertical factor of each component as JPEG has them:
                                ///< "22,11,11"; JPEG and HEIF only
    qint64 decoderBytes = 0; ///< the most memory that a reader holds besides the strips it fills: what it has
                             ///< to decode whole before the first row comes out; 0 where the rows stream
    QVariantMap formatProperties; ///< dictionaries of the property dictionary that are of one container
                                  ///< only: "{JFIF}", "{PNG}", ...
    int orientation = 0; ///< 1 to 8 as EXIF counts, where the codec knows it better than the metadata; 0: it
                         ///< does not
    QVariantMap properties; ///< what stands in for metadata that the file does not have, in the form of the
                            ///< property dictionary ("{TIFF}", ...)
    QStringList unmarkedPictures; ///< pictures beside image 0 that a copy must not carry: "gain map", ...
};

/// How a picture is written.
struct WriteOptions {
    double quality = 0.8;            ///< 0..1, for formats with losses
    double dpi[2] = {0, 0};          ///< horizontal and vertical, 0: not written
    bool isProgressive = false;      ///< JPEG
    QByteArray chromaSampling;       ///< JPEG, HEIC: as in PictureInfo, kept at high quality; may be empty
    QByteArray exif;                 ///< a TIFF structure without "Exif\0\0", may be empty
    QByteArray thumbnailPlaceholder; ///< bytes inside `exif` that finish() replaces by a JPEG thumbnail of
                                     ///< the written picture, padded to the same length; may be empty
    QByteArray iptc;                 ///< IIM records, may be empty
    QByteArray imageResources;       ///< Photoshop image resources without IIM records, may be empty
    QByteArray xmp;                  ///< packet as UTF-8, may be empty
    QByteArray comment;              ///< JPEG comment, may be empty
    QList<PngText> texts;            ///< PNG, may be empty
    bool tiffLzw = true;             ///< TIFF: LZW, else none
};

/// Reads and writes one format. Stateless; any thread. Exceptions, jumps and messages of the library that
/// does the work end inside.
class Codec
{
public:
    virtual ~Codec() = default;

    /// @param device  open for reading, random access, at its start; it stays the caller's and must live as
    ///                long as what is made from it
    [[nodiscard]] virtual Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const = 0;

    /// A reader of image 0, converted to sRGB.
    /// @param reduction  1, 2, 4 or 8: a picture smaller by about that factor will do (sides rounded up);
    ///                   a codec that cannot reduce ignores it
    [[nodiscard]] virtual Result<std::unique_ptr<RowReader>>
    openReader(QIODevice &device, const ReadLimits &limits, int reduction) const = 0;

    /// A writer that puts the file into `device` (open for writing, random access, empty). Formats without
    /// alpha are given rows without it. Fails when the format cannot be written.
    [[nodiscard]] virtual Result<std::unique_ptr<RowWriter>>
    openWriter(QIODevice &device, const RowFormat &format, const WriteOptions &options) const = 0;

    /// The longest EXIF structure that openWriter() takes.
    virtual qsizetype maxExifBytes() const { return 16 * 1024 * 1024; }

    /// Does a written file keep IIM records? Where it does not, XMP has to tell what they tell.
    virtual bool writesIptc() const { return true; }

    /// The same of EXIF.
    virtual bool writesExif() const { return true; }

    /// The same of a comment, a text about the photo outside of EXIF, IPTC and XMP.
    virtual bool writesComment() const { return true; }

    /// Does a written file keep a thumbnail in its EXIF (WriteOptions::thumbnailPlaceholder)?
    virtual bool holdsThumbnail() const { return true; }

    /// The size of the rows that openReader() gives for a picture of `size` pixels.
    virtual QSize reducedSize(QSize size, int reduction) const
    {
        Q_UNUSED(reduction)
        return size;
    }

    /// The memory (bytes) that such a writer holds besides the strips it is given: what it has to gather
    /// before it can write; 0 where the rows stream.
    virtual qint64 writerBytes(const RowFormat &format, const WriteOptions &options) const
    {
        Q_UNUSED(format)
        Q_UNUSED(options)
        return 0;
    }
};

/// One row of the table of picture formats: everything that menus, file dialogs, folder scans and the
/// command line need to know of a format. Types are MIME names ("image/jpeg").
struct ImageFormat {
    const char *type;                     ///< MIME name, the type identifier
    const char *name;                     ///< as people call it: "JPEG"
    QStringList suffixes;                 ///< lower case, without the dot; the first is the one written
    bool (*matches)(QByteArrayView head); ///< do a file's first bytes (up to 64) belong to this format? null:
                                          ///< it has no signature, only the suffix tells
    const Codec *codec;                   ///< never null; static storage
    bool canWrite = false;
    bool writesAlpha = false; ///< a written file keeps what shows through
};

} // namespace plexa
