// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/codecs.h"
#include "imageio/embedded/metadatablocks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const plexa::Codec codec{.readInfo = plexa::readHeifInfo, .openReader = plexa::openHeifReader};
    plexa::test::decodeForFuzzing(codec, data, size);
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    plexa::readMetadataBlocks(device);
    return 0;
}
