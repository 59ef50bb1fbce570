// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <png.h>

#include <csetjmp>

namespace plexa
{

/// libpng's errors, kept off the standard error stream. An error jumps back to `jump`, which the function
/// that calls the library sets; nothing with a destructor may live in a function between the two. Its
/// address is libpng's error pointer.
struct PngErrors {
    std::jmp_buf jump;

    /// libpng's error function.
    [[noreturn]] static void onError(png_structp png, png_const_charp)
    {
        std::longjmp(static_cast<PngErrors *>(png_get_error_ptr(png))->jump, 1);
    }

    /// libpng's warning function: what is only warned of leaves the picture whole.
    static void onWarning(png_structp, png_const_charp) {}
};

} // namespace plexa
