// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// Converts a row of TIFF samples to 16-bit numbers: samples of up to 8 bits keep their value, all others are
/// scaled to 0..65535. Floats are clamped to 0..1; not-a-number becomes 0.
/// @param bytes    as libtiff returns them: samples of whole bytes in native order, others packed from the
///                 highest bit down; (count * depth + 7) / 8 bytes
/// @param depth    bits per sample: 1..16 or 32; for floats 16, 32 or 64
/// @param stride   from one number to the next in `out`
void unpackTiffSamples(const uchar *bytes, qint64 count, int depth, bool isFloat, quint16 *out, int stride);

} // namespace plexa
