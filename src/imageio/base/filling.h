// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// Known numbers in memory that a library decodes into: places that it has never written are found by them.
/// Some libraries report success for these places and leave random bytes there.
namespace Filling
{

/// The number at a place. No decoder writes several of these one after another.
template<class Sample>
Sample at(qsizetype index)
{
    return Sample((quint32(index) * 2654435761U) >> 16);
}

/// Are the `count` samples from `index` on untouched?
/// @param samples  the first of all, to which `index` refers
template<class Sample>
bool isUntouched(const Sample *samples, qsizetype index, int count)
{
    for (int i = 0; i < count; ++i) {
        if (samples[index + i] != at<Sample>(index + i))
            return false;
    }
    return true;
}

} // namespace Filling

} // namespace plexa
