// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/raw/rawsamples.h"

#include "imageio/base/filling.h"

#include <algorithm>
#include <cstring>

namespace plexa
{

namespace
{

/// The decoded samples of one place: one for a filter array, else three or four.
struct Places {
    const quint16 *first = nullptr; ///< null: in a way of the decoder's own
    int samples = 1;
    int filled = 1; ///< by prepare(); the fourth of a color is 0 where a decoder has none
};

Places placesOf(const libraw_rawdata_t &data)
{
    if (data.raw_image)
        return {data.raw_image, 1, 1};
    if (data.color3_image)
        return {data.color3_image[0], 3, 3};
    if (data.color4_image)
        return {data.color4_image[0], 4, 3};
    return {};
}

/// Is there a row for which the function, which receives the row's first sample, is true?
template<class Test>
bool anyRow(const libraw_image_sizes_t &sizes, const Places &places, Test test)
{
    const qsizetype pitch = qsizetype(sizes.raw_pitch) / qsizetype(sizeof(quint16));
    for (int row = 0; row < sizes.height; ++row) {
        if (test(places.first + (sizes.top_margin + row) * pitch + sizes.left_margin * places.samples))
            return true;
    }
    return false;
}

} // namespace

bool RawSamples::prepare(libraw_data_t &raw, bool isRotatedBy45)
{
    const libraw_image_sizes_t &sizes = raw.sizes;
    if (raw.rawdata.raw_alloc) {
        qsizetype width = sizes.raw_width, height = sizes.raw_height;
        if (!isRotatedBy45) {
            width = std::max<qsizetype>(width, sizes.width + sizes.left_margin);
            height = std::max<qsizetype>(height, sizes.height + sizes.top_margin);
        }
        auto *samples = static_cast<quint16 *>(raw.rawdata.raw_alloc);
        const qsizetype count = width * height * (raw.rawdata.color3_image ? 3 : 1);
        for (qsizetype i = 0; i < count; ++i)
            samples[i] = Filling::at<quint16>(i);
        return true;
    }
    if (!raw.image)
        return false;
    const qsizetype count =
        qsizetype(std::max(sizes.width, sizes.raw_width)) * std::max(sizes.height, sizes.raw_height);
    for (qsizetype i = 0; i < count; ++i) {
        for (int sample = 0; sample < 3; ++sample)
            raw.image[i][sample] = Filling::at<quint16>(4 * i + sample);
    }
    return true;
}

bool RawSamples::areComplete(const libraw_data_t &raw)
{
    const Places places = placesOf(raw.rawdata);
    if (!places.first)
        return true;
    constexpr int kRun = 6; // places in a row, of which each may be untouched by chance
    const auto isUntouched = [&](const quint16 *place) {
        const qsizetype index = place - places.first;
        for (int i = 0; i < kRun * places.samples; ++i) {
            if (i % places.samples < places.filled && place[i] != Filling::at<quint16>(index + i))
                return false;
        }
        return true;
    };
    constexpr int kStep = 24;
    return !anyRow(raw.rawdata.sizes, places, [&](const quint16 *row) {
        for (int x = 0; x + kRun <= raw.rawdata.sizes.width; x += kStep) {
            if (isUntouched(row + x * places.samples))
                return true;
        }
        return false;
    });
}

bool RawSamples::areUniform(const libraw_data_t &raw)
{
    const Places places = placesOf(raw.rawdata);
    if (!places.first || raw.rawdata.sizes.width < 1)
        return false;
    const size_t placeBytes = sizeof(quint16) * size_t(places.samples);
    const size_t restBytes = placeBytes * (raw.rawdata.sizes.width - 1U);
    const quint16 *first = nullptr;
    return !anyRow(raw.rawdata.sizes, places, [&](const quint16 *row) {
        first = first ? first : row;
        // A row that equals itself moved by one place has one value.
        return std::memcmp(first, row, placeBytes) != 0 ||
               std::memcmp(row, row + places.samples, restBytes) != 0;
    });
}

} // namespace plexa
