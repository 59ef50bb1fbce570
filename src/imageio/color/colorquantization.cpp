// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/colorquantization.h"

#include "imageio/base/openmpthreads.h"
#include "imageio/base/picturefailures.h"

#include <libimagequant.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <unordered_set>
#include <utility>

namespace plexa
{

namespace
{

template<auto destroy>
struct Destroyer {
    template<class T>
    void operator()(T *object) const
    {
        destroy(object);
    }
};

using Attributes = std::unique_ptr<liq_attr, Destroyer<liq_attr_destroy>>;
using Image = std::unique_ptr<liq_image, Destroyer<liq_image_destroy>>;
using Colors = std::unique_ptr<liq_result, Destroyer<liq_result_destroy>>;

/// The library's memory for one picture. Version 2.17 never frees two rows of pictures that it does not store
/// as floats: this frees them.
class LibraryMemory
{
public:
    LibraryMemory() { s_blocks = &m_blocks; }
    ~LibraryMemory()
    {
        s_blocks = nullptr;
        std::for_each(m_blocks.begin(), m_blocks.end(), std::free);
    }
    LibraryMemory(const LibraryMemory &) = delete;
    LibraryMemory &operator=(const LibraryMemory &) = delete;

    static void *take(size_t bytes) noexcept
    {
        void *block = std::malloc(bytes);
        try {
            if (block && s_blocks)
                s_blocks->insert(block);
        } catch (const std::bad_alloc &) {
            std::free(std::exchange(block, nullptr));
        }
        return block;
    }

    static void giveBack(void *block) noexcept
    {
        if (s_blocks)
            s_blocks->erase(block);
        std::free(block);
    }

private:
    static thread_local std::unordered_set<void *> *s_blocks; ///< of the picture in work on this thread
    std::unordered_set<void *> m_blocks;
};

thread_local std::unordered_set<void *> *LibraryMemory::s_blocks = nullptr;

/// The library stores pictures up to this many pixels as floats as well.
constexpr qint64 kMaxPixelsKeptAsFloats = (qint64(1) << 26) / 16;

Error failureOf(liq_error code)
{
    return {code == LIQ_OUT_OF_MEMORY ? PictureFailures::outOfMemory()
                                      : PictureFailures::colorsNotReduced(code)};
}

} // namespace

Result<IndexedPicture> quantizedPicture(const uchar *pixels, QSize size, int maxColors)
{
    const OneOpenMpThread oneThread; // two need half as much work again
    const LibraryMemory memory;      // destroyed last
    const Attributes attributes(liq_attr_create_with_allocator(LibraryMemory::take, LibraryMemory::giveBack));
    if (!attributes)
        return fail(PictureFailures::outOfMemory());
    // Measured: slower settings than the usual one (4) gain less than 0.1 dB; the quick ones (from 8) lose
    // 1 to 2.5 dB for three fifths of the time.
    liq_set_speed(attributes.get(), 4);
    if (const liq_error code = liq_set_max_colors(attributes.get(), maxColors); code != LIQ_OK)
        return tl::unexpected(failureOf(code));
    const Image image(liq_image_create_rgba(attributes.get(), pixels, size.width(), size.height(), 0));
    if (!image) // the sizes are within its bounds
        return fail(PictureFailures::outOfMemory());
    liq_result *result = nullptr;
    if (const liq_error code = liq_image_quantize(image.get(), attributes.get(), &result); code != LIQ_OK)
        return tl::unexpected(failureOf(code));
    const Colors colors(result);
    liq_set_dithering_level(result, 1);
    const auto count = size_t(size.width()) * size_t(size.height());
    IndexedPicture picture;
    picture.indices.reset(new (std::nothrow) uchar[count]);
    if (!picture.indices)
        return fail(PictureFailures::outOfMemory());
    if (const liq_error code = liq_write_remapped_image(result, image.get(), picture.indices.get(), count);
        code != LIQ_OK)
        return tl::unexpected(failureOf(code));
    // Dithering changes the colors.
    const liq_palette *palette = liq_get_palette(result);
    for (unsigned int i = 0; i < palette->count; ++i)
        picture.palette.push_back(qRgb(palette->entries[i].r, palette->entries[i].g, palette->entries[i].b));
    return picture;
}

qint64 maxQuantizedPixels()
{
    return std::numeric_limits<int>::max() / qint64(sizeof(liq_color));
}

qint64 quantizingBytes(QSize size)
{
    // Measured: the indices and four maps of a byte per pixel; the table of all colors and line buffers.
    const qint64 pixels = qint64(size.width()) * size.height();
    return pixels * (pixels <= kMaxPixelsKeptAsFloats ? 21 : 5) + 4'000'000;
}

} // namespace plexa
