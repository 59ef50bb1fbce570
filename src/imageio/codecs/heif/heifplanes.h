// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libheif/heif_plugin.h>

#include <array>

namespace plexa
{

/// What the decoders for libheif answer.
namespace HeifResult
{
inline constexpr heif_error kDone = {heif_error_Ok, heif_suberror_Unspecified, "Success"};
inline constexpr heif_error kDamaged = {heif_error_Decoder_plugin_error, heif_suberror_Unspecified,
                                        "damaged picture data"};
inline constexpr heif_error kNoMemory = {heif_error_Memory_allocation_error, heif_suberror_Unspecified,
                                         "out of memory"};
} // namespace HeifResult

/// A picture as a decoder holds it.
struct HeifPlanes {
    struct Plane {
        const uint8_t *samples = nullptr; ///< of two bytes where there are more than 8 bits
        std::ptrdiff_t stride = 0;        ///< bytes from one row to the next
    };

    int width = 0;
    int height = 0;
    int bits = 8; ///< of a sample
    heif_chroma chroma = heif_chroma_monochrome;
    std::array<Plane, 3> planes; ///< one, or three of luma and chroma
    // The colors in the bitstream, for files whose boxes lack them. libheif ignores unknown code points.
    int primaries = 2;
    int transfer = 2;
    int matrix = 2;
    bool isFullRange = false;

    /// Width and height of a plane, in samples.
    int widthOf(int plane) const { return halved(width, plane > 0 && chroma != heif_chroma_444); }
    int heightOf(int plane) const { return halved(height, plane > 0 && chroma == heif_chroma_420); }
    int count() const { return chroma == heif_chroma_monochrome ? 1 : 3; }

    /// Copies the picture. @param out  receives the copy, which the caller owns, on success
    heif_error toHeif(heif_image **out) const;

private:
    static int halved(int side, bool isHalf) { return isHalf ? (side + 1) / 2 : side; }
};

} // namespace plexa
