// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"
#include "imageio/codecs/jpeg/jpegsegments.h"
#include "imageio/container/jpegmarkers.h"

#include <QImage>

namespace plexa
{

/// JPEG through libjpeg-turbo. The written chroma sampling: at a quality of 0.9 and above that of
/// WriteOptions::chromaSampling, or full chroma where it is empty; below that half chroma both ways.
class JpegCodec final : public Codec
{
public:
    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    [[nodiscard]] Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &device, const RowFormat &format,
                                                                const WriteOptions &options) const override;
    qsizetype maxExifBytes() const override { return kMaxJpegExif; }
    QSize reducedSize(QSize size, int reduction) const override;

    /// Coefficients, where the copy is progressive.
    qint64 writerBytes(const RowFormat &format, const WriteOptions &options) const override;
};

/// A baseline JPEG without any application segment, as EXIF wants its thumbnails, half chroma.
/// @param image    Format_RGB32, at most 65500 pixels a side
/// @param quality  0..100
/// @return empty when it cannot be made
QByteArray encodeBareJpeg(const QImage &image, int quality);

} // namespace plexa
