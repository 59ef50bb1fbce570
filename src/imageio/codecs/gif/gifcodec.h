// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// GIF: the first frame is read, composed on the screen, through giflib; a picture is written as one frame
/// with a palette of its own (libimagequant). A written file knows no half: a pixel of hardly any alpha is
/// transparent, every other is opaque, in the color that it has on white.
class GifCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    [[nodiscard]] Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &device, const RowFormat &format,
                                                                const WriteOptions &options) const override;
    qint64 writerBytes(const RowFormat &format, const WriteOptions &options) const override;
    bool writesIptc() const override { return false; }
    bool writesExif() const override { return false; }
    bool holdsThumbnail() const override { return false; }
};

} // namespace plexa
