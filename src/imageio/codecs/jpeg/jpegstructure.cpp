// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegstructure.h"

#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/jpegexif.h"
#include "imageio/container/jpegmarkers.h"
#include "imageio/container/jpegsegmentreader.h"
#include "imageio/container/tiffdirectoryreader.h"
#include "imageio/container/tiffpictures.h"
#include "metadata/propertykeys.h"

#include <QBuffer>
#include <QtEndian>

#include <array>
#include <optional>

namespace plexa
{

namespace
{

using namespace JpegMarker;
using namespace JpegSegmentName;

constexpr int kMaxFurtherPictures = 64;

/// A picture that a multi-picture index names besides the first.
struct FurtherPicture {
    qint64 position = 0; ///< in the file
    bool isPreview = false;
};

bool mentionsGainMap(QByteArrayView xmp)
{
    return xmp.indexOf("hdrgainmap") >= 0 || xmp.indexOf("hdrgm:Version") >= 0 ||
           xmp.indexOf("\"GainMap\"") >= 0;
}

/// Collects the pieces of a color profile (ICC.1, annex B.4).
class IccPieces
{
public:
    void add(QByteArrayView payload)
    {
        if (payload.size() < 14)
            return;
        const int number = uchar(payload[12]);
        const int count = uchar(payload[13]);
        if (number < 1 || number > count || (m_count != 0 && count != m_count))
            return;
        m_count = count;
        if (m_pieces[size_t(number)].isEmpty())
            m_pieces[size_t(number)] = payload.sliced(14).toByteArray();
    }

    QByteArray whole() const
    {
        QByteArray profile;
        for (int number = 1; number <= m_count; ++number) {
            if (m_pieces[size_t(number)].isEmpty())
                return {};
            profile += m_pieces[size_t(number)];
        }
        return profile;
    }

private:
    std::array<QByteArray, 256> m_pieces;
    int m_count = 0;
};

/// Reads a multi-picture index (CIPA DC-007): a TIFF structure with one directory; tag 0xB002 has 16 bytes
/// for each picture.
QList<FurtherPicture> readMultiPictureIndex(QByteArray tiff, qint64 tiffPosition)
{
    QList<FurtherPicture> pictures;
    QBuffer device(&tiff);
    device.open(QIODevice::ReadOnly);
    const TiffDirectoryReader reader(device);
    const auto directory = reader.read(reader.first());
    const auto order = orderOfTiff(tiff);
    if (!directory || !order)
        return pictures;
    const QByteArray entries = reader.value(directory->fields.value(0xb002), kMaxJpegSegmentPayload);
    for (qsizetype at = 0; at + 16 <= entries.size() && pictures.size() < kMaxFurtherPictures; at += 16) {
        const quint32 offset = tiffNumberAt(entries.constData() + at + 8, 4, *order);
        if (offset == 0) // the first picture, which contains the index
            continue;
        const quint32 type = tiffNumberAt(entries.constData() + at, 4, *order) & 0xffffff;
        pictures.append({tiffPosition + offset, type == 0x010001 || type == 0x010002});
    }
    return pictures;
}

bool isGainMap(QIODevice &device, const FurtherPicture &picture)
{
    if (!device.seek(picture.position))
        return false;
    JpegSegmentReader segments(device);
    while (const std::optional<int> marker = segments.next()) {
        if (*marker == SOS || *marker == EOI)
            break;
        if (*marker == APP1 && segments.isNamed(kXmp) && mentionsGainMap(segments.payload()))
            return true;
        if (*marker == APP2 && segments.isNamed(kIsoGainMap))
            return true;
    }
    return false;
}

QStringList nameUnmarkedPictures(QIODevice &device, const QList<FurtherPicture> &pictures, bool hasGainMap)
{
    QStringList names;
    for (const FurtherPicture &picture : pictures) {
        if (isGainMap(device, picture))
            hasGainMap = true;
        else if (picture.isPreview)
            names.append(QStringLiteral("preview"));
        else if (!hasGainMap)
            names.append(QStringLiteral("second picture"));
    }
    if (hasGainMap)
        names.prepend(QStringLiteral("gain map"));
    names.removeDuplicates();
    return names;
}

void readDensity(QByteArrayView jfif, JpegStructure &structure)
{
    if (jfif.size() < 12 || !jfif.startsWith(kJfif))
        return;
    const int unit = uchar(jfif[7]);
    const int horizontal = qFromBigEndian<quint16>(jfif.data() + 8);
    const int vertical = qFromBigEndian<quint16>(jfif.data() + 10);
    structure.jfif = {
        {kCGImagePropertyJFIFVersion, QVariantList{int(uchar(jfif[5])), int(uchar(jfif[6]))}},
        {kCGImagePropertyJFIFXDensity, horizontal},
        {kCGImagePropertyJFIFYDensity, vertical},
        {kCGImagePropertyJFIFDensityUnit, unit},
    };
    if (horizontal == 0 || vertical == 0 || unit > 2 || (unit == 0 && horizontal == vertical))
        return;
    const double perInch = unit == 2 ? 2.54 : 1;
    structure.dpiWidth = horizontal * perInch;
    structure.dpiHeight = vertical * perInch;
}

/// Collects the facts of the segments up to the picture data.
class StructureReader
{
public:
    StructureReader(QIODevice &device, const ReadLimits &limits)
        : m_device(device)
        , m_limits(limits)
        , m_segments(device)
    {
    }

