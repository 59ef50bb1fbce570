// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// Truevision TGA, all kinds with a picture: palette, true color and gray, run-length encoded or not.
/// Decodes a picture whole, because most stand upside down. Does not write.
class TgaCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
};

} // namespace plexa
