// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/codecs/raw/rawcodec.h"
#include "imageio/codecs/raw/rawfile.h"

namespace plexa
{

Result<PictureInfo> RawCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    RawFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const RawFacts &facts = file.facts();
    PictureInfo info;
    info.rows = {facts.size, false};
    info.imageCount = facts.pictureCount;
    info.depth = facts.depth;
    info.colorModel = QStringLiteral("RGB");
    info.decoderBytes = facts.decoderBytes;
    info.orientation = facts.orientation;
    info.properties = facts.properties;
    return info;
}

Result<std::unique_ptr<RowReader>> RawCodec::openReader(QIODevice &device, const ReadLimits &limits,
                                                        int reduction) const
{
    RawFile file(device, limits);
    if (const auto opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const bool isHalf = reduction > 1 && file.facts().canHalve;
    Result<QImage> picture = file.decode(isHalf);
    if (!picture)
        return tl::unexpected(picture.error());
    // Some decoders find out a different size while they decode.
    if (picture->size() != plexa::reducedSize(file.facts().size, isHalf ? 2 : 1))
        return fail(PictureFailures::damaged());
    return withReducedRows(rowsOfImage(std::move(*picture), false), isHalf ? reduction / 2 : reduction);
}

QSize RawCodec::reducedSize(QSize size, int reduction) const
{
    return plexa::reducedSize(size, reduction);
}

} // namespace plexa
