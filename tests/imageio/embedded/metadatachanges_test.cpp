// SPDX-License-Identifier: GPL-3.0-or-later

#include "editedcopies.h"
#include "imageio/filemetadata.h"
#include "imageio/jpegassembly.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;
using enum MetadataGroup;

namespace
{

/// Compares a copy in which the fact was set, and one in which it was removed, with the fact's places.
QStringList faultsOf(const FactPlaces &fact, const char *type, const QJsonObject &set,
                     const QJsonObject &removed)
{
    QStringList faults;
    int found = 0;
    for (const QString &place : fact.places()) {
        if (removed.isEmpty() || removed.contains(place))
            faults += place + u" was not removed"_s;
        if (!set.contains(place))
            continue;
        ++found;
        const QString wanted = EditedCopies::value(fact, true).toString();
        QString text = comparable(set[place]);
        // XMP's dates contain the fraction of a second.
        if (wanted.size() == 19 && text.startsWith(wanted))
            text.truncate(19);
        if (text != wanted)
            faults += place + u" is "_s + text;
    }
    // A GIF has no room for EXIF: there a fact is found only where XMP has a place for it.
    if (found == 0 && (qstrcmp(type, "image/gif") != 0 || QByteArrayView(fact.tags).contains("XMP")))
        faults += fact.name() + u" was not written"_s;
    return faults;
}

} // namespace

