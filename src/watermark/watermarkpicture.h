// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QImage>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <memory>

namespace plexa
{

/// The picture of an image watermark: pixels, upright and in sRGB, or an SVG drawing, which is sharp at every
/// size. An immutable value whose copies share one picture; equal only to its own copies. Any thread.
class WatermarkPicture final
{
public:
    /// No picture.
    WatermarkPicture();
    ~WatermarkPicture();
    WatermarkPicture(const WatermarkPicture &);
    WatermarkPicture(WatermarkPicture &&) noexcept;
    WatermarkPicture &operator=(const WatermarkPicture &);
    WatermarkPicture &operator=(WatermarkPicture &&) noexcept;

    /// Reads a picture file: SVG, or any format that photos are read in.
    /// @return a failure that names the file
    [[nodiscard]] static Result<WatermarkPicture> load(const QString &path);

    /// @param image  upright, sRGB; a null image makes a null picture
    static WatermarkPicture fromImage(const QImage &image);

    /// @param svg  an SVG document, not compressed
    [[nodiscard]] static Result<WatermarkPicture> fromSvg(const QByteArray &svg);

    bool isNull() const { return !m_data; }

    /// Its own size: pixels, or an SVG's user units. Both sides > 0, unless it is null.
    QSizeF size() const;

    /// The SVG document; empty for a picture of pixels.
    QByteArray svg() const;

    /// The picture at its own size; an SVG drawn at it.
    QImage image() const;

    /// The whole picture in exactly that size, Format_ARGB32_Premultiplied. The last one made is kept, for a
    /// batch of photos of one size.
    /// @return a null image when there is no picture or no memory
    QImage imageOfSize(QSize size) const;

    bool operator==(const WatermarkPicture &other) const { return m_data == other.m_data; }

private:
    struct Data;
    std::shared_ptr<const Data> m_data;
};

} // namespace plexa
