// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/png/pngerrors.h"
#include "imageio/color/colorprofile.h"
#include "imageio/color/rowconversion.h"
#include "metadata/propertykeys.h"

#include <QtEndian>

#include <optional>
#include <vector>

namespace plexa
{

namespace
{

constexpr bool kIsLittleEndian = Q_BYTE_ORDER == Q_LITTLE_ENDIAN;

/// Chunks without effect on the pixels. Texts may inflate a thousandfold; other code reads the metadata.
constexpr png_byte kSkippedChunks[] = {
    "tEXt\0zTXt\0iTXt\0eXIf\0sPLT\0hIST\0tIME\0pCAL\0sCAL\0oFFs\0bKGD\0sTER"};
constexpr int kSkippedChunkCount = sizeof(kSkippedChunks) / 5;

/// Chunks that count only without a profile. libpng would ignore a profile that follows one of these, or that
/// accompanies a damaged one.
constexpr png_byte kLesserColors[] = {"sRGB\0gAMA\0cHRM"};
constexpr int kLesserColorCount = sizeof(kLesserColors) / 5;

/// Facts about the chunks before the picture's data that libpng does not report, or too late.
struct EarlyChunks {
    bool hasProfile = false;
    quint32 frames = 1; ///< of an animation (APNG)
};

/// Leaves the device where it was.
EarlyChunks readEarlyChunks(QIODevice &device)
{
    constexpr int kMaxChunks = 1000;
    const qint64 start = device.pos();
    EarlyChunks found;
    device.seek(start + 8);
    for (int i = 0; i < kMaxChunks; ++i) {
        const QByteArray head = device.read(12);
        if (head.size() < 12)
            break;
        const QByteArray type = head.mid(4, 4);
        if (type == "IDAT")
            break;
        found.hasProfile = found.hasProfile || type == "iCCP";
        if (type == "acTL")
            found.frames = qFromBigEndian<quint32>(head.constData() + 8);
        const qint64 next = device.pos() + qFromBigEndian<quint32>(head.constData());
        if (next > device.size() || !device.seek(next))
            break;
    }
    device.seek(start);
    return found;
}

/// Bound of an unpacked chunk other than the picture. Color profiles of printers have a few megabytes.
constexpr png_alloc_size_t kMaxChunkBytes = 32'000'000;

struct Source {
    QIODevice *device;
    bool reachedEnd;
    bool readFailed;

    static void read(png_structp png, png_bytep bytes, size_t count)
    {
        auto *source = static_cast<Source *>(png_get_io_ptr(png));
        const qint64 got = source->device->read(reinterpret_cast<char *>(bytes), qint64(count));
        if (got == qint64(count))
            return;
        source->readFailed = got < 0;
        source->reachedEnd = got >= 0;
        png_error(png, "");
    }
};

/// The rows that libpng decodes.
enum class PngRows {
    Pixels,    ///< QRgb, straight alpha
    GrayAlpha, ///< gray and alpha of the depth of the file, at least 8 bits
    Rgba64,    ///< red, green, blue, alpha in words
};

/// The facts of the header, copied out of libpng.
struct Header {
    png_uint_32 width;
    png_uint_32 height;
    int depth;
    int colorType;
    int interlace;
    bool hasTransparency; ///< a transparent color or palette entries
    png_bytep icc;        ///< libpng's
    png_uint_32 iccSize;
    bool hasSrgb;
    int srgbIntent;
    bool hasGamma;
    double gamma;
    bool hasChromaticities;
    double chromaticities[8];
    bool hasDensity;
    png_uint_32 densityX;
    png_uint_32 densityY;
    int densityUnit;
};

/// Runs libpng's decoder. The functions that call it own no object whose destructor a jump would skip; after
/// one has returned false the decoder must not be used.
class PngDecoder
{
public:
    explicit PngDecoder(QIODevice &device)
        : m_source{&device, false, false}
        , m_early(readEarlyChunks(device))
    {
    }

    ~PngDecoder() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngDecoder(const PngDecoder &) = delete;
    PngDecoder &operator=(const PngDecoder &) = delete;

