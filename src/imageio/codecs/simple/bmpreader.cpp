// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/endwatch.h"
#include "imageio/base/picturefailures.h"
#include "imageio/codecs/simple/bmpcodec.h"
#include "imageio/codecs/simple/qtcodec.h"

#include <QtEndian>

namespace plexa
{

namespace
{

const QtCodec &qtCodec()
{
    static const QtCodec codec("bmp", readBmpHeader);
    return codec;
}

/// Where the pixels begin: what is asked for there has to be there.
qint64 pixelsBegin(QIODevice &device)
{
    constexpr qint64 kSmallestHeaders = 26;
    char field[4] = {};
    if (!device.seek(10) || device.read(field, sizeof field) != qint64(sizeof field))
        return kSmallestHeaders;
    return qMax(kSmallestHeaders, qint64(qFromLittleEndian<quint32>(field)));
}

} // namespace

Result<PictureInfo> BmpCodec::readInfo(QIODevice &device, const ReadLimits &limits) const
{
    return qtCodec().readInfo(device, limits);
}

Result<std::unique_ptr<RowReader>> BmpCodec::openReader(QIODevice &device, const ReadLimits &limits,
                                                        int reduction) const
{
    // The plugin gives a picture whose data end early as if it were whole.
    EndWatch watch(device, pixelsBegin(device));
    auto reader = qtCodec().openReader(watch, limits, reduction);
    if (watch.hasEndedEarly())
        return fail(PictureFailures::endsEarly());
    return reader; // which holds the whole picture, and the watch no more
}

} // namespace plexa
