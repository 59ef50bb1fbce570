// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/picturefailures.h"
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

/// Facts about a picture that need no decoding.
struct PictureInfo {
    RowFormat rows; ///< of the first picture, as its reader delivers it
    int imageCount = 1;
    int depth = 8;         ///< bits per component in the file
    QString colorModel;    ///< "RGB", "Gray", "CMYK" or "Lab", of the file
    QByteArray iccProfile; ///< embedded, or the one that the file names; may be empty
    double dpiWidth = 0;   ///< 0: unknown
    double dpiHeight = 0;
    bool isProgressive = false; ///< JPEG only
    QByteArray chromaSampling;  ///< horizontal and vertical factors of each component as in JPEG:
                                ///< "22,11,11"; JPEG and HEIF only
    qint64 decoderBytes = 0; ///< upper bound of the memory a reader holds besides the strips it fills: data
                             ///< that must be decoded before the first row; 0 where the rows stream
    QVariantMap formatProperties; ///< property dictionaries of this container: "{JFIF}", "{PNG}", ...
    int orientation = 0;          ///< 1 to 8 as in EXIF, overrides the metadata; 0: unknown
    QVariantMap properties;       ///< replaces metadata that the file lacks, in the form of the property
                                  ///< dictionary ("{TIFF}", ...)
    QStringList unmarkedPictures; ///< further pictures that a copy must not contain: "gain map", ...
};

/// How a picture is written.
struct WriteOptions {
    double quality = 0.8;            ///< 0..1, for lossy formats
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
    bool tiffLzw = true;             ///< TIFF: LZW, else uncompressed
};

/// Reads and writes one format. Stateless; any thread. Exceptions, jumps and messages of the underlying
/// library do not leave the codec.
class Codec
{
public:
    virtual ~Codec() = default;

    /// @param device  open for reading, random access, at its start; must outlive everything made from it
    [[nodiscard]] virtual Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const = 0;

    /// Opens a reader of the first picture, converted to sRGB.
    /// @param reduction  1, 2, 4 or 8: a picture reduced by about that factor is sufficient (sides rounded
    ///                   up); a codec that cannot reduce ignores it
    [[nodiscard]] virtual Result<std::unique_ptr<RowReader>>
    openReader(QIODevice &device, const ReadLimits &limits, int reduction) const = 0;

    /// Opens a writer that writes the file to `device` (open for writing, random access, empty). Formats
    /// without alpha get rows without alpha. Fails when the format cannot be written, as here.
    [[nodiscard]] virtual Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &, const RowFormat &,
                                                                        const WriteOptions &) const
    {
        return fail(PictureFailures::cannotWriteFormat());
    }

    /// The longest EXIF structure that openWriter() accepts.
    virtual qsizetype maxExifBytes() const { return 16 * 1024 * 1024; }

    /// Does a written file keep IIM records? Otherwise their facts are written as XMP.
    virtual bool writesIptc() const { return true; }

    /// Does a written file keep EXIF?
    virtual bool writesExif() const { return true; }

    /// Does a written file keep a comment outside of EXIF, IPTC and XMP?
    virtual bool writesComment() const { return true; }

    /// Does a written file keep a thumbnail in its EXIF (WriteOptions::thumbnailPlaceholder)?
    virtual bool holdsThumbnail() const { return true; }

    /// The size of the rows that openReader() delivers for a picture of `size` pixels.
    virtual QSize reducedSize(QSize size, int) const { return size; }

    /// The memory (bytes) that such a writer holds besides the strips it gets: data that it collects before
    /// it can write; 0 where the rows stream.
    virtual qint64 writerBytes(const RowFormat &, const WriteOptions &) const { return 0; }
};

/// One row of the table of picture formats: what menus, file dialogs, folder scans and the command line need
/// to know of a format. Types are MIME names ("image/jpeg").
struct ImageFormat {
    const char *type;                     ///< MIME name, the type identifier
    const char *name;                     ///< for people: "JPEG"
    QStringList suffixes;                 ///< lower case, without the dot; copies get the first one
    bool (*matches)(QByteArrayView head); ///< do a file's first bytes (up to 64) belong to this format? null:
                                          ///< no signature, recognized by its suffix alone
    const Codec *codec;                   ///< never null; static storage
    bool canWrite = false;
    bool writesAlpha = false; ///< a written file keeps transparency
};

} // namespace plexa
