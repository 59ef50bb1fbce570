// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/codecs.h"

#include <QPainter>

namespace
{

using namespace plexa;

/// Can the whole picture be read?
bool isReadable(QIODevice &device, const ReadLimits &limits)
{
    device.seek(0);
    const auto reader = openJpegReader(device, limits, 1);
    if (!reader)
        return false;
    QImage picture((*reader)->format().size, (*reader)->format().imageFormat());
    return (*reader)->readRows(picture, picture.height()).has_value();
}

} // namespace

/// The first byte chooses orientation and quality, the rest is a JPEG. Aborts if a copy is made of a file
/// that the reader refuses, if it cannot be read, or if more memory is taken than announced.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 2)
        return 0;
    const ReadLimits limits = {2'000'000, 32'000'000};
    QByteArray bytes(reinterpret_cast<const char *>(data) + 1, qsizetype(size) - 1);
    QBuffer from(&bytes);
    from.open(QIODevice::ReadOnly);
    const auto info = readJpegInfo(from, limits);
    if (!info)
        return 0;
    Retouch retouch{data[0] % 8 + 1, {QRect(20, 10, 24, 16)}, [](QImage &part, QPoint at) {
                        QPainter(&part).fillRect(QRect(20, 10, 24, 16).translated(-at), Qt::white);
                    }};
    WriteOptions options;
    options.quality = (data[0] / 8 + 1) / 32.0;
    options.isProgressive = info->isProgressive;
    options.exif = QByteArray("MM\0*\0\0\0\x8\0\0\0\0\0\0", 14) + QByteArray(2'000, 'x');
    options.thumbnailPlaceholder = QByteArray(2'000, 'x');
    QBuffer to;
    to.open(QIODevice::ReadWrite);
    from.seek(0);
    test::Allocations &allocations = test::Allocations::all();
    const qint64 before = allocations.restart();
    const auto notice = retouchJpeg(from, limits, to, options, retouch);
    test::checkAllocated(allocations.peak() - before - to.size(),
                         retouchJpegBytes(*info, options, retouch.orientation), "retouch");
    if (notice && (!isReadable(from, limits) || !isReadable(to, limits)))
        std::abort();
    return 0;
}
