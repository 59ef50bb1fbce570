// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QString>

namespace plexa
{

/// The images that a grid shows, by their index in the list. Called on the main thread while drawing, so it
/// must answer at once.
class ImageBrowserSource
{
public:
    enum class ThumbnailKind { Watermarked, Original };

    virtual ~ImageBrowserSource() = default;

    virtual int count() const = 0;

    /// The name under the thumbnail.
    virtual QString filename(int index) const = 0;

    /// Mirrored top to bottom; null until it is available. Unchanged pixels are the same shared QImage:
    /// scaled versions are cached by QImage::cacheKey().
    virtual QImage thumbnail(int index, ThumbnailKind kind) const = 0;

    /// The index of an image by its identity; -1 if it is not in the list.
    virtual int indexOf(const void *image) const = 0;
};

} // namespace plexa