    Result<JpegStructure> read()
    {
        std::optional<int> marker = m_segments.next();
        for (; marker && *marker != SOS && *marker != EOI; marker = m_segments.next()) {
            if (!isFrame(*marker))
                readSegment(*marker);
            else if (const auto frame = readFrame(*marker); !frame)
                return tl::unexpected(frame.error());
        }
        if (marker != SOS || m_structure.components.isEmpty())
            return fail(m_device.atEnd() ? PictureFailures::truncated() : PictureFailures::damaged());
        const QByteArrayView scan = m_segments.payload(1);
        m_structure.hasSeveralScans =
            m_structure.isProgressive || (!scan.isEmpty() && uchar(scan[0]) < m_structure.components.size());
        if (const auto size = PictureFailures::checkSize(m_structure.size, m_limits); !size)
            return tl::unexpected(size.error());
        m_structure.iccProfile = m_icc.whole();
        if (m_structure.iccProfile.isEmpty() && m_structure.components.size() == 3 &&
            exifSaysAdobeRgb(m_exif.structure()))
            m_structure.iccProfile = adobeRgbProfile();
        m_structure.unmarkedPictures = nameUnmarkedPictures(m_device, m_furtherPictures, m_hasGainMap);
        return m_structure;
    }

private:
    void readSegment(int marker)
    {
        m_exif.read(marker, m_segments);
        if (marker == APP0) {
            readDensity(m_segments.payload(32), m_structure);
        } else if (marker == APP1 && m_segments.isNamed(kXmp)) {
            m_hasGainMap = m_hasGainMap || mentionsGainMap(m_segments.payload());
        } else if (marker == APP2 && m_segments.isNamed(kIcc)) {
            m_icc.add(m_segments.payload());
        } else if (marker == APP2 && m_segments.isNamed(kMultiPicture) && m_furtherPictures.isEmpty()) {
            m_furtherPictures = readMultiPictureIndex(m_segments.contentsBehind(kMultiPicture),
                                                      m_segments.payloadPosition() + kMultiPicture.size());
        } else if (marker == APP2 && m_segments.isNamed(kIsoGainMap)) {
            m_hasGainMap = true;
        }
    }

    Result<void> readFrame(int marker)
    {
        const QByteArrayView payload = m_segments.payload();
        if (!m_structure.components.isEmpty())
            return fail(PictureFailures::damaged());
        // Sequential and progressive, Huffman or arithmetic; not lossless, not hierarchical.
        const int process = marker - SOF0;
        if (process != 0 && process != 1 && process != 2 && process != 9 && process != 10)
            return fail(PictureFailures::unsupportedKind("JPEG"));
        if (payload.size() < 6)
            return fail(PictureFailures::damaged());
        const int count = uchar(payload[5]);
        if (uchar(payload[0]) != 8 || (count != 1 && count != 3 && count != 4))
            return fail(PictureFailures::unsupportedKind("JPEG"));
        if (payload.size() < 6 + 3 * count)
            return fail(PictureFailures::damaged());
        m_structure.isProgressive = process == 2 || process == 10;
        m_structure.size =
            QSize(qFromBigEndian<quint16>(payload.data() + 3), qFromBigEndian<quint16>(payload.data() + 1));
        for (int i = 0; i < count; ++i) {
            const int factors = uchar(payload[6 + 3 * i + 1]);
            m_structure.components.append({factors >> 4, factors & 15});
        }
        return {};
    }

    QIODevice &m_device;
    const ReadLimits &m_limits;
    JpegSegmentReader m_segments;
    JpegStructure m_structure;
    IccPieces m_icc;
    JpegExif m_exif;
    QList<FurtherPicture> m_furtherPictures;
    bool m_hasGainMap = false;
};

} // namespace

Result<JpegStructure> readJpegStructure(QIODevice &device, const ReadLimits &limits)
{
    return StructureReader(device, limits).read();
}

qint64 coefficientBytes(QSize size, const QList<JpegStructure::Component> &components)
{
    const auto factor = [](int value) { return qint64(qBound(1, value, 4)); };
    const auto divided = [](qint64 value, qint64 by) { return (value + by - 1) / by; };
    qint64 mostAcross = 1;
    qint64 mostDown = 1;
    for (const JpegStructure::Component &component : components) {
        mostAcross = qMax(mostAcross, factor(component.horizontal));
        mostDown = qMax(mostDown, factor(component.vertical));
    }
    const qint64 groups = divided(size.width(), 8 * mostAcross) * divided(size.height(), 8 * mostDown);
    qint64 blocks = 0;
    for (const JpegStructure::Component &component : components)
        blocks += groups * factor(component.horizontal) * factor(component.vertical);
    return blocks * 64 * 2;
}

} // namespace plexa
