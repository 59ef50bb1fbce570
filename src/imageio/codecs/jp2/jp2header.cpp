// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jp2/jp2header.h"

#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"

#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace plexa
{

/// The division of a JPEG 2000 tile: ISO/IEC 15444-1, A.6.1 and A.6.2. Values of a file, unchecked.
struct Jp2CodingStyle {
    static constexpr int kMaxResolutions = 33;

    int layers = 1;
    int resolutions = 1;
    int blockWidthExponent = 6; ///< sides of code blocks are powers of two
    int blockHeightExponent = 6;
    struct Precinct {
        int widthExponent = 15;
        int heightExponent = 15;
    };
    std::array<Precinct, kMaxResolutions> precincts; ///< of each resolution, the smallest first
};

namespace
{

constexpr qint64 kMaxProfileBytes = 32'000'000;
constexpr int kMaxBoxes = 1000;
constexpr int kMaxComponents = 5;
constexpr int kMaxMarkers = 500'000;

struct Box {
    QByteArray type;
    qint64 start = 0; ///< of its contents
    qint64 end = 0;
};

/// Measured: 590 bytes for a precinct of one code block, with their trees.
constexpr double kPrecinctBytes = 220;
constexpr double kBlockBytes = 480;

/// OpenJPEG marks each packet that it has met.
constexpr double kPacketBytes = 2;

/// The most pieces of a length that does not begin at the start of a piece.
double pieces(double length, int exponent)
{
    return std::floor(std::ldexp(length, -exponent)) + 2;
}

class HeaderReader
{
public:
    explicit HeaderReader(QIODevice &device)
        : m_device(device)
    {
    }

    Result<Jp2Header> read()
    {
        m_header.isBare = number(0, 4) == 0xFF4FFF51;
        if (!m_header.isBare)
            readBoxes(0, m_device.size());
        if ((!m_header.isBare && m_codestream < 0) || !readSizes())
            return fail(PictureFailures::damaged());
        // OpenJPEG has no such bounds: the rest would not be counted.
        if (m_boxes >= kMaxBoxes || !readCodingStyles())
            return fail(PictureFailures::unsupportedKind("JPEG 2000"));
        if (int(m_header.components.size()) > kMaxComponents || !chooseColors())
            return fail(PictureFailures::unsupportedKind("JPEG 2000"));
        return m_header;
    }

private:
    /// A big-endian number; 0 where the file ends.
    quint64 number(qint64 position, int bytes)
    {
        const QByteArray read = bytesAt(position, bytes);
        quint64 value = 0;
        for (const char byte : read)
            value = value << 8 | uchar(byte);
        return read.size() == bytes ? value : 0;
    }

    QByteArray bytesAt(qint64 position, qint64 count)
    {
        if (position < 0 || count < 0 || position > m_device.size() - count || !m_device.seek(position))
            return {};
        return m_device.read(count);
    }

    std::optional<Box> boxAt(qint64 position, qint64 end)
    {
        if (position > end - 8)
            return {};
        qint64 length = qint64(number(position, 4));
        qint64 head = 8;
        if (length == 1) {
            length = qint64(qMin(number(position + 8, 8), quint64(end)));
            head = 16;
        } else if (length == 0) {
            length = end - position;
        }
        if (length < head)
            return {};
        return Box{bytesAt(position + 4, 4), position + head, qMin(end, position + length)};
    }

    void readBoxes(qint64 position, qint64 end)
    {
        for (std::optional<Box> box = boxAt(position, end); box && ++m_boxes < kMaxBoxes;
             box = boxAt(box->end, end))
            readBox(*box);
    }

    void readBox(const Box &box)
    {
        if (box.type == "jp2h" || box.type == "res ") {
            if (++m_depth < 4)
                readBoxes(box.start, box.end);
            --m_depth;
        } else if (box.type == "jp2c" && m_codestream < 0 && m_depth == 0) {
            m_codestream = box.start;
        } else if (box.type == "colr" && !m_hasColors) {
            readColors(box);
        } else if (box.type == "pclr") {
            m_header.paletteColumns = qMax(m_header.paletteColumns, int(number(box.start + 2, 1)));
        } else if (box.type == "cdef") {
            readChannels(box);
        } else if (box.type == "resd" || (box.type == "resc" && m_header.dpiWidth <= 0)) {
            m_header.dpiHeight = resolutionAt(box.start, box.start + 8);
            m_header.dpiWidth = resolutionAt(box.start + 4, box.start + 9);
        }
    }

    void readColors(const Box &box)
    {
        using Kind = Jp2Header::Kind;
        const quint64 method = number(box.start, 1);
        if (method == 1) {
            const quint64 space = number(box.start + 3, 4);
            m_header.kind = space == 16   ? Kind::Rgb
                            : space == 17 ? Kind::Gray
                            : space == 18 ? Kind::Ycc
                            : space == 12 ? Kind::Cmyk
                                          : Kind::Unknown;
            m_hasOtherColors = m_header.kind == Kind::Unknown;
            m_hasColors = !m_hasOtherColors;
        } else if ((method == 2 || method == 3) && box.end - box.start - 3 <= kMaxProfileBytes) {
            m_header.iccProfile = bytesAt(box.start + 3, box.end - box.start - 3);
            const QString model = profileColorModel(m_header.iccProfile);
            m_header.kind = model == u"Gray"   ? Kind::Gray
                            : model == u"RGB"  ? Kind::Rgb
                            : model == u"CMYK" ? Kind::Cmyk
                                               : Kind::Unknown;
            m_hasColors = m_header.kind != Kind::Unknown;
        }
    }

    void readChannels(const Box &box)
    {
        m_header.hasChannelTypes = true;
        const auto count = int(qMin<quint64>(number(box.start, 2), 16));
        for (int i = 0; i < count; ++i) {
            const qint64 at = box.start + 2 + i * 6;
            const quint64 channel = number(at, 2);
            const quint64 type = number(at + 2, 2);
            if ((type == 1 || type == 2) && channel <= kMaxComponents && !m_header.hasAlpha) {
                m_header.hasAlpha = true;
                m_header.isPremultiplied = type == 2;
            }
        }
    }

    /// Pixels a meter, as a fraction with a power of ten.
    double resolutionAt(qint64 fraction, qint64 exponent)
    {
        const auto below = double(number(fraction + 2, 2));
        const auto power = int(qint8(number(exponent, 1)));
        const double value = below > 0 ? double(number(fraction, 2)) / below * std::pow(10, power) : 0;
        return value > 0 && value < 1e7 ? value * 0.0254 : 0;
    }

    bool readSizes()
    {
        const qint64 at = m_header.isBare ? 0 : m_codestream;
        if (number(at, 4) != 0xFF4FFF51)
            return false;
        const auto field = [this, at](int index) { return qint64(number(at + 8 + index * 4, 4)); };
        const qint64 x1 = field(0), y1 = field(1), x0 = field(2), y0 = field(3);
        const qint64 tileWidth = field(4), tileHeight = field(5), tileX = field(6), tileY = field(7);
        const auto count = int(number(at + 40, 2));
        if (count < 1 || x1 <= x0 || y1 <= y0 || tileWidth < 1 || tileHeight < 1 || tileX > x0 || tileY > y0)
            return false;
        m_header.startsAtOrigin = x0 == 0 && y0 == 0;
        m_header.tiles =
            ((x1 - tileX + tileWidth - 1) / tileWidth) * ((y1 - tileY + tileHeight - 1) / tileHeight);
        if (m_header.tiles < 1 || m_header.tiles > 65535)
            return false;
        for (int i = 0; i < qMin(count, kMaxComponents + 1); ++i) {
            const qint64 component = at + 42 + i * 3;
            const QSize spacing(int(number(component + 1, 1)), int(number(component + 2, 1)));
            if (spacing.isEmpty())
                return false;
            m_header.components.push_back(
                {int(number(component, 1) & 0x7f) + 1,
                 spacing,
                 {samples(x0, x1, spacing.width()), samples(y0, y1, spacing.height())}});
            const auto most = [](qint64 tileSide, qint64 side, int step) {
                return int(qMin<qint64>(qMin(tileSide, side) / step + 1, 0x7fffffff));
            };
            m_header.tileSize = m_header.tileSize.expandedTo(
                {most(tileWidth, x1 - x0, spacing.width()), most(tileHeight, y1 - y0, spacing.height())});
        }
        m_header.size = m_header.components[0].size;
        m_header.gridSize = {samples(x0, x1, 1), samples(y0, y1, 1)};
        m_firstMarker = at + 4 + qint64(number(at + 4, 2));
        return true;
    }

    /// The number of samples between two positions of the grid.
    static int samples(qint64 from, qint64 to, int step)
    {
        return int(qMin<qint64>((to + step - 1) / step - (from + step - 1) / step, 0x7fffffff));
    }

    /// Follows the markers before the first tile and those that begin the parts of tiles.
    /// @return false when there are too many
    bool readCodingStyles()
    {
        m_header.resolutions = Jp2CodingStyle::kMaxResolutions + 1;
        qint64 position = passMarkers(m_firstMarker);
        if (m_header.resolutions > Jp2CodingStyle::kMaxResolutions)
            m_header.resolutions = 1;
        while (number(position, 2) == 0xFF90 && m_markers < kMaxMarkers) {
            const auto length = qint64(number(position + 6, 4));
            passMarkers(position + 12);
            if (length < 12) // extends to the end, or is damaged
                break;
            position += length;
        }
        return m_markers < kMaxMarkers;
    }

    /// @return the position of the marker that begins a part of a tile or its data
    qint64 passMarkers(qint64 position)
    {
        while (++m_markers < kMaxMarkers) {
            const quint64 marker = number(position, 2);
            const auto length = qint64(number(position + 2, 2));
            if (marker < 0xFF00 || marker == 0xFF90 || marker == 0xFF93 || length < 2)
                break;
            if (marker == 0xFF52)
                readCodingStyle(position + 4, position + 9, int(number(position + 6, 2)));
            else if (marker == 0xFF53)
                readCodingStyle(position + 5, position + 6, 1);
            position += 2 + length;
        }
        return position;
    }

    /// @param flags   position of the byte that states whether precincts have sizes
    /// @param fields  position of the number of decompositions
    void readCodingStyle(qint64 flags, qint64 fields, int layers)
    {
        Jp2CodingStyle style;
        style.layers = layers;
        style.resolutions = qMin(int(number(fields, 1)) + 1, Jp2CodingStyle::kMaxResolutions);
        style.blockWidthExponent = int(number(fields + 1, 1) & 15) + 2;
        style.blockHeightExponent = int(number(fields + 2, 1) & 15) + 2;
        for (int i = 0; i < style.resolutions && (number(flags, 1) & 1) != 0; ++i) {
            const auto sides = int(number(fields + 5 + i, 1));
            style.precincts[size_t(i)] = {sides & 15, sides >> 4};
        }
        m_header.structure.count(style, m_header.tileSize);
        m_header.resolutions = qMin(m_header.resolutions, style.resolutions);
    }

    /// Decides on the color components and the alpha component.
    bool chooseColors()
    {
        using Kind = Jp2Header::Kind;
        const auto coded = int(m_header.components.size());
        const int count = m_header.paletteColumns > 0 ? m_header.paletteColumns : coded;
        if (m_header.isBare) {
            // Unspecified; this is what programs write.
            m_header.kind = count < 3 ? Kind::Gray : Kind::Rgb;
            if (count == 3 && m_header.components[1].spacing != m_header.components[0].spacing)
                m_header.kind = Kind::Ycc;
        } else if (m_header.kind == Kind::Unknown) {
            if (m_hasOtherColors || count > 3)
                return false;
            m_header.kind = count < 3 ? Kind::Gray : Kind::Rgb;
        }
        m_header.colors = m_header.kind == Kind::Gray ? 1 : m_header.kind == Kind::Cmyk ? 4 : 3;
        // One component more than colors: alpha in what programs write, with or without boxes.
        const bool isLikelyAlpha = count == m_header.colors + 1 && m_header.colors < 4;
        m_header.hasAlpha =
            (m_header.hasAlpha && count > m_header.colors) || (!m_header.hasChannelTypes && isLikelyAlpha);
        return count >= m_header.colors && count <= kMaxComponents;
    }

    QIODevice &m_device;
    Jp2Header m_header;
    qint64 m_codestream = -1;
    qint64 m_firstMarker = 0; ///< after the sizes
    int m_markers = 0;
    bool m_hasColors = false;
    bool m_hasOtherColors = false; ///< an unsupported color space is named
    int m_boxes = 0;
    int m_depth = 0;
};

} // namespace

void Jp2Structure::count(const Jp2CodingStyle &style, QSize tile)
{
    const int resolutions = std::clamp(style.resolutions, 1, Jp2CodingStyle::kMaxResolutions);
    double bytes = 0;
    for (int i = 0; i < resolutions; ++i) {
        // All but the smallest resolution are stored as three bands of half the sides.
        const int half = i > 0 ? 1 : 0;
        const int level = resolutions - 1 - i;
        const double width = std::ceil(std::ldexp(tile.width(), -level));
        const double height = std::ceil(std::ldexp(tile.height(), -level));
        const auto [precinctWidth, precinctHeight] = style.precincts[size_t(i)];
        const double precincts = pieces(width, precinctWidth) * pieces(height, precinctHeight);
        const int blockWidth = std::min(style.blockWidthExponent, precinctWidth - half);
        const int blockHeight = std::min(style.blockHeightExponent, precinctHeight - half);
        const double blocks =
            pieces(std::ldexp(width, -half), blockWidth) * pieces(std::ldexp(height, -half), blockHeight);
        bytes += (half != 0 ? 3 : 1) * (precincts * kPrecinctBytes + blocks * kBlockBytes);
        m_mostPrecincts = std::max(m_mostPrecincts, precincts);
    }
    m_componentBytes = std::max(m_componentBytes, bytes);
    m_layers = std::max(m_layers, style.layers);
    m_resolutions = std::max(m_resolutions, resolutions);
}

qint64 Jp2Structure::bytes(int components) const
{
    const double packets = m_mostPrecincts * m_resolutions * components * (m_layers + 1.0);
    return qint64(std::min(m_componentBytes * components + packets * kPacketBytes, 0x1p60));
}

Result<Jp2Header> readJp2Header(QIODevice &device)
{
    return HeaderReader(device).read();
}

} // namespace plexa
