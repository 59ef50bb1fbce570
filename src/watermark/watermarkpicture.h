// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"
#include "platform/keyedarchive.h"
#include "platform/result.h"

#include <QImage>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <memory>

namespace plexa
{

/// The picture of an image watermark: pixels, upright and in sRGB, or an SVG drawing. An archived picture
/// stays encoded until it is drawn. An immutable value whose copies share one picture; equal only to its own
/// copies. Any thread.
class WatermarkPicture final
{
public:
    WatermarkPicture();
    ~WatermarkPicture();
    WatermarkPicture(const WatermarkPicture &);
    WatermarkPicture(WatermarkPicture &&) noexcept;
    WatermarkPicture &operator=(const WatermarkPicture &);
    WatermarkPicture &operator=(WatermarkPicture &&) noexcept;

    /// Reads a picture file: SVG, or any format that photos are read in.
    /// @return a failure that names the file
    [[nodiscard]] static Result<WatermarkPicture> load(const QString &path);

    /// @param image  upright, sRGB; null for a null picture
    static WatermarkPicture fromImage(const QImage &image);

    /// @param svg  an SVG document, not compressed
    [[nodiscard]] static Result<WatermarkPicture> fromSvg(const QByteArray &svg);

    /// The picture of an archived object: its drawing, else its largest representation that can be decoded.
    /// An unreadable object becomes a picture with a fault, which can still be archived again.
    static WatermarkPicture fromArchive(const ArchivedValue &image);

    bool isNull() const { return !m_data; }

    /// The reason why it cannot be drawn, as text that follows its name; empty if none is known. Damage
    /// within the pixels of an archived picture is known after the first drawing.
    QString fault() const;

    /// The archived object that it was created from, if any.
    KeptObject original() const;

    /// Pixels, or an SVG's user units. Both sides > 0, unless it is null or was unreadable from the start.
    QSizeF size() const;

    /// The SVG document; empty for a picture of pixels.
    QByteArray svg() const;

    /// The picture at its own size. @return a null image without a picture or memory, or for a fault
    QImage image() const;

    /// The whole picture in that size, Format_ARGB32_Premultiplied. Recently used sizes are cached; threads
    /// that want the same size wait for one rendering.
    /// @param isCanceled  checked at each row of pixels; a drawing is rendered in one piece
    /// @return a null image also if the work is canceled
    QImage imageOfSize(QSize size, const CancelCheck &isCanceled = {}) const;

    bool operator==(const WatermarkPicture &other) const { return m_data == other.m_data; }

private:
    struct Data;
    std::shared_ptr<const Data> m_data;
};

} // namespace plexa
