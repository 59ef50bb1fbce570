// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libraw/libraw.h>

namespace plexa
{

/// The samples of a sensor in the memory that LibRaw decodes them into. LibRaw reports success where it found
/// no data for a part of the photo, and leaves random bytes there. Each of these functions reads and writes
/// the given data of LibRaw only.
namespace RawSamples
{

/// Fills the memory with a known sequence of numbers. To be called after LibRaw has allocated the memory and
/// before it decodes.
/// @param isRotatedBy45  the sensor, whose rows LibRaw stores in another way
/// @return false if LibRaw has not allocated any: it decodes in a way of its own
bool prepare(libraw_data_t &raw, bool isRotatedBy45);

/// Has each part of the photo been decoded since prepare()? Parts of less than about thirty samples may be
/// overlooked.
bool areComplete(const libraw_data_t &raw);

/// Do all places of the photo have one and the same value?
bool areUniform(const libraw_data_t &raw);

} // namespace RawSamples

} // namespace plexa
