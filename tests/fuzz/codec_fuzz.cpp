// SPDX-License-Identifier: GPL-3.0-or-later

#include "fuzz/codecfuzzing.h"
#include "imageio/codecs/codecs.h"

/// One program for each codec; the build names its functions.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const plexa::Codec codec{.readInfo = plexa::PLEXA_READ_INFO,
                                    .openReader = plexa::PLEXA_OPEN_READER};
    plexa::test::decodeForFuzzing(codec, data, size);
    return 0;
}
