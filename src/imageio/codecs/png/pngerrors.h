// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <png.h>

#include <csetjmp>

namespace plexa
{

/// libpng's errors, kept off the standard error stream. An error jumps to `jump`, which the function that
/// calls the library sets; no function between the two may own an object with a destructor. Its address is
/// libpng's error pointer.
struct PngErrors {
    std::jmp_buf jump;

    [[noreturn]] static void onError(png_structp png, png_const_charp)
    {
        std::longjmp(static_cast<PngErrors *>(png_get_error_ptr(png))->jump, 1);
    }

    /// The picture is complete despite warnings.
    static void onWarning(png_structp, png_const_charp) {}
};

} // namespace plexa
