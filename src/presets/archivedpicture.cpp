// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/archivedpicture.h"

#include "imageio/imagedestination.h"

#include <QBuffer>

#include <algorithm>

namespace plexa
{
namespace
{

/// The longer side of the pixels of a drawing.
constexpr double kDrawingSide = 2048;

} // namespace

Result<ArchivedImage> archivedImage(const WatermarkPicture &picture)
{
    ArchivedImage archived{picture.size(), {}, picture.svg()};
    QImage image;
    if (archived.svg.isEmpty()) {
        image = picture.image();
    } else {
        const double side = std::max(picture.size().width(), picture.size().height());
        const QSize size = (picture.size() * (kDrawingSide / side)).toSize();
        image = picture.imageOfSize(size.expandedTo(QSize(1, 1)));
    }
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    QBuffer buffer(&archived.tiff);
    buffer.open(QIODevice::ReadWrite);
    CopyRequest request;
    request.type = QStringLiteral("image/tiff");
    const Result<void> written = writeImage(buffer, image, request);
    if (!written)
        return tl::unexpected(written.error());
    return archived;
}

} // namespace plexa
