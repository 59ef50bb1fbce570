// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imageformat.h"

#include "imageio/codecs/gif/gifcodec.h"
#include "imageio/codecs/heif/heifcodec.h"
#include "imageio/codecs/jp2/jp2codec.h"
#include "imageio/codecs/jpeg/jpegcodec.h"
#include "imageio/codecs/png/pngcodec.h"
#include "imageio/codecs/raw/rawcodec.h"
#include "imageio/codecs/raw/rawformats.h"
#include "imageio/codecs/simple/bmpcodec.h"
#include "imageio/codecs/simple/pictureheaders.h"
#include "imageio/codecs/simple/qtcodec.h"
#include "imageio/codecs/simple/tgacodec.h"
#include "imageio/codecs/tiff/tiffcodec.h"
#include "imageio/container/heifbrands.h"
#include "imageio/container/tiffpictures.h"

#include <QtEndian>

namespace plexa
{

namespace
{

bool isJpeg(QByteArrayView head)
{
    return head.startsWith("\xff\xd8\xff");
}

bool isPng(QByteArrayView head)
{
    return head.startsWith("\x89PNG\r\n\x1a\n");
}

bool isGif(QByteArrayView head)
{
    return head.startsWith("GIF87a") || head.startsWith("GIF89a");
}

bool isWebp(QByteArrayView head)
{
    return head.size() >= 16 && head.startsWith("RIFF") && head.sliced(8, 4) == QByteArrayView("WEBP");
}

bool isTiff(QByteArrayView head)
{
    return isClassicTiff(head) || head.startsWith(QByteArrayView("II+\0\x08\0\0\0", 8)) ||
           head.startsWith(QByteArrayView("MM\0+\0\x08\0\0", 8));
}

bool isJp2(QByteArrayView head)
{
    return head.startsWith(QByteArrayView("\0\0\0\x0CjP  \r\n\x87\n", 12));
}

bool isJp2Codestream(QByteArrayView head)
{
    return head.startsWith("\xff\x4f\xff\x51");
}

bool isBmp(QByteArrayView head)
{
    if (head.size() < 18 || !head.startsWith("BM"))
        return false;
    // Two letters are few: the size of the second header tells more.
    const auto headerSize = qFromLittleEndian<quint32>(head.data() + 14);
    return headerSize == 12 || (headerSize >= 40 && headerSize <= 124);
}

bool isIcon(QByteArrayView head)
{
    return head.size() >= 22 && head.startsWith(QByteArrayView("\0\0\1\0", 4)) && head[5] == 0 &&
           head[4] != 0;
}

bool isIcns(QByteArrayView head)
{
    return head.startsWith("icns");
}

bool isNetpbm(QByteArrayView head, char plain, char raw)
{
    return head.size() >= 8 && head[0] == 'P' && (head[1] == plain || head[1] == raw) &&
           (head[2] == '\n' || head[2] == ' ' || head[2] == '\t' || head[2] == '\r' || head[2] == '#');
}

bool isPixmap(QByteArrayView head)
{
    return isNetpbm(head, '3', '6');
}

bool isGraymap(QByteArrayView head)
{
    return isNetpbm(head, '2', '5');
}

bool isBitmap(QByteArrayView head)
{
    return isNetpbm(head, '1', '4');
}

/// Those that Qt's plugins read, as far as they are installed.
void appendQtFormats(QList<ImageFormat> &formats)
{
    static const QtCodec webp("webp", readWebpHeader, 4); // where it is lossless
    static const QtCodec icon("ico", nullptr, 0, QtCodec::Choice::Largest);
    static const QtCodec icns("icns", nullptr, 0, QtCodec::Choice::Largest);
    static const QtCodec pixmap("ppm", readNetpbmHeader);
    static const QtCodec graymap("pgm", readNetpbmHeader);
    static const QtCodec bitmap("pbm", readNetpbmHeader);
    const struct {
        const char *type;
        const char *name;
        QStringList suffixes;
        bool (*matches)(QByteArrayView head);
        const QtCodec *codec;
    } qtFormats[] = {
        {"image/webp", "WebP", {u"webp"_qs}, isWebp, &webp},
        {"image/vnd.microsoft.icon", "ICO", {u"ico"_qs}, isIcon, &icon},
        {"image/x-icns", "ICNS", {u"icns"_qs}, isIcns, &icns},
        {"image/x-portable-pixmap", "PPM", {u"ppm"_qs}, isPixmap, &pixmap},
        {"image/x-portable-graymap", "PGM", {u"pgm"_qs}, isGraymap, &graymap},
        {"image/x-portable-bitmap", "PBM", {u"pbm"_qs}, isBitmap, &bitmap},
    };
    for (const auto &row : qtFormats) {
        if (row.codec->isAvailable())
            formats.append({row.type, row.name, row.suffixes, row.matches, row.codec, false, false});
    }
}

QList<ImageFormat> makeFormats()
{
    static const JpegCodec jpeg;
    static const PngCodec png;
    static const TiffCodec tiff;
    static const RawCodec raw;
    static const GifCodec gif;
    static const BmpCodec bmp;
    static const HeifCodec heic(HeifCodec::Kind::Hevc);
    static const HeifCodec avif(HeifCodec::Kind::Av1);
    static const TgaCodec tga;
    static const Jp2Codec jp2;
    QList<ImageFormat> formats = {
        {"image/jpeg", "JPEG", {u"jpg"_qs, u"jpeg"_qs, u"jpe"_qs, u"jfif"_qs}, isJpeg, &jpeg, true, false},
        {"image/png", "PNG", {u"png"_qs}, isPng, &png, true, true},
        {"image/heic",
         "HEIC",
         {u"heic"_qs, u"heif"_qs, u"hif"_qs},
         isHeicContents,
         &heic,
         heic.canEncode(),
         true},
        {"image/avif", "AVIF", {u"avif"_qs}, isAvifContents, &avif, false, false},
        {"image/gif", "GIF", {u"gif"_qs}, isGif, &gif, true, true},
        {"image/bmp", "BMP", {u"bmp"_qs, u"dib"_qs}, isBmp, &bmp, true, false},
        {"image/x-tga", "TGA", {u"tga"_qs}, nullptr, &tga, false, false},
    };
    formats.append(rawFormatsWithSignature(raw));
    formats.append({"image/tiff", "TIFF", {u"tif"_qs, u"tiff"_qs}, isTiff, &tiff, true, true});
    formats.append(rawFormatsLikeTiff(raw));
    formats.append({"image/jp2", "JPEG 2000", {u"jp2"_qs, u"jpf"_qs, u"jpx"_qs}, isJp2, &jp2, false, false});
    formats.append({"image/x-jp2-codestream",
                    "JPEG 2000 codestream",
                    {u"j2k"_qs, u"j2c"_qs, u"jpc"_qs},
                    isJp2Codestream,
                    &jp2,
                    false,
                    false});
    appendQtFormats(formats);
    return formats;
}

template<class Test>
const ImageFormat *firstFormat(Test test)
{
    const QList<ImageFormat> &formats = imageFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), test);
    return found == formats.end() ? nullptr : &*found;
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

} // namespace plexa
