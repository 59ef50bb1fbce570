// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/simple/qtcodec.h"

#include "imageio/base/endwatch.h"
#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"
#include "raster/pixelformat.h"

#include <QColorSpace>
#include <QImageReader>

#include <mutex>

namespace plexa
{

namespace
{

/// Sets up what the plugins share in this process. Qt's own bound for one picture (128 MB) is replaced by the
/// largest that any reader was given so far: the setting is one for all, and each picture's own bound is
/// checked before it is decoded.
void prepareQt(const ReadLimits &limits)
{
    static std::mutex mutex;
    static int allowedMegabytes = 0;
    const std::lock_guard lock(mutex);
    const auto megabytes = int(qBound(qint64(1), limits.maxBytes / (1 << 20), qint64(1 << 20)));
    if (megabytes > allowedMegabytes) {
        allowedMegabytes = megabytes;
        QImageReader::setAllocationLimit(megabytes);
    }
}

bool isGray(QImage::Format format)
{
    return format == QImage::Format_Grayscale8 || format == QImage::Format_Grayscale16 ||
           format == QImage::Format_Mono || format == QImage::Format_MonoLSB;
}

/// The most memory that a picture takes from decoding to rows: the picture as the plugin gives it, beside it
/// the one that it is converted to, as toRows() does it, and what the plugin keeps for itself meanwhile.
/// @param format  QImage::Format_Invalid where the plugin does not say: counts as the most usual kind
qint64 decodingBytes(QSize size, QImage::Format format, const QByteArray &icc, int pluginBytesPerPixel)
{
    const qint64 pixels = qint64(size.width()) * size.height();
    const int bits = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 decoded = pixels * bits / 8;
    const qint64 rows = pixels * 4;
    const qint64 plugin = pixels * pluginBytesPerPixel;
    if (bits == 64 && icc.isEmpty()) // changed in place
        return decoded + plugin;
    if (hasDeepComponents(format) &&
        !(isGray(format) && (icc.isEmpty() || profileColorModel(icc) == u"Gray"_qs))) {
        const qint64 wide = pixels * 8; // changed to this kind before its colours are
        return qMax(decoded + plugin, wide + (bits == 64 ? rows : qMax(decoded, rows)));
    }
    // Kinds of 32 bits are changed in place.
    return decoded + (bits == 32 ? plugin : qMax(rows, plugin));
}

/// Will the rows have alpha? What neither header nor plugin says beforehand counts as yes.
bool announcesAlpha(const QImageReader &reader, const PictureHeader &header)
{
    if (header.hasAlpha)
        return *header.hasAlpha;
    const QImage::Format format = reader.imageFormat();
    if (format == QImage::Format_Invalid)
        return true;
    if (format == QImage::Format_Indexed8)
        return false;
    return QImage::toPixelFormat(format).alphaUsage() == QPixelFormat::UsesAlpha;
}

/// Moves to the largest picture, the first of those.
void jumpToLargest(QImageReader &reader)
{
    constexpr int kMaxImages = 64; // icons have about ten
    const int count = qMin(reader.imageCount(), kMaxImages);
    qint64 most = 0;
    int largest = 0;
    for (int i = 0; i < count && reader.jumpToImage(i); ++i) {
        QSize size = reader.size();
        if (!size.isValid()) // known after decoding only; such icons have fixed sizes
            size = reader.read().size();
        const qint64 pixels = qint64(size.width()) * size.height();
        if (pixels > most) {
            most = pixels;
            largest = i;
        }
    }
    if (count > 1)
        reader.jumpToImage(largest);
}

/// Prepares a reader for one format, whatever the contents look like to other plugins, and checks the size.
Result<void> prepare(QImageReader &reader, QIODevice &device, const char *qtFormat, QtCodec::Choice choice,
                     QSize claimedSize, const ReadLimits &limits)
{
    prepareQt(limits);
    if (claimedSize.isValid()) {
        if (const auto checked = PictureFailures::checkSize(claimedSize, limits); !checked)
            return checked;
    }
    if (!device.seek(0))
        return fail(PictureFailures::readError(device));
    reader.setAutoDetectImageFormat(false);
    reader.setFormat(qtFormat);
    reader.setDevice(&device);
    reader.setAutoTransform(false);
    if (!reader.canRead())
        return fail(PictureFailures::notAPicture());
    if (choice == QtCodec::Choice::Largest)
        jumpToLargest(reader);
    const QSize size = reader.size();
    return size.isValid() ? PictureFailures::checkSize(size, limits) : Result<void>();
}

/// Checks the memory for what the plugin decodes, and the rows that are made of it.
Result<void> checkDecoding(const QImageReader &reader, const ReadLimits &limits)
{
    const QSize size = reader.size();
    if (!size.isValid())
        return {};
    return PictureFailures::checkMemory(size, hasDeepComponents(reader.imageFormat()) ? 12 : 8, limits);
}

/// Fills samples of few bits up with copies of themselves, so that all ones are full.
void fillSamples(QImage &image, const std::array<int, 4> &bits)
{
    if (image.format() != QImage::Format_RGB32 && image.format() != QImage::Format_ARGB32)
        return;
    const auto filled = [](int sample, int count) {
        for (int shift = count; shift > 0 && shift < 8; shift *= 2)
            sample |= sample >> shift;
        return sample;
    };
    for (int y = 0; y < image.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            row[x] = qRgba(filled(qRed(row[x]), bits[0]), filled(qGreen(row[x]), bits[1]),
                           filled(qBlue(row[x]), bits[2]), filled(qAlpha(row[x]), bits[3]));
    }
}

/// A picture for the plugin to decode into: what damaged data leave out is black then, and not what the
/// memory held before. Null where the plugin says too little; then it makes a picture itself.
QImage clearedPicture(const QImageReader &reader)
{
    const QImage::Format format = reader.imageFormat();
    if (!reader.size().isValid() || format == QImage::Format_Invalid)
        return {};
    QImage image(reader.size(), format);
    if (!image.isNull())
        std::fill_n(image.bits(), image.sizeInBytes(), uchar(0));
    return image;
}

/// Changes the picture to 8-bit sRGB rows of the announced kind.
QImage toRows(QImage image, const PictureHeader &header, bool hasAlpha)
{
    if (header.sampleBits != std::array<int, 4>{})
        fillSamples(image, header.sampleBits);
    const QByteArray &headerProfile = header.iccProfile;
    const QByteArray icc = headerProfile.isEmpty() ? image.colorSpace().iccProfile() : headerProfile;
    const QImage::Format target = RowFormat{image.size(), hasAlpha}.imageFormat();
    if (isGray(image.format())) {
        if (const auto transform = ColorTransform::toSrgb(icc, PixelLayout::Gray8)) {
            image.convertTo(QImage::Format_Grayscale8);
            QImage rows(image.size(), QImage::Format_RGB32);
            for (int y = 0; y < rows.height() && !image.isNull() && !rows.isNull(); ++y)
                transform->convert(image.constScanLine(y), reinterpret_cast<QRgb *>(rows.scanLine(y)),
                                   rows.width());
            rows.convertTo(target);
            return rows;
        }
    }
    const bool deep = hasDeepComponents(image.format());
    const auto transform = ColorTransform::toSrgb(icc, deep ? PixelLayout::Rgba64 : PixelLayout::Rgb32);
    if (transform) {
        const bool imageHasAlpha = image.hasAlphaChannel();
        const QImage::Format straight = imageHasAlpha ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        image.convertTo(deep ? QImage::Format_RGBA64 : straight);
        QImage rows = deep ? QImage(image.size(), straight) : QImage();
        for (int y = 0; y < image.height(); ++y) {
            if (deep && rows.isNull())
                return {};
            auto *row = reinterpret_cast<QRgb *>(deep ? rows.scanLine(y) : image.scanLine(y));
            transform->convert(deep ? image.constScanLine(y) : reinterpret_cast<uchar *>(row), row,
                               image.width());
        }
        if (deep)
            image = rows;
    }
    image.convertTo(target);
    return image;
}

QString reasonOf(const QImageReader &reader, const QIODevice &device)
{
    if (reader.error() == QImageReader::InvalidDataError && device.atEnd())
        return PictureFailures::endsEarly();
    return PictureFailures::damaged();
}

} // namespace

QtCodec::QtCodec(const char *qtFormat, PictureHeader (*readHeader)(QIODevice &), int pluginBytesPerPixel,
                 Choice choice)
    : m_qtFormat(qtFormat)
    , m_readHeader(readHeader)
    , m_pluginBytesPerPixel(pluginBytesPerPixel)
    , m_choice(choice)
{
}

bool QtCodec::isAvailable() const
{
    return QImageReader::supportedImageFormats().contains(m_qtFormat);
}

Result<PictureInfo> QtCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    const PictureHeader header = m_readHeader ? m_readHeader(device) : PictureHeader();
    if (header.endsEarly)
        return fail(PictureFailures::endsEarly());
    QImageReader reader;
    if (const auto prepared = prepare(reader, device, m_qtFormat, m_choice, header.size, limits); !prepared)
        return tl::unexpected(prepared.error());
    PictureInfo info;
    info.rows = {reader.size(), announcesAlpha(reader, header)};
    if (!info.rows.size.isValid()) { // some plugins know only after decoding
        QImage image;
        if (!reader.read(&image))
            return fail(reasonOf(reader, device));
        info.rows.size = image.size();
    }
    const QImage::Format format = reader.imageFormat();
    info.depth = header.depth > 0 ? header.depth : hasDeepComponents(format) ? 16 : 8;
    info.colorModel = !header.colorModel.isEmpty() ? header.colorModel
                      : isGray(format)             ? QStringLiteral("Gray")
                                                   : QStringLiteral("RGB");
    info.iccProfile = header.iccProfile;
    // Last, because counting moves within the file.
    if (device.seek(0))
        info.imageCount = qMax(1, reader.imageCount());
    if (info.imageCount > 1)
        info.unmarkedPictures.append(m_choice == Choice::Largest ? QStringLiteral("other sizes")
                                                                 : QStringLiteral("animation"));
    info.dpiWidth = header.dpiWidth;
    info.dpiHeight = header.dpiHeight;
    info.decoderBytes = decodingBytes(info.rows.size, format, header.iccProfile, m_pluginBytesPerPixel);
    return info;
}

