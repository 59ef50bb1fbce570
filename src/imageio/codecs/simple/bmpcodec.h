// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// Windows bitmaps: read through Qt, written by row as 24 bits a pixel without compression, under a header of
/// version 4 that calls the colors sRGB.
class BmpCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    [[nodiscard]] Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &device, const RowFormat &format,
                                                                const WriteOptions &options) const override;
};

} // namespace plexa
