// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heifstreams.h"

#include <algorithm>

namespace plexa
{

namespace
{

/// Bits from the highest of each byte down; behind the end there are zeros, and isWhole turns false.
class BitReader
{
public:
    explicit BitReader(QByteArray bytes)
        : m_bytes(std::move(bytes))
    {
    }

    quint32 bits(int count)
    {
        quint32 value = 0;
        for (; count > 0; --count, ++m_at) {
            const qsizetype byte = m_at / 8;
            isWhole = isWhole && byte < m_bytes.size();
            value = value << 1 | (isWhole ? uint(uchar(m_bytes[byte])) >> (7 - m_at % 8) & 1 : 0);
        }
        return value;
    }

    bool bit() { return bits(1) != 0; }
    void skip(qsizetype count) { m_at += count; }

    /// An unsigned number of exponential Golomb code.
    quint32 golomb()
    {
        int zeros = 0;
        while (isWhole && !bit())
            ++zeros;
        isWhole = isWhole && zeros < 32;
        return isWhole ? (quint32(1) << zeros) - 1 + bits(zeros) : 0;
    }

    bool isWhole = true;

private:
    const QByteArray m_bytes;
    qsizetype m_at = 0;
};

/// A NAL unit without the bytes that keep start codes from occurring in it.
QByteArray unescaped(const QByteArray &nal)
{
    QByteArray bytes;
    int zeros = 0;
    for (const char byte : nal) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        bytes.append(byte);
    }
    return bytes;
}

QSize sizeOf(quint32 width, quint32 height)
{
    constexpr quint32 kMax = 0x7fffffff;
    return {int(qMin(width, kMax)), int(qMin(height, kMax))};
}

/// profile_tier_level() with all that its sublayers may bring.
void skipHevcProfile(BitReader &reader, int sublayers)
{
    constexpr int kProfileBits = 88;
    constexpr int kLevelBits = 8;
    reader.skip(kProfileBits + kLevelBits);
    int more = 0;
    for (int i = 0; i < sublayers; ++i) {
        more += reader.bit() ? kProfileBits : 0;
        more += reader.bit() ? kLevelBits : 0;
    }
    if (sublayers > 0)
        reader.skip(2 * (8 - sublayers));
    reader.skip(more);
}

/// Timing and operating points, which stand in front of the size.
void skipAv1OperatingPoints(BitReader &reader)
{
    int delayBits = 0;
    if (reader.bit()) { // timing_info_present_flag
        reader.skip(64);
        if (reader.bit())
            reader.golomb(); // num_ticks_per_picture_minus_1 is coded the same way
        if (reader.bit()) {  // decoder_model_info_present_flag
            delayBits = int(reader.bits(5)) + 1;
            reader.skip(32 + 5 + 5);
        }
    }
    const bool hasDisplayDelay = reader.bit();
    for (auto points = int(reader.bits(5)); points >= 0; --points) {
        reader.skip(12);
        if (reader.bits(5) > 7) // seq_level_idx
            reader.skip(1);
        if (delayBits > 0 && reader.bit())
            reader.skip(2 * delayBits + 1);
        if (hasDisplayDelay && reader.bit())
            reader.skip(4);
    }
}

/// ITU-T H.265, 7.4.3.2.1: what the sizes of blocks have to keep to. The decoder sees that, too, and prints
/// it.
/// @param reader  behind the size of the picture
bool hasSoundBlocks(BitReader &reader, int sublayers, quint32 width, quint32 height)
{
    if (reader.bit()) { // conformance_window_flag
        for (int side = 0; side < 4; ++side)
            reader.golomb();
    }
    for (int i = 0; i < 3; ++i) // bit depths, picture order count
        reader.golomb();
    const int layers = reader.bit() ? sublayers + 1 : 1;
    for (int i = 0; i < 3 * layers; ++i)
        reader.golomb();
    const quint32 smallest = reader.golomb() + 3; // coding blocks, as powers of two
    const quint32 largest = smallest + reader.golomb();
    const quint32 smallestTransform = reader.golomb() + 2;
    const quint32 largestTransform = smallestTransform + reader.golomb();
    if (!reader.isWhole)
        return true; // the decoder gets no further either
    return smallest <= 6 && largest <= 6 && smallestTransform < smallest &&
           largestTransform <= std::min(largest, 5U) && width % (1U << smallest) == 0 &&
           height % (1U << smallest) == 0;
}

} // namespace

CodedPicture pictureOfHevc(const QByteArray &nal)
{
    BitReader reader(unescaped(nal.mid(2)));
    reader.skip(4);
    const auto sublayers = int(reader.bits(3)); // sps_max_sub_layers_minus1
    reader.skip(1);
    skipHevcProfile(reader, sublayers);
    reader.golomb(); // its id
    CodedPicture picture;
    picture.chroma = int(reader.golomb() & 3);
    if (picture.chroma == 3)
        reader.skip(1);
    const quint32 width = reader.golomb();
    const quint32 height = reader.golomb();
    if (reader.isWhole)
        picture.size = sizeOf(width, height);
    picture.isSound = hasSoundBlocks(reader, sublayers, width, height);
    return picture;
}

CodedPicture pictureOfAv1(const QByteArray &header)
{
    BitReader reader(header);
    reader.skip(4);
    if (reader.bit()) // reduced_still_picture_header
        reader.skip(5);
    else
        skipAv1OperatingPoints(reader);
    const auto widthBits = int(reader.bits(4)) + 1;
    const auto heightBits = int(reader.bits(4)) + 1;
    const quint32 width = reader.bits(widthBits) + 1;
    const quint32 height = reader.bits(heightBits) + 1;
    CodedPicture picture;
    if (reader.isWhole)
        picture.size = sizeOf(width, height);
    return picture;
}

} // namespace plexa
