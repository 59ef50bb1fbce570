// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

namespace plexa
{

/// The IIM records of a TIFF file as stored in it: those of its own field, else those in its Photoshop
/// image resources. Some programs store them as numbers of four bytes in reverse order.
/// @param device  open for reading, random access, at any position
/// @return empty when there are none, or this is no classic TIFF file
QByteArray iptcOfTiff(QIODevice &device);

} // namespace plexa
