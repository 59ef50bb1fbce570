// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jp2/jp2header.h"
#include "imageio/color/rowconversion.h"

#include <openjpeg.h>

#include <cstdio>
#include <limits>
#include <new>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

using Kind = Jp2Header::Kind;
using Picture = std::unique_ptr<opj_image_t, decltype(&opj_image_destroy)>;
using Decoder = std::unique_ptr<opj_codec_t, decltype(&opj_destroy_codec)>;
using Stream = std::unique_ptr<opj_stream_t, decltype(&opj_stream_destroy)>;

/// Memory of the library for each tile, and for each component in it.
constexpr qint64 kTileBytes = 6000;
constexpr qint64 kTileComponentBytes = 1300;

/// Memory for each pixel of a row in 16 bits, with alpha.
constexpr qint64 kRowPixelBytes = 10;

/// The most memory for decoding: the samples of four bytes, once in the tiles and once in the picture, those
/// of a palette, the structure of a tile, the file's own bytes, and a row.
qint64 decodingBytes(const Jp2Header &header, qint64 fileBytes)
{
    const auto components = int(header.components.size());
    qint64 samples = 0, mostSamples = 0;
    for (const Jp2Header::Component &component : header.components) {
        const qint64 own = qint64(component.size.width()) * component.size.height();
        samples += own;
        mostSamples = qMax(mostSamples, own);
    }
    return (samples * 2 + mostSamples * header.paletteColumns) * 4 + header.structure.bytes(components) +
           fileBytes + header.tiles * (kTileBytes + kTileComponentBytes * components) +
           header.size.width() * kRowPixelBytes;
}

/// Has the library read the same sizes?
bool areSame(const opj_image_t &image, const Jp2Header &header)
{
    bool same = image.numcomps == header.components.size() &&
                qint64(image.x1) - image.x0 == header.gridSize.width() &&
                qint64(image.y1) - image.y0 == header.gridSize.height();
    for (OPJ_UINT32 i = 0; same && i < image.numcomps; ++i) {
        const QSize spacing = header.components[i].spacing;
        same = image.comps[i].dx == OPJ_UINT32(spacing.width()) &&
               image.comps[i].dy == OPJ_UINT32(spacing.height());
    }
    return same;
}

Result<Jp2Header> checkedHeader(QIODevice &device, const ReadLimits &limits)
{
    Result<Jp2Header> header = readJp2Header(device);
    if (!header)
        return header;
    for (const QSize size : {header->gridSize, header->size}) {
        if (const auto checked = PictureFailures::checkSize(size, limits); !checked)
            return tl::unexpected(checked.error());
    }
    const qint64 bytes = decodingBytes(*header, device.size());
    if (bytes > limits.maxBytes)
        return fail(PictureFailures::tooMuchMemory(header->size, bytes, limits));
    return header;
}

class Jp2Decoding
{
public:
    Jp2Decoding(QIODevice &device, const Jp2Header &header)
        : m_device(device)
        , m_header(header)
    {
    }

