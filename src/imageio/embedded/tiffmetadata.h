// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

namespace plexa
{

/// The IIM records of a TIFF file as they lie in it: those of its own field, else those in its Photoshop
/// image resources. Some programs have stored them as numbers of four bytes, turned around.
/// @param device  open for reading, random access, at any position
/// @return empty when there are none, or this is no classic TIFF file
QByteArray iptcOfTiff(QIODevice &device);

} // namespace plexa
