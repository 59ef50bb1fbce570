// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/heif/heiffile.h"
#include "imageio/codecs/heif/heifmeasure.h"
#include "imageio/color/colorprofile.h"
#include "imageio/color/rowconversion.h"
#include "platform/bytebudget.h"

#include <optional>
#include <vector>

namespace plexa
{

namespace
{

struct OpenPicture {
    HeifItems items;
    HeifMeasure measure;
    HeifFile file;
    HeifGeometry geometry; ///< of what the library decodes
    bool isRotatedByLibrary = false;
    int depth = 8;
    bool hasAlpha = false;

    explicit OpenPicture(QIODevice &device)
        : file(device)
    {
    }

    bool isDeep() const { return depth > 8; }

    /// The most memory for decoding: the planes as coded and composed, with a copy for each step of rotation
    /// and conversion; one coded picture in the decoder with its block data. Found by measuring.
    qint64 decodingBytes() const
    {
        // The library's planes have at least 64 rows and columns.
        const QSize held = measure.canvas.expandedTo({64, 64});
        const qint64 canvas = qint64(held.width()) * held.height();
        const qint64 largest =
            held == measure.canvas ? measure.largestPixels : qMax(measure.largestPixels, canvas);
        const qint64 sampleBytes = isDeep() ? 2 : 1;
        const qint64 planes = (hasAlpha ? 4 : 3) * sampleBytes;
        return canvas * planes * (isRotatedByLibrary ? 3 : 2) +
               largest * ((hasAlpha ? 6 : 3) * sampleBytes + 3);
    }
};

/// Determines the rotation of the picture. The library mirrors few kinds of pictures and rotates into a
/// second buffer, so it rotates only pictures whose parts are rotated individually.
Result<void> place(OpenPicture &picture, const ReadLimits &limits)
{
    const heif_image_handle *handle = picture.file.primary();
    const QSize shown(heif_image_handle_get_width(handle), heif_image_handle_get_height(handle));
    if (const auto checked = PictureFailures::checkSize(shown, limits); !checked)
        return checked;
    picture.isRotatedByLibrary = picture.measure.hasRotatedParts;
    if (picture.isRotatedByLibrary) {
        picture.geometry.size = shown;
        return {};
    }
    const HeifItem primary = picture.items.items.value(picture.items.primary);
    const auto geometry = HeifGeometry::of(
        QSize(heif_image_handle_get_ispe_width(handle), heif_image_handle_get_ispe_height(handle)),
        primary.turns);
    if (!geometry || geometry->size != shown)
        return fail(PictureFailures::damaged());
    picture.geometry = *geometry;
    return {};
}

Result<std::unique_ptr<OpenPicture>> openPicture(QIODevice &device, const ReadLimits &limits)
{
    auto picture = std::make_unique<OpenPicture>(device);
    Result<HeifItems> items = HeifItems::read(device);
    if (!items)
        return tl::unexpected(items.error());
    picture->items = std::move(*items);
    const Result<HeifMeasure> measure =
        measureHeif(device, picture->items, limits, picture->file.formatName());
    if (!measure)
        return tl::unexpected(measure.error());
    picture->measure = *measure;
    if (const auto opened = picture->file.open(); !opened)
        return tl::unexpected(opened.error());
    const heif_image_handle *handle = picture->file.primary();
    if (const auto placed = place(*picture, limits); !placed)
        return tl::unexpected(placed.error());
    const int depth = heif_image_handle_get_luma_bits_per_pixel(handle);
    picture->depth = depth > 0 && depth <= 16 ? depth : 8;
    picture->hasAlpha = heif_image_handle_has_alpha_channel(handle) != 0;
    const qint64 bytes = picture->decodingBytes();
    if (bytes > limits.maxBytes)
        return fail(PictureFailures::tooMuchMemory(picture->geometry.size, bytes, limits));
    return picture;
}

/// Colors that only the bitstream specifies are known after decoding.
HeifColors nclxOf(const heif_image_handle *handle, const heif_image *image)
{
    heif_color_profile_nclx *colors = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &colors).code != heif_error_Ok)
        heif_image_get_nclx_color_profile(image, &colors);
    return HeifColors(colors);
}

class HeifRowReader final : public SingleRowReader
{
public:
    /// Decodes the picture. Throws std::exception where the library does.
    Result<void> decode(OpenPicture &picture)
    {
        if (!hasRoomToSpare(picture.decodingBytes()))
            return fail(PictureFailures::outOfMemory());
        const std::unique_ptr<heif_decoding_options, HeifFree<heif_decoding_options_free>> options(
            heif_decoding_options_alloc());
        if (!options)
            return fail(PictureFailures::outOfMemory());
        options->ignore_transformations = picture.isRotatedByLibrary ? 0 : 1;
        options->strict_decoding = 1;
        constexpr bool isLittle = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;
        heif_chroma chroma = picture.hasAlpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB;
        if (picture.isDeep() && picture.hasAlpha)
            chroma = isLittle ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBBAA_BE;
        else if (picture.isDeep())
            chroma = isLittle ? heif_chroma_interleaved_RRGGBB_LE : heif_chroma_interleaved_RRGGBB_BE;
        heif_image *decoded = nullptr;
        const heif_error error =
            heif_decode_image(picture.file.primary(), &decoded, heif_colorspace_RGB, chroma, options.get());
        m_image.reset(decoded);
        if (error.code != heif_error_Ok || !m_image || picture.file.hasReadError())
            return tl::unexpected(picture.file.failure(error));
        return adoptRows(picture);
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        const uint8_t *samples = decodedRow(index);
        if (m_isDeep)
            m_colors->convert(reinterpret_cast<const quint16 *>(samples), row);
        else
            m_colors->convert(samples, row);
        return {};
    }

