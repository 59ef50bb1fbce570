// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

#include <QBuffer>

#include <cstdlib>

namespace plexa::test
{

/// Decodes bytes through one codec, whole and at a reduced scale, within limits that keep a run quick. Stops
/// the program where the codec breaks its own word.
inline void decodeForFuzzing(const Codec &codec, const uint8_t *data, size_t size)
{
    const ReadLimits limits = {2'000'000, 32'000'000};
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    const auto info = codec.readInfo(device, limits);
    if (!info)
        return;
    for (const int reduction : {1, 8}) {
        const auto reader = codec.openReader(device, limits, reduction);
        if (!reader)
            continue;
        const RowFormat format = (*reader)->format();
        if (reduction == 1 && format != info->rows)
            std::abort();
        QImage strip(format.size.width(), 50, format.imageFormat());
        for (int row = 0; row < format.size.height(); row += strip.height()) {
            if (!(*reader)->readRows(strip, qMin(strip.height(), format.size.height() - row)))
                break;
        }
    }
}

} // namespace plexa::test
