// SPDX-License-Identifier: GPL-3.0-or-later

#include "editedcopies.h"
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

/// A directory entry of little-endian EXIF.
QByteArray entry(int tag, int type, qsizetype count, qsizetype valueOrPlace)
{
    return little16(tag) + little16(type) + little32(count) + little32(valueOrPlace);
}

/// EXIF with the maker note of a Panasonic on a trip: image quality, then texts of 8 bytes by tag.
QByteArray panasonicExif(const QMap<int, QByteArray> &places)
{
    constexpr qsizetype kNote = 66;
    const qsizetype directoryBytes = 2 + 12 * (places.size() + 1) + 4;
    QByteArray note = "Panasonic\0\0\0"_ba + little16(places.size() + 1) + entry(1, 3, 1, 2);
    QByteArray texts;
    for (auto place = places.begin(); place != places.end(); ++place) {
        note += entry(place.key(), 7, 8, kNote + 12 + directoryBytes + texts.size());
        texts += place->leftJustified(8, '\0');
    }
    note += little32(0) + texts;
    return "II\x2A\0"_ba + little32(8) + little16(2) + entry(0x010F, 2, 10, 38) + entry(0x8769, 4, 1, 48) +
           little32(0) + "Panasonic\0"_ba + little16(1) + entry(0x927C, 7, note.size(), kNote) + little32(0) +
           note;
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
        for (const ImageFormat &format : formatsWithMetadata()) {
            for (const bool isModelled : {true, false}) {
                const QJsonObject untouched = records[paths.takeFirst()];
                for (const Clearing &clearing : kClearings) {
                    const QJsonObject record = records[paths.takeFirst()];
                    const auto says = [&](const QString &tag) {
                        return QStringLiteral("%1, %2: %3")
                            .arg(QLatin1StringView(format.name), QLatin1StringView(clearing.name), tag)
                            .toUtf8();
                    };
                    const QStringList tags = untouched.keys();
                    QVERIFY(!isModelled || std::any_of(tags.begin(), tags.end(), [&](const QString &tag) {
                        return isGone(clearing, tag);
                    }));
                    for (const QString &tag : record.keys())
                        QVERIFY2(!isGone(clearing, tag), says(tag));
                    for (const QString &tag : isModelled ? words(clearing.keptTags) : QStringList())
                        QVERIFY2(record[tag] == untouched[tag], says(tag));
                }
            }
        }
    }

    /// A dictionary that is empty in the copy is a clearing, too.
    void emptiedDictionariesAreCleared()
    {
        const auto metadata = EmbeddedMetadata::read(m_full);
        const auto check = [&](const QStringList &dictionaries, ClearedGroup group) {
            QVariantMap properties = metadata->properties();
            for (const QString &dictionary : dictionaries)
                properties.insert(dictionary, QVariantMap());
            EmbeddedMetadata::CopyFacts facts{QSize(16, 16), 0};
            const auto emptied = metadata->encodeForCopy(properties, facts);
            facts.cleared = group;
            const auto cleared = metadata->encodeForCopy(properties, facts);
            QVERIFY(cleared.exif != metadata->encodeForCopy(metadata->properties(), {QSize(16, 16), 0}).exif);
            QCOMPARE(emptied.exif, cleared.exif);
            QCOMPARE(emptied.iptc, cleared.iptc);
            QCOMPARE(emptied.xmp, cleared.xmp);
        };
        check({kCGImagePropertyGPSDictionary}, ClearedGroup::Gps);
        check({kCGImagePropertyExifDictionary, kCGImagePropertyExifAuxDictionary}, ClearedGroup::Exif);
        check({kCGImagePropertyIPTCDictionary}, ClearedGroup::Iptc);
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

    /// What a camera looks up of a place is removed; which of two clocks counts is not.
    void clearedGpsLeavesNoPlaceInMakerNotes()
    {
        EmbeddedMetadata::Encoded panasonic;
        panasonic.exif = panasonicExif(
            {{0x67, "Here"}, {0x69, "Norway"}, {0x6B, "Viken"}, {0x6D, "Oslo"}, {0x6F, "Opera"}});
        const QString path = m_folder.path("panasonic.jpg");
        QVERIFY(writeFile(path, jpegWith(panasonic)));
        const QString pentax = realPhoto("jpeg/pentax-ist-d.jpg");
        const QString quality = u"Panasonic:ImageQuality"_s;
        const QString clock = u"Pentax:WorldTimeLocation"_s;
        for (const QString &source :
             photosFolder().isEmpty() ? QStringList(path) : QStringList{path, pentax}) {
            const QJsonObject before = exiftoolRecords({source}).value(source);
            QVERIFY(source != path || before[u"Panasonic:City"].toString() == u"Oslo");
            QVERIFY(source != pentax || before.contains(clock));
            const QString copy = m_copies.copyOf(source, [](ImageMetadata &m) { m.clearGPSData(); });
            const QJsonObject after = exiftoolRecords({copy}).value(copy);
            for (const char *tag : {"Location", "Country", "State", "City", "Landmark"})
                QVERIFY2(!after.contains(u"Panasonic:"_s + QLatin1StringView(tag)), tag);
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
            const auto metadata = EmbeddedMetadata::read(photo);
            EmbeddedMetadata::CopyFacts facts{QSize(16, 16), 0};
            facts.cleared = ClearedGroup::Gps | ClearedGroup::Exif | ClearedGroup::Iptc | ClearedGroup::Tiff;
            copies += m_folder.path(u"%1.jpg"_s.arg(copies.size()));
            QVERIFY(writeFile(copies.last(), jpegWith(metadata->encodeForCopy({}, facts))));
        }
        const auto sources = exiftoolRecords(photos, options);
        const auto records = exiftoolRecords(copies, options);
        int withSomething = 0;
        for (qsizetype i = 0; i < photos.size(); ++i) {
            const QStringList left = records.value(copies[i]).keys();
            QVERIFY2(left == QStringList(u"SourceFile"_s), qPrintable(photos[i] + left.join(u' ')));
            withSomething += sources.value(photos[i]).size() > 1;
        }
        QVERIFY(withSomething >= 30);
    }

private:
    EditedCopies m_copies;
    TestFolder m_folder;
    QString m_full; ///< a source with all facts
};

QTEST_GUILESS_MAIN(MetadataClearingTest)
#include "metadataclearing_test.moc"
