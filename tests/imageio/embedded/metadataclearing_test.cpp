// SPDX-License-Identifier: GPL-3.0-or-later

#include "editedcopies.h"
#include "imageio/filemetadata.h"
#include "imageio/jpegassembly.h"

#include <QRegularExpression>
#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

/// A clearing and the tags of exiftool, with wildcards, that are absent afterwards.
struct Clearing {
    const char *name;
    EditedCopies::Edit clear;
    const char *goneTags;
    const char *keptTags; ///< keep their values
};

const Clearing kClearings[] = {
    {"EXIF", [](ImageMetadata &m) { m.clearExifData(); },
     "ExifIFD:* *SerialNumber XMP-exif:[A-FH-Z]* XMP-exifEX:* XMP-aux:* XMP-xmp:CreateDate *Lens* "
     "XMP-GPano:*",
     "IPTC:Headline XMP-photoshop:Headline IFD0:Make XMP-tiff:Make"},
    {"GPS", [](ImageMetadata &m) { m.clearGPSData(); },
     "*GPS* *Latitude* *Longitude* *:Geo* *:Lat *:Long XMP-cell:* IFD0:IntergraphMatrix",
     "IPTC:Headline ExifIFD:DateTimeOriginal XMP-aux:SerialNumber XMP-exifEX:SerialNumber "
     "IPTC:City XMP-photoshop:City XMP-iptcExt:LocationCreatedCity"},
    {"IPTC", [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(false, false); },
     "IPTC:* XMP-iptcExt:* XMP-iptcCore:* XMP-photoshop:* XMP-dc:Title XMP-dc:Creator XMP-dc:Subject "
     "XMP-dc:Description XMP-plus:* XMP-mwg-rs:* XMP-mwg-kw:* XMP-MP:* XMP-pdf:* XMP-photomech:* "
     "XMP-getty:Personality XMP-acdsee:* XMP-xmp:Author XMP-xmp:Nickname XMP-cc:* XMP-xmpDM:* XMP-prism:* "
     "XMP-album:* XMP-dc:Rights XMP-xmpRights:* Photoshop:CopyrightFlag Photoshop:URL",
     "ExifIFD:DateTimeOriginal ExifIFD:SerialNumber IFD0:Make XMP-tiff:Make"},
    {"IPTC but rights", [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(true, true); },
     "IPTC:City IPTC:Headline IPTC:UniqueObjectName IPTC:Destination IPTC:DateSent XMP-photoshop:City "
     "XMP-iptcExt:* XMP-dc:Title XMP-dc:Description XMP-acdsee:* XMP-pdf:*",
     "IPTC:CopyrightNotice XMP-dc:Rights IPTC:By-line XMP-dc:Creator IPTC:By-lineTitle "
     "XMP-photoshop:AuthorsPosition XMP-iptcCore:CreatorWorkEmail XMP-iptcCore:CreatorAddress "
     "ExifIFD:DateTimeOriginal XMP-xmpRights:UsageTerms XMP-cc:AttributionName"},
    {"IPTC but contact", [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(false, true); },
     "IPTC:CopyrightNotice XMP-dc:Rights IPTC:Headline", "IPTC:By-line XMP-dc:Creator IPTC:By-lineTitle"},
    {"TIFF but copyright", [](ImageMetadata &m) { m.clearTiffDataKeepCopyright(true, false); },
     "IFD0:Make IFD0:Artist XMP-tiff:Artist", "IFD0:Copyright XMP-tiff:Copyright"},
    {"TIFF but contact", [](ImageMetadata &m) { m.clearTiffDataKeepCopyright(false, true); },
     "IFD0:Make IFD0:Copyright XMP-tiff:Copyright", "IFD0:Artist XMP-tiff:Artist IFD0:Orientation"},
    {"TIFF", [](ImageMetadata &m) { m.clearTiffDataKeepCopyright(false, false); },
     "IFD0:Make IFD0:Model IFD0:UniqueCameraModel IFD0:Software IFD0:Artist IFD0:Copyright "
     "IFD0:ImageDescription IFD0:XP* XMP-tiff:Make XMP-tiff:Model XMP-tiff:Software XMP-tiff:Artist "
     "XMP-tiff:Copyright XMP-tiff:ImageDescription XMP-xmp:CreatorTool XMP-getty:Camera* XMP-MP1:*",
     "IPTC:CopyrightNotice XMP-dc:Rights IPTC:By-line XMP-dc:Creator IPTC:Caption-Abstract "
     "ExifIFD:DateTimeOriginal ExifIFD:SerialNumber"},
};

