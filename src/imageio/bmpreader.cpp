// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/bmpcodec.h"
#include "imageio/qtcodec.h"

namespace plexa
{

namespace
{

const QtCodec &qtCodec()
{
    static const QtCodec codec("bmp", readBmpHeader);
    return codec;
}

} // namespace

Result<PictureInfo> BmpCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    return qtCodec().readInfo(device, limits);
}

Result<std::unique_ptr<RowReader>> BmpCodec::openReader(QIODevice &device, const ReadLimits &limits,
                                                        int reduction) const
{
    return qtCodec().openReader(device, limits, reduction);
}

} // namespace plexa
