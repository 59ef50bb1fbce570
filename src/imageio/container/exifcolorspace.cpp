// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/exifcolorspace.h"

#include "imageio/container/tiffdirectoryreader.h"

#include <QBuffer>

namespace plexa
{

namespace
{

constexpr quint16 kExifDirectory = 0x8769;
constexpr quint16 kInteroperabilityDirectory = 0xA005;
constexpr quint16 kColorSpace = 0xA001;
constexpr quint16 kInteroperabilityIndex = 0x0001;

constexpr quint64 kAdobeRgb = 2;
constexpr quint64 kUncalibrated = 0xFFFF;

} // namespace

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
