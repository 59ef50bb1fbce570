// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imageformat.h"

#include "imageio/codecs/codecs.h"
#include "imageio/container/heifbrands.h"
#include "imageio/container/jpegmarkers.h"
#include "imageio/container/tiffpictures.h"
#include "platform/filenames.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QtEndian>

#include <algorithm>
#include <vector>

namespace plexa
{

namespace
{

using Matches = std::function<bool(QByteArrayView)>;

Matches beginsWithAny(const QByteArrayList &beginnings)
{
    return [beginnings](QByteArrayView head) {
        return std::any_of(beginnings.begin(), beginnings.end(),
                           [head](const QByteArray &beginning) { return head.startsWith(beginning); });
    };
}

bool isWebp(QByteArrayView head)
{
    return head.size() >= 16 && head.startsWith("RIFF") && head.sliced(8, 4) == QByteArrayView("WEBP");
}

bool isBmp(QByteArrayView head)
{
    if (head.size() < 18 || !head.startsWith("BM"))
        return false;
    // The size of the second header makes the short signature unambiguous.
    const auto headerSize = qFromLittleEndian<quint32>(head.data() + 14);
    return headerSize == 12 || (headerSize >= 40 && headerSize <= 124);
}

bool isIcon(QByteArrayView head)
{
    return head.size() >= 22 && head.startsWith(QByteArrayView("\0\0\1\0", 4)) && head[5] == 0 &&
           head[4] != 0;
}

/// @param kinds  the digits of the plain and the raw form
Matches netpbm(const char *kinds)
{
    return [kinds](QByteArrayView head) {
        return head.size() >= 8 && head[0] == 'P' && (head[1] == kinds[0] || head[1] == kinds[1]) &&
               QByteArrayView("\n \t\r#").contains(head[2]);
    };
}

bool isTiff(QByteArrayView head)
{
    return isClassicTiff(head) || head.startsWith("II+\0\x08\0\0\0"_qba) ||
           head.startsWith("MM\0+\0\x08\0\0"_qba);
}

bool isCr2(QByteArrayView head)
{
    return head.size() >= 16 && isClassicTiff(head) && head.sliced(8, 2) == QByteArrayView("CR");
}

bool isCr3(QByteArrayView head)
{
    return head.size() >= 16 && head.sliced(4, 8) == QByteArrayView("ftypcrx ");
}

bool isCrw(QByteArrayView head)
{
    return head.size() >= 16 && (head.startsWith("II") || head.startsWith("MM")) &&
           head.sliced(6, 8) == QByteArrayView("HEAPCCDR");
}

bool isIiq(QByteArrayView head)
{
    const qsizetype at = isClassicTiff(head) ? 8 : 0;
    const QByteArrayView mark = head.size() >= at + 4 ? head.sliced(at, 4) : QByteArrayView();
    return mark == QByteArrayView("IIII") || mark == QByteArrayView("MMMM");
}

struct Codecs {
    const Codec jpeg{.readInfo = readJpegInfo,
                     .openReader = openJpegReader,
                     .openWriter = openJpegWriter,
                     .writerBytes = jpegWriterBytes,
                     .retouch = retouchJpeg,
                     .retouchBytes = retouchJpegBytes,
                     .maxExifBytes = kMaxJpegExif};
    const Codec png{.readInfo = readPngInfo, .openReader = openPngReader, .openWriter = openPngWriter};
    const Codec tiff{.readInfo = readTiffInfo,
                     .openReader = openTiffReader,
                     .openWriter = openTiffWriter,
                     .writerBytes = tiffWriterBytes,
                     .keepsComment = false,
                     .keepsThumbnail = false}; // it would be a second picture of the file
    const Codec heif{.readInfo = readHeifInfo,
                     .openReader = openHeifReader,
                     .openWriter = openHeicWriter,
                     .writerBytes = heicWriterBytes,
                     .keepsIptc = false,
                     .keepsComment = false,
                     .keepsThumbnail = false};
    const Codec gif{.readInfo = readGifInfo,
                    .openReader = openGifReader,
                    .openWriter = openGifWriter,
                    .writerBytes = gifWriterBytes,
                    .keepsExif = false,
                    .keepsIptc = false,
                    .keepsThumbnail = false};
    const Codec tga{.readInfo = readTgaInfo, .openReader = openTgaReader};
    const Codec raw{.readInfo = readRawInfo, .openReader = openRawReader};
    const Codec jp2{.readInfo = readJp2Info, .openReader = openJp2Reader};
    const Codec bmp = [] {
        Codec codec = qtCodec("bmp");
        codec.openWriter = openBmpWriter;
        return codec;
    }();
    const Codec webp = qtCodec("webp");
    const Codec ico = qtCodec("ico");
    const Codec icns = qtCodec("icns");
    const Codec ppm = qtCodec("ppm");
    const Codec pgm = qtCodec("pgm");
    const Codec pbm = qtCodec("pbm");
};

const Codecs &codecs()
{
    static const Codecs all;
    return all;
}

struct Row {
    const char *type;
    const char *name;
    const char *suffixes; ///< separated by blanks
    Matches matches;
    const Codec *codec;
    bool canWrite = false;
    bool writesAlpha = false;
};

// clang-format off
/// Camera raw formats with a signature precede TIFF, which some resemble; those without one follow it.
std::vector<Row> rows()
{
    const Codecs &c = codecs();
    return {
        {"image/jpeg", "JPEG", "jpg jpeg jpe jfif", beginsWithAny({"\xff\xd8\xff"}), &c.jpeg, true},
        {"image/png", "PNG", "png", beginsWithAny({"\x89PNG\r\n\x1a\n"}), &c.png, true, true},
        {"image/heic", "HEIC", "heic heif hif", isHeicContents, &c.heif, canWriteHeic(), true},
        {"image/avif", "AVIF", "avif", isAvifContents, &c.heif},
        {"image/gif", "GIF", "gif", beginsWithAny({"GIF87a", "GIF89a"}), &c.gif, true, true},
        {"image/bmp", "BMP", "bmp dib", isBmp, &c.bmp, true},
        {"image/x-tga", "TGA", "tga", nullptr, &c.tga},
        {"image/x-canon-cr2", "CR2", "cr2", isCr2, &c.raw},
        {"image/x-canon-cr3", "CR3", "cr3", isCr3, &c.raw},
        {"image/x-canon-crw", "CRW", "crw", isCrw, &c.raw},
        {"image/x-panasonic-rw2", "RW2", "rw2 raw", beginsWithAny({"IIU\0"_qba}), &c.raw},
        {"image/x-leica-rwl", "RWL", "rwl", beginsWithAny({"IIU\0"_qba}), &c.raw},
        {"image/x-olympus-orf", "ORF", "orf", beginsWithAny({"IIRO", "IIRS", "MMOR"}), &c.raw},
        {"image/x-fuji-raf", "RAF", "raf", beginsWithAny({"FUJIFILMCCD-RAW"}), &c.raw},
        {"image/x-minolta-mrw", "MRW", "mrw", beginsWithAny({"\0MRM"_qba, "\0MRI"_qba}), &c.raw},
        {"image/x-phaseone-iiq", "IIQ", "iiq", isIiq, &c.raw},
        {"image/x-apple-quicktake", "QuickTake", "qtk", beginsWithAny({"qktk", "qktn"}), &c.raw},
        {"image/tiff", "TIFF", "tif tiff", isTiff, &c.tiff, true, true},
        {"image/x-adobe-dng", "DNG", "dng", isClassicTiff, &c.raw},
        {"image/x-nikon-nef", "NEF", "nef", isClassicTiff, &c.raw},
        {"image/x-nikon-nrw", "NRW", "nrw", isClassicTiff, &c.raw},
        {"image/x-sony-arw", "ARW", "arw", isClassicTiff, &c.raw},
        {"image/x-sony-sr2", "SR2", "sr2", isClassicTiff, &c.raw},
        {"image/x-sony-srf", "SRF", "srf", isClassicTiff, &c.raw},
        {"image/x-pentax-pef", "PEF", "pef", isClassicTiff, &c.raw},
        {"image/x-samsung-srw", "SRW", "srw", isClassicTiff, &c.raw},
        {"image/x-kodak-kdc", "KDC", "kdc", isClassicTiff, &c.raw},
        {"image/x-kodak-dcr", "DCR", "dcr", isClassicTiff, &c.raw},
        {"image/x-kodak-k25", "K25", "k25", isClassicTiff, &c.raw},
        {"image/x-epson-erf", "ERF", "erf", isClassicTiff, &c.raw},
        {"image/x-hasselblad-3fr", "3FR", "3fr", isClassicTiff, &c.raw},
        {"image/x-hasselblad-fff", "FFF", "fff", isClassicTiff, &c.raw},
        {"image/x-mamiya-mef", "MEF", "mef", isClassicTiff, &c.raw},
        {"image/x-leaf-mos", "MOS", "mos", isClassicTiff, &c.raw},
        {"image/x-dcraw", "camera raw", "", isClassicTiff, &c.raw}, // with any other suffix
        {"image/jp2", "JPEG 2000", "jp2 jpf jpx", beginsWithAny({"\0\0\0\x0CjP  \r\n\x87\n"_qba}), &c.jp2},
        {"image/x-jp2-codestream", "JPEG 2000 codestream", "j2k j2c jpc",
         beginsWithAny({"\xff\x4f\xff\x51"}), &c.jp2},
        {"image/webp", "WebP", "webp", isWebp, &c.webp},
        {"image/vnd.microsoft.icon", "ICO", "ico", isIcon, &c.ico},
        {"image/x-icns", "ICNS", "icns", beginsWithAny({"icns"}), &c.icns},
        {"image/x-portable-pixmap", "PPM", "ppm", netpbm("36"), &c.ppm},
        {"image/x-portable-graymap", "PGM", "pgm", netpbm("25"), &c.pgm},
        {"image/x-portable-bitmap", "PBM", "pbm", netpbm("14"), &c.pbm},
    };
}
// clang-format on

QList<ImageFormat> makeFormats()
{
    QList<ImageFormat> formats;
    for (const Row &row : rows()) {
        if (row.codec->readInfo) // else its plugin is not installed
            formats.append({row.type, row.name,
                            QString::fromLatin1(row.suffixes).split(QLatin1Char(' '), Qt::SkipEmptyParts),
                            row.matches, row.codec, row.canWrite, row.writesAlpha});
    }
    return formats;
}

template<class Test>
const ImageFormat *firstFormat(Test test)
{
    const QList<ImageFormat> &formats = imageFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), test);
    return found == formats.end() ? nullptr : &*found;
}

