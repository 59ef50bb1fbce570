// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/keyedarchive.h"
#include "watermark/watermarkpicture.h"

#include <QHash>

namespace plexa
{

/// Makes the pictures of watermarks from those of an archive. An archive's picture is decoded once, however
/// many presets it is in.
class PictureDecoder final
{
public:
    /// The picture of an archived image: its drawing, else its largest representation that can be decoded.
    /// @return a null picture when there is none
    WatermarkPicture picture(const ArchivedValue &image);

    /// Are there pictures that were not decoded because all together take more than a quarter of the memory?
    bool isExhausted() const { return m_isExhausted; }

private:
    WatermarkPicture decoded(const ArchivedValue &image);

    QHash<const void *, WatermarkPicture> m_known;
    qint64 m_bytes = 0;
    bool m_isExhausted = false;
};

/// A picture as it is archived: pixels as a TIFF file, with alpha where they have it; a drawing with pixels
/// beside it for programs that know no drawings.
[[nodiscard]] Result<ArchivedImage> archivedImage(const WatermarkPicture &picture);

} // namespace plexa