    /// @param halvings  of the sides
    Result<Picture> decode(int halvings)
    {
        Picture picture(nullptr, opj_image_destroy);
        const Stream stream(opj_stream_create(1 << 16, OPJ_TRUE), opj_stream_destroy);
        const Decoder decoder(opj_create_decompress(m_header.isBare ? OPJ_CODEC_J2K : OPJ_CODEC_JP2),
                              opj_destroy_codec);
        if (!stream || !decoder)
            return fail(PictureFailures::outOfMemory());
        prepare(stream.get());
        const auto note = [](const char *complaint, void *self) {
            auto *decoding = static_cast<Jp2Decoding *>(self);
            decoding->m_hasComplaint = true;
            // The library has no codes. Sizes were checked, so its "limits" are those of the memory.
            const QByteArrayView text(complaint);
            decoding->m_lacksMemory =
                decoding->m_lacksMemory || text.contains("memory") || text.contains("system limits");
        };
        opj_set_info_handler(
            decoder.get(), [](const char *, void *) {}, nullptr);
        opj_set_warning_handler(decoder.get(), note, this);
        opj_set_error_handler(decoder.get(), note, this);
        opj_dparameters_t parameters;
        opj_set_default_decoder_parameters(&parameters);
        parameters.cp_reduce = OPJ_UINT32(halvings);
        opj_image_t *image = nullptr;
        if (!opj_setup_decoder(decoder.get(), &parameters) ||
            !opj_read_header(stream.get(), decoder.get(), &image))
            return fail(failureReason());
        picture.reset(image);
        if (!areSame(*image, m_header))
            return fail(PictureFailures::damaged());
        // Complaints up to here do not concern the pixels.
        m_hasComplaint = false;
        if (!opj_decode(decoder.get(), stream.get(), image) || m_hasComplaint || !isWhole(*image))
            return fail(failureReason());
        return picture;
    }

private:
    void prepare(opj_stream_t *stream)
    {
        opj_stream_set_user_data(stream, this, nullptr);
        opj_stream_set_user_data_length(stream, OPJ_UINT64(m_device.size()));
        opj_stream_set_read_function(stream, [](void *bytes, OPJ_SIZE_T count, void *self) {
            auto &device = static_cast<Jp2Decoding *>(self)->m_device;
            const qint64 got = device.read(static_cast<char *>(bytes), qint64(count));
            return got > 0 ? OPJ_SIZE_T(got) : OPJ_SIZE_T(-1);
        });
        opj_stream_set_skip_function(stream, [](OPJ_OFF_T count, void *self) {
            auto &device = static_cast<Jp2Decoding *>(self)->m_device;
            const qint64 to =
                qBound<qint64>(0, device.pos() + qMin<qint64>(count, device.size()), device.size());
            const qint64 moved = to - device.pos();
            return device.seek(to) ? OPJ_OFF_T(moved) : OPJ_OFF_T(-1);
        });
        opj_stream_set_seek_function(stream, [](OPJ_OFF_T position, void *self) {
            return OPJ_BOOL(static_cast<Jp2Decoding *>(self)->m_device.seek(position));
        });
        m_device.seek(0);
    }

    static bool isWhole(const opj_image_t &image)
    {
        for (OPJ_UINT32 i = 0; i < image.numcomps; ++i) {
            const opj_image_comp_t &component = image.comps[i];
            if (!component.data || component.w < 1 || component.h < 1 || component.prec < 1 ||
                component.prec > 31)
                return false;
        }
        return image.numcomps > 0;
    }

    QString failureReason() const
    {
        if (m_lacksMemory)
            return PictureFailures::outOfMemory();
        QByteArray end;
        if (m_device.seek(qMax<qint64>(0, m_device.size() - 2)))
            end = m_device.read(2);
        return end == "\xff\xd9" ? PictureFailures::damaged() : PictureFailures::truncated();
    }

    QIODevice &m_device;
    const Jp2Header &m_header;
    bool m_hasComplaint = false;
    bool m_lacksMemory = false;
};

/// Collects the components of a row and converts their colors.
class Jp2RowReader final : public SingleRowReader
{
public:
    Jp2RowReader(Picture picture, const Jp2Header &header)
        : SingleRowReader({{int(picture->comps[0].w), int(picture->comps[0].h)}, header.hasAlpha})
        , m_picture(std::move(picture))
        , m_colors(header.colors)
        , m_isYcc(header.kind == Kind::Ycc)
    {
        const int count = int(m_picture->numcomps);
        for (int i = m_colors; header.hasAlpha && i < count && m_alphaComponent < 0; ++i) {
            if (m_picture->comps[i].alpha != 0 || !header.hasChannelTypes)
                m_alphaComponent = i;
        }
        SampleLayout layout;
        layout.colors = header.kind == Kind::Gray   ? SampleLayout::Colors::Gray
                        : header.kind == Kind::Cmyk ? SampleLayout::Colors::Cmyk
                                                    : SampleLayout::Colors::Rgb;
        layout.samples = m_colors + (m_alphaComponent >= 0 ? 1 : 0);
        layout.full = 65535;
        layout.alpha = m_alphaComponent >= 0 ? m_colors : -1;
        layout.isPremultiplied = header.isPremultiplied && layout.alpha >= 0 && header.kind != Kind::Cmyk;
        m_step = layout.samples;
        m_words.resize(size_t(m_format.size.width()) * size_t(m_step));
        m_conversion.emplace(layout, PictureColors{header.iccProfile, {}}, m_format.size.width());
    }

