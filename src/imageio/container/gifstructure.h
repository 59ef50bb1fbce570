// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/base/readlimits.h"
#include "imageio/container/filecomments.h"
#include "platform/result.h"

#include <QIODevice>
#include <QRect>

namespace plexa
{

/// What the blocks of a GIF file say, around the compressed data.
struct GifStructure {
    QSize size;                ///< of the picture: the screen, or more where the first frame reaches over it
    QRect frame;               ///< the first frame's place on the picture, origin at the top left
    qint64 framePosition = 0;  ///< where its descriptor begins in the file
    qint64 frameDataBytes = 0; ///< its compressed data, as far as the file has them
    bool isInterlaced = false; ///< the first frame
    int transparentIndex = -1; ///< the first frame's color that is none; -1: all show
    int frameCount = 0;        ///< at least 1
    QByteArray iccProfile;     ///< may be empty, as the next one
    QByteArray xmp;            ///< the first packet
    FileComments comments;

    /// Does something show through at the sides of the frame or inside of it?
    bool hasAlpha() const { return transparentIndex >= 0 || frame != QRect(QPoint(), size); }
};

/// Walks over all blocks and decodes nothing, so damage inside the frames is not seen. The walk ends at the
/// trailer, at the end of the file or at what is no block; what comes behind is ignored.
/// @param device  random access; its position is left anywhere
/// @return the failure when there is no first frame
[[nodiscard]] Result<GifStructure> readGifStructure(QIODevice &device);

} // namespace plexa
