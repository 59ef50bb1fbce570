// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heifplanes.h"

#include "imageio/codecs/heif/heiffile.h"

#include <cstring>

namespace plexa
{

heif_error HeifPlanes::toHeif(heif_image **out) const
{
    static constexpr heif_channel kChannels[] = {heif_channel_Y, heif_channel_Cb, heif_channel_Cr};
    heif_image *made = nullptr;
    heif_error error = heif_image_create(
        width, height, count() == 1 ? heif_colorspace_monochrome : heif_colorspace_YCbCr, chroma, &made);
    HeifImage image(made);
    for (int i = 0; i < count() && error.code == heif_error_Ok; ++i) {
        error = heif_image_add_plane(made, kChannels[i], widthOf(i), heightOf(i), bits);
        if (error.code != heif_error_Ok)
            break;
        int stride = 0;
        uint8_t *to = heif_image_get_plane(made, kChannels[i], &stride);
        const size_t rowBytes = size_t(widthOf(i)) * (bits > 8 ? 2 : 1);
        for (int y = 0; y < heightOf(i); ++y)
            std::memcpy(to + std::ptrdiff_t(y) * stride,
                        planes[size_t(i)].samples + y * planes[size_t(i)].stride, rowBytes);
    }
    if (error.code != heif_error_Ok)
        return error;
    if (const HeifColors colors(heif_nclx_color_profile_alloc()); colors) {
        heif_nclx_color_profile_set_color_primaries(colors.get(), uint16_t(primaries));
        heif_nclx_color_profile_set_transfer_characteristics(colors.get(), uint16_t(transfer));
        heif_nclx_color_profile_set_matrix_coefficients(colors.get(), uint16_t(matrix));
        colors->full_range_flag = isFullRange;
        heif_image_set_nclx_color_profile(made, colors.get());
    }
    *out = image.release();
    return HeifResult::kDone;
}

} // namespace plexa
