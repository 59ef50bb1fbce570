// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"
#include "imageio/codecs/jpeg/jpegencoder.h"

namespace plexa
{

class ThumbnailMaker;

/// Writes a JPEG file: the metadata and the color profile of a copy around a picture.
class JpegFile
{
public:
    /// @param device  open for writing, random access, empty; must outlive this object
    JpegFile(QIODevice &device, QSize size, const JpegEncoding &encoding);

    /// Begins the file and writes all segments; nothing comes from the segments of a source.
    /// @param rows  the picture's coefficients, to be written by finish(); null: writeImage() follows
    [[nodiscard]] Result<void> start(const WriteOptions &options, JpegBlockRows *rows = nullptr);

    /// Does the EXIF structure wait for a thumbnail? Known after start().
    bool needsThumbnail() const { return m_thumbnailPosition >= 0; }

    /// @param image  Format_RGB32; its first `count` rows are the next of the picture
    [[nodiscard]] Result<void> writeImage(const QImage &image, int count);

    /// Writes the coefficients, and what follows the picture.
    [[nodiscard]] Result<void> finish();

    /// Writes the thumbnail that needsThumbnail() announces; after finish().
    [[nodiscard]] Result<void> setThumbnail(const ThumbnailMaker &thumbnail);

private:
    tl::unexpected<Error> failure() const;

    QIODevice &m_device;
    const qint64 m_start;
    JpegEncoder m_encoder;
    qint64 m_thumbnailPosition = -1;
    qsizetype m_thumbnailBytes = 0;
};

/// How a picture of this size is encoded by the options. The chroma sampling: at a quality of 0.9 and above
/// that of WriteOptions::chromaSampling, or full chroma if it is empty; below that half chroma in both
/// directions.
JpegEncoding jpegEncodingOf(const WriteOptions &options);

} // namespace plexa
