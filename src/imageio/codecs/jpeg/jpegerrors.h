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

/// libjpeg's errors, kept off the standard error stream. An error jumps back to `jump`, which the function
/// that calls the library sets; nothing with a destructor may live in a function between the two.
struct JpegErrors {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    bool isDamaged;     ///< a warning was given that the picture is not what was saved
    bool lacksData;     ///< of these: there were fewer data than the picture has
    bool isUnsupported; ///< the error is that libjpeg has no decoder for it
    bool isOutOfMemory;

    /// Prepares this object. @return what belongs into the `err` field of libjpeg's structure
    jpeg_error_mgr *attach();
};

} // namespace plexa