Result<std::unique_ptr<RowReader>> QtCodec::openReader(QIODevice &device, const ReadLimits &limits, int) const
{
    if (!device.seek(0))
        return fail(PictureFailures::readError(device));
    const PictureHeader header = m_readHeader ? m_readHeader(device) : PictureHeader();
    if (header.endsEarly)
        return fail(PictureFailures::endsEarly());
    // Most plugins give a picture whose data end early as if it were whole.
    EndWatch watch(device, 0);
    QImageReader reader;
    if (const auto prepared = prepare(reader, watch, m_qtFormat, m_choice, header.size, limits); !prepared)
        return tl::unexpected(prepared.error());
    if (const auto checked = checkDecoding(reader, limits); !checked)
        return tl::unexpected(checked.error());
    const bool hasAlpha = announcesAlpha(reader, header);
    QImage image = clearedPicture(reader);
    watch.restart(); // a plugin may look for the kind of file in more bytes than a small one has
    const bool isRead = reader.read(&image);
    if (watch.hasEndedEarly())
        return fail(PictureFailures::endsEarly());
    if (!isRead)
        return fail(reasonOf(reader, device));
    if (const auto checked = PictureFailures::checkSize(image.size(), limits); !checked)
        return tl::unexpected(checked.error());
    image = toRows(std::move(image), header, hasAlpha);
    if (image.isNull())
        return fail(PictureFailures::outOfMemory());
    return rowsOfImage(std::move(image), hasAlpha);
}

} // namespace plexa
