// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/heif/heifmeasure.h"

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/heif/heifstreams.h"

#include <QtEndian>

namespace plexa
{

namespace
{

constexpr int kMaxDepth = 4; // a grid of pictures that are turned: two
constexpr int kMaxUnits = 100'000;
constexpr qint64 kHeadBytes = 512; // of a picture's head; real ones have less than a hundred

// Decoding may take this many times the pixels of the picture (alpha, the tiles' edges, overlays), and so
// many more where the picture is small.
constexpr qint64 kWorkFactor = 4;
constexpr qint64 kSpareWork = 64'000'000;

qint64 areaOf(QSize size)
{
    return qint64(size.width()) * size.height(); // below 2^62
}

/// One decoding of an item with all that belongs to it.
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
        m_result.codedPixels = work->pixels;
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
        if (item == m_items.items.end() || depth > kMaxDepth || !item->hasSoundTurns)
            return fail(PictureFailures::damaged());
        if (const auto known = m_known.find(id); known != m_known.end())
            return *known;
        m_result.hasTurnedParts =
            m_result.hasTurnedParts || (id != m_items.primary && !item->turns.isEmpty());
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
                return fail(PictureFailures::endsEarly());
            bytes += extent.length;
            if (bytes > end) // the same bytes over and over
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

    /// ISO 23008-12, 6.6.2: what a grid or an overlay says of its size in its own data.
    QSize canvasOf(const HeifItem &item)
    {
        const QByteArray bytes = m_items.bytes(m_device, item, 0, 64);
        const bool isWide = bytes.size() > 1 && (bytes[1] & 1) != 0;
        const qsizetype at = item.type == "grid" ? 4 : 2 + 4 * 2; // rows and columns; the background's colour
        if (bytes.size() < at + (isWide ? 8 : 4))
            return {};
        const char *data = bytes.constData() + at;
        if (!isWide)
            return {qFromBigEndian<quint16>(data), qFromBigEndian<quint16>(data + 2)};
        constexpr quint32 kMax = 0x7fffffff;
        return {int(qMin(qFromBigEndian<quint32>(data), kMax)),
                int(qMin(qFromBigEndian<quint32>(data + 4), kMax))};
    }

    /// Takes notice of a coded picture's head.
    Result<void> see(const CodedPicture &picture)
    {
        if (picture.size.isEmpty())
            return {};
        if (!picture.isSound)
            return fail(PictureFailures::damaged());
        if (areaOf(picture.size) > areaOf(m_codedSize))
            m_codedSize = picture.size;
        return PictureFailures::checkSize(picture.size, m_limits);
    }

    /// The first coded picture is one of the colors; alpha follows.
    void noteChroma(int chroma)
    {
        if (!m_hasChroma)
            m_result.chroma = chroma;
        m_hasChroma = true;
    }

    static bool isSequenceParameterSet(const QByteArray &nal)
    {
        return nal.size() > 2 && (uchar(nal[0]) >> 1 & 0x3f) == 33;
    }

    /// ISO 14496-15, 8.3.3.1: the parameter sets beside the picture; then its own NAL units, which may bring
    /// others.
    Result<void> scanHevc(const HeifItem &item)
    {
        const QByteArray &record = item.configuration;
        // The decoder takes lengths of four bytes for granted.
        if (record.size() < 23 || (record[21] & 3) != 3)
            return fail(PictureFailures::damaged());
        noteChroma(record[16] & 3);
        qsizetype at = 23;
        for (int arrays = uchar(record[22]); arrays > 0 && at + 3 <= record.size(); --arrays) {
            int count = qFromBigEndian<quint16>(record.constData() + at + 1);
            at += 3;
            for (; count > 0 && at + 2 <= record.size(); --count) {
                const qsizetype size = qFromBigEndian<quint16>(record.constData() + at);
                const Result<void> seen = seeHevc(record.mid(at + 2, size));
                if (!seen)
                    return seen;
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
                const Result<void> seen =
                    seeHevc(m_items.bytes(m_device, item, offset + 4, qMin(size, kHeadBytes)));
                if (!seen)
                    return seen;
            }
            offset += 4 + size;
        }
    }

    Result<void> seeHevc(const QByteArray &nal)
    {
        return isSequenceParameterSet(nal) ? see(pictureOfHevc(nal)) : Result<void>();
    }

    /// AV1 bitstream specification, 5.3: units with a byte or two of header and their length.
    Result<void> scanAv1(const HeifItem &item)
    {
        const QByteArray &record = item.configuration;
        if (record.size() < 4)
            return fail(PictureFailures::damaged());
        const int flags = uchar(record[2]);
        // monochrome, subsampling_x, subsampling_y
        noteChroma((flags & 16) != 0 ? 0 : (flags & 8) == 0 ? 3 : (flags & 4) == 0 ? 2 : 1);
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
                const Result<void> seen =
                    see(pictureOfAv1(bytes(offset + headerBytes, qMin(size, kHeadBytes))));
                if (!seen)
                    return seen;
            }
            if ((first & 2) == 0 || size > m_device.size()) // it reaches to the end
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
    QSize m_codedSize; ///< of the picture that is looked at
    QHash<quint32, Work> m_known;
};

} // namespace

Result<HeifMeasure> measureHeif(QIODevice &device, const HeifItems &items, const ReadLimits &limits,
                                const char *formatName)
{
    return Measurer(device, items, limits, formatName).measure();
}

} // namespace plexa
