// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/tiffpictures.h"

#include "imageio/container/tiffdirectoryreader.h"

#include <QBuffer>

#include <set>

namespace plexa
{

namespace
{

/// Bound for crafted chains of directories.
constexpr size_t kMaxPictures = 10'000;

/// Directories may overlap; real ones have some dozens of fields.
constexpr int kMaxFields = 400'000;

constexpr quint32 kMaxInnerPictures = 16;

enum Tag : quint16 {
    NewSubfileType = 0x00FE,
    SubfileType = 0x00FF,
    PhotometricInterpretation = 0x0106,
    Make = 0x010F,
    StripOffsets = 0x0111,
    TileOffsets = 0x0144,
    SubIfds = 0x014A,
    JpegInterchangeFormat = 0x0201,
    DngVersion = 0xC612,
};

constexpr quint16 kExifDirectory = 0x8769;
constexpr quint16 kInteroperabilityDirectory = 0xA005;
constexpr quint16 kColorSpace = 0xA001;
constexpr quint16 kInteroperabilityIndex = 0x0001;

constexpr quint64 kAdobeRgb = 2;
constexpr quint64 kUncalibrated = 0xFFFF;

class Walk
{
public:
    explicit Walk(QIODevice &device)
        : m_reader(device)
    {
    }

    TiffPictures pictures()
    {
        m_found.isTiff = m_reader.isTiff();
        std::set<quint64> seen;
        int fields = 0;
        for (quint64 at = m_reader.first(); at != 0 && seen.size() < kMaxPictures && fields < kMaxFields;) {
            const auto directory = seen.insert(at).second ? m_reader.read(at) : std::nullopt;
            if (!directory)
                break;
            if (seen.size() == 1)
                readFirst(directory->fields);
            else
                m_found.hasFurtherPages = m_found.hasFurtherPages || isPage(directory->fields);
            m_found.hasRawPicture = m_found.hasRawPicture || isRaw(directory->fields);
            fields += directory->fieldCount;
            at = directory->next;
        }
        return m_found;
    }

private:
    quint64 numberOf(const TiffFields &fields, Tag tag) const { return m_reader.number(fields.value(tag)); }

    void readFirst(const TiffFields &fields)
    {
        m_found.beginsReduced = (numberOf(fields, NewSubfileType) & 1) != 0;
        m_found.hasMake = fields.contains(Make);
        m_found.isDng = fields.contains(DngVersion);
        const TiffField inner = fields.value(SubIfds);
        m_found.hasInnerPictures = inner.count > 0;
        const std::vector<quint64> places = m_reader.numbers(inner, kMaxInnerPictures);
        m_found.lacksInnerPictures = places.size() < qMin(inner.count, kMaxInnerPictures);
        for (const quint64 at : places) {
            const auto directory = m_reader.read(at);
            m_found.lacksInnerPictures = m_found.lacksInnerPictures || !directory;
            m_found.hasRawPicture = m_found.hasRawPicture || (directory && isRaw(directory->fields));
        }
    }

    /// A filter array, or a sensor's linear samples.
    bool isRaw(const TiffFields &fields) const
    {
        const quint64 model = numberOf(fields, PhotometricInterpretation);
        return model == 32803 || model == 34892;
    }

    bool isPage(const TiffFields &fields) const
    {
        constexpr quint64 kPageOfMany = 2; // other bits mark parts of another picture
        const bool isWhole = (numberOf(fields, NewSubfileType) & ~kPageOfMany) == 0 &&
                             numberOf(fields, SubfileType) != 2; // the older code for "reduced"
        // The form of EXIF.
        const bool isThumbnail = fields.contains(JpegInterchangeFormat) && !fields.contains(StripOffsets) &&
                                 !fields.contains(TileOffsets);
        constexpr quint64 kMask = 4;
        return isWhole && !isThumbnail && !isRaw(fields) &&
               numberOf(fields, PhotometricInterpretation) != kMask;
    }

    const TiffDirectoryReader m_reader;
    TiffPictures m_found;
};

} // namespace

bool isClassicTiff(QByteArrayView head)
{
    return head.startsWith(QByteArrayView("II*\0", 4)) || head.startsWith(QByteArrayView("MM\0*", 4));
}

TiffPictures readTiffPictures(QIODevice &device)
{
    return Walk(device).pictures();
}

bool exifSaysAdobeRgb(QIODevice &tiff)
{
    const TiffDirectoryReader reader(tiff);
    const auto fieldsAt = [&reader](quint64 position) {
        const auto directory = reader.read(position);
        return directory ? directory->fields : TiffFields();
    };
    const TiffFields exif = fieldsAt(reader.number(fieldsAt(reader.first()).value(kExifDirectory)));
    if (const TiffField space = exif.value(kColorSpace); space.count > 0) {
        if (const quint64 colorSpace = reader.number(space); colorSpace != kUncalibrated)
            return colorSpace == kAdobeRgb;
    }
    const TiffFields interoperability = fieldsAt(reader.number(exif.value(kInteroperabilityDirectory)));
    return interoperability.value(kInteroperabilityIndex).value.startsWith("R03");
}

bool exifSaysAdobeRgb(QByteArrayView tiff)
{
    QByteArray bytes = QByteArray::fromRawData(tiff.data(), tiff.size());
    QBuffer device(&bytes);
    return device.open(QIODevice::ReadOnly) && exifSaysAdobeRgb(device);
}

} // namespace plexa
