// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/jpegstructure.h"

#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/exifcolorspace.h"
#include "imageio/container/jpegmarkers.h"
#include "imageio/container/jpegsegmentreader.h"
#include "metadata/propertykeys.h"

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

bool speaksOfGainMap(QByteArrayView xmp)
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
QList<FurtherPicture> readMultiPictureIndex(QByteArrayView tiff, qint64 tiffPosition)
{
    QList<FurtherPicture> pictures;
    if (tiff.size() < 8)
        return pictures;
    const bool isLittle = tiff.startsWith("II");
    const auto word = [&](qsizetype at) -> quint32 {
        const char *p = tiff.data() + at;
        return isLittle ? qFromLittleEndian<quint16>(p) : qFromBigEndian<quint16>(p);
    };
    const auto longWord = [&](qsizetype at) -> quint32 {
        const char *p = tiff.data() + at;
        return isLittle ? qFromLittleEndian<quint32>(p) : qFromBigEndian<quint32>(p);
    };
    const qsizetype directory = longWord(4);
    if (directory > tiff.size() - 2)
        return pictures;
    const quint32 fields = word(directory);
    for (quint32 i = 0; i < fields; ++i) {
        const qsizetype field = directory + 2 + qsizetype(i) * 12;
        if (field > tiff.size() - 12)
            break;
        if (word(field) != 0xb002)
            continue;
        const qsizetype bytes = longWord(field + 4);
        const qsizetype entries = longWord(field + 8);
        for (qsizetype at = entries; at + 16 <= entries + bytes && at + 16 <= tiff.size(); at += 16) {
            const quint32 offset = longWord(at + 8);
            if (offset == 0) // the first picture, in which the index stands
                continue;
            const quint32 type = longWord(at) & 0xffffff;
            pictures.append({tiffPosition + offset, type == 0x010001 || type == 0x010002});
            if (pictures.size() == kMaxFurtherPictures)
                return pictures;
        }
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
        if (*marker == APP1 && segments.isNamed(kXmp) && speaksOfGainMap(segments.payload()))
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

Result<void> readFrame(QByteArrayView payload, int marker, JpegStructure &structure)
{
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
    structure.isProgressive = process == 2 || process == 10;
    structure.size =
        QSize(qFromBigEndian<quint16>(payload.data() + 3), qFromBigEndian<quint16>(payload.data() + 1));
    for (int i = 0; i < count; ++i) {
        const int factors = uchar(payload[6 + 3 * i + 1]);
        structure.components.append({factors >> 4, factors & 15});
    }
    return {};
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

} // namespace

Result<JpegStructure> readJpegStructure(QIODevice &device, const ReadLimits &limits)
{
    JpegStructure structure;
    IccPieces icc;
    QList<FurtherPicture> furtherPictures;
    bool hasGainMap = false;
    bool hasData = false;
    bool isAdobeRgb = false;
    bool hasExif = false;
    JpegSegmentReader segments(device);
    while (const std::optional<int> marker = segments.next()) {
        if (*marker == SOS || *marker == EOI) {
            hasData = *marker == SOS;
            const QByteArrayView scan = hasData ? segments.payload(1) : QByteArrayView();
            structure.hasSeveralScans =
                structure.isProgressive || (!scan.isEmpty() && uchar(scan[0]) < structure.components.size());
            break;
        }
        if (*marker >= SOF0 && *marker <= SOF15 && *marker != DHT && *marker != JPG && *marker != DAC) {
            if (!structure.components.isEmpty())
                return fail(PictureFailures::damaged());
            if (const auto frame = readFrame(segments.payload(), *marker, structure); !frame)
                return tl::unexpected(frame.error());
        } else if (*marker == APP0) {
            readDensity(segments.payload(32), structure);
        } else if (*marker == APP1 && !hasExif && segments.isNamed(kExif)) {
            hasExif = true;
            isAdobeRgb = exifSaysAdobeRgb(segments.payload().sliced(kExif.size()));
        } else if (*marker == APP1 && segments.isNamed(kXmp)) {
            hasGainMap = hasGainMap || speaksOfGainMap(segments.payload());
        } else if (*marker == APP2 && segments.isNamed(kIcc)) {
            icc.add(segments.payload());
        } else if (*marker == APP2 && segments.isNamed(kMultiPicture)) {
            const qint64 position = segments.payloadPosition() + kMultiPicture.size();
            if (furtherPictures.isEmpty())
                furtherPictures =
                    readMultiPictureIndex(segments.payload().sliced(kMultiPicture.size()), position);
        } else if (*marker == APP2 && segments.isNamed(kIsoGainMap)) {
            hasGainMap = true;
        }
    }
    if (!hasData || structure.components.isEmpty())
        return fail(device.atEnd() ? PictureFailures::endsEarly() : PictureFailures::damaged());
    if (const auto size = PictureFailures::checkSize(structure.size, limits); !size)
        return tl::unexpected(size.error());
    structure.iccProfile = icc.whole();
    if (structure.iccProfile.isEmpty() && isAdobeRgb && structure.components.size() == 3)
        structure.iccProfile = adobeRgbProfile();
    structure.unmarkedPictures = nameUnmarkedPictures(device, furtherPictures, hasGainMap);
    return structure;
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
