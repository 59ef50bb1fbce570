// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/heif/heiffile.h"
#include "imageio/codecs/heif/hiddencolors.h"
#include "imageio/color/colorprofile.h"
#include "platform/bytebudget.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace plexa
{

namespace
{

using Encoder = std::unique_ptr<heif_encoder, HeifFree<heif_encoder_release>>;

/// HEVC has no profile for longer sides.
constexpr int kMaxSide = 16'384;

/// The encoder's name for the sampling: the source's at high quality, else half.
const char *chromaOf(const WriteOptions &options, int quality)
{
    if (quality < 90)
        return "420";
    const QList<QByteArray> factors = options.chromaSampling.split(',');
    const bool isHalfAcross = factors.size() == 3 && factors[0].startsWith('2') && factors[1] == "11";
    if (isHalfAcross)
        return factors[0] == "22" ? "420" : "422";
    return "444";
}

int qualityOf(const WriteOptions &options)
{
    return qBound(0, int(std::lround(options.quality * 100)), 100);
}

/// Converts JPEG's quality to the encoder's, whose files are several times larger at the same number. The
/// points give photos the same distance (PSNR) from their source as libjpeg-turbo; linear between them.
int encoderQuality(int quality)
{
    static constexpr struct {
        int asked;
        int encoder;
    } kEqual[] = {{0, 10}, {40, 30}, {60, 37}, {80, 47}, {90, 62}, {95, 79}, {100, 100}};
    const auto *above = std::find_if(std::begin(kEqual) + 1, std::end(kEqual) - 1,
                                     [quality](const auto &point) { return quality <= point.asked; });
    const auto *below = above - 1;
    return below->encoder +
           (quality - below->asked) * (above->encoder - below->encoder) / (above->asked - below->asked);
}

heif_error setUp(heif_encoder *encoder, const WriteOptions &options)
{
    const int quality = qualityOf(options);
    heif_encoder_set_logging_level(encoder, 0);
    heif_error error = heif_encoder_set_lossy_quality(encoder, encoderQuality(quality));
    if (error.code == heif_error_Ok)
        error = heif_encoder_set_parameter_string(encoder, "chroma", chromaOf(options, quality));
    // A third of the time of "medium", and no more bytes for photos at the same distance from the source.
    if (error.code == heif_error_Ok)
        error = heif_encoder_set_parameter_string(encoder, "preset", "ultrafast");
    // Several photos are encoded at a time already. A pool would also need memory for each core.
    for (const auto &[name, value] : {std::pair{"x265:pools", "none"}, {"x265:frame-threads", "1"}})
        if (error.code == heif_error_Ok)
            error = heif_encoder_set_parameter_string(encoder, name, value);
    return error;
}

/// Encodes a picture and adds it to the context. Throws as libheif does.
heif_error encodePicture(heif_context *context, const heif_image *image, const WriteOptions &options,
                         HeifHandle &encoded)
{
    heif_encoder *found = nullptr;
    heif_error error = heif_context_get_encoder_for_format(context, heif_compression_HEVC, &found);
    const Encoder encoder(found);
    if (error.code == heif_error_Ok)
        error = setUp(encoder.get(), options);
    if (error.code != heif_error_Ok)
        return error;
    const std::unique_ptr<heif_encoding_options, HeifFree<heif_encoding_options_free>> defaults(
        heif_encoding_options_alloc());
    heif_image_handle *handle = nullptr;
    error = heif_context_encode_image(context, image, encoder.get(), defaults.get(), &handle);
    encoded.reset(handle);
    return error;
}

/// Lets x265 fill its table of functions before several threads encode. It does so while it opens the first
/// encoder, without a lock: a second thread then calls functions that are still null.
void prepareEncoder()
{
    [[maybe_unused]] static const bool isPrepared = [] {
        constexpr int kSide = 64;
        heif_image *image = nullptr;
        heif_image_create(kSide, kSide, heif_colorspace_monochrome, heif_chroma_monochrome, &image);
        const HeifImage tiny(image);
        const HeifContext context(heif_context_alloc());
        HeifHandle encoded;
        return tiny && heif_image_add_plane(image, heif_channel_Y, kSide, kSide, 8).code == heif_error_Ok &&
               encodePicture(context.get(), image, {}, encoded).code == heif_error_Ok;
    }();
}

/// Collects the picture; the library encodes it whole.
class HeifRowWriter final : public RowWriter
{
public:
    HeifRowWriter(QIODevice &device, const RowFormat &format, const WriteOptions &options)
        : RowWriter(format)
        , m_device(device)
        , m_options(options)
    {
        prepareHeifLibrary();
    }

    /// Throws std::exception where the library does.
    Result<void> start()
    {
        heif_image *image = nullptr;
        const QSize size = m_format.size;
        const heif_chroma chroma =
            m_format.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
        heif_error error =
            heif_image_create(size.width(), size.height(), heif_colorspace_RGB, chroma, &image);
        m_image.reset(image);
        if (error.code == heif_error_Ok)
            error = heif_image_add_plane(image, heif_channel_interleaved, size.width(), size.height(), 8);
        if (error.code == heif_error_Ok)
            m_plane = heif_image_get_plane(image, heif_channel_interleaved, &m_stride);
        if (!m_plane)
            return fail(PictureFailures::outOfMemory());
        const QByteArray &profile = srgbProfile();
        error = heif_image_set_raw_color_profile(image, "prof", profile.constData(), size_t(profile.size()));
        return checked(error);
    }

    Result<void> finish() override
    {
        return guardedHeif(PictureFailures::encoderFailed("HEIC"), [this] { return encode(); });
    }

private:
    Result<void> encodeRows(const QImage &strip, int count) override
    {
        for (int row = 0; row < count; ++row) {
            const auto *from = reinterpret_cast<const QRgb *>(strip.constScanLine(row));
            uint8_t *to = m_plane + qsizetype(rowsWritten() + row) * m_stride;
            for (int x = 0; x < m_format.size.width(); ++x) {
                const QRgb color = m_format.hasAlpha ? qUnpremultiply(from[x]) : from[x];
                *to++ = uint8_t(qRed(color));
                *to++ = uint8_t(qGreen(color));
                *to++ = uint8_t(qBlue(color));
                if (m_format.hasAlpha) {
                    *to++ = uint8_t(qAlpha(color));
                    m_hasHidden = m_hasHidden || qAlpha(color) == 0;
                }
            }
        }
        return {};
    }

    Result<void> checked(const heif_error &error) const
    {
        if (error.code == heif_error_Ok)
            return {};
        if (m_hasWriteError)
            return fail(PictureFailures::writeError(m_device));
        return fail(error.code == heif_error_Memory_allocation_error
                        ? PictureFailures::outOfMemory()
                        : PictureFailures::encoderFailed("HEIC"));
    }

    Result<void> encode()
    {
        const qint64 gathered = qint64(m_stride) * m_format.size.height();
        if (!hasRoomToSpare(heicWriterBytes(m_format, m_options) - gathered))
            return fail(PictureFailures::outOfMemory());
        if (m_hasHidden) {
            QImage pixels(m_plane, m_format.size.width(), m_format.size.height(), m_stride,
                          QImage::Format_RGBA8888);
            if (const auto filled = fillHiddenColors(pixels); !filled)
                return filled;
        }
        const HeifContext context(heif_context_alloc());
        prepareEncoder();
        HeifHandle handle;
        const heif_error error = encodePicture(context.get(), m_image.get(), m_options, handle);
        m_image.reset();
        if (error.code != heif_error_Ok)
            return checked(error);
        if (const auto added = addMetadata(context.get(), handle.get()); !added)
            return added;
        return write(context.get());
    }

    Result<void> addMetadata(heif_context *context, const heif_image_handle *handle) const
    {
        heif_error error = {};
        if (!m_options.exif.isEmpty())
            error = heif_context_add_exif_metadata(context, handle, m_options.exif.constData(),
                                                   int(m_options.exif.size()));
        if (error.code == heif_error_Ok && !m_options.xmp.isEmpty())
            error = heif_context_add_XMP_metadata(context, handle, m_options.xmp.constData(),
                                                  int(m_options.xmp.size()));
        return checked(error);
    }

    Result<void> write(heif_context *context)
    {
        heif_writer writer = {
            1,
            [](heif_context *, const void *data, size_t size, void *self) -> heif_error {
                auto *target = static_cast<HeifRowWriter *>(self);
                if (target->m_device.write(static_cast<const char *>(data), qint64(size)) == qint64(size))
                    return {heif_error_Ok, heif_suberror_Unspecified, ""};
                target->m_hasWriteError = true;
                return {heif_error_Encoding_error, heif_suberror_Cannot_write_output_data, "write"};
            },
        };
        return checked(heif_context_write(context, &writer, this));
    }

    QIODevice &m_device;
    const WriteOptions m_options;
    HeifImage m_image;
    uint8_t *m_plane = nullptr;
    int m_stride = 0;
    bool m_hasHidden = false; ///< are some pixels fully transparent?
    bool m_hasWriteError = false;
};

} // namespace

/// Found by measuring at 12 and 24 megapixels and quality 95, and rounded up: the picture, its planes, the
/// encoder's planes and block data, the encoded bytes. Alpha is encoded after the colors.
qint64 heicWriterBytes(const RowFormat &format, const WriteOptions &options)
{
    constexpr qint64 kEncoderBytes = 4'000'000;
    const bool isFull = qstrcmp(chromaOf(options, qualityOf(options)), "420") != 0;
    const qint64 pixels = qint64(format.size.width()) * format.size.height();
    return pixels * ((isFull ? 28 : 20) + (format.hasAlpha ? 3 : 0)) + kEncoderBytes;
}

bool canWriteHeic()
{
    prepareHeifLibrary();
    return heif_have_encoder_for_format(heif_compression_HEVC) != 0;
}

Result<std::unique_ptr<RowWriter>> openHeicWriter(QIODevice &device, const RowFormat &format,
                                                  const WriteOptions &options)
{
    if (qMax(format.size.width(), format.size.height()) > kMaxSide || format.size.isEmpty())
        return fail(PictureFailures::tooLargeToWrite("HEIC"));
    return guardedHeif(PictureFailures::encoderFailed("HEIC"), [&]() -> Result<std::unique_ptr<RowWriter>> {
        auto writer = std::make_unique<HeifRowWriter>(device, format, options);
        if (const auto started = writer->start(); !started)
            return tl::unexpected(started.error());
        return writer;
    });
}

} // namespace plexa
