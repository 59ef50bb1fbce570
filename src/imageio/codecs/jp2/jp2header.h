// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QIODevice>
#include <QSize>

#include <vector>

namespace plexa
{

struct Jp2CodingStyle;

/// The memory of OpenJPEG for precincts, code blocks and packets of a tile, of which a file may have more
/// than samples: the maximum over the coding styles of the file.
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

/// The headers of a JPEG 2000 file: the boxes of ISO/IEC 15444-1, annex I, and the codestream's sizes, annex
/// A.
struct Jp2Header {
    enum class Kind { Gray, Rgb, Ycc, Cmyk, Unknown };

    struct Component {
        int depth = 8;
        QSize spacing = {1, 1}; ///< a sample for so many pixels of the grid
        QSize size;             ///< in samples
    };

    bool isBare = false; ///< a codestream without boxes
    QSize size;          ///< of the first component
    QSize gridSize;      ///< divided by the spacings
    std::vector<Component> components;
    bool startsAtOrigin = true; ///< then sides of smaller resolutions are rounded up
    qint64 tiles = 1;
    QSize tileSize; ///< in samples of the component that has most of them
    Jp2Structure structure;
    int resolutions = 1; ///< of each tile, the full one included
    Kind kind = Kind::Unknown;
    int paletteColumns = 0; ///< components after decoding; 0: no palette
    int colors = 0;         ///< color components after decoding
    bool hasAlpha = false;
    bool hasChannelTypes = false; ///< stated; otherwise the component after the colors is alpha
    bool isPremultiplied = false;
    QByteArray iccProfile;
    double dpiWidth = 0; ///< 0: unknown
    double dpiHeight = 0;
};

/// @param device  random access; its position is moved
/// @return the failure if the headers are damaged or unsupported
[[nodiscard]] Result<Jp2Header> readJp2Header(QIODevice &device);

} // namespace plexa
