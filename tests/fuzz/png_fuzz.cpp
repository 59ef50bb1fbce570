// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/png/pngcodec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const plexa::PngCodec codec;
    plexa::test::decodeForFuzzing(codec, data, size);
    return 0;
}
