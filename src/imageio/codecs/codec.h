// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/picturefailures.h"
#include "imageio/base/rowstream.h"
#include "imageio/embedded/pngtexts.h"
#include "platform/cancelcheck.h"
#include "platform/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QIODevice>
#include <QList>
#include <QRect>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace plexa
{

/// Facts about a picture that need no decoding.
struct PictureInfo {
    RowFormat rows;        ///< of the first picture, as its reader delivers it
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
    QByteArray software;             ///< BMP, which has no other place for it; ASCII, may be empty
    bool tiffLzw = true;             ///< TIFF: LZW, else uncompressed
};

/// @param device  open for reading, random access, at its start
using InfoFunction = Result<PictureInfo>(QIODevice &device, const ReadLimits &limits);

/// Opens a reader of the first picture, converted to sRGB.
/// @param device     open for reading, random access, at its start; must outlive the reader
/// @param reduction  1, 2, 4 or 8: the rows may be those of the picture reduced by this factor or by a
///                   smaller one of these (sides rounded up)
using ReaderFunction = Result<std::unique_ptr<RowReader>>(QIODevice &device, const ReadLimits &limits,
                                                          int reduction);

/// Opens a writer. Formats without alpha get rows without alpha.
/// @param device  open for writing, random access, empty; must outlive the writer
using WriterFunction = Result<std::unique_ptr<RowWriter>>(QIODevice &device, const RowFormat &format,
                                                          const WriteOptions &options);

/// The memory (bytes) that such a writer holds besides the strips it gets.
using WriterBytesFunction = qint64(const RowFormat &format, const WriteOptions &options);

/// What is drawn on a picture that is copied within its format. Pixels of the upright picture, origin at its
/// top left.
struct Retouch {
    int orientation = 1;       ///< 1..8 as in raster/orientation.h: how the stored picture becomes upright
    QList<QRect> covered = {}; ///< the parts that draw() may change
    std::function<void(QImage &part, QPoint at)> draw =
        {}; ///< draws on a part, Format_RGB32; `at`: its corner
    CancelCheck isCanceled = {};
};

/// Copies a picture with what is drawn on it, decoding and encoding only the parts that it covers.
/// @param from  open for reading, random access, at its start
/// @param to    open for reading and writing, random access, empty
/// @return as RowReader::notice(); none if this picture cannot be copied so, or is damaged, or reading or
///         writing has failed: `to` then contains nothing of use
using RetouchFunction = std::optional<QString>(QIODevice &from, const ReadLimits &limits, QIODevice &to,
                                               const WriteOptions &options, const Retouch &retouch);

/// Upper bound of the memory (bytes) of such a copy; 0: what streams.
using RetouchBytesFunction = qint64(const PictureInfo &info, const WriteOptions &options, int orientation);

/// How one format is read and written. Stateless; any thread. Exceptions, jumps and messages of the
/// underlying library do not leave these functions.
struct Codec {
    std::function<InfoFunction> readInfo;
    std::function<ReaderFunction> openReader;
    WriterFunction *openWriter = nullptr;       ///< null: the format is not written
    WriterBytesFunction *writerBytes = nullptr; ///< null: the rows stream
    RetouchFunction *retouch = nullptr;         ///< null: copies are decoded and encoded
    RetouchBytesFunction *retouchBytes = nullptr;
    qsizetype maxExifBytes = 16 * 1024 * 1024; ///< the longest EXIF structure that openWriter() accepts
    bool keepsExif = true;                     ///< in a written file
    bool keepsIptc = true;      ///< IIM records in a written file; otherwise their facts are written as XMP
    bool keepsComment = true;   ///< a comment outside of EXIF, IPTC and XMP in a written file
    bool keepsThumbnail = true; ///< in the EXIF of a written file (WriteOptions::thumbnailPlaceholder)
};

/// One row of the table of picture formats: what menus, file dialogs, folder scans and the command line need
/// to know of a format. Types are MIME names ("image/jpeg").
struct ImageFormat {
    const char *type;     ///< MIME name, the type identifier
    const char *name;     ///< for people: "JPEG"
    QStringList suffixes; ///< lower case, without the dot; copies get the first one
    std::function<bool(QByteArrayView head)> matches; ///< do a file's first bytes (up to 64) belong to this
                                                      ///< format? empty: recognized by its suffix alone
    const Codec *codec;                               ///< never null; static storage
    bool canWrite = false;
    bool writesAlpha = false; ///< a written file keeps transparency
};

} // namespace plexa