    bool readHeader()
    {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_errors, PngErrors::onError,
                                       PngErrors::onWarning);
        if (!m_png)
            return false;
        if (setjmp(m_errors.jump))
            return false;
        m_info = png_create_info_struct(m_png);
        if (!m_info)
            return false;
        png_set_read_fn(m_png, &m_source, Source::read);
        png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_chunk_malloc_max(m_png, kMaxChunkBytes);
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
        png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, kSkippedChunks, kSkippedChunkCount);
        if (m_early.hasProfile)
            png_set_keep_unknown_chunks(m_png, PNG_HANDLE_CHUNK_NEVER, kLesserColors, kLesserColorCount);
        png_read_info(m_png, m_info);
        png_get_IHDR(m_png, m_info, &m_header.width, &m_header.height, &m_header.depth, &m_header.colorType,
                     &m_header.interlace, nullptr, nullptr);
        m_header.hasTransparency = png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        readColors();
        m_header.hasDensity =
            png_get_pHYs(m_png, m_info, &m_header.densityX, &m_header.densityY, &m_header.densityUnit) != 0;
        return true;
    }

    bool start(PngRows rows)
    {
        if (setjmp(m_errors.jump))
            return false;
        png_set_expand(m_png); // palettes, fewer than 8 bits, transparent colors
        const bool isPixels = rows == PngRows::Pixels;
        if (isPixels)
            png_set_scale_16(m_png);
        else if (kIsLittleEndian)
            png_set_swap(m_png);
        if (rows != PngRows::GrayAlpha)
            png_set_gray_to_rgb(m_png);
        const bool alphaFirst = isPixels && !kIsLittleEndian;
        if (isPixels && kIsLittleEndian)
            png_set_bgr(m_png);
        else if (alphaFirst)
            png_set_swap_alpha(m_png);
        png_set_add_alpha(m_png, 0xffff, alphaFirst ? PNG_FILLER_BEFORE : PNG_FILLER_AFTER);
        m_passes = png_set_interlace_handling(m_png);
        png_read_update_info(m_png, m_info);
        return true;
    }

    size_t rowBytes() const { return png_get_rowbytes(m_png, m_info); }
    bool isInterlaced() const { return m_header.interlace != PNG_INTERLACE_NONE; }

    /// With the last row libpng reads to the end of the picture's data and checks their checksum.
    bool readRow(png_bytep row)
    {
        if (setjmp(m_errors.jump))
            return false;
        png_read_row(m_png, row, nullptr);
        return true;
    }

    bool readInterlaced(png_bytepp rows)
    {
        if (setjmp(m_errors.jump))
            return false;
        for (int pass = 0; pass < m_passes; ++pass)
            png_read_rows(m_png, rows, nullptr, m_header.height);
        return true;
    }

    const Header &header() const { return m_header; }
    quint32 frames() const { return m_early.frames; }

    QString failureReason() const
    {
        return m_source.readFailed   ? PictureFailures::readError(*m_source.device)
               : m_source.reachedEnd ? PictureFailures::truncated()
                                     : PictureFailures::damaged();
    }

private:
    void readColors()
    {
        png_charp name = nullptr;
        int compression = 0;
        int intent = 0;
        if (!png_get_iCCP(m_png, m_info, &name, &compression, &m_header.icc, &m_header.iccSize))
            m_header.icc = nullptr;
        m_header.hasSrgb = png_get_sRGB(m_png, m_info, &intent) != 0;
        m_header.srgbIntent = intent;
        m_header.hasGamma = png_get_valid(m_png, m_info, PNG_INFO_gAMA) != 0 &&
                            png_get_gAMA(m_png, m_info, &m_header.gamma) != 0;
        double *c = m_header.chromaticities;
        m_header.hasChromaticities =
            png_get_valid(m_png, m_info, PNG_INFO_cHRM) != 0 &&
            png_get_cHRM(m_png, m_info, c, c + 1, c + 2, c + 3, c + 4, c + 5, c + 6, c + 7) != 0;
    }

    PngErrors m_errors;
    Source m_source;
    const EarlyChunks m_early;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    Header m_header = {};
    int m_passes = 1;
};

QByteArray iccOf(const Header &header)
{
    return header.icc ? QByteArray(reinterpret_cast<const char *>(header.icc), qsizetype(header.iccSize))
                      : QByteArray();
}

bool hasAlpha(const Header &header)
{
    return (header.colorType & PNG_COLOR_MASK_ALPHA) != 0 || header.hasTransparency;
}

