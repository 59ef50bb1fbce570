// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/hevcdecoder.h"

#include "imageio/base/filling.h"
#include "imageio/codecs/heif/heiffile.h"
#include "imageio/codecs/heif/heifplanes.h"

#include <QtEndian>

#include <libde265/de265.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace plexa
{

namespace
{

using namespace HeifResult;

/// The least side of a block that is coded on its own.
constexpr int kBlock = 16;

/// Allocates the planes of a picture and fills them. @return whether there was memory
int allocatePlanes(de265_decoder_context *, de265_image_spec *spec, de265_image *image, void *)
{
    const bool hasChroma = spec->format != de265_image_format_mono8;
    bool isAllocated = true;
    for (int i = 0; i < 3; ++i) {
        const bool isHalfWide = i > 0 && spec->format != de265_image_format_YUV444P8;
        const bool isHalfHigh = i > 0 && spec->format == de265_image_format_YUV420P8;
        const int width = isHalfWide ? (spec->width + 1) / 2 : spec->width;
        const int stride = (width + spec->alignment - 1) / spec->alignment * spec->alignment;
        const int height = isHalfHigh ? (spec->height + 1) / 2 : spec->height;
        const qsizetype bytes = de265_get_bits_per_pixel(image, i) > 8 ? 2 : 1;
        constexpr size_t kPadding = 64; // the decoder reads a few bytes beyond
        const qsizetype count = qsizetype(stride) * height * bytes;
        void *memory = nullptr;
        if (i == 0 || hasChroma)
            isAllocated = isAllocated && posix_memalign(&memory, 64, size_t(count) + kPadding) == 0;
        auto *samples = static_cast<uint8_t *>(memory);
        for (qsizetype k = 0; samples && k < count; ++k)
            samples[k] = Filling::at<uint8_t>(k);
        // The pointer is kept as the plane's user data, too.
        de265_set_image_plane(image, i, memory, int(stride * bytes), memory);
    }
    return isAllocated ? 1 : 0;
}

void freePlanes(de265_decoder_context *, de265_image *image, void *)
{
    for (int i = 0; i < 3; ++i) {
        std::free(de265_get_image_plane_user_data(image, i));
        de265_set_image_plane(image, i, nullptr, 0, nullptr);
    }
}

/// Has the decoder written each block of this plane?
bool isComplete(const de265_image *image, int plane)
{
    int stride = 0;
    const uint8_t *shown = de265_get_image_plane(image, plane, &stride); // within the plane, if it is cropped
    const auto *all = static_cast<const uint8_t *>(de265_get_image_plane_user_data(image, plane));
    const int width = de265_get_image_width(image, plane), height = de265_get_image_height(image, plane);
    const int bytes = de265_get_bits_per_pixel(image, plane) > 8 ? 2 : 1;
    // In the middle of a block, where filters of its neighbors do not reach.
    constexpr int kRun = kBlock / 2;
    for (int y = kBlock / 2; y < height; y += kBlock) {
        const qsizetype row = shown - all + qsizetype(y) * stride;
        for (int x = kBlock / 4; x + kRun <= width; x += kBlock / 2) {
            if (Filling::isUntouched(all, row + x * bytes, kRun * bytes))
                return false;
        }
    }
    return true;
}

void prepareLibrary()
{
    de265_init();
    // A decoder's own functions are used for some of its pictures only, these for all.
    const_cast<de265_image_allocation &>(*de265_get_default_image_allocation_functions()) = {allocatePlanes,
                                                                                             freePlanes};
}

class HevcDecoder
{
public:
    HevcDecoder()
        : m_context(de265_new_decoder())
    {
        if (!m_context)
            throw std::bad_alloc();
        de265_set_parameter_bool(m_context.get(), DE265_DECODER_PARAM_SUPPRESS_FAULTY_PICTURES, 1);
    }

    /// @param data  units, each after its length in four bytes
    heif_error push(const uint8_t *data, size_t size)
    {
        while (size > 0) {
            if (size < 4 || qFromBigEndian<quint32>(data) > size - 4)
                return {heif_error_Decoder_plugin_error, heif_suberror_End_of_data, "truncated"};
            const quint32 unit = qFromBigEndian<quint32>(data);
            if (const auto error = de265_push_NAL(m_context.get(), data + 4, int(unit), 0, nullptr);
                error != DE265_OK)
                return resultOf(error);
            data += 4 + unit;
            size -= 4 + unit;
        }
        return kDone;
    }

    heif_error decode(heif_image **out)
    {
        de265_error error = de265_flush_data(m_context.get());
        HeifImage decoded;
        for (int more = 1; more && error == DE265_OK;) {
            error = de265_decode(m_context.get(), &more);
            const de265_image *picture = de265_get_next_picture(m_context.get());
            if (!picture)
                continue;
            heif_image *copy = nullptr;
            const heif_error copied = decoded ? kDone : copyOf(picture, &copy);
            de265_release_next_picture(m_context.get());
            if (copied.code != heif_error_Ok)
                return copied;
            if (copy)
                decoded.reset(copy);
        }
        if (error != DE265_OK && error != DE265_ERROR_WAITING_FOR_INPUT_DATA)
            return resultOf(error);
        if (!decoded || hasDamage())
            return kDamaged;
        *out = decoded.release();
        return kDone;
    }

private:
    static heif_error resultOf(de265_error error)
    {
        return error == DE265_ERROR_OUT_OF_MEMORY ? kNoMemory : kDamaged;
    }

    bool hasDamage()
    {
        bool isDamaged = false;
        for (;;) {
            const de265_error warning = de265_get_warning(m_context.get());
            if (warning == DE265_OK)
                return isDamaged;
            isDamaged = isDamaged || warning != DE265_WARNING_NO_WPP_CANNOT_USE_MULTITHREADING;
        }
    }

    static heif_error copyOf(const de265_image *picture, heif_image **out)
    {
        HeifPlanes planes;
        planes.width = de265_get_image_width(picture, 0);
        planes.height = de265_get_image_height(picture, 0);
        planes.bits = de265_get_bits_per_pixel(picture, 0);
        static constexpr heif_chroma kChromas[] = {heif_chroma_monochrome, heif_chroma_420, heif_chroma_422,
                                                   heif_chroma_444};
        planes.chroma = kChromas[de265_get_chroma_format(picture)];
        for (int i = 0; i < planes.count(); ++i) {
            int stride = 0;
            planes.planes[size_t(i)].samples = de265_get_image_plane(picture, i, &stride);
            planes.planes[size_t(i)].stride = stride;
            const bool isUsable = de265_get_image_width(picture, i) == planes.widthOf(i) &&
                                  de265_get_image_height(picture, i) == planes.heightOf(i) &&
                                  de265_get_bits_per_pixel(picture, i) == planes.bits;
            if (!isUsable)
                return {heif_error_Unsupported_feature, heif_suberror_Unsupported_color_conversion,
                        "planes of several kinds"};
            if (!isComplete(picture, i))
                return kDamaged;
        }
        planes.primaries = de265_get_image_colour_primaries(picture);
        planes.transfer = de265_get_image_transfer_characteristics(picture);
        planes.matrix = de265_get_image_matrix_coefficients(picture);
        planes.isFullRange = de265_get_image_full_range_flag(picture) != 0;
        return planes.toHeif(out);
    }

    struct Free {
        void operator()(de265_decoder_context *context) const { de265_free_decoder(context); }
    };
    std::unique_ptr<de265_decoder_context, Free> m_context;
};

} // namespace

const heif_decoder_plugin kHevcPlugin = {
    3,
    [] { return "libde265, strict"; },
    prepareLibrary,
    [] { de265_free(); },
    [](heif_compression_format format) { return format == heif_compression_HEVC ? 1000 : 0; },
    [](void **decoder) {
        try {
            *decoder = new HevcDecoder();
            return kDone;
        } catch (const std::bad_alloc &) {
            return kNoMemory;
        }
    },
    [](void *decoder) { delete static_cast<HevcDecoder *>(decoder); },
    [](void *decoder, const void *data, size_t size) {
        return static_cast<HevcDecoder *>(decoder)->push(static_cast<const uint8_t *>(data), size);
    },
    [](void *decoder, heif_image **image) { return static_cast<HevcDecoder *>(decoder)->decode(image); },
    [](void *, int) {},
    "libde265-strict",
};

} // namespace plexa
