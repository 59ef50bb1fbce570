// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/bmpsoftware.h"

#include <QtEndian>

#include <algorithm>

namespace plexa
{

QByteArray softwareOfBmp(QIODevice &device)
{
    constexpr quint32 kVersion4Bytes = 108;
    constexpr qint64 kMostBytes = 100;
    const QByteArray start = device.seek(0) ? device.read(kBmpSoftwareAt + kMostBytes) : QByteArray();
    if (start.size() <= kBmpSoftwareAt || !start.startsWith("BM") ||
        qFromLittleEndian<quint32>(start.constData() + 14) != kVersion4Bytes)
        return {};
    const qint64 bytes = qint64(qFromLittleEndian<quint32>(start.constData() + 10)) - kBmpSoftwareAt;
    if (bytes <= 0 || bytes > kMostBytes)
        return {};
    const QByteArray field = start.mid(kBmpSoftwareAt, bytes);
    const QByteArray name = field.left(field.indexOf('\0'));
    const bool isName = std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c <= '~'; });
    return isName ? name : QByteArray();
}

} // namespace plexa
