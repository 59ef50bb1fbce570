// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>

namespace plexa
{

/// Does a file begin like a HEIF file with pictures coded by HEVC, or by what its brands do not tell?
/// @param head  its first bytes, up to 64
bool isHeicContents(QByteArrayView head);

/// The same for pictures coded by AV1.
bool isAvifContents(QByteArrayView head);

} // namespace plexa
