// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/exifcolorspace.h"

#include <QBuffer>
#include <QtEndian>

namespace plexa
{

namespace
{

constexpr quint32 kExifDirectory = 0x8769;
constexpr quint32 kInteroperabilityDirectory = 0xA005;
constexpr quint32 kColorSpace = 0xA001;
constexpr quint32 kInteroperabilityIndex = 0x0001;

constexpr quint32 kAdobeRgb = 2;
constexpr quint32 kUncalibrated = 0xFFFF;

/// Looks up single values in a TIFF structure.
class TiffDirectories
{
public:
    explicit TiffDirectories(QIODevice &tiff)
        : m_tiff(tiff)
        , m_head(bytesAt(0, 8))
        , m_isLittle(m_head.startsWith("II"))
    {
    }

    bool isTiff() const
    {
        return m_head.size() == 8 && (m_isLittle || m_head.startsWith("MM")) &&
               word(m_head.constData() + 2) == 42;
    }

    quint32 first() const { return longWord(m_head.constData() + 4); }

    /// The four bytes in which the tag has its value or the offset of it; empty: no such tag.
    QByteArray find(quint32 directory, quint32 tag) const
    {
        constexpr qsizetype kEntryBytes = 12;
        const QByteArray count = bytesAt(directory, 2);
        if (directory < 8 || count.size() < 2)
            return {};
        const QByteArray entries =
            bytesAt(qint64(directory) + 2, qint64(word(count.constData())) * kEntryBytes);
        for (qsizetype at = 0; at + kEntryBytes <= entries.size(); at += kEntryBytes) {
            if (word(entries.constData() + at) == tag)
                return entries.mid(at + 8, 4);
        }
        return {};
    }

    quint32 word(const char *bytes) const
    {
        return m_isLittle ? qFromLittleEndian<quint16>(bytes) : qFromBigEndian<quint16>(bytes);
    }

    quint32 longWord(const char *bytes) const
    {
        return m_isLittle ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
    }

private:
    /// As many of them as there are.
    QByteArray bytesAt(qint64 position, qint64 count) const
    {
        return position < m_tiff.size() && m_tiff.seek(position) ? m_tiff.read(count) : QByteArray();
    }

    QIODevice &m_tiff;
    QByteArray m_head;
    bool m_isLittle;
};

} // namespace

bool exifSaysAdobeRgb(QIODevice &tiff)
{
    const TiffDirectories directories(tiff);
    if (!directories.isTiff())
        return false;
    const QByteArray exif = directories.find(directories.first(), kExifDirectory);
    if (exif.isEmpty())
        return false;
    const quint32 exifDirectory = directories.longWord(exif.constData());
    const QByteArray space = directories.find(exifDirectory, kColorSpace);
    const quint32 colorSpace = space.isEmpty() ? kUncalibrated : directories.word(space.constData());
    if (colorSpace != kUncalibrated)
        return colorSpace == kAdobeRgb;
    const QByteArray interoperability = directories.find(exifDirectory, kInteroperabilityDirectory);
    return !interoperability.isEmpty() &&
           directories.find(directories.longWord(interoperability.constData()), kInteroperabilityIndex)
               .startsWith("R03");
}

bool exifSaysAdobeRgb(QByteArrayView tiff)
{
    QByteArray bytes = QByteArray::fromRawData(tiff.data(), tiff.size());
    QBuffer device(&bytes);
    return device.open(QIODevice::ReadOnly) && exifSaysAdobeRgb(device);
}

} // namespace plexa
