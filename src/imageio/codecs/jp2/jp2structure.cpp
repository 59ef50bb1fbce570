// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jp2/jp2structure.h"

#include <algorithm>
#include <cmath>

namespace plexa
{

namespace
{

/// A precinct with the roots of its trees, and a code block with its segments and its nodes in those trees.
/// Measured: 590 bytes for a precinct of one code block.
constexpr double kPrecinctBytes = 220;
constexpr double kBlockBytes = 480;

/// Where packets were already met is noted in two bytes for each of them.
constexpr double kPacketBytes = 2;

/// How many pieces a length may be cut into that does not begin where a piece does.
double pieces(double length, int exponent)
{
    return std::floor(std::ldexp(length, -exponent)) + 2;
}

} // namespace

void Jp2Structure::count(const Jp2CodingStyle &style, QSize tile)
{
    const int resolutions = std::clamp(style.resolutions, 1, Jp2CodingStyle::kMostResolutions);
    double bytes = 0;
    for (int i = 0; i < resolutions; ++i) {
        // All but the smallest resolution are stored as three bands of half the sides.
        const int half = i > 0 ? 1 : 0;
        const int level = resolutions - 1 - i;
        const double width = std::ceil(std::ldexp(tile.width(), -level));
        const double height = std::ceil(std::ldexp(tile.height(), -level));
        const int precinctWidth = style.precinctWidthExponents[size_t(i)];
        const int precinctHeight = style.precinctHeightExponents[size_t(i)];
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

} // namespace plexa
