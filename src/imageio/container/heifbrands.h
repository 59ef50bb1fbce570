// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArrayView>

namespace plexa
{

/// Does a HEIF file begin here whose pictures are coded by HEVC, or by an unspecified coding?
/// @param head  its first bytes, up to 64
bool isHeicContents(QByteArrayView head);

/// The same for pictures coded by AV1.
bool isAvifContents(QByteArrayView head);

} // namespace plexa
