// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QPixelFormat>

namespace plexa
{

/// Has a pixel of this format more than 8 bits a component?
inline bool hasDeepComponents(QImage::Format format)
{
    return QImage::toPixelFormat(format).redSize() > 8;
}

/// A component of 16 bits as one of 8, rounded.
constexpr int byteOfWord(int word)
{
    return (word + 128) / 257;
}

} // namespace plexa
