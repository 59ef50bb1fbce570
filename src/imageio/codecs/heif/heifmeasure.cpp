// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heifmeasure.h"

#include "imageio/base/picturefailures.h"

#include <QtEndian>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr int kMaxDepth = 4; // real files: two, a grid of rotated pictures
constexpr int kMaxUnits = 100'000;
constexpr qint64 kHeadBytes = 512; // of a picture's header; real ones have fewer than a hundred

// Decoding may process this many times the pixels of the picture (alpha, the tiles' edges, overlays), and
// this many more if the picture is small.
constexpr qint64 kWorkFactor = 4;
constexpr qint64 kSpareWork = 64'000'000;

qint64 areaOf(QSize size)
{
    return qint64(size.width()) * size.height(); // below 2^62
}

/// The header of a coded picture.
struct CodedPicture {
    QSize size;          ///< as coded, before any cropping; empty: these bytes are not such a header
    bool isValid = true; ///< false: sizes of blocks contradict each other
};

/// Bits from the highest of each byte down; zeros after the end, where isWhole becomes false.
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

/// A NAL unit without its emulation prevention bytes.
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

/// profile_tier_level() with its sublayers.
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

/// Timing and operating points, which precede the size.
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

/// ITU-T H.265, 7.4.3.2.1: the rules for the sizes of blocks. The decoder checks them as well, but prints.
/// @param reader  after the size of the picture
bool hasValidBlocks(BitReader &reader, int sublayers, quint32 width, quint32 height)
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
        return true; // the decoder stops here, too
    return smallest <= 6 && largest <= 6 && smallestTransform < smallest &&
           largestTransform <= std::min(largest, 5U) && width % (1U << smallest) == 0 &&
           height % (1U << smallest) == 0;
}

/// @param nal  a sequence parameter set of HEVC with its two bytes of NAL unit header (ITU-T H.265, 7.3.2.2)
CodedPicture pictureOfHevc(const QByteArray &nal)
{
    BitReader reader(unescaped(nal.mid(2)));
    reader.skip(4);
    const auto sublayers = int(reader.bits(3)); // sps_max_sub_layers_minus1
    reader.skip(1);
    skipHevcProfile(reader, sublayers);
    reader.golomb();                // its id
    if ((reader.golomb() & 3) == 3) // chroma_format_idc
        reader.skip(1);
    const quint32 width = reader.golomb();
    const quint32 height = reader.golomb();
    CodedPicture picture;
    if (reader.isWhole)
        picture.size = sizeOf(width, height);
    picture.isValid = hasValidBlocks(reader, sublayers, width, height);
    return picture;
}

/// @param header  the payload of an AV1 sequence header OBU (AV1 bitstream specification, 5.5)
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

/// Decoding an item once with its parts.
struct Work {
    qint64 pixels = 0;
    qint64 largest = 0;
};

class Measurer
{
public:
    Measurer(QIODevice &device, const HeifItems &items, const ReadLimits &limits, const char *formatName)
        : m_device(device)
        , m_items(items)
        , m_limits(limits)
        , m_formatName(formatName)
    {
    }

    Result<HeifMeasure> measure()
    {
        const Result<Work> work = workOf(m_items.primary, 0);
        if (!work)
            return tl::unexpected(work.error());
        m_result.largestPixels = work->largest;
        if (work->pixels > kWorkFactor * areaOf(m_result.canvas) + kSpareWork)
            return fail(PictureFailures::damaged());
        return m_result;
    }

private:
    static bool isAlpha(const HeifItem &item)
    {
        return item.auxiliaryType.contains(":alpha") || item.auxiliaryType.contains("auxid:1");
    }

    Result<Work> workOf(quint32 id, int depth)
    {
        const auto item = m_items.items.find(id);
        if (item == m_items.items.end() || depth > kMaxDepth || !item->hasValidTurns)
            return fail(PictureFailures::damaged());
        if (const auto known = m_known.find(id); known != m_known.end())
            return *known;
        m_result.hasRotatedParts =
            m_result.hasRotatedParts || (id != m_items.primary && !item->turns.isEmpty());
        const Result<void> checked = checkItem(*item);
        if (!checked)
            return tl::unexpected(checked.error());
        Result<Work> work = isCoded(*item) ? workOfCoded(*item) : workOfDerived(*item, depth);
        for (const quint32 auxiliary : item->auxiliaries) {
            const auto alpha = m_items.items.find(auxiliary);
            if (work && alpha != m_items.items.end() && isAlpha(*alpha))
                work = sum(*work, workOf(auxiliary, depth + 1));
        }
        if (work)
            m_known.insert(id, *work);
        return work;
    }

