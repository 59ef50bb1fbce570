// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/jp2/jp2structure.h"
#include "platform/result.h"

#include <QByteArray>
#include <QIODevice>
#include <QSize>

#include <vector>

namespace plexa
{

/// What the headers of a JPEG 2000 file say: the boxes of ISO/IEC 15444-1, annex I, and the codestream's
/// sizes, annex A.
struct Jp2Header {
    /// Of the colors that the components make.
    enum class Kind { Gray, Rgb, Ycc, Cmyk, Unknown };

    struct Component {
        int depth = 8;
        QSize spacing = {1, 1}; ///< a sample for so many pixels of the grid
        QSize size;             ///< in samples
    };

    bool isBare = false; ///< a codestream without boxes
    QSize size;          ///< of the first component
    QSize gridSize;      ///< that the spacings divide
    std::vector<Component> components;
    bool startsAtOrigin = true; ///< sides of smaller resolutions are rounded up, not somehow
    qint64 tiles = 1;
    QSize tileSize;         ///< in samples of the component that has most of them
    Jp2Structure structure; ///< of the whole file's and all tiles' coding styles
    int resolutions = 1;    ///< that each tile is said to have, the full one included
    Kind kind = Kind::Unknown;
    int paletteColumns = 0; ///< components that decoding gives instead of the codestream's; 0: no palette
    int colors = 0;         ///< components that make the color, the palette followed
    bool hasAlpha = false;
    bool isPremultiplied = false;
    QByteArray iccProfile;
    double dpiWidth = 0; ///< 0: not said
    double dpiHeight = 0;
};

/// @param device  random access; its position is moved
/// @return the failure when the headers are damaged or of a kind that is not read
[[nodiscard]] Result<Jp2Header> readJp2Header(QIODevice &device);

} // namespace plexa
