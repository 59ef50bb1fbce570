// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "ui/browser/imagebrowsersource.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace plexa
{

/// The photos of a list for a grid. Refers to the list, which may change; main thread.
class PhotoSource final : public ImageBrowserSource
{
public:
    using Photos = std::vector<std::shared_ptr<ImageObject>>;

    /// @param photos  never null
    explicit PhotoSource(std::shared_ptr<const Photos> photos)
        : m_photos(std::move(photos))
    {
    }

    int count() const override { return static_cast<int>(m_photos->size()); }
    QString filename(int index) const override { return at(index).filename(); }
    /// A photo has one thumbnail for both kinds.
    QImage thumbnail(int index, ThumbnailKind) const override { return at(index).thumbnail(); }
    /// @param image  an ImageObject
    int indexOf(const void *image) const override
    {
        const auto found = std::find_if(m_photos->begin(), m_photos->end(),
                                        [image](const auto &photo) { return photo.get() == image; });
        return found == m_photos->end() ? -1 : static_cast<int>(found - m_photos->begin());
    }

private:
    const ImageObject &at(int index) const { return *(*m_photos)[static_cast<std::size_t>(index)]; }

    const std::shared_ptr<const Photos> m_photos;
};

} // namespace plexa
