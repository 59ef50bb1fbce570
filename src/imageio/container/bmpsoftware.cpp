// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/bmpsoftware.h"

#include <QtEndian>

#include <algorithm>

namespace plexa
{

QByteArray softwareOfBmp(QIODevice &device)
{
    constexpr quint32 kVersion4Bytes = 108;
    constexpr quint32 kSrgb = 0x73524742;
    const QByteArray start = device.seek(0) ? device.read(kBmpSoftwareAt + kBmpSoftwareBytes) : QByteArray();
    if (start.size() < kBmpSoftwareAt + kBmpSoftwareBytes || !start.startsWith("BM") ||
        qFromLittleEndian<quint32>(start.constData() + 14) < kVersion4Bytes ||
        qFromLittleEndian<quint32>(start.constData() + 70) != kSrgb)
        return {};
    const QByteArray field = start.mid(kBmpSoftwareAt);
    const QByteArray name = field.left(field.indexOf('\0'));
    const auto isPrintable = [](char c) { return c >= ' ' && c <= '~'; };
    const bool isName = std::all_of(name.begin(), name.end(), isPrintable) &&
                        std::all_of(field.begin() + name.size(), field.end(), [](char c) { return c == 0; });
    return isName ? name : QByteArray();
}

} // namespace plexa