/// Edits reach every place in which a file may hold the fact; exiftool reads the copies.
class MetadataChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { PLEXA_NEEDS_PROGRAMS("exiftool"); }

    /// A photo holds each fact in all places, in XMP only, or nowhere: each fact is set and removed.
    void editReachesAllPlaces()
    {
        QList<const FactPlaces *> facts;
        QStringList paths;
        QStringList faults;
        for (const auto places : {EditedCopies::All, EditedCopies::XmpOnly, EditedCopies::None}) {
            const QString source = m_copies.sourceWith(places);
            for (const FactPlaces &fact : kFactPlaces) {
                if (!fact.property())
                    continue;
                for (const QVariant &value : {EditedCopies::value(fact, true), QVariant()})
                    paths += m_copies.copyOf(source,
                                             [&](ImageMetadata &m) { m.setValue(*fact.property(), value); });
                const QString old = EditedCopies::value(fact, false).toString();
                if (old.startsWith(u"old ") && contentsOf(paths.constLast()).contains(old.toUtf8()))
                    faults += fact.name() + u" is still in the file"_s;
                facts += &fact;
            }
        }
        QVERIFY(facts.size() > 3 * 35 && !paths.contains(QString()));
        const auto records = exiftoolRecords(paths);
        for (qsizetype i = 0; i < facts.size(); ++i)
            faults += faultsOf(*facts[i], "image/jpeg", records[paths[2 * i]], records[paths[2 * i + 1]]);
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
    }

    void fractionAndZoneOfDatesReachXmp()
    {
        const QString source = m_copies.sourceWith(
            EditedCopies::All, {u"-XMP-exif:DateTimeOriginal=2001:02:03 04:05:06.17+01:00"_s,
                                u"-ExifIFD:OffsetTimeOriginal=+01:00"_s});
        const QString date = u"XMP-exif:DateTimeOriginal"_s;
        const auto edit = [](ImageMetadata &m) { m.setExifSubsecTimeOriginal(u"5"_s); };
        QCOMPARE(m_copies.recordOf(source, edit)[date].toString(), u"2001:02:03 04:05:06.5+01:00"_s);
        const QJsonObject dateless =
            m_copies.recordOf(source, [](ImageMetadata &m) { m.setExifDateTimeOriginalStr({}); });
        QVERIFY(dateless.contains(u"ExifIFD:CreateDate"_s));
        for (const char *part : {"ExifIFD:SubSecTimeOriginal", "ExifIFD:OffsetTimeOriginal"})
            QVERIFY2(!dateless.contains(QLatin1StringView(part)), part);
    }

    void flashReachesXmp()
    {
        const QString source =
            m_copies.sourceWith(EditedCopies::None, words("-ExifIFD:Flash=25 -XMP-exif:FlashFired=True "
                                                          "-XMP-exif:FlashMode=3 -XMP-exif:FlashReturn=0"));
        const QJsonObject record = m_copies.recordOf(source, [](ImageMetadata &m) { m.setExifFlash(0); });
        QCOMPARE(record[u"ExifIFD:Flash"].toInt(), 24);
        QCOMPARE(comparable(record[u"XMP-exif:FlashFired"]).toLower(), u"false"_s);
        QCOMPARE(record[u"XMP-exif:FlashMode"].toInt(), 3);
    }

    /// exiftool shows the exponents as the values that they represent.
    void exponentsAgreeWithPlainValues()
    {
        const QStringList places =
            words("ExifIFD:FNumber ExifIFD:ApertureValue XMP-exif:ApertureValue ExifIFD:ExposureTime "
                  "ExifIFD:ShutterSpeedValue XMP-exif:ShutterSpeedValue");
        const QString source = m_copies.sourceWith(EditedCopies::None,
                                                   (u'-' + places.join(u"=0.7 -"_s) + u"=0.7"_s).split(u' '));
        const auto both = [&](const QVariant &value) {
            return m_copies.recordOf(source, [&](ImageMetadata &m) {
                m.setExifFNumber(value);
                m.setExifExposureTime(value);
            });
        };
        const QJsonObject edited = both(5.6);
        const QJsonObject removed = both({});
        for (const QString &place : places) {
            QVERIFY2(qAbs(edited[place].toDouble() - 5.6) < 1e-4, qPrintable(place));
            QVERIFY2(!removed.isEmpty() && !removed.contains(place), qPrintable(place));
        }
    }

    void keywordsReachTheirTrees()
    {
        const QString source = m_copies.sourceWith(
            EditedCopies::None,
            words("-XMP-dc:Subject=Berlin -XMP-dc:Subject=Oslo -XMP-dc:Subject=Night "
                  "-XMP-lr:HierarchicalSubject=Places|Berlin -XMP-lr:HierarchicalSubject=Places|Oslo "
                  "-XMP-lr:HierarchicalSubject=Night|Oslo -XMP-digiKam:TagsList=Places/Berlin "
                  "'-XMP-pdf:Keywords=Berlin, Oslo'"));
        const QString tree = u"XMP-lr:HierarchicalSubject"_s;
        const auto recordWith = [&](const QVariant &keywords) {
            return m_copies.recordOf(
                source, [&](ImageMetadata &m) { m.setIptcValue(keywords, kCGImagePropertyIPTCKeywords); });
        };
        const QJsonObject edited = recordWith(QVariantList{u"Oslo"_s});
        QCOMPARE(comparable(edited[tree]), u"Places|Oslo"_s);
        QVERIFY(!edited.contains(u"XMP-digiKam:TagsList"_s) && !edited.contains(u"XMP-pdf:Keywords"_s));
        const QJsonObject removed = recordWith({});
        QVERIFY(!removed.isEmpty() && !removed.contains(tree));
    }

    /// IIM cuts long texts, XMP holds them whole; the rest of contact and record stays.
    void longTextsReachXmp()
    {
        const QString source = m_copies.sourceWith(EditedCopies::All);
        const QJsonObject record = m_copies.recordOf(source, [](ImageMetadata &m) {
            m.setIptcCreator(QString(40, u'\u00E9')); // 80 bytes, of which IIM holds 32
            m.setIptcCreatorCity(u"\u6771\u4EAC"_s);
            m.setIptcCreatorPhone({});
        });
        QCOMPARE(comparable(record[u"IPTC:By-line"]), QString(16, u'\u00E9'));
        QCOMPARE(comparable(record[u"XMP-dc:Creator"]), QString(40, u'\u00E9'));
        QCOMPARE(record[u"XMP-iptcCore:CreatorCity"].toString(), u"\u6771\u4EAC"_s);
        QVERIFY(!record.contains(u"XMP-iptcCore:CreatorWorkTelephone"));
        QCOMPARE(record[u"XMP-iptcCore:CreatorPostalCode"].toString(), u"old CreatorPostalCode."_s);
        QCOMPARE(record[u"IPTC:Headline"].toString(), u"old Headline."_s);
    }

    /// A record that claims to be UTF-8 and is not, with a date of zeros, truncated in its last field.
    void falseRecordsAreRepaired()
    {
        const QString path = m_folder.path("false.jpg");
        QVERIFY(writeFile(path, jpegWith({.iptc = dataSet(1, 90, "\x1B%G") + dataSet(2, 55, "00000000") +
                                                  dataSet(2, 80, "J\xFCrgen") + dataSet(2, 120, "Z\xFCrich") +
                                                  dataSet(2, 25, "forest").chopped(1)})));
        const auto metadata = metadataOf(path);
        ImageMetadata edited(metadata->properties());
        edited.setIptcCity(u"Oslo"_s);
        EmbeddedMetadata::CopyFacts facts{QSize(16, 16)};
        const auto encoded = metadata->encodeForCopy(edited.imagePropertiesDictionary(), facts);
        QVERIFY(encoded.iptc.contains("Oslo") && encoded.iptc.contains("Z\xC3\xBCrich"));
        QVERIFY(encoded.iptc.isValidUtf8() && !encoded.iptc.contains("fores"));
        QCOMPARE(encoded.omitted, QStringList(u"damaged IPTC field"_s));
        QVERIFY(metadata->encodeForCopy(metadata->properties(), facts).iptc.endsWith("rich"));
        facts.holdsIptc = false;
        const QByteArray xmp = metadata->encodeForCopy(edited.imagePropertiesDictionary(), facts).xmp;
        QVERIFY(xmp.contains("Oslo") && !xmp.contains("DateCreated"));
        facts = {QSize(16, 16)};
        facts.cleared = ClearedGroup::Iptc;
        ImageMetadata kept;
        kept.setIptcCreator(u"J\u00FCrgen"_s);
        const QByteArray record = metadata->encodeForCopy(kept.imagePropertiesDictionary(), facts).iptc;
        QVERIFY(record.contains("J\xC3\xBCrgen") && !record.contains("rich"));
    }

    /// A fact that is given to a picture without metadata is read back from its copy.
    void valuesSurviveWriting()
    {
        const std::tuple<MetadataGroup, QLatin1StringView, QVariant> rows[] = {
            {Exif, kCGImagePropertyExifExposureTime, 1.0 / 8000},
            {Exif, kCGImagePropertyExifExposureBiasValue, -2.0 / 3},
            {Exif, kCGImagePropertyExifSubjectDistance, 4294967295.0}, // infinite
            {Exif, kCGImagePropertyExifVersion, QVariantList{2, 3, 1}},
            {Exif, kCGImagePropertyExifUserComment, u"\u6771\u4EAC"_s},
            {Gps, kCGImagePropertyGPSTimeStamp, u"07:05:09.25"_s},
            {Gps, kCGImagePropertyGPSLatitude, 48.25},
            {Gps, kCGImagePropertyGPSAltitudeRef, 1},
            {Iptc, kCGImagePropertyIPTCKeywords, QVariantList{u"a"_s, u"\u00E4"_s}}};
        for (const auto &[group, key, value] : rows) {
            ImageMetadata metadata;
            metadata.setValueForKey(group, value, key);
            const QString copy = m_folder.path("written.jpg");
            QVERIFY(writeFile(copy, jpegWith(EmbeddedMetadata::none()->encodeForCopy(
                                        metadata.imagePropertiesDictionary(), {QSize(16, 16)}))));
            const QVariant read = ImageMetadata(metadataOf(copy)->properties()).valueForKey(group, key);
            if (value.typeId() == QMetaType::Double)
                QVERIFY2(qFuzzyCompare(read.toDouble(), value.toDouble()), key.data());
            else
                QCOMPARE(read, value);
        }
    }

    /// Author, copyright and description of EXIF go into the XMP of a format without EXIF.
    void textsOfTiffReachXmp()
    {
        const QString source = m_copies.sourceWith(EditedCopies::None);
        const auto edit = [](ImageMetadata &m) {
            m.setTiffValue(u"Ann"_s, kCGImagePropertyTIFFArtist);
            m.setTiffValue(u"(c) Ann"_s, kCGImagePropertyTIFFCopyright);
            m.setTiffValue(u"a lake"_s, kCGImagePropertyTIFFImageDescription);
        };
        const QJsonObject record = m_copies.recordOf(source, edit, "image/gif");
        QCOMPARE(comparable(record[u"XMP-tiff:Artist"]), u"Ann"_s);
        QCOMPARE(comparable(record[u"XMP-tiff:Copyright"]), u"(c) Ann"_s);
        QCOMPARE(comparable(record[u"XMP-tiff:ImageDescription"]), u"a lake"_s);
    }

    /// Regions name places of the picture: they stay where it does.
    void regionsLeaveTurnedPictures()
    {
        const QString source = m_copies.sourceWith(
            EditedCopies::None,
            words(
                "-RegionInfo={AppliedToDimensions={W=400,H=300,Unit=pixel},RegionList=[{Name=Jane,"
                "Type=Face,Area={X=0.9,Y=0.1,W=0.1,H=0.2,Unit=normalized}}]} "
                "'-RegionInfoMP={Regions=[{PersonDisplayName=Jane,Rectangle=0.85|, 0|, 0.1|, 0.2}]}' "
                "'-ExifIFD:SubjectArea=360 30 40 60' '-XMP-exif:SubjectArea=360 30 40 60' -IPTC:City=Oslo"));
        const auto metadata = metadataOf(source);
        EmbeddedMetadata::CopyFacts facts{QSize(16, 16)};
        for (const bool isTurned : {false, true}) {
            facts.isTurned = isTurned;
            const auto encoded = metadata->encodeForCopy(metadata->properties(), facts);
            QCOMPARE(encoded.omitted, isTurned ? QStringList(u"face regions"_s) : QStringList());
            const QString copy = m_folder.path("turned.jpg");
            QVERIFY(writeFile(copy, jpegWith(encoded)));
            const QJsonObject record = exiftoolRecords({copy}).value(copy);
            QCOMPARE(record[u"IPTC:City"].toString(), u"Oslo"_s);
            for (const char *tag : {"ExifIFD:SubjectArea", "XMP-exif:SubjectArea", "XMP-mwg-rs:RegionInfo",
                                    "XMP-MP:RegionInfoMP"})
                QVERIFY2(record.contains(QLatin1StringView(tag)) == !isTurned, tag);
        }
    }

private:
    EditedCopies m_copies;
    TestFolder m_folder;
};

QTEST_GUILESS_MAIN(MetadataChangesTest)
#include "metadatachanges_test.moc"
