// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/openmpthreads.h"
#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/raw/rawsamples.h"
#include "imageio/codecs/raw/rawstream.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <QDateTime>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace plexa
{

namespace
{

/// Work for reading the headers besides the file itself: bytes and calls.
constexpr qint64 kHeaderWork = 64'000'000;

/// LibRaw searches many places for directories, some of them beyond the end of a truncated file.
constexpr qint64 kMaxEndReadingsInHeaders = 10'000;

/// Decoders read some bytes more than they need.
constexpr qint64 kMaxEndReadingsInPixels = 16;

/// Developing needs time even if the file has no data: larger pictures need a minimum of data. Filter arrays
/// of six by six need ten times as long as others.
struct DataNeeds {
    qint64 mostPixelsWithout;
    qint64 mostPixelsOfAByte;
};
constexpr DataNeeds kUsualNeeds = {32'000'000, 20};
constexpr DataNeeds kSixBySixNeeds = {4'000'000, 4};

/// Memory of demosaicing and of LibRaw besides the pictures.
constexpr qint64 kFixedBytes = 16'000'000;

/// Calls LibRaw and returns its uncaught exceptions as error codes.
template<class Function>
int guarded(Function function)
{
    const OneOpenMpThread oneThread;
    try {
        return function();
    } catch (const std::bad_alloc &) {
        return LIBRAW_UNSUFFICIENT_MEMORY;
    } catch (const std::exception &) {
        return LIBRAW_DATA_ERROR;
    } catch (const LibRaw_exceptions exception) {
        return exception == LIBRAW_EXCEPTION_IO_EOF  ? LIBRAW_IO_ERROR
               : exception == LIBRAW_EXCEPTION_ALLOC ? LIBRAW_UNSUFFICIENT_MEMORY
                                                     : LIBRAW_DATA_ERROR;
    }
}

/// @param flip  LibRaw's: bits for both mirrorings and for exchanged sides, or degrees
int orientationOf(int flip)
{
    switch ((flip % 360 + 360) % 360) {
    case 90:
        return 6;
    case 180:
        return 3;
    case 270:
        return 8;
    default:
        constexpr int kOrientations[] = {1, 2, 4, 3, 5, 8, 6, 7};
        return kOrientations[flip & 7];
    }
}

/// Can LibRaw interpolate the colors of this filter array? With any other one it uses random numbers.
bool isUsableArray(const libraw_iparams_t &picture)
{
    if (picture.filters <= 1000) // no array, or one that LibRaw checks
        return true;
    if (picture.colors == 4) {
        unsigned colors = 0;
        for (int bit = 0; bit < 32; bit += 2)
            colors |= 1U << (picture.filters >> bit & 3);
        return colors == 0b1111;
    }
    // The four rotations of a Bayer pattern, eight rows of two places. Colors 1 and 3 are green.
    const unsigned oneGreen = picture.filters & ~((picture.filters & 0x55555555) << 1);
    static constexpr unsigned kPatterns[] = {0x16161616, 0x49494949, 0x61616161, 0x94949494};
    return picture.colors == 3 && std::ranges::find(kPatterns, oneGreen) != std::end(kPatterns);
}

template<size_t size>
QString textOf(const char (&text)[size])
{
    return trimmedAtEnd(decodedField(QByteArray(text, qsizetype(qstrnlen(text, uint(size))))));
}

void insertText(QVariantMap &map, QLatin1StringView key, const QString &text)
{
    if (!text.isEmpty())
        map.insert(key, text);
}

void insertNumber(QVariantMap &map, QLatin1StringView key, float number, float most)
{
    if (std::isfinite(number) && number > 0 && number < most)
        map.insert(key, double(number));
}

QVariantMap propertiesOf(const libraw_data_t &raw)
{
    QVariantMap tiff;
    insertText(tiff, kCGImagePropertyTIFFMake, textOf(raw.idata.make));
    insertText(tiff, kCGImagePropertyTIFFModel, textOf(raw.idata.model));
    insertText(tiff, kCGImagePropertyTIFFSoftware, textOf(raw.idata.software));
    insertText(tiff, kCGImagePropertyTIFFArtist, textOf(raw.other.artist));
    insertText(tiff, kCGImagePropertyTIFFImageDescription, textOf(raw.other.desc));
    QVariantMap exif;
    insertNumber(exif, kCGImagePropertyExifExposureTime, raw.other.shutter, 1e6F);
    insertNumber(exif, kCGImagePropertyExifFNumber, raw.other.aperture, 1e3F);
    insertNumber(exif, kCGImagePropertyExifFocalLength, raw.other.focal_len, 1e5F);
    if (raw.other.iso_speed >= 1 && raw.other.iso_speed < 1e7F)
        exif.insert(kCGImagePropertyExifISOSpeedRatings, QVariantList{int(std::lround(raw.other.iso_speed))});
    if (raw.other.timestamp > 0) {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(raw.other.timestamp);
        if (time.isValid() && time.date().year() <= 9999)
            exif.insert(kCGImagePropertyExifDateTimeOriginal,
                        time.toString(QStringLiteral("yyyy:MM:dd HH:mm:ss")));
    }
    QVariantMap aux;
    insertText(aux, kCGImagePropertyExifAuxLensModel, textOf(raw.lens.Lens));
    QVariantMap properties;
    for (const auto &[key, group] : {std::pair{kCGImagePropertyTIFFDictionary, tiff},
                                     {kCGImagePropertyExifDictionary, exif},
                                     {kCGImagePropertyExifAuxDictionary, aux}}) {
        if (!group.isEmpty())
            properties.insert(key, group);
    }
    return properties;
}

/// Runs LibRaw's parallel loops on the calling thread, where exceptions are caught; on other threads they
/// would end the process.
class Decoder final : public LibRaw
{
public:
    explicit Decoder(QIODevice &device)
        : stream(device)
    {
        // The default handlers print.
        set_memerror_handler(nullptr, nullptr);
        set_dataerror_handler(nullptr, nullptr);
    }

    bool isRotatedBy45() const { return libraw_internal_data.internal_output_params.fuji_width != 0; }
    int bitsOfFile() const { return int(libraw_internal_data.unpacker_data.tiff_bps); }

    RawStream stream;

protected:
    void fuji_decode_loop(const struct fuji_compressed_params *parameters, int count, INT64 *offsets,
                          unsigned *sizes) override
    {
        for (int strip = 0; strip < count; ++strip)
            fuji_decode_strip(parameters, strip, offsets[strip], sizes[strip]);
    }

    void crxLoadDecodeLoop(void *image, int planes) override
    {
        for (int plane = 0; plane < planes; ++plane) {
            if (crxDecodePlane(image, uint32_t(plane)) != 0)
                derror();
        }
    }

    void crxLoadFinalizeLoopE3(void *image, int rows) override
    {
        for (int row = 0; row < rows; ++row)
            crxConvertPlaneLineDf(image, row);
    }
};

/// A camera raw file on a device. LibRaw, its exceptions and its messages stay inside.
class RawFile final
{
public:
    RawFile(QIODevice &device, const ReadLimits &limits)
        : m_device(device)
        , m_limits(limits)
    {
    }

    /// Reads everything but the pixels. To be called once, before all else.
    Result<void> open();

    const PictureInfo &info() const { return m_info; }

    /// Can decode() halve the sides (rounded up)?
    bool canHalve() const { return m_canHalve; }

    /// Develops the photo; to be called once.
    /// @return 8-bit sRGB, opaque, in one of several formats
    Result<QImage> decode(bool isHalf);

private:
    QString failureReason(int error) const;
    Result<void> readFacts();

    QIODevice &m_device;
    const ReadLimits &m_limits;
    std::unique_ptr<Decoder> m_decoder;
    PictureInfo m_info;
    bool m_canHalve = false;
};

QString RawFile::failureReason(int error) const
{
    if (m_decoder->stream.hasFailed())
        return PictureFailures::readError(m_device);
    switch (error) {
    case LIBRAW_FILE_UNSUPPORTED:
        return PictureFailures::noRawData();
    case LIBRAW_IO_ERROR:
        return PictureFailures::truncated();
    case LIBRAW_UNSUFFICIENT_MEMORY:
        return PictureFailures::outOfMemory();
    case LIBRAW_TOO_BIG:
        return PictureFailures::tooMuchMemory(m_info.rows.size, m_info.decoderBytes, m_limits);
    default:
        return PictureFailures::damaged();
    }
}

Result<void> RawFile::open()
{
    if (!m_device.seek(0))
        return fail(PictureFailures::readError(m_device));
    try {
        m_decoder = std::make_unique<Decoder>(m_device);
    } catch (const std::bad_alloc &) {
        return fail(PictureFailures::outOfMemory());
    }
    libraw_output_params_t &parameters = m_decoder->imgdata.params;
    parameters.use_camera_wb = 1;
    parameters.output_color = 1; // sRGB
    parameters.output_bps = 8;
    parameters.user_flip = 0;
    parameters.max_raw_memory_mb = unsigned(qBound(qint64(1), m_limits.maxBytes >> 20, qint64(1) << 30));
    m_decoder->stream.grant(kHeaderWork + 4 * m_device.size(), kMaxEndReadingsInHeaders);
    clearStackBelow();
    const int error = guarded([this] { return m_decoder->open_datastream(&m_decoder->stream); });
    if (error != LIBRAW_SUCCESS)
        return fail(failureReason(error));
    return readFacts();
}

Result<void> RawFile::readFacts()
{
    libraw_data_t &raw = m_decoder->imgdata;
    libraw_image_sizes_t &sizes = raw.sizes;
    if (!isUsableArray(raw.idata))
        return fail(PictureFailures::unsupportedKind("camera raw"));
    m_info.orientation = orientationOf(sizes.flip);
    sizes.flip = 0;
    int width = 0, height = 0, colors = 0, bits = 0;
    m_decoder->get_mem_image_format(&width, &height, &colors, &bits);
    m_info.rows.size = {width, height};
    const QSize sensor(qMax<int>(sizes.raw_width, sizes.width + sizes.left_margin),
                       qMax<int>(sizes.raw_height, sizes.height + sizes.top_margin) + 8);
    for (const QSize size : {m_info.rows.size, QSize(sizes.width, sizes.height), sensor}) {
        if (const auto checked = PictureFailures::checkSize(size, m_limits); !checked)
            return checked;
    }
    const qint64 sensorPixels = qint64(sensor.width()) * sensor.height();
    const qint64 photoPixels = qint64(sizes.width) * sizes.height;
    const qint64 shownPixels = qint64(width) * height;
    libraw_decoder_info_t decoder = {};
    m_decoder->get_decoder_info(&decoder);
    const bool isStretched = m_decoder->isRotatedBy45() || shownPixels != photoPixels;
    qint64 sensorBytes = 8;
    if ((decoder.decoder_flags & LIBRAW_DECODER_OWNALLOC) != 0)
        sensorBytes = 24; // floats and their conversion
    else if (raw.idata.filters != 0 || raw.idata.colors == 1)
        sensorBytes = 2;
    m_info.decoderBytes = sensorPixels * sensorBytes + photoPixels * 8 + (isStretched ? shownPixels * 8 : 0) +
                          shownPixels * 3 + kFixedBytes;
    // LibRaw counts the bytes of its result in a number of 32 bits.
    if (m_info.decoderBytes > m_limits.maxBytes || shownPixels * 4 > std::numeric_limits<int>::max())
        return fail(PictureFailures::tooMuchMemory(m_info.rows.size, m_info.decoderBytes, m_limits));
    const qint64 mostPixels = qMax(sensorPixels, shownPixels);
    const DataNeeds needs = raw.idata.filters == LIBRAW_XTRANS ? kSixBySixNeeds : kUsualNeeds;
    if (mostPixels > needs.mostPixelsWithout && mostPixels / needs.mostPixelsOfAByte > m_device.size())
        return fail(PictureFailures::truncated());
    m_canHalve = raw.idata.filters > 1000 && !isStretched;
    // Makers store samples in more bits than they have. In DNG the value of white applies after a curve.
    m_info.depth = int(std::bit_width(unsigned(raw.color.maximum)));
    if (m_info.depth == 0 || raw.idata.dng_version != 0)
        m_info.depth = qBound(1, m_decoder->bitsOfFile(), 32);
    m_info.colorModel = QStringLiteral("RGB");
    m_info.properties = propertiesOf(raw);
    return {};
}

Result<QImage> RawFile::decode(bool isHalf)
{
    RawStream &stream = m_decoder->stream;
    m_decoder->imgdata.params.half_size = isHalf ? 1 : 0;
    stream.grant(kHeaderWork + 32 * m_device.size(), kMaxEndReadingsInPixels);
    bool isPrepared = false;
    stream.callBeforeSeek(
        [&] { isPrepared = RawSamples::prepare(m_decoder->imgdata, m_decoder->isRotatedBy45()); });
    const int unpacked = guarded([this] { return m_decoder->unpack(); });
    stream.callBeforeSeek({});
    if (unpacked != LIBRAW_SUCCESS)
        return fail(failureReason(unpacked));
    if (m_decoder->error_count() > 0)
        return fail(stream.endReadings() > 0 ? PictureFailures::truncated() : PictureFailures::damaged());
    if (stream.hasDamagedJpeg())
        return fail(PictureFailures::damaged());
    if ((isPrepared && !RawSamples::areComplete(m_decoder->imgdata)) ||
        RawSamples::areUniform(m_decoder->imgdata))
        return fail(PictureFailures::lacksSensorData());
    if (const int error = guarded([this] { return m_decoder->dcraw_process(); }); error != LIBRAW_SUCCESS)
        return fail(failureReason(error));
    libraw_processed_image_t *made = nullptr;
    const int error = guarded([this, &made] {
        int code = LIBRAW_SUCCESS;
        made = m_decoder->dcraw_make_mem_image(&code);
        return made ? code : LIBRAW_UNSUFFICIENT_MEMORY;
    });
    const std::shared_ptr<libraw_processed_image_t> owner(made, LibRaw::dcraw_clear_mem);
    if (error != LIBRAW_SUCCESS)
        return fail(failureReason(error));
    m_decoder.reset();
    if (made->colors != 1 && made->colors != 3 && made->colors != 4)
        return fail(PictureFailures::unsupportedKind("camera raw"));
    const QImage::Format format = made->colors == 1   ? QImage::Format_Grayscale8
                                  : made->colors == 3 ? QImage::Format_RGB888
                                                      : QImage::Format_RGBX8888; // the fourth is unused
    using Owner = std::shared_ptr<libraw_processed_image_t>;
    return QImage(
        made->data, made->width, made->height, qsizetype(made->width) * made->colors, format,
        [](void *kept) { delete static_cast<Owner *>(kept); }, new Owner(owner));
}

} // namespace

Result<PictureInfo> readRawInfo(QIODevice &device, const ReadLimits &limits)
{
    RawFile file(device, limits);
    return file.open().map([&file] { return file.info(); });
}

Result<std::unique_ptr<RowReader>> openRawReader(QIODevice &device, const ReadLimits &limits, int reduction)
{
    RawFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const bool isHalf = reduction > 1 && file.canHalve();
    Result<QImage> picture = file.decode(isHalf);
    if (!picture)
        return tl::unexpected(picture.error());
    // Some decoders find a different size.
    if (picture->size() != reducedSize(file.info().rows.size, isHalf ? 2 : 1))
        return fail(PictureFailures::damaged());
    return rowsOfImage(std::move(*picture), false);
}

} // namespace plexa