    Result<Work> sum(Work work, const Result<Work> &more) const
    {
        if (!more)
            return more;
        work.pixels += more->pixels;
        work.largest = qMax(work.largest, more->largest);
        if (work.pixels > kWorkFactor * m_limits.maxPixels + kSpareWork)
            return fail(PictureFailures::damaged());
        return work;
    }

    static bool isCoded(const HeifItem &item) { return item.type == "hvc1" || item.type == "av01"; }

    Result<void> checkItem(const HeifItem &item)
    {
        const bool isDerived = item.type == "grid" || item.type == "iovl" || item.type == "iden";
        if (item.isElsewhere || !(isCoded(item) || isDerived))
            return fail(PictureFailures::unsupportedKind(m_formatName));
        const qint64 end = item.isInDataBox ? m_items.dataBox.size() : m_device.size();
        qint64 bytes = 0;
        for (const HeifItem::Extent &extent : item.extents) {
            if (extent.offset > end || extent.length > end - extent.offset)
                return fail(PictureFailures::truncated());
            bytes += extent.length;
            if (bytes > end) // the same bytes repeatedly
                return fail(PictureFailures::damaged());
        }
        return item.type == "iden" && item.size.isEmpty() ? Result<void>() : checkSize(item.size);
    }

    Result<void> checkSize(QSize size)
    {
        const Result<void> checked = PictureFailures::checkSize(size, m_limits);
        if (checked && areaOf(size) > areaOf(m_result.canvas))
            m_result.canvas = size;
        return checked;
    }

    Result<Work> workOfCoded(const HeifItem &item)
    {
        m_codedSize = item.size;
        const Result<void> scanned = item.type == "hvc1" ? scanHevc(item) : scanAv1(item);
        if (!scanned)
            return tl::unexpected(scanned.error());
        return Work{areaOf(m_codedSize), areaOf(m_codedSize)};
    }

    Result<Work> workOfDerived(const HeifItem &item, int depth)
    {
        if (item.type != "iden") {
            const Result<void> checked = checkSize(canvasOf(item));
            if (!checked)
                return tl::unexpected(checked.error());
        }
        Work work;
        for (const quint32 part : item.parts) {
            const Result<Work> total = sum(work, workOf(part, depth + 1));
            if (!total)
                return total;
            work = *total;
        }
        return work;
    }

    /// ISO 23008-12, 6.6.2: the size in the data of a grid or an overlay.
    QSize canvasOf(const HeifItem &item)
    {
        const QByteArray bytes = m_items.bytes(m_device, item, 0, 64);
        const bool isWide = bytes.size() > 1 && (bytes[1] & 1) != 0;
        const qsizetype at = item.type == "grid" ? 4 : 2 + 4 * 2; // rows and columns; the background's color
        if (bytes.size() < at + (isWide ? 8 : 4))
            return {};
        const char *data = bytes.constData() + at;
        if (!isWide)
            return {qFromBigEndian<quint16>(data), qFromBigEndian<quint16>(data + 2)};
        constexpr quint32 kMax = 0x7fffffff;
        return {int(qMin(qFromBigEndian<quint32>(data), kMax)),
                int(qMin(qFromBigEndian<quint32>(data + 4), kMax))};
    }

    /// Checks and counts a coded picture's header.
    Result<void> inspect(const CodedPicture &picture)
    {
        if (picture.size.isEmpty())
            return {};
        if (!picture.isValid)
            return fail(PictureFailures::damaged());
        if (areaOf(picture.size) > areaOf(m_codedSize))
            m_codedSize = picture.size;
        return PictureFailures::checkSize(picture.size, m_limits);
    }

    /// The first coded picture is one of the colors; alpha follows.
    void recordChroma(int chroma)
    {
        if (!m_hasChroma)
            m_result.chroma = chroma;
        m_hasChroma = true;
    }

    static bool isSequenceParameterSet(const QByteArray &nal)
    {
        return nal.size() > 2 && (uchar(nal[0]) >> 1 & 0x3f) == 33;
    }