/// The colors that the picture's chunks specify, by the precedence of the PNG standard.
PictureColors colorsOf(const Header &header)
{
    PictureColors colors;
    colors.iccProfile = iccOf(header);
    if (!colors.iccProfile.isEmpty() || header.hasSrgb || !header.hasGamma)
        return colors;
    ColorCalibration calibration;
    // Writers use an exponent of 1/2.2 for sRGB, whose curve differs a little, with or without its primaries.
    bool meansSrgb = qAbs(header.gamma / 0.45455 - 1) <= 0.05;
    for (size_t i = 0; header.hasChromaticities && i < calibration.chromaticities.size(); ++i) {
        meansSrgb = meansSrgb && qAbs(header.chromaticities[i] - calibration.chromaticities[i]) < 0.002;
        calibration.chromaticities[i] = header.chromaticities[i];
    }
    calibration.gamma = header.gamma;
    if (!meansSrgb)
        colors.calibration = calibration;
    return colors;
}

/// Chooses the rows to decode: pixels unless their colors need other samples.
PngRows chooseRows(const Header &header, std::optional<RowConversion> &conversion)
{
    const bool isDeep = header.depth == 16;
    const bool isGray = (header.colorType & PNG_COLOR_MASK_COLOR) == 0;
    const PictureColors colors = colorsOf(header);
    SampleLayout layout;
    PngRows rows = isDeep ? PngRows::Rgba64 : PngRows::Pixels;
    layout.full = isDeep ? 65535 : 255;
    layout.samples = 4;
    if (isGray && profileColorModel(colors.iccProfile) == u"Gray") {
        rows = PngRows::GrayAlpha;
        layout.colors = SampleLayout::Colors::Gray;
        layout.samples = 2;
    }
    layout.alpha = hasAlpha(header) ? layout.samples - 1 : -1;
    conversion.emplace(layout, colors, int(header.width));
    if (conversion->hasTransform())
        return rows;
    layout = {.samples = 4, .alpha = hasAlpha(header) ? 3 : -1};
    conversion.emplace(layout, PictureColors(), int(header.width));
    return PngRows::Pixels;
}

QVariantMap propertiesOf(const Header &header)
{
    QVariantMap png = {{kCGImagePropertyPNGInterlaceType, header.interlace}};
    if (header.hasGamma)
        png.insert(kCGImagePropertyPNGGamma, header.gamma);
    if (header.hasChromaticities) {
        QVariantList chromaticities;
        for (const double chromaticity : header.chromaticities)
            chromaticities.append(qRound(chromaticity * 100'000) / 100'000.0); // as the file has them
        png.insert(kCGImagePropertyPNGChromaticities, chromaticities);
    }
    if (header.hasSrgb)
        png.insert(kCGImagePropertyPNGsRGBIntent, header.srgbIntent);
    if (header.hasDensity && header.densityUnit == PNG_RESOLUTION_METER) {
        png.insert(kCGImagePropertyPNGXPixelsPerMeter, qlonglong(header.densityX));
        png.insert(kCGImagePropertyPNGYPixelsPerMeter, qlonglong(header.densityY));
    }
    return png;
}

class PngRowReader final : public SingleRowReader
{
public:
    PngRowReader(QIODevice &device, const ReadLimits &limits)
        : m_limits(limits)
        , m_decoder(device)
    {
    }

    Result<void> open()
    {
        if (!m_decoder.readHeader())
            return failure();
        const Header &header = m_decoder.header();
        m_format.size = QSize(int(header.width), int(header.height));
        m_format.hasAlpha = hasAlpha(header);
        if (const auto checked = PictureFailures::checkSize(m_format.size, m_limits); !checked)
            return checked;
        m_rows = chooseRows(header, m_colors);
        if (!m_decoder.start(m_rows))
            return failure();
        if (m_decoder.isInterlaced()) {
            const qint64 pixelBytes = qint64(m_decoder.rowBytes()) / header.width;
            return PictureFailures::checkMemory(m_format.size, pixelBytes, m_limits);
        }
        if (m_rows != PngRows::Pixels)
            m_buffer.resize(m_decoder.rowBytes());
        return {};
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        if (m_decoder.isInterlaced() && index == 0 && !readWhole())
            return failure();
        const uchar *decoded = nextRow(index, row);
        if (!decoded)
            return failure();
        convertRow(decoded, row);
        return {};
    }

    bool readWhole()
    {
        const size_t rowBytes = m_decoder.rowBytes();
        const auto height = size_t(m_format.size.height());
        try {
            m_buffer.resize(rowBytes * height);
        } catch (const std::bad_alloc &) {
            m_isOutOfMemory = true;
            return false;
        }
        std::vector<png_bytep> rows(height);
        for (size_t y = 0; y < height; ++y)
            rows[y] = m_buffer.data() + y * rowBytes;
        return m_decoder.readInterlaced(rows.data());
    }

    /// @param target  where QRgb rows may be decoded to
    /// @return the decoded row; null on failure
    const uchar *nextRow(int index, QRgb *target)
    {
        if (m_decoder.isInterlaced())
            return m_buffer.data() + size_t(index) * m_decoder.rowBytes();
        uchar *row = m_buffer.empty() ? reinterpret_cast<uchar *>(target) : m_buffer.data();
        return m_decoder.readRow(row) ? row : nullptr;
    }

    void convertRow(const uchar *decoded, QRgb *out)
    {
        if (m_rows == PngRows::Pixels) {
            if (decoded != reinterpret_cast<const uchar *>(out))
                std::copy_n(reinterpret_cast<const QRgb *>(decoded), m_format.size.width(), out);
            m_colors->convertPixels(out);
        } else if (m_decoder.header().depth == 16) {
            m_colors->convert(reinterpret_cast<const quint16 *>(decoded), out);
        } else {
            m_colors->convert(decoded, out);
        }
    }

    tl::unexpected<Error> failure() const
    {
        return fail(m_isOutOfMemory ? PictureFailures::outOfMemory() : m_decoder.failureReason());
    }

    const ReadLimits m_limits;
    PngDecoder m_decoder;
    PngRows m_rows = PngRows::Pixels;
    std::optional<RowConversion> m_colors;
    std::vector<uchar> m_buffer; ///< one row that is not QRgb yet, or a whole interlaced picture
    bool m_isOutOfMemory = false;
};

} // namespace

