// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/imageresources.h"

#include "imageio/container/picturestarts.h"

#include <QCryptographicHash>
#include <QList>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

namespace plexa
{

namespace
{

enum ResourceId : quint16 {
    ResolutionInfo = 0x03ED,
    PrintFlags = 0x03F3,
    Iptc = 0x0404,
    CopyrightFlag = 0x040A,
    CopyrightUrl = 0x040B,
    GlobalAngle = 0x040D,
    GlobalAltitude = 0x0419,
    UrlList = 0x041E,
    IptcDigest = 0x0425,
    PrintScale = 0x0426,
    PixelAspectRatio = 0x0428,
    PrintFlagsInfo = 0x2710,
};

constexpr std::array kKept{ResolutionInfo, PrintFlags,       CopyrightFlag, CopyrightUrl,
                           GlobalAngle,    GlobalAltitude,   UrlList,       IptcDigest,
                           PrintScale,     PixelAspectRatio, PrintFlagsInfo};

/// Real ones are shorter.
constexpr qsizetype kMaxKeptBytes = 4096;

struct Resource {
    quint16 id = 0;
    QByteArray data;
};

QList<Resource> parsedResources(const QByteArray &blocks)
{
    QList<Resource> resources;
    qsizetype at = 0;
    while (at + 12 <= blocks.size() && blocks.mid(at, 4) == "8BIM") {
        const auto id = qFromBigEndian<quint16>(blocks.constData() + at + 4);
        const qsizetype nameBytes = static_cast<uchar>(blocks[at + 6]) + 1;
        at += 6 + nameBytes + nameBytes % 2;
        if (at + 4 > blocks.size())
            break;
        const qsizetype size = qFromBigEndian<quint32>(blocks.constData() + at);
        at += 4;
        if (size > blocks.size() - at)
            break;
        resources.append({id, blocks.mid(at, size)});
        at += size + size % 2;
    }
    return resources;
}

/// A resource without a name.
QByteArray block(quint16 id, const QByteArray &data)
{
    QByteArray bytes("8BIM\0\0\0\0\0\0\0\0", 12);
    qToBigEndian(id, bytes.data() + 4);
    qToBigEndian(static_cast<quint32>(data.size()), bytes.data() + 8);
    bytes += data;
    if (data.size() % 2 != 0)
        bytes += '\0';
    return bytes;
}

/// Horizontal and vertical resolution as 16.16 numbers of pixels per inch, each with two units for display.
QByteArray withResolution(QByteArray info, const double (&dpi)[2])
{
    constexpr qsizetype kInfoBytes = 16;
    for (qsizetype i = 0; i < 2 && info.size() >= kInfoBytes; ++i) {
        if (dpi[i] > 0 && dpi[i] < 32'768)
            qToBigEndian(static_cast<quint32>(std::lround(dpi[i] * 65'536)), info.data() + 8 * i);
    }
    return info;
}

/// The pixels of a copy are square.
QByteArray withSquarePixels(QByteArray ratio)
{
    constexpr qsizetype kVersionBytes = 4;
    constexpr qsizetype kNumberBytes = 8;
    if (ratio.size() == kVersionBytes + kNumberBytes)
        qToBigEndian(1.0, ratio.data() + kVersionBytes);
    return ratio;
}

/// The digest states that IIM and XMP agree. It remains wrong if it was wrong before.
QByteArray digestForCopy(const QByteArray &digest, const ImageResourceFacts &facts)
{
    if (facts.iptcAfter.isEmpty() || facts.iptcAfter == facts.iptcBefore)
        return facts.iptcAfter.isEmpty() ? QByteArray() : digest;
    return QCryptographicHash::hash(facts.iptcAfter, QCryptographicHash::Md5);
}

} // namespace

QByteArray iptcOfImageResources(const QByteArray &resources)
{
    QByteArray iptc;
    const QList<Resource> all = parsedResources(resources);
    for (const Resource &resource : all) {
        if (resource.id == Iptc)
            iptc += resource.data;
    }
    return iptc;
}

QByteArray imageResourcesForCopy(const QByteArray &resources, const ImageResourceFacts &facts)
{
    QByteArray copy;
    const QList<Resource> all = parsedResources(resources);
    for (const Resource &resource : all) {
        const bool isOfRights =
            resource.id == CopyrightFlag || resource.id == CopyrightUrl || resource.id == UrlList;
        if (std::find(kKept.begin(), kKept.end(), resource.id) == kKept.end() ||
            resource.data.size() > kMaxKeptBytes || isPictureValue(resource.data) ||
            (isOfRights && facts.clearsRights))
            continue;
        QByteArray data = resource.data;
        if (resource.id == ResolutionInfo)
            data = withResolution(data, facts.dpi);
        else if (resource.id == PixelAspectRatio)
            data = withSquarePixels(data);
        else if (resource.id == IptcDigest)
            data = digestForCopy(data, facts);
        if (!data.isEmpty())
            copy += block(resource.id, data);
    }
    return copy;
}

QByteArray imageResourceBlocks(const QByteArray &iptc, const QByteArray &others)
{
    return iptc.isEmpty() ? others : block(Iptc, iptc) + others;
}

} // namespace plexa
