// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/filecomments.h"
#include "platform/result.h"

#include <QIODevice>
#include <QRect>

namespace plexa
{

/// The facts in the blocks of a GIF file.
struct GifStructure {
    QSize size;                ///< of the picture: the screen and the first frame
    QRect frame;               ///< the first frame's place on the picture, origin at the top left
    qint64 framePosition = 0;  ///< where its descriptor begins in the file
    qint64 frameDataBytes = 0; ///< its compressed data, as far as present
    bool isInterlaced = false; ///< the first frame
    int transparentIndex = -1; ///< the first frame's transparent color; -1: none
    int frameCount = 0;        ///< at least 1
    QByteArray iccProfile;     ///< may be empty, as the next one
    QByteArray xmp;            ///< the first packet
    FileComments comments;

    /// Is a pixel beside the frame or inside it transparent?
    bool hasAlpha() const { return transparentIndex >= 0 || frame != QRect(QPoint(), size); }
};

/// Reads all blocks and decodes nothing, up to the trailer, the end of the file or an invalid block.
/// @param device  random access; its position is left anywhere
/// @return the failure if there is no first frame
[[nodiscard]] Result<GifStructure> readGifStructure(QIODevice &device);

} // namespace plexa