Result<PictureInfo> readPngInfo(QIODevice &device, const ReadLimits &limits)
{
    PngDecoder decoder(device);
    if (!decoder.readHeader())
        return fail(decoder.failureReason());
    const Header &header = decoder.header();
    PictureInfo info;
    info.rows.size = QSize(int(header.width), int(header.height));
    info.rows.hasAlpha = hasAlpha(header);
    if (const auto checked = PictureFailures::checkSize(info.rows.size, limits); !checked)
        return tl::unexpected(checked.error());
    info.depth = header.depth;
    info.colorModel =
        (header.colorType & PNG_COLOR_MASK_COLOR) != 0 ? QStringLiteral("RGB") : QStringLiteral("Gray");
    info.iccProfile = iccOf(header);
    info.formatProperties.insert(kCGImagePropertyPNGDictionary, propertiesOf(header));
    if (decoder.frames() > 1)
        info.unmarkedPictures.append(QStringLiteral("animation"));
    if (decoder.isInterlaced()) {
        // The last pass completes the first row.
        std::optional<RowConversion> conversion;
        const PngRows rows = chooseRows(header, conversion);
        const qint64 pixelBytes = rows == PngRows::Rgba64                           ? 8
                                  : rows == PngRows::GrayAlpha && header.depth <= 8 ? 2
                                                                                    : 4;
        info.decoderBytes = pixelBytes * header.width * header.height;
    }
    if (header.hasDensity && header.densityX > 0 && header.densityY > 0) {
        // Without a unit the two numbers are only the shape of a pixel.
        const bool hasUnit = header.densityUnit == PNG_RESOLUTION_METER;
        if (hasUnit || header.densityX != header.densityY) {
            info.dpiWidth = header.densityX * (hasUnit ? 0.0254 : 1);
            info.dpiHeight = header.densityY * (hasUnit ? 0.0254 : 1);
        }
    }
    return info;
}

Result<std::unique_ptr<RowReader>> openPngReader(QIODevice &device, const ReadLimits &limits, int)
{
    auto reader = std::make_unique<PngRowReader>(device, limits);
    if (const auto opened = reader->open(); !opened)
        return tl::unexpected(opened.error());
    return reader;
}

} // namespace plexa
