// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// TIFF through libtiff: reads the first picture of a file, also of a BigTIFF; writes files of one picture, 8
/// bits a sample, LZW or not, in strips.
class TiffCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    [[nodiscard]] Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &device, const RowFormat &format,
                                                                const WriteOptions &options) const override;
    bool writesComment() const override { return false; }
    bool holdsThumbnail() const override { return false; } // it would be a second picture of the file
    qint64 writerBytes(const RowFormat &format, const WriteOptions &options) const override;
};

} // namespace plexa
