// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/base/qtallocations.h"
#include "imageio/codecs/codecs.h"
#include "imageio/color/colorprofile.h"
#include "imageio/color/rowconversion.h"
#include "imageio/container/bmpsoftware.h"
#include "metadata/propertykeys.h"
#include "raster/pixelformat.h"

#include <QColorSpace>
#include <QImageReader>
#include <QtEndian>

#include <array>
#include <bit>
#include <limits>
#include <optional>

namespace plexa
{

namespace
{

/// Profiles of printers have a few megabytes.
constexpr qint64 kMaxProfileBytes = 32'000'000;

/// Reads from another device and records reads beyond its end, for decoders that accept a truncated picture
/// as complete.
class EndWatch final : public QIODevice
{
public:
    /// @param device  open for reading, random access; must outlive the watch
    explicit EndWatch(QIODevice &device)
        : m_device(device)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

    /// Forgets all earlier reads.
    void restart() { m_hasEndedEarly = false; }

    /// Has a read asked for more bytes than the device has?
    bool hasEndedEarly() const { return m_hasEndedEarly; }

    qint64 size() const override { return m_device.size(); }

protected:
    qint64 readData(char *data, qint64 count) override
    {
        const qint64 at = pos();
        const bool isInside = at < m_device.size() && m_device.seek(at);
        const qint64 got = isInside ? m_device.read(data, count) : 0;
        m_hasEndedEarly = m_hasEndedEarly || got < count;
        return got;
    }

    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QIODevice &m_device;
    bool m_hasEndedEarly = false;
};

/// Facts in a file's header that Qt's image readers do not report.
struct PictureHeader {
    QByteArray iccProfile;
    int depth = 0;      ///< bits per component, 0: unknown
    QString colorModel; ///< "RGB", "Gray", "CMYK", "Lab"; empty: unknown
    double dpiWidth = 0;
    double dpiHeight = 0;
    QByteArray software; ///< may be empty
    std::optional<bool> hasAlpha;
    std::array<int, 4> sampleBits = {}; ///< of red, green, blue and alpha where Qt pads samples to 8 bits
                                        ///< with zeros; 0: nothing to repair
    QSize size;                         ///< checked before Qt reads the file; may be invalid
    bool endsEarly = false;             ///< the file is truncated and Qt would not notice
};

QByteArray readAt(QIODevice &device, qint64 position, qint64 count)
{
    if (count < 0 || position < 0 || position > device.size() - count || !device.seek(position))
        return {};
    return device.read(count);
}

/// The bits of each sample in a bitmap of 16 bits a pixel.
/// @param start  the file's first bytes, at least 46
std::array<int, 4> sampleBitsOf(const QByteArray &start)
{
    const auto headerSize = qFromLittleEndian<quint32>(start.constData() + 14);
    const auto compression = qFromLittleEndian<quint32>(start.constData() + 30);
    if (qFromLittleEndian<quint16>(start.constData() + 28) != 16)
        return {};
    if (compression == 0)
        return {5, 5, 5, 0};
    std::array<int, 4> bits = {};
    const size_t masks = headerSize >= 56 ? 4 : 3; // a short header is followed by those of the colors
    for (size_t i = 0; i < masks && start.size() >= 58 + qsizetype(4 * i); ++i)
        bits[i] = std::popcount(qFromLittleEndian<quint32>(start.constData() + 54 + 4 * i));
    return bits;
}

/// The next number in the header of a Netpbm file, after blanks and comments.
/// @param at  position; moved past the number
/// @return -1 if there is none or it has too many digits
qint64 nextNumber(const QByteArray &start, qsizetype &at)
{
    for (bool isComment = false; at < start.size(); ++at) {
        if (start[at] == '#' || isComment)
            isComment = start[at] != '\n' && start[at] != '\r';
        else if (start[at] < '\t' || (start[at] > '\r' && start[at] != ' '))
            break;
    }
    constexpr qsizetype kMaxDigits = 9;
    const qsizetype first = at;
    while (at < start.size() && start[at] >= '0' && start[at] <= '9')
        ++at;
    return at > first && at - first <= kMaxDigits ? start.mid(first, at - first).toLongLong() : -1;
}

/// The fewest bytes of the samples of a Netpbm picture ("pbm", "pgm" and "ppm").
/// @param kind  '1' to '6'
qint64 leastNetpbmBytes(char kind, qint64 width, qint64 height, qint64 most)
{
    const qint64 samples = kind == '3' || kind == '6' ? 3 : 1;
    if (kind == '4')
        return (width + 7) / 8 * height;
    if (kind == '1') // digits need nothing between them
        return width * height;
    const bool isText = kind < '4';
    const qint64 sampleBytes = isText || most > 255 ? 2 : 1; // as text: a digit and a blank
    return width * height * samples * sampleBytes - (isText ? 1 : 0);
}

PictureHeader readWebpHeader(QIODevice &device)
{
    PictureHeader header;
    header.depth = 8;
    header.colorModel = QStringLiteral("RGB");
    const QByteArray start = readAt(device, 0, 38);
    if (start.size() < 38)
        return header;
    const QByteArray kind = start.mid(12, 4);
    if (kind == "VP8X") // flags
        header.hasAlpha = (uchar(start[20]) & 0x10) != 0;
    else if (kind == "VP8L") // after a signature byte and two sides of 14 bits
        header.hasAlpha = (uchar(start[24]) & 0x10) != 0;
    else
        header.hasAlpha = false;
    // The profile follows the extended header.
    if (kind != "VP8X" || start.mid(30, 4) != "ICCP")
        return header;
    const qint64 size = qFromLittleEndian<quint32>(start.constData() + 34);
    if (size <= kMaxProfileBytes)
        header.iccProfile = readAt(device, 38, size);
    return header;
}

PictureHeader readBmpHeader(QIODevice &device)
{
    PictureHeader header;
    header.depth = 8;
    header.colorModel = QStringLiteral("RGB");
    const QByteArray start = readAt(device, 0, qMin<qint64>(70, device.size()));
    if (start.size() < 46 || qFromLittleEndian<quint32>(start.constData() + 14) < 40)
        return header;
    const auto width = qFromLittleEndian<qint32>(start.constData() + 18);
    const auto height = qFromLittleEndian<qint32>(start.constData() + 22);
    if (height > std::numeric_limits<qint32>::min()) // rows from the top down have a negative count
        header.size = QSize(width, qAbs(height));
    header.sampleBits = sampleBitsOf(start);
    const auto horizontal = qFromLittleEndian<qint32>(start.constData() + 38);
    const auto vertical = qFromLittleEndian<qint32>(start.constData() + 42);
    if (horizontal > 0 && vertical > 0) {
        header.dpiWidth = horizontal * 0.0254;
        header.dpiHeight = vertical * 0.0254;
    }
    header.software = softwareOfBmp(device);
    return header;
}

PictureHeader readNetpbmHeader(QIODevice &device)
{
    PictureHeader header;
    constexpr qint64 kHeaderBytes = 4096; // comments can be long
    const QByteArray start = readAt(device, 0, qMin(device.size(), kHeaderBytes));
    if (start.size() < 2 || start[1] < '1' || start[1] > '6')
        return header;
    qsizetype at = 2;
    const qint64 width = nextNumber(start, at);
    const qint64 height = nextNumber(start, at);
    const bool hasMost = start[1] != '1' && start[1] != '4';
    const qint64 most = hasMost ? nextNumber(start, at) : 1;
    if (width < 1 || height < 1 || most < 1 || width > std::numeric_limits<int>::max() / height)
        return header;
    // A blank ends the last number.
    header.endsEarly = leastNetpbmBytes(start[1], width, height, most) > device.size() - at - 1;
    return header;
}

struct QtPlugin {
    const char *name;
    PictureHeader (*readHeader)(QIODevice &); ///< reads what it can: the decoder reports damage; may be null
    int bytesPerPixel = 0;                    ///< of the plugin while decoding, besides the picture
    bool isIcon = false;                      ///< the largest picture counts, not the first
};

constexpr QtPlugin kPlugins[] = {
    {"bmp", readBmpHeader},    {"webp", readWebpHeader, 4}, // if lossless
    {"ico", nullptr, 0, true}, {"icns", nullptr, 0, true},  {"ppm", readNetpbmHeader},
    {"pgm", readNetpbmHeader}, {"pbm", readNetpbmHeader},
};

PictureHeader headerOf(const QtPlugin &plugin, QIODevice &device)
{
    return plugin.readHeader ? plugin.readHeader(device) : PictureHeader();
}

bool isGray(QImage::Format format)
{
    return format == QImage::Format_Grayscale8 || format == QImage::Format_Grayscale16 ||
           format == QImage::Format_Mono || format == QImage::Format_MonoLSB;
}

/// Will the rows have alpha? Yes if neither header nor plugin reports it.
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

/// Moves to the first of the largest pictures.
void jumpToLargest(QImageReader &reader)
{
    constexpr int kMaxImages = 64; // icons have about ten
    const int count = qMin(reader.imageCount(), kMaxImages);
    qint64 most = 0;
    int largest = 0;
    for (int i = 0; i < count && reader.jumpToImage(i); ++i) {
        QSize size = reader.size();
        if (!size.isValid()) // known only after decoding
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

/// A BMP whose rows run from the top has a negative height.
QSize sizeOf(const QImageReader &reader)
{
    const QSize size = reader.size();
    return size.height() < 0 && size.height() > std::numeric_limits<int>::min()
               ? QSize(size.width(), -size.height())
               : size;
}

/// Prepares a reader for one format and checks the size.
Result<void> prepare(QImageReader &reader, QIODevice &device, const QtPlugin &plugin,
                     const PictureHeader &header, const ReadLimits &limits)
{
    allowQtPictures(limits.maxBytes);
    if (header.endsEarly)
        return fail(PictureFailures::truncated());
    if (header.size.isValid()) {
        if (const auto checked = PictureFailures::checkSize(header.size, limits); !checked)
            return checked;
    }
    if (!device.seek(0))
        return fail(PictureFailures::readError(device));
    reader.setAutoDetectImageFormat(false);
    reader.setFormat(plugin.name);
    reader.setDevice(&device);
    reader.setAutoTransform(false);
    if (!reader.canRead())
        return fail(PictureFailures::notAPicture());
    if (plugin.isIcon)
        jumpToLargest(reader);
    const QSize size = sizeOf(reader);
    return size.isValid() ? PictureFailures::checkSize(size, limits) : Result<void>();
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

/// A picture for the plugin to decode into: pixels without data are black, not random. Null if the plugin
/// does not report size and format; then it creates a picture itself.
QImage clearedPicture(const QImageReader &reader)
{
    const QImage::Format format = reader.imageFormat();
    if (!sizeOf(reader).isValid() || format == QImage::Format_Invalid)
        return {};
    QImage image(sizeOf(reader), format);
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
        return PictureFailures::truncated();
    return PictureFailures::damaged();
}

Result<PictureInfo> readInfo(const QtPlugin &plugin, QIODevice &device, const ReadLimits &limits)
{
    const PictureHeader header = headerOf(plugin, device);
    QImageReader reader;
    if (const auto prepared = prepare(reader, device, plugin, header, limits); !prepared)
        return tl::unexpected(prepared.error());
    PictureInfo info;
    info.rows = {sizeOf(reader), announcesAlpha(reader, header)};
    if (!info.rows.size.isValid()) { // some plugins know it only after decoding
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
    info.dpiWidth = header.dpiWidth;
    info.dpiHeight = header.dpiHeight;
    if (!header.software.isEmpty())
        info.properties.insert(
            kCGImagePropertyTIFFDictionary,
            QVariantMap{{kCGImagePropertyTIFFSoftware, QString::fromLatin1(header.software)}});
    const int bits = format == QImage::Format_Invalid ? 32 : QImage::toPixelFormat(format).bitsPerPixel();
    const qint64 pixels = qint64(info.rows.size.width()) * info.rows.size.height();
    info.decoderBytes = pixels * bits / 8 + pixels * plugin.bytesPerPixel;
    // Last, because counting moves within the file.
    if (device.seek(0) && reader.imageCount() > 1)
        info.unmarkedPictures.append(plugin.isIcon ? QStringLiteral("other sizes")
                                                   : QStringLiteral("animation"));
    return info;
}

Result<std::unique_ptr<RowReader>> openReader(const QtPlugin &plugin, QIODevice &device,
                                              const ReadLimits &limits)
{
    const PictureHeader header = headerOf(plugin, device);
    // Most plugins return a truncated picture as if it were complete.
    EndWatch watch(device);
    QImageReader reader;
    if (const auto prepared = prepare(reader, watch, plugin, header, limits); !prepared)
        return tl::unexpected(prepared.error());
    if (sizeOf(reader).isValid()) {
        const int pixelBytes = hasDeepComponents(reader.imageFormat()) ? 8 : 4;
        const auto checked = PictureFailures::checkMemory(sizeOf(reader), pixelBytes, limits);
        if (!checked)
            return tl::unexpected(checked.error());
    }
    const bool hasAlpha = announcesAlpha(reader, header);
    QImage image = clearedPicture(reader);
    watch.restart(); // to detect the format, a plugin may ask for more bytes than a small file has
    const bool isRead = reader.read(&image);
    if (watch.hasEndedEarly())
        return fail(PictureFailures::truncated());
    if (!isRead)
        return fail(reasonOf(reader, device));
    if (const auto checked = PictureFailures::checkSize(image.size(), limits); !checked)
        return tl::unexpected(checked.error());
    return std::make_unique<QtRowReader>(std::move(image), header, hasAlpha);
}

} // namespace

Codec qtCodec(const char *name)
{
    const auto plugin = std::find_if(std::begin(kPlugins), std::end(kPlugins),
                                     [name](const QtPlugin &row) { return qstrcmp(row.name, name) == 0; });
    if (!QImageReader::supportedImageFormats().contains(name))
        return {};
    Codec codec;
    codec.readInfo = [plugin](QIODevice &device, const ReadLimits &limits) {
        return readInfo(*plugin, device, limits);
    };
    codec.openReader = [plugin](QIODevice &device, const ReadLimits &limits, int) {
        return openReader(*plugin, device, limits);
    };
    return codec;
}

} // namespace plexa
