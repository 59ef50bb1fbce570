// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/gifstructure.h"

#include "imageio/base/forwardbytes.h"
#include "imageio/base/picturefailures.h"

namespace plexa
{

namespace
{

constexpr int kImage = 0x2c;
constexpr int kExtension = 0x21;
constexpr int kGraphicControl = 0xf9;
constexpr int kComment = 0xfe;
constexpr int kApplication = 0xff;

/// Longer extensions are skipped. Profiles of printers have a few megabytes.
constexpr qsizetype kMaxExtensionBytes = 16 * 1024 * 1024;

int wordAt(const QByteArray &bytes, qsizetype at)
{
    return uchar(bytes[at]) | uchar(bytes[at + 1]) << 8;
}

/// The bytes of the color table that a descriptor's flags announce.
qsizetype tableBytes(int flags)
{
    return (flags & 0x80) != 0 ? 3 * (qsizetype(2) << (flags & 7)) : 0;
}

class GifWalk
{
public:
    explicit GifWalk(QIODevice &device)
        : m_device(device)
        , m_bytes(device)
    {
    }

    Result<GifStructure> run()
    {
        const QByteArray screen = m_bytes.take(13);
        if (screen.size() < 13)
            return fail(failureReason());
        m_found.size = QSize(wordAt(screen, 6), wordAt(screen, 8));
        m_bytes.skip(tableBytes(uchar(screen[10])));
        while (readBlock()) {
        }
        if (m_found.frameCount > 0)
            return std::move(m_found);
        return fail(failureReason());
    }

private:
    QString failureReason() const
    {
        if (m_bytes.readFailed())
            return PictureFailures::readError(m_device);
        return m_bytes.metEnd() ? PictureFailures::truncated() : PictureFailures::damaged();
    }

    bool readBlock()
    {
        int introducer = m_bytes.next();
        while (introducer == 0) // some programs write one terminator too many
            introducer = m_bytes.next();
        if (introducer == kImage)
            return readFrame();
        if (introducer == kExtension)
            return readExtension();
        return false;
    }

    bool readFrame()
    {
        const qint64 start = m_bytes.position() - 1;
        const QByteArray descriptor = m_bytes.take(9);
        if (descriptor.size() < 9)
            return false;
        const int flags = uchar(descriptor[8]);
        m_bytes.skip(tableBytes(flags) + 1); // and the size of the first codes
        const bool isFirst = ++m_found.frameCount == 1;
        const qint64 dataBytes = skipParts();
        if (!isFirst)
            return true;
        m_found.framePosition = start;
        m_found.frameDataBytes = dataBytes;
        m_found.isInterlaced = (flags & 0x40) != 0;
        m_found.frame =
            QRect(wordAt(descriptor, 0), wordAt(descriptor, 2), wordAt(descriptor, 4), wordAt(descriptor, 6));
        m_found.size = m_found.size.expandedTo(
            {m_found.frame.x() + m_found.frame.width(), m_found.frame.y() + m_found.frame.height()});
        return true;
    }

    bool readExtension()
    {
        switch (m_bytes.next()) {
        case kGraphicControl: {
            const QByteArray control = joinedParts();
            if (m_found.frameCount == 0 && control.size() >= 4)
                m_found.transparentIndex = (control[0] & 1) != 0 ? uchar(control[3]) : -1;
            return true;
        }
        case kComment:
            m_found.comments.add(joinedParts());
            return true;
        case kApplication:
            readApplication();
            return true;
        case -1:
            return false;
        default:
            skipParts();
            return true;
        }
    }

    void readApplication()
    {
        const int length = m_bytes.next();
        if (length <= 0)
            return;
        const QByteArray name = m_bytes.take(length);
        if (name == "XMP DataXMP" && m_found.xmp.isEmpty())
            m_found.xmp = readXmp();
        else if (name == "ICCRGBG1012" && m_found.iccProfile.isEmpty())
            m_found.iccProfile = joinedParts();
        else
            skipParts();
    }

    /// The packet is not divided into parts. The bytes 1, 255, 254 ... 1, 0 follow it: a reader that
    /// interprets any letter as the length of a part finds the end.
    QByteArray readXmp()
    {
        constexpr qsizetype kRampBytes = 257;
        QByteArray raw;
        const bool isWhole = readParts([&raw](int length, const QByteArray &part) {
            raw += char(length);
            raw += part;
        });
        if (!isWhole)
            return {};
        const qsizetype end = raw.size() - kRampBytes;
        if (end > 0 && raw[end] == 1 && uchar(raw[end + 1]) == 0xff && raw.endsWith(QByteArray("\1\0", 2)))
            return raw.left(end);
        // Some programs write it in parts.
        QByteArray joined;
        for (qsizetype at = 0; at < raw.size(); at += 1 + uchar(raw[at]))
            joined += raw.mid(at + 1, uchar(raw[at]));
        return joined;
    }

    /// Calls a function for each part of a block, with its length.
    /// @return false if the file is truncated or there are too many bytes; the rest is then skipped
    template<class Take>
    bool readParts(Take take)
    {
        qsizetype sum = 0;
        for (int length = m_bytes.next(); length != 0; length = m_bytes.next()) {
            if (length < 0)
                return false;
            const QByteArray part = m_bytes.take(length);
            sum += 1 + part.size();
            if (part.size() < length)
                return false;
            if (sum > kMaxExtensionBytes) {
                skipParts();
                return false;
            }
            take(length, part);
        }
        return true;
    }

    /// The contents of a block; empty if incomplete.
    QByteArray joinedParts()
    {
        QByteArray joined;
        return readParts([&joined](int, const QByteArray &part) { joined += part; }) ? joined : QByteArray();
    }

    /// @return the number of bytes of the block's contents, as far as present
    qint64 skipParts()
    {
        qint64 sum = 0;
        for (int length = m_bytes.next(); length > 0; length = m_bytes.next())
            sum += m_bytes.skip(length);
        return sum;
    }

    QIODevice &m_device;
    ForwardBytes m_bytes;
    GifStructure m_found;
};

} // namespace

Result<GifStructure> readGifStructure(QIODevice &device)
{
    if (!device.seek(0))
        return fail(PictureFailures::readError(device));
    return GifWalk(device).run();
}

} // namespace plexa