/// Facts that the property dictionary does not model.
constexpr char kUnmodelled[] =
    "-XMP-iptcExt:LocationShownCity=Old -XMP-iptcExt:LocationShownGPSLatitude=51.5 "
    "-XMP-iptcExt:LocationShownGPSLongitude=7.5 -XMP-plus:ImageSupplierName=Old -XMP-aux:Firmware=old "
    "-XMP-exifEX:LensSerialNumber=old -IFD0:UniqueCameraModel=old -IFD0:XPSubject=old "
    "-Photoshop:CopyrightFlag=1 -Photoshop:URL=http://old.example -IFD0:GeoTiffAsciiParams=old "
    "-XMP-mwg-rs:RegionName=Old -XMP-mwg-kw:HierarchicalKeywords1=old -XMP-MP:RegionPersonDisplayName=Old "
    "-XMP-pdf:Author=Old -XMP-pdf:Keywords=old -XMP-photomech:CreatorIdentity=Old "
    "-XMP-getty:Personality=Old -XMP-getty:CameraMakeModel=old -XMP-cell:CellTowerID=4711 "
    "-XMP-xmp:Author=Old -XMP-xmp:Nickname=Old -XMP-cc:AttributionName=Old -XMP-xmpDM:ShotLocation=Old "
    "-XMP-prism:Person=Old -XMP-album:Notes=old -XMP-crs:LensProfileName=old "
    "'-XMP-GPano:FirstPhotoDate=2001:02:03 04:05:06' -XMP-MP1:CameraModelID=old "
    "-XMP-xmpRights:UsageTerms=old '-IFD0:IntergraphMatrix=1 2 3' -IPTC:UniqueObjectName=old "
    "-IPTC:Destination=old -IPTC:DateSent=2001:02:03";

constexpr char kPosition[] =
    " -GPS:GPSLatitude=51.5 -GPS:GPSLatitudeRef=N -GPS:GPSLongitude=7.5 -GPS:GPSLongitudeRef=E "
    "-GPS:GPSDateStamp=2001:02:03 -XMP-exif:GPSLatitude=51.5 '-XMP-exif:GPSDateTime=2001:02:03 04:05:06Z' "
    "-XMP-dc:Subject=old -IPTC:Keywords=old";

bool isGone(const Clearing &clearing, const QString &tag)
{
    const QStringList patterns = words(clearing.goneTags);
    return !tag.startsWith(u"Composite") && tag != u"IPTC:CodedCharacterSet" &&
           std::any_of(patterns.begin(), patterns.end(), [&](const QString &pattern) {
               return QRegularExpression::fromWildcard(pattern).match(tag).hasMatch();
           });
}

} // namespace

