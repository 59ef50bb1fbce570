// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/jpegexif.h"

#include "imageio/container/jpegmarkers.h"
#include "imageio/container/tiffdirectory.h"

namespace plexa
{

void JpegExif::read(int marker, JpegSegmentReader &segments)
{
    using JpegSegmentName::kExif;
    const bool isExif = marker == JpegMarker::APP1 && segments.isNamed(kExif);
    const QByteArray contents =
        isExif && (m_structure.isEmpty() || m_mayContinue) ? segments.contentsBehind(kExif) : QByteArray();
    // Another header begins another structure. Real ones have some segments at most.
    constexpr qsizetype kMaxBytes = 16 * 1024 * 1024;
    m_mayContinue = !contents.isEmpty() && m_structure.size() < kMaxBytes &&
                    (m_structure.isEmpty() || !orderOfTiff(contents));
    if (m_mayContinue)
        m_structure += contents;
}

} // namespace plexa
