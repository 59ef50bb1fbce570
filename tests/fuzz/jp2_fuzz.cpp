// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/jp2/jp2codec.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const plexa::Jp2Codec codec;
    plexa::test::decodeForFuzzing(codec, data, size);
    return 0;
}
