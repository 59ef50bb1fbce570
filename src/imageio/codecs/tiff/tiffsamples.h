// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// Turns a row of a TIFF's samples into numbers of 16 bits: those of up to 8 bits as they are, all others
/// scaled to 0..65535. Floats are taken for 0..1 and cut there; what is not a number is 0.
/// @param bytes    as libtiff hands them out: samples of whole bytes in the machine's order, others packed
/// from
///                 the highest bit down; (count * depth + 7) / 8 of them
/// @param depth    bits a sample: 1..16, 24 or 32; of floats 16, 24, 32 or 64
/// @param stride   from one number to the next in `out`
void unpackTiffSamples(const uchar *bytes, qint64 count, int depth, bool isFloat, quint16 *out, int stride);

} // namespace plexa
