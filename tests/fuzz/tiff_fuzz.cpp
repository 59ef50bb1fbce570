// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/tiff/tiffcodec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const plexa::TiffCodec codec;
    plexa::test::decodeForFuzzing(codec, data, size);
    return 0;
}
