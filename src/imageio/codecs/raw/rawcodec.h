// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// Camera raw photos of all makers through LibRaw: the sensor's data with the camera's white balance, as
/// sRGB, at full size and not turned (PictureInfo::orientation says how it is to be). Never a preview that
/// the file holds. Reads, writes none.
class RawCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    QSize reducedSize(QSize size, int reduction) const override;
};

} // namespace plexa