    /// ISO 14496-15, 8.3.3.1: the parameter sets beside the picture; then its own NAL units, which may
    /// contain more.
    Result<void> scanHevc(const HeifItem &item)
    {
        const QByteArray &record = item.configuration;
        // The decoder assumes lengths of four bytes.
        if (record.size() < 23 || (record[21] & 3) != 3)
            return fail(PictureFailures::damaged());
        recordChroma(record[16] & 3);
        qsizetype at = 23;
        for (int arrays = uchar(record[22]); arrays > 0 && at + 3 <= record.size(); --arrays) {
            int count = qFromBigEndian<quint16>(record.constData() + at + 1);
            at += 3;
            for (; count > 0 && at + 2 <= record.size(); --count) {
                const qsizetype size = qFromBigEndian<quint16>(record.constData() + at);
                const Result<void> inspected = inspectHevc(record.mid(at + 2, size));
                if (!inspected)
                    return inspected;
                at += 2 + size;
            }
        }
        qint64 offset = 0;
        for (int units = 0;; ++units) {
            const QByteArray head = m_items.bytes(m_device, item, offset, 4 + 2);
            if (head.size() < 4 + 2)
                return {};
            const qint64 size = qFromBigEndian<quint32>(head.constData());
            if (units > kMaxUnits || size > m_device.size())
                return fail(PictureFailures::damaged());
            if (isSequenceParameterSet(head.mid(4) + '\0')) {
                const Result<void> inspected =
                    inspectHevc(m_items.bytes(m_device, item, offset + 4, qMin(size, kHeadBytes)));
                if (!inspected)
                    return inspected;
            }
            offset += 4 + size;
        }
    }

    Result<void> inspectHevc(const QByteArray &nal)
    {
        return isSequenceParameterSet(nal) ? inspect(pictureOfHevc(nal)) : Result<void>();
    }

    /// AV1 bitstream specification, 5.3: units with a byte or two of header and their length.
    Result<void> scanAv1(const HeifItem &item)
    {
        const QByteArray &record = item.configuration;
        if (record.size() < 4)
            return fail(PictureFailures::damaged());
        const int flags = uchar(record[2]);
        // monochrome, subsampling_x, subsampling_y
        recordChroma((flags & 16) != 0 ? 0 : (flags & 8) == 0 ? 3 : (flags & 4) == 0 ? 2 : 1);
        const QByteArray beside = record.mid(4);
        const auto inRecord = [&](qint64 at, qint64 count) {
            return beside.mid(qsizetype(qMin(at, qint64(beside.size()))), qsizetype(count));
        };
        const auto inItem = [&](qint64 at, qint64 count) { return m_items.bytes(m_device, item, at, count); };
        const Result<void> scanned = scanUnits(inRecord);
        return scanned ? scanUnits(inItem) : scanned;
    }

    template<class Bytes>
    Result<void> scanUnits(Bytes bytes)
    {
        constexpr int kSequenceHeader = 1;
        qint64 offset = 0;
        for (int units = 0; units < kMaxUnits; ++units) {
            const QByteArray head = bytes(offset, 10);
            if (head.isEmpty())
                return {};
            const int first = uchar(head[0]);
            qsizetype headerBytes = (first & 4) != 0 ? 2 : 1;
            qint64 size = kHeadBytes;
            if ((first & 2) != 0) {
                size = 0;
                for (int i = 0; i < 8 && headerBytes < head.size(); ++i) {
                    const int byte = uchar(head[headerBytes++]);
                    size |= qint64(byte & 0x7f) << (7 * i);
                    if ((byte & 0x80) == 0)
                        break;
                }
            }
            if ((first >> 3 & 15) == kSequenceHeader) {
                const Result<void> inspected =
                    inspect(pictureOfAv1(bytes(offset + headerBytes, qMin(size, kHeadBytes))));
                if (!inspected)
                    return inspected;
            }
            if ((first & 2) == 0 || size > m_device.size()) // extends to the end
                return {};
            offset += headerBytes + size;
        }
        return fail(PictureFailures::damaged());
    }

    QIODevice &m_device;
    const HeifItems &m_items;
    const ReadLimits &m_limits;
    const char *m_formatName;
    HeifMeasure m_result;
    bool m_hasChroma = false;
    QSize m_codedSize; ///< of the current picture
    QHash<quint32, Work> m_known;
};

} // namespace

Result<HeifMeasure> measureHeif(QIODevice &device, const HeifItems &items, const ReadLimits &limits,
                                const char *formatName)
{
    return Measurer(device, items, limits, formatName).measure();
}

} // namespace plexa