    Result<void> adoptRows(const OpenPicture &picture)
    {
        constexpr heif_channel all = heif_channel_interleaved;
        m_plane = heif_image_get_plane_readonly(m_image.get(), all, &m_stride);
        const QSize size(heif_image_get_width(m_image.get(), all), heif_image_get_height(m_image.get(), all));
        const int bits = heif_image_get_bits_per_pixel_range(m_image.get(), all);
        m_pixelBytes = (picture.hasAlpha ? 4 : 3) * (picture.isDeep() ? 2 : 1);
        m_geometry = picture.geometry;
        const bool isAsExpected = m_plane && covers(size) &&
                                  (picture.isDeep() ? bits > 8 && bits <= 16 : bits == 8) &&
                                  m_stride >= qint64(size.width()) * m_pixelBytes;
        if (!isAsExpected)
            return fail(PictureFailures::damaged());
        m_format = {m_geometry.size, picture.hasAlpha};
        QByteArray profile = picture.file.iccProfile();
        if (profile.isEmpty()) {
            const HeifColors nclx = nclxOf(picture.file.primary(), m_image.get());
            if (nclx)
                profile = profileOfNclx({nclx->color_primaries, nclx->transfer_characteristics});
        }
        m_isDeep = picture.isDeep();
        SampleLayout layout{.samples = picture.hasAlpha ? 4 : 3, .full = (1 << bits) - 1};
        if (profileColorModel(profile) == u"Gray") // the decoder delivers equal colors
            layout.colors = SampleLayout::Colors::Gray;
        if (picture.hasAlpha) {
            layout.alpha = 3;
            layout.isPremultiplied = heif_image_handle_is_premultiplied_alpha(picture.file.primary()) != 0;
        }
        m_colors.emplace(layout, PictureColors{profile, {}}, m_geometry.size.width());
        return {};
    }

    /// Does the decoded picture contain all pixels of the shown one?
    bool covers(QSize decoded) const
    {
        const QPoint last = m_geometry.origin + (m_geometry.size.width() - 1) * m_geometry.right +
                            (m_geometry.size.height() - 1) * m_geometry.down;
        const QRect all(QPoint(), decoded);
        return all.contains(m_geometry.origin) && all.contains(last);
    }

    const uint8_t *decodedRow(int row)
    {
        const QPoint start = m_geometry.origin + row * m_geometry.down;
        const uint8_t *from = m_plane + qsizetype(start.y()) * m_stride + start.x() * m_pixelBytes;
        if (m_geometry.right == QPoint(1, 0))
            return from;
        const qsizetype step =
            qsizetype(m_geometry.right.y()) * m_stride + m_geometry.right.x() * m_pixelBytes;
        m_row.resize(size_t(m_geometry.size.width()) * size_t(m_pixelBytes));
        uint8_t *to = m_row.data();
        for (int x = 0; x < m_geometry.size.width(); ++x, from += step, to += m_pixelBytes)
            std::copy_n(from, m_pixelBytes, to);
        return m_row.data();
    }

    HeifGeometry m_geometry;
    int m_pixelBytes = 0;
    bool m_isDeep = false;
    std::vector<uint8_t> m_row; ///< of a rotated picture
    HeifImage m_image;
    const uint8_t *m_plane = nullptr;
    int m_stride = 0;
    std::optional<RowConversion> m_colors;
};

} // namespace

Result<PictureInfo> readHeifInfo(QIODevice &device, const ReadLimits &limits)
{
    return guardedHeif(PictureFailures::damaged(), [&]() -> Result<PictureInfo> {
        const Result<std::unique_ptr<OpenPicture>> opened = openPicture(device, limits);
        if (!opened)
            return tl::unexpected(opened.error());
        const OpenPicture &picture = **opened;
        PictureInfo info;
        info.rows = {picture.geometry.size, picture.hasAlpha};
        info.depth = picture.depth;
        info.colorModel = picture.measure.chroma == 0 ? QStringLiteral("Gray") : QStringLiteral("RGB");
        info.iccProfile = picture.file.iccProfile();
        static constexpr const char *kSamplings[] = {"11", "22,11,11", "21,11,11", "11,11,11"};
        info.chromaSampling = kSamplings[picture.measure.chroma];
        info.orientation = 1;
        info.decoderBytes = picture.decodingBytes();
        info.unmarkedPictures = picture.items.furtherPictures();
        return info;
    });
}

Result<std::unique_ptr<RowReader>> openHeifReader(QIODevice &device, const ReadLimits &limits, int)
{
    return guardedHeif(PictureFailures::damaged(), [&]() -> Result<std::unique_ptr<RowReader>> {
        const Result<std::unique_ptr<OpenPicture>> picture = openPicture(device, limits);
        if (!picture)
            return tl::unexpected(picture.error());
        auto reader = std::make_unique<HeifRowReader>();
        if (const auto decoded = reader->decode(**picture); !decoded)
            return tl::unexpected(decoded.error());
        return reader;
    });
}

} // namespace plexa