bool isRaw(const ImageFormat *format)
{
    return format && format->codec == &codecs().raw;
}

bool isReadableType(const QMimeType &type)
{
    const QList<ImageFormat> &formats = imageFormats();
    return std::any_of(formats.begin(), formats.end(), [&type](const ImageFormat &format) {
        return type.inherits(QLatin1String(format.type));
    });
}

} // namespace

const QList<ImageFormat> &imageFormats()
{
    static const QList<ImageFormat> formats = makeFormats();
    return formats;
}

const ImageFormat *imageFormatOfContents(QByteArrayView head)
{
    return firstFormat([head](const ImageFormat &format) { return format.matches && format.matches(head); });
}

const ImageFormat *imageFormatOfSuffix(const QString &suffix)
{
    const QString lower = suffix.toLower();
    return firstFormat([&lower](const ImageFormat &format) { return format.suffixes.contains(lower); });
}

const ImageFormat *imageFormatOfType(const QString &type)
{
    return firstFormat([&type](const ImageFormat &format) { return type == QLatin1String(format.type); });
}

QList<const ImageFormat *> formatsToTry(QIODevice &device, QByteArrayView head, const QString &suffix)
{
    const ImageFormat *ofContents = imageFormatOfContents(head);
    const ImageFormat *ofName = imageFormatOfSuffix(suffix);
    if (!ofContents) {
        // A format with a signature would have matched.
        return ofName && !ofName->matches ? QList{ofName} : QList<const ImageFormat *>();
    }
    const bool isRawByName = isRaw(ofName) && ofName->matches(head);
    if (isRaw(ofContents)) // several makers may share a signature
        return {isRawByName && !isClassicTiff(head) ? ofName : ofContents};
    const TiffPictures pictures = isClassicTiff(head) ? readTiffPictures(device) : TiffPictures();
    if (!pictures.isTiff)
        return {ofContents};
    if (pictures.isDng)
        return {imageFormatOfType(QStringLiteral("image/x-adobe-dng"))};
    const ImageFormat *raw = isRawByName ? ofName : imageFormatOfType(QStringLiteral("image/x-dcraw"));
    if (pictures.hasRawPicture)
        return {raw};
    if (pictures.beginsReduced && (pictures.hasMake || isRawByName)) {
        // The sensor's data may lie beyond the end of a truncated file, or have a maker's own kind.
        if (pictures.lacksInnerPictures || (pictures.hasInnerPictures && isRawByName))
            return {raw};
        return pictures.hasInnerPictures || isRawByName ? QList{raw, ofContents} : QList{ofContents};
    }
    if (!isRawByName)
        return {ofContents};
    // Cameras write their maker; without it a TIFF file with a wrong suffix is more likely.
    return pictures.hasMake ? QList{raw, ofContents} : QList{ofContents, raw};
}

bool isImageFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.fileName().startsWith(QLatin1Char('.')))
        return false;
    const QString suffix = fileExtensionOf(path);
    if (!suffix.isEmpty()) {
        if (imageFormatOfSuffix(suffix))
            return true;
        const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(info.fileName());
        if (!types.isEmpty())
            return std::any_of(types.begin(), types.end(), isReadableType);
    }
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && imageFormatOfContents(file.read(kSignatureBytes));
}

} // namespace plexa
