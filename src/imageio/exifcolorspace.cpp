// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/exifcolorspace.h"

#include <QtEndian>

#include <optional>

namespace plexa
{

namespace
{

constexpr quint32 kExifDirectory = 0x8769;
constexpr quint32 kInteroperabilityDirectory = 0xA005;
constexpr quint32 kColorSpace = 0xA001;
constexpr quint32 kInteroperabilityIndex = 0x0001;

/// Looks up single values in a TIFF structure.
class TiffDirectories
{
public:
    explicit TiffDirectories(QByteArrayView tiff)
        : m_tiff(tiff)
        , m_isLittle(tiff.startsWith("II"))
    {
    }

    bool isTiff() const
    {
        return m_tiff.size() >= 8 && (m_isLittle || m_tiff.startsWith("MM")) && word(2) == 42;
    }

    quint32 first() const { return longWord(4); }

    /// The place of the four bytes in which the tag has its value or the offset of it; none: no such tag.
    std::optional<qsizetype> find(quint32 directory, quint32 tag) const
    {
        if (directory < 8 || qsizetype(directory) > m_tiff.size() - 2)
            return {};
        const qsizetype count = word(directory);
        for (qsizetype i = 0; i < count; ++i) {
            const qsizetype entry = qsizetype(directory) + 2 + i * 12;
            if (entry > m_tiff.size() - 12)
                return {};
            if (word(entry) == tag)
                return entry + 8;
        }
        return {};
    }

    quint32 word(qsizetype at) const
    {
        const char *bytes = m_tiff.data() + at;
        return m_isLittle ? qFromLittleEndian<quint16>(bytes) : qFromBigEndian<quint16>(bytes);
    }

    quint32 longWord(qsizetype at) const
    {
        const char *bytes = m_tiff.data() + at;
        return m_isLittle ? qFromLittleEndian<quint32>(bytes) : qFromBigEndian<quint32>(bytes);
    }

private:
    QByteArrayView m_tiff;
    bool m_isLittle;
};

} // namespace

bool exifSaysAdobeRgb(QByteArrayView tiff)
{
    const TiffDirectories directories(tiff);
    if (!directories.isTiff())
        return false;
    const auto exif = directories.find(directories.first(), kExifDirectory);
    if (!exif)
        return false;
    const quint32 exifDirectory = directories.longWord(*exif);
    const auto space = directories.find(exifDirectory, kColorSpace);
    const quint32 colorSpace = space ? directories.word(*space) : 0xFFFF;
    if (colorSpace != 0xFFFF)
        return colorSpace == 2;
    const auto interoperability = directories.find(exifDirectory, kInteroperabilityDirectory);
    if (!interoperability)
        return false;
    const auto index = directories.find(directories.longWord(*interoperability), kInteroperabilityIndex);
    return index && tiff.sliced(*index, 3) == QByteArrayView("R03");
}

} // namespace plexa
