// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSize>

#include <array>

namespace plexa
{

/// How a tile of a JPEG 2000 picture is divided: ISO/IEC 15444-1, A.6.1 and A.6.2. Numbers of a file, which
/// may be any.
struct Jp2CodingStyle {
    static constexpr int kMostResolutions = 33;

    int layers = 1;
    int resolutions = 1;
    int blockWidthExponent = 6; ///< sides of code blocks are powers of two
    int blockHeightExponent = 6;
    /// The same of precincts for each resolution, the smallest first.
    std::array<int, kMostResolutions> precinctWidthExponents = filled(15);
    std::array<int, kMostResolutions> precinctHeightExponents = filled(15);

private:
    static constexpr std::array<int, kMostResolutions> filled(int value)
    {
        std::array<int, kMostResolutions> numbers = {};
        for (int &number : numbers)
            number = value;
        return numbers;
    }
};

/// The memory that OpenJPEG takes for precincts, code blocks and the order of packets while it decodes a
/// tile: a file may have more of those than samples. Counts the most that the coding styles of a file ask
/// for.
class Jp2Structure
{
public:
    /// @param tile  the size of a tile in samples of the component that has most of them
    void count(const Jp2CodingStyle &style, QSize tile);

    /// At most 2^60.
    qint64 bytes(int components) const;

private:
    double m_componentBytes = 0;
    double m_mostPrecincts = 1; ///< of a resolution
    int m_layers = 1;
    int m_resolutions = 1;
};

} // namespace plexa