/// Clearings reach every place in which a file may hold something of the group; exiftool reads the copies.
class MetadataClearingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool");
        m_full = m_copies.sourceWith(EditedCopies::All, words((QByteArray(kUnmodelled) + kPosition).data()));
        QVERIFY(!m_full.isEmpty());
    }

    /// In every format, with the facts in the dictionary and where a file has only unmodelled ones.
    void clearingLeavesNothing()
    {
        const QString unmodelled = m_copies.sourceWith(EditedCopies::None, words(kUnmodelled));
        QStringList paths;
        for (const ImageFormat &format : formatsWithMetadata()) {
            for (const QString &source : {m_full, unmodelled}) {
                paths += m_copies.copyOf(
                    source, [](ImageMetadata &) {}, format.type);
                for (const Clearing &clearing : kClearings)
                    paths += m_copies.copyOf(source, clearing.clear, format.type);
            }
        }
        const auto records = exiftoolRecords(paths);
        QCOMPARE(records.size(), paths.size());
        while (!paths.isEmpty()) {
            const bool isModelled = paths.size() / (std::size(kClearings) + 1) % 2 == 0;
            const QJsonObject untouched = records[paths.takeFirst()];
            for (const Clearing &clearing : kClearings) {
                const QJsonObject record = records[paths.takeFirst()];
                QStringList cleared = untouched.keys();
                cleared.removeIf([&](const QString &tag) { return !isGone(clearing, tag); });
                QVERIFY2(!isModelled || !cleared.isEmpty(), clearing.name);
                QStringList faults = record.keys();
                faults.removeIf([&](const QString &tag) { return !isGone(clearing, tag); });
                for (const QString &tag : isModelled ? words(clearing.keptTags) : QStringList())
                    faults += record[tag] != untouched[tag] ? QStringList(tag) : QStringList();
                QVERIFY2(faults.isEmpty(),
                         qPrintable(QLatin1StringView(clearing.name) + u": "_s + faults.join(u' ')));
            }
        }
    }

    /// Values equal to the old ones included.
    void valuesAfterClearingAreWritten()
    {
        const QJsonObject record = m_copies.recordOf(m_full, [](ImageMetadata &m) {
            m.clearExifData();
            m.clearIptcDataKeepCopyright(false, false);
            m.setExifUserComment(u"old UserComment."_s);
            m.setIptcCity(u"old City."_s);
            m.setIptcHeadline(u"new"_s);
        });
        QCOMPARE(record[u"ExifIFD:UserComment"].toString(), u"old UserComment."_s);
        QVERIFY(!record.contains(u"ExifIFD:LensModel"_s));
        QCOMPARE(record[u"IPTC:City"].toString(), u"old City."_s);
        QCOMPARE(record[u"IPTC:Headline"].toString(), u"new"_s);
        QVERIFY(!record.contains(u"IPTC:Writer-Editor"_s));
    }

    /// A place that the camera has looked up is removed; the choice of one of two clocks stays.
    void clearedGpsLeavesNoPlaceInMakerNotes()
    {
        // Image quality, then a place in each of five fields.
        QList<ExifField> fields{{1, 3, big16(2)}};
        for (const int tag : {0x67, 0x69, 0x6B, 0x6D, 0x6F})
            fields += {tag, 7, "Norway\0\0"_ba};
        const QByteArray note = "Panasonic\0\0\0"_ba + exifDirectory(98 + 12, fields);
        const QString path = m_folder.path("panasonic.jpg");
        QVERIFY(writeFile(path, jpegWith({.exif = exifWith({{0x927C, 7, note}}, "Panasonic\0"_ba)})));
        const QString pentax = realPhoto("jpeg/pentax-ist-d.jpg");
        const QString quality = u"Panasonic:ImageQuality"_s;
        const QString clock = u"Pentax:WorldTimeLocation"_s;
        for (const QString &source :
             photosFolder().isEmpty() ? QStringList(path) : QStringList{path, pentax}) {
            const QJsonObject before = exiftoolRecords({source}).value(source);
            QVERIFY(source != path || before[u"Panasonic:City"].toString() == u"Norway");
            QVERIFY(source != pentax || before.contains(clock));
            const QString copy = m_copies.copyOf(source, [](ImageMetadata &m) { m.clearGPSData(); });
            const QJsonObject after = exiftoolRecords({copy}).value(copy);
            QVERIFY(!contentsOf(copy).contains("Norway"));
            QCOMPARE(after[quality], before[quality]);
            QCOMPARE(after[clock], before[clock]);
        }
    }

    /// In real photos.
    void clearingsReachEveryPhoto()
    {
        PLEXA_NEEDS_PHOTOS();
        const QStringList options = words("-G1 -*GPS* -*Latitude* -*Longitude* -ExifIFD:all -MakerNotes:all "
                                          "-InteropIFD:all -XMP-exifEX:all -XMP-aux:all -*SerialNumber* "
                                          "-IPTC:all -XMP-iptcCore:all -XMP-iptcExt:all -XMP-photoshop:City "
                                          "-XMP-dc:Rights -XMP-dc:Subject -XMP-plus:all -File:Comment "
                                          "-IFD0:Make -IFD0:Model -XMP-tiff:Make -IFD0:UniqueCameraModel "
                                          "-IFD0:ImageDescription");
        const QStringList photos = photoPaths();
        QStringList copies;
        for (const QString &photo : photos) {
            const auto metadata = metadataOf(photo);
            EmbeddedMetadata::CopyFacts facts{QSize(16, 16), 0};
            facts.cleared = ClearedGroup::Gps | ClearedGroup::Exif | ClearedGroup::Iptc | ClearedGroup::Tiff;
            copies += m_folder.path(u"%1.jpg"_s.arg(copies.size()));
            QVERIFY(writeFile(copies.last(), jpegWith(metadata->encodeForCopy({}, facts))));
        }
        const auto records = exiftoolRecords(copies, options);
        for (qsizetype i = 0; i < photos.size(); ++i) {
            const QStringList left = records.value(copies[i]).keys();
            QVERIFY2(left == QStringList(u"SourceFile"_s), qPrintable(photos[i] + left.join(u' ')));
        }
    }

private:
    EditedCopies m_copies;
    TestFolder m_folder;
    QString m_full; ///< a source with all facts
};

QTEST_GUILESS_MAIN(MetadataClearingTest)
#include "metadataclearing_test.moc"
