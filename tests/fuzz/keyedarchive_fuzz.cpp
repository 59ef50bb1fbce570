// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"

#include <cstdlib>

using namespace plexa;

namespace
{

/// Asks a value to be everything that there is.
void lookAt(const ArchivedValue &value, int depth)
{
    value.string();
    value.number();
    value.data();
    value.boolean();
    value.color();
    value.imageRepresentations();
    if (depth == 0)
        return;
    for (const ArchivedValue &element : value.array().value_or(std::vector<ArchivedValue>()))
        lookAt(element, depth - 1);
}

/// What was read can be copied into another archive, which can be read.
void copy(const ArchivedValue &value)
{
    KeyedArchiver archiver;
    archiver.top().setObject(QLatin1StringView("copy"), archiver.addCopy(value.kept()));
    const auto bytes = archiver.finish();
    const auto again = bytes ? ArchivedValue::readArchive(*bytes) : Result<ArchivedValue>(ArchivedValue());
    if (!again || (bytes && again->value(QLatin1StringView("copy")).isNone()))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto top = ArchivedValue::readArchive(bytes);
    if (top)
        copy(*top);
    for (const char *key : {"WPresets", "plain", "mutable", "array", "mutableArray", "calibrated", "white",
                            "cmyk", "catalogue", "srgb", "image", "loop", "color"}) {
        if (top)
            lookAt(top->value(QLatin1StringView(key)), 3);
    }
    return 0;
}
