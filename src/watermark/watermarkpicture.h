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

/// The picture of an image watermark: pixels, upright and in sRGB, or an SVG drawing, which is sharp at every
/// size. An archived picture stays encoded until it is drawn; only then damage in its pixels is found. An
/// immutable value whose copies share one picture; equal only to its own copies. Any thread.
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

    /// The picture that an object of an archive represents: its drawing, else its largest representation that
    /// can be decoded. An object that is not a readable picture gives a picture with a fault, which can still
    /// be archived again. None gives a null picture.
    static WatermarkPicture fromArchive(const ArchivedValue &image);

    bool isNull() const { return !m_data; }

    /// The reason why it cannot be drawn, as text that follows its name; empty when none is known. Damage
    /// within the pixels of an archived picture is known after the first drawing.
    QString fault() const;

    /// The archived object that it was created from; none for a picture from elsewhere.
    KeptObject original() const;

    /// Its own size: pixels, or an SVG's user units. Both sides > 0, unless it is null or was at fault from
    /// the start.
    QSizeF size() const;

    /// The SVG document; empty for a picture of pixels.
    QByteArray svg() const;

    /// The picture at its own size; an SVG drawn at it.
    /// @return a null image when there is no picture, no memory, or a fault
    QImage image() const;

    /// The whole picture in exactly that size, Format_ARGB32_Premultiplied. Recently used sizes are cached,
    /// for batches of photos of a few sizes. Nothing is locked during the rendering; threads that want the
    /// same size wait for one rendering.
    /// @param isCanceled  checked at each row of pixels; a drawing is rendered in one piece
    /// @return a null image when there is no picture, no memory, or a fault, or the work is canceled
    QImage imageOfSize(QSize size, const CancelCheck &isCanceled = {}) const;

    bool operator==(const WatermarkPicture &other) const { return m_data == other.m_data; }

private:
    struct Data;
    std::shared_ptr<const Data> m_data;
};

} // namespace plexa