    bool isConsistent() const { return int(m_picture->numcomps) >= m_colors; }

private:
    Result<void> decodeRow(int index, QRgb *out) override
    {
        for (int i = 0; i < m_colors; ++i)
            readSamples(index, i, m_words.data() + i);
        if (m_alphaComponent >= 0)
            readSamples(index, m_alphaComponent, m_words.data() + m_colors);
        if (m_isYcc)
            makeRgb();
        m_conversion->convert(m_words.data(), out);
        return {};
    }

    /// Scales one component of a row to 16 bits.
    /// @param out  of the first pixel
    void readSamples(int rowIndex, int index, quint16 *out) const
    {
        const opj_image_comp_t &component = m_picture->comps[index];
        const opj_image_comp_t &first = m_picture->comps[0];
        const OPJ_UINT32 row = qMin(component.h - 1, OPJ_UINT32(quint64(rowIndex) * component.h / first.h));
        const OPJ_INT32 *in = component.data + size_t(row) * component.w;
        const qint64 full = (qint64(1) << component.prec) - 1;
        const qint64 offset = component.sgnd != 0 ? qint64(1) << (component.prec - 1) : 0;
        for (OPJ_UINT32 x = 0; x < first.w; ++x, out += m_step) {
            const OPJ_UINT32 column =
                component.w == first.w
                    ? x
                    : qMin(component.w - 1, OPJ_UINT32(quint64(x) * component.w / first.w));
            *out = quint16((qBound<qint64>(0, in[column] + offset, full) * 65535 + full / 2) / full);
        }
    }

    /// ITU-R BT.601 with full range.
    void makeRgb()
    {
        const OPJ_UINT32 depth = m_picture->comps[1].prec;
        const double middle = double(qint64(1) << (depth - 1)) * 65535 / double((qint64(1) << depth) - 1);
        for (size_t at = 0; at < m_words.size(); at += size_t(m_step)) {
            const double y = m_words[at], blue = m_words[at + 1] - middle, red = m_words[at + 2] - middle;
            const auto word = [](double value) { return quint16(qBound(0.0, value + 0.5, 65535.0)); };
            m_words[at] = word(y + 1.402 * red);
            m_words[at + 1] = word(y - 0.344136 * blue - 0.714136 * red);
            m_words[at + 2] = word(y + 1.772 * blue);
        }
    }

    const Picture m_picture;
    const int m_colors; ///< color components
    const bool m_isYcc;
    int m_alphaComponent = -1;
    int m_step = 1; ///< words of a pixel
    std::vector<quint16> m_words;
    std::optional<RowConversion> m_conversion;
};

} // namespace

Result<PictureInfo> readJp2Info(QIODevice &device, const ReadLimits &limits)
{
    const Result<Jp2Header> header = checkedHeader(device, limits);
    if (!header)
        return tl::unexpected(header.error());
    PictureInfo info;
    info.rows = {header->size, header->hasAlpha};
    info.depth = header->paletteColumns > 0 ? 8 : header->components[0].depth;
    info.colorModel = header->kind == Kind::Gray   ? QStringLiteral("Gray")
                      : header->kind == Kind::Cmyk ? QStringLiteral("CMYK")
                                                   : QStringLiteral("RGB");
    info.iccProfile = header->iccProfile;
    info.dpiWidth = header->dpiWidth;
    info.dpiHeight = header->dpiHeight;
    info.decoderBytes = decodingBytes(*header, device.size());
    return info;
}

Result<std::unique_ptr<RowReader>> openJp2Reader(QIODevice &device, const ReadLimits &limits, int reduction)
{
    Result<Jp2Header> header = checkedHeader(device, limits);
    if (!header)
        return tl::unexpected(header.error());
    int halvings = 0;
    while (header->startsAtOrigin && (2 << halvings) <= reduction && halvings + 1 < header->resolutions)
        ++halvings;
    Jp2Decoding decoding(device, *header);
    Result<Picture> picture = decoding.decode(halvings);
    if (!picture && halvings > 0) { // a tile may have fewer resolutions than the file states
        halvings = 0;
        picture = decoding.decode(halvings);
    }
    if (!picture)
        return tl::unexpected(picture.error());
    const QSize expected = reducedSize(header->size, 1 << halvings);
    try {
        auto reader = std::make_unique<Jp2RowReader>(std::move(*picture), *header);
        if (!reader->isConsistent() || reader->format().size != expected)
            return fail(PictureFailures::damaged());
        return reader;
    } catch (const std::bad_alloc &) {
        return fail(PictureFailures::outOfMemory());
    }
}

} // namespace plexa
