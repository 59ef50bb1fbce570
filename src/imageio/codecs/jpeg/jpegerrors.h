// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

// jpeglib.h wants the two before it:
// clang-format off
#include <cstddef>
#include <cstdio>
#include <jpeglib.h>
// clang-format on

#include <csetjmp>

namespace plexa
{

/// libjpeg's errors, kept off the standard error stream. An error jumps to `jump`, which the function that
/// calls the library sets; no function between the two may own an object with a destructor.
struct JpegErrors {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    bool isDamaged;     ///< libjpeg warned of damage
    bool lacksData;     ///< libjpeg warned of missing data
    bool isUnsupported; ///< libjpeg has no decoder for the picture
    bool isOutOfMemory;
    long strayBytes; ///< skipped in front of markers

    /// Prepares this object. @return the value for the `err` field of libjpeg's structure
    jpeg_error_mgr *attach();
};

} // namespace plexa
