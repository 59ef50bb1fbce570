// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/tiff/tiffsamples.h"

#include <QFloat16>

#include <cstring>

namespace plexa
{

namespace
{

template<class Value>
Value valueAt(const uchar *bytes, qint64 index)
{
    Value value;
    std::memcpy(&value, bytes + index * qint64(sizeof value), sizeof value);
    return value;
}

quint16 wordOf(double value)
{
    return value > 0 ? quint16(qMin(value, 1.0) * 65535 + 0.5) : 0;
}

quint16 wordOf(float value)
{
    return value > 0 ? quint16(qMin(value, 1.0f) * 65535 + 0.5f) : 0;
}

/// The sample of up to 16 bits that begins at that bit.
quint32 bitsAt(const uchar *bytes, qint64 bit, int depth)
{
    const uchar *b = bytes + bit / 8;
    const int end = int(bit % 8) + depth; // in bits from the first byte on
    quint32 value = b[0];
    int read = 8;
    for (; read < end; read += 8)
        value = value << 8 | *++b;
    return value >> (read - end) & ((1u << depth) - 1);
}

template<class Sample>
void unpack(qint64 count, quint16 *out, int stride, Sample sample)
{
    for (qint64 i = 0; i < count; ++i, out += stride)
        *out = sample(i);
}

void unpackFloats(const uchar *bytes, qint64 count, int depth, quint16 *out, int stride)
{
    switch (depth) {
    case 16:
        unpack(count, out, stride, [bytes](qint64 i) { return wordOf(float(valueAt<qfloat16>(bytes, i))); });
        break;
    case 32:
        unpack(count, out, stride, [bytes](qint64 i) { return wordOf(valueAt<float>(bytes, i)); });
        break;
    default:
        unpack(count, out, stride, [bytes](qint64 i) { return wordOf(valueAt<double>(bytes, i)); });
    }
}

} // namespace

void unpackTiffSamples(const uchar *bytes, qint64 count, int depth, bool isFloat, quint16 *out, int stride)
{
    if (isFloat) {
        unpackFloats(bytes, count, depth, out, stride);
        return;
    }
    switch (depth) {
    case 8:
        unpack(count, out, stride, [bytes](qint64 i) { return bytes[i]; });
        break;
    case 16:
        unpack(count, out, stride, [bytes](qint64 i) { return valueAt<quint16>(bytes, i); });
        break;
    case 32:
        unpack(count, out, stride, [bytes](qint64 i) {
            return quint16((valueAt<quint32>(bytes, i) * quint64(65535) + 0x7fffffff) / 0xffffffff);
        });
        break;
    default: {
        const quint32 full = (1u << depth) - 1;
        unpack(count, out, stride, [=](qint64 i) {
            const quint32 value = bitsAt(bytes, i * depth, depth);
            return quint16(depth < 8 ? value : (value * 65535 + full / 2) / full);
        });
    }
    }
}

} // namespace plexa
