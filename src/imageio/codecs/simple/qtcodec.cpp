// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/simple/qtcodec.h"

#include "imageio/base/endwatch.h"
#include "imageio/base/picturefailures.h"
#include "imageio/color/rowconversion.h"
#include "raster/pixelformat.h"

#include <QColorSpace>
#include <QImageReader>

#include <mutex>
#include <optional>

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

/// The most memory that decoding takes: the picture as the plugin returns it, and what the plugin holds
/// besides.
/// @param format  QImage::Format_Invalid where the plugin does not report it: counts as 32 bits
qint64 decodingBytes(QSize size, QImage::Format format, int pluginBytesPerPixel)
{
    const qint64 pixels = qint64(size.width()) * size.height();
    const int bits = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    return pixels * bits / 8 + pixels * pluginBytesPerPixel;
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

/// Checks the memory for what the plugin decodes.
Result<void> checkDecoding(const QImageReader &reader, const ReadLimits &limits)
{
    const QSize size = reader.size();
    if (!size.isValid())
        return {};
    return PictureFailures::checkMemory(size, hasDeepComponents(reader.imageFormat()) ? 8 : 4, limits);
}

/// Repeats the bits of samples of few bits, so that all ones become 255.
void fillSamples(QImage &image, const std::array<int, 4> &bits)
{
    const auto filled = [](int sample, int count) {
        for (int shift = count; shift > 0 && shift < 8; shift *= 2)
            sample |= sample >> shift;
        return sample;
    };
    auto *row = reinterpret_cast<QRgb *>(image.bits());
    for (int x = 0; x < image.width(); ++x)
        row[x] = qRgba(filled(qRed(row[x]), bits[0]), filled(qGreen(row[x]), bits[1]),
                       filled(qBlue(row[x]), bits[2]), filled(qAlpha(row[x]), bits[3]));
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

/// Converts the rows of a decoded picture one by one.
class QtRowReader final : public SingleRowReader
{
public:
    QtRowReader(QImage image, const PictureHeader &header, bool hasAlpha)
        : SingleRowReader({image.size(), hasAlpha})
        , m_image(std::move(image))
        , m_sampleBits(header.sampleBits)
    {
        const QByteArray icc =
            header.iccProfile.isEmpty() ? m_image.colorSpace().iccProfile() : header.iccProfile;
        const bool showsThrough = hasAlpha && m_image.hasAlphaChannel();
        SampleLayout layout;
        layout.samples = 4;
        if (isGray(m_image.format()) && profileColorModel(icc) == u"Gray") {
            layout.colors = SampleLayout::Colors::Gray;
            layout.samples = 1;
            m_rows = QImage::Format_Grayscale8;
        } else if (hasDeepComponents(m_image.format())) {
            layout.full = 65535;
            m_rows = showsThrough ? QImage::Format_RGBA64 : QImage::Format_RGBX64;
        } else {
            m_rows = showsThrough ? QImage::Format_ARGB32 : QImage::Format_RGB32;
        }
        layout.alpha = showsThrough ? 3 : -1;
        m_colors.emplace(layout, PictureColors{icc, {}}, m_image.width());
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        QImage part = m_image.copy(0, index, m_image.width(), 1);
        part.convertTo(m_rows);
        if (part.isNull())
            return fail(PictureFailures::outOfMemory());
        if (m_rows == QImage::Format_Grayscale8) {
            m_colors->convert(part.constBits(), row);
        } else if (part.depth() == 64) {
            m_colors->convert(reinterpret_cast<const quint16 *>(part.constBits()), row);
        } else {
            if (m_sampleBits != std::array<int, 4>{})
                fillSamples(part, m_sampleBits);
            std::copy_n(reinterpret_cast<const QRgb *>(part.constBits()), m_image.width(), row);
            m_colors->convertPixels(row);
        }
        return {};
    }

    const QImage m_image;
    const std::array<int, 4> m_sampleBits;
    QImage::Format m_rows = QImage::Format_RGB32; ///< that the colors are converted from
    std::optional<RowConversion> m_colors;
};

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
    info.decoderBytes = decodingBytes(info.rows.size, format, m_pluginBytesPerPixel);
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
    return std::make_unique<QtRowReader>(std::move(image), header, hasAlpha);
}

} // namespace plexa
