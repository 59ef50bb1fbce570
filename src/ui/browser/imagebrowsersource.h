// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QString>

namespace plexa
{

/// The images that a grid shows, by their place in the list. Called on the main thread, for what is drawn:
/// the answers have to be at hand.
class ImageBrowserSource
{
public:
    enum class ThumbnailKind { Watermarked, Original };

    virtual ~ImageBrowserSource() = default;

    virtual int count() const = 0;

    /// The name under the thumbnail.
    virtual QString filename(int index) const = 0;

    /// Stored mirrored top to bottom; null while there is none. Equal pixels are one shared QImage: what is
    /// made of them is kept by QImage::cacheKey().
    virtual QImage thumbnail(int index, ThumbnailKind kind) const = 0;

    /// Where an image stands by its identity; -1 for one that is not in the list.
    virtual int indexOf(const void *image) const = 0;
};

} // namespace plexa
