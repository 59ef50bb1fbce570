// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/container/jpegsegmentreader.h"

#include <QByteArray>

namespace plexa
{

/// Collects the EXIF of a JPEG from its segments: the first structure, joined with its continuations. Some
/// cameras and programs continue a long structure in the segments directly after its first one.
class JpegExif
{
public:
    /// Must be called for each segment of the JPEG, in their order.
    void read(int marker, JpegSegmentReader &segments);

    /// The TIFF structure; empty: none.
    const QByteArray &structure() const { return m_structure; }

private:
    QByteArray m_structure;
    bool m_mayContinue = false; ///< was the previous segment a part of the structure?
};

} // namespace plexa
