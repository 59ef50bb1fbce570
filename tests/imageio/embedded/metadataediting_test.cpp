// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "metadata/imagemetadata.h"
#include "metadata/propertykeys.h"
#include "support/testenvironment.h"

#include <QBuffer>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <functional>

using namespace plexa;

namespace
{

using Setter = void (ImageMetadata::*)(const QVariant &);

/// An accessor, and the tags of exiftool in which a file may say the same.
struct Fact {
    const char *name;
    Setter set;
    QVariant oldValue;
    QVariant newValue;
    QStringList places;
};

QList<Fact> facts()
{
    using M = ImageMetadata;
    const auto text = [](const char *name, Setter set, const QStringList &places) {
        return Fact{name, set, QStringLiteral("old %1").arg(QLatin1StringView(name)),
                    QStringLiteral("new \u00E9 %1").arg(QLatin1StringView(name)), places};
    };
    QList<Fact> facts{
        text("headline", &M::setIptcHeadline, {u"IPTC:Headline"_qs, u"XMP-photoshop:Headline"_qs}),
        text("title", &M::setIptcTitle, {u"IPTC:ObjectName"_qs, u"XMP-dc:Title"_qs, u"IFD0:XPTitle"_qs}),
        text("description", &M::setIptcDescription,
             {u"IPTC:Caption-Abstract"_qs, u"XMP-dc:Description"_qs, u"IFD0:ImageDescription"_qs,
              u"XMP-tiff:ImageDescription"_qs, u"IFD0:XPComment"_qs, u"IFD0:XPSubject"_qs,
              u"XMP-acdsee:Caption"_qs}),
        text("copyright", &M::setTiffCopyright,
             {u"IPTC:CopyrightNotice"_qs, u"XMP-dc:Rights"_qs, u"IFD0:Copyright"_qs,
              u"XMP-tiff:Copyright"_qs}),
        text("creator", &M::setIptcCreator,
             {u"IPTC:By-line"_qs, u"XMP-dc:Creator"_qs, u"IFD0:Artist"_qs, u"XMP-tiff:Artist"_qs,
              u"IFD0:XPAuthor"_qs, u"XMP-acdsee:Author"_qs, u"XMP-pdf:Author"_qs}),
        text("writer", &M::setIptcDescriptionWriter,
             {u"IPTC:Writer-Editor"_qs, u"XMP-photoshop:CaptionWriter"_qs}),
        text("sublocation", &M::setIptcSublocation,
             {u"IPTC:Sub-location"_qs, u"XMP-iptcCore:Location"_qs,
              u"XMP-iptcExt:LocationCreatedSublocation"_qs}),
        text("country", &M::setIptcCountry,
             {u"IPTC:Country-PrimaryLocationName"_qs, u"XMP-photoshop:Country"_qs,
              u"XMP-iptcExt:LocationCreatedCountryName"_qs}),
        text("state", &M::setIptcState,
             {u"IPTC:Province-State"_qs, u"XMP-photoshop:State"_qs,
              u"XMP-iptcExt:LocationCreatedProvinceState"_qs}),
        text("city", &M::setIptcCity,
             {u"IPTC:City"_qs, u"XMP-photoshop:City"_qs, u"XMP-iptcExt:LocationCreatedCity"_qs}),
        text("profession", &M::setIptcCreatorTitle,
             {u"IPTC:By-lineTitle"_qs, u"XMP-photoshop:AuthorsPosition"_qs}),
        text("email", &M::setIptcCreatorEmail, {u"XMP-iptcCore:CreatorWorkEmail"_qs}),
        text("website", &M::setIptcCreatorWebsite, {u"XMP-iptcCore:CreatorWorkURL"_qs}),
        text("phone", &M::setIptcCreatorPhone, {u"XMP-iptcCore:CreatorWorkTelephone"_qs}),
        text("contact country", &M::setIptcCreatorCountry, {u"XMP-iptcCore:CreatorCountry"_qs}),
        text("contact state", &M::setIptcCreatorState, {u"XMP-iptcCore:CreatorRegion"_qs}),
        text("contact city", &M::setIptcCreatorCity, {u"XMP-iptcCore:CreatorCity"_qs}),
        text("postal code", &M::setIptcCreatorPostalCode, {u"XMP-iptcCore:CreatorPostalCode"_qs}),
        text("address", &M::setIptcCreatorAddress, {u"XMP-iptcCore:CreatorAddress"_qs}),
        text("software", &M::setTiffSoftware,
             {u"IFD0:Software"_qs, u"XMP-tiff:Software"_qs, u"XMP-xmp:CreatorTool"_qs}),
        text("make", &M::setTiffCameraMake, {u"IFD0:Make"_qs, u"XMP-tiff:Make"_qs}),
        text("model", &M::setTiffCameraModel,
             {u"IFD0:Model"_qs, u"XMP-tiff:Model"_qs, u"IFD0:UniqueCameraModel"_qs}),
        text("comment", &M::setExifUserComment, {u"ExifIFD:UserComment"_qs, u"XMP-exif:UserComment"_qs}),
        text("lens", &M::setExifLens,
             {u"ExifIFD:LensModel"_qs, u"XMP-aux:Lens"_qs, u"XMP-exifEX:LensModel"_qs, u"XMP-exif:Lens"_qs}),
        text("serial", &M::setExifCameraSerialNumber,
             {u"ExifIFD:SerialNumber"_qs, u"XMP-aux:SerialNumber"_qs, u"XMP-exifEX:SerialNumber"_qs,
              u"IFD0:CameraSerialNumber"_qs}),
    };
    const auto date = [](const char *name, Setter set, const QStringList &places) {
        return Fact{name, set, u"2001:02:03 04:05:06"_qs, u"2020:10:11 12:13:14"_qs, places};
    };
    facts += {
        date("capture", &M::setExifDateTimeOriginalStr,
             {u"ExifIFD:DateTimeOriginal"_qs, u"XMP-exif:DateTimeOriginal"_qs}),
        date("scan", &M::setExifDateTimeDigitizedStr,
             {u"ExifIFD:CreateDate"_qs, u"XMP-exif:DateTimeDigitized"_qs, u"XMP-xmp:CreateDate"_qs}),
        {"capture fraction",
         &M::setExifSubsecTimeOriginal,
         u"17"_qs,
         u"93"_qs,
         {u"ExifIFD:SubSecTimeOriginal"_qs}},
        {"exposure",
         &M::setExifExposureTime,
         0.125,
         0.5,
         {u"ExifIFD:ExposureTime"_qs, u"XMP-exif:ExposureTime"_qs}},
        {"aperture", &M::setExifFNumber, 2.5, 5.5, {u"ExifIFD:FNumber"_qs, u"XMP-exif:FNumber"_qs}},
        {"ISO",
         &M::setExifISOSpeed,
         125,
         640,
         {u"ExifIFD:ISO"_qs, u"XMP-exif:ISO"_qs, u"XMP-exifEX:PhotographicSensitivity"_qs}},
        {"focal length",
         &M::setExifFocalLength,
         35,
         70,
         {u"ExifIFD:FocalLength"_qs, u"XMP-exif:FocalLength"_qs}},
        {"focal length 35",
         &M::setExifFocalLength35,
         53,
         105,
         {u"ExifIFD:FocalLengthIn35mmFormat"_qs, u"XMP-exif:FocalLengthIn35mmFormat"_qs}},
        {"program",
         &M::setExifExposureProgram,
         3,
         2,
         {u"ExifIFD:ExposureProgram"_qs, u"XMP-exif:ExposureProgram"_qs}},
        {"bias",
         &M::setExifExposureBias,
         -0.5,
         1.5,
         {u"ExifIFD:ExposureCompensation"_qs, u"XMP-exif:ExposureCompensation"_qs}},
        {"metering",
         &M::setExifMeteringMode,
         3,
         5,
         {u"ExifIFD:MeteringMode"_qs, u"XMP-exif:MeteringMode"_qs}},
        {"lens number", &M::setExifLensID, 137, 246, {u"XMP-aux:LensID"_qs}},
        {"image number",
         &M::setExifImageNumber,
         4711,
         815,
         {u"IFD0:ImageNumber"_qs, u"XMP-aux:ImageNumber"_qs}},
    };
    return facts;
}

bool hasRoomForMetadata(const ImageFormat &format)
{
    return format.canWrite && QByteArray(format.type) != "image/bmp";
}

/// GIF has no room for EXIF: there a fact is to be found where XMP has a place for it.
bool hasPlaceIn(const QString &type, const Fact &fact)
{
    return type != u"image/gif" || std::any_of(fact.places.begin(), fact.places.end(),
                                               [](const QString &place) { return place.startsWith(u"XMP"); });
}

/// The properties of a clearing that are to be gone afterwards, as tags of exiftool with wildcards.
struct Clearing {
    const char *name;
    std::function<void(ImageMetadata &)> clear;
    QStringList goneTags;
    QStringList keptFacts; ///< names of facts() whose places, but those of goneTags, say what they said
    QStringList keptTags = {};
};

} // namespace

/// Do edits and clearings reach every place where a file says the fact? exiftool is asked.
class MetadataEditingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void editReachesAllPlaces_data();
    void editReachesAllPlaces();
    void fractionAndZoneOfDatesReachXmp();
    void flashReachesXmp();
    void exponentsAgreeWithPlainValues();
    void keywordsReachTheirTrees();
    void valuesAfterClearingAreWritten();
    void clearingLeavesNothing_data();
    void clearingLeavesNothing();

private:
    enum Places { All, XmpOnly, None };
    using Edit = std::function<void(ImageMetadata &)>;
    QString sourceWith(Places places, const QStringList &more = {}) const;
    QByteArray copied(const QString &source, const QString &type, const Edit &edit,
                      const QString &name) const;
    QJsonObject copiedRecord(const QString &source, const QString &type, const Edit &edit) const;
    QMap<QString, QJsonObject> recordsOf(const QStringList &names) const;

    test::TestFolder m_folder;
    QString m_sources[3];
};

/// A small JPEG in which exiftool has written the old values.
QString MetadataEditingTest::sourceWith(Places places, const QStringList &more) const
{
    const QString path = m_folder.path(QStringLiteral("source%1%2.jpg").arg(places).arg(more.size()));
    QImage image(32, 32, QImage::Format_RGB32);
    image.fill(Qt::gray);
    if (!image.save(path, "JPG"))
        return {};
    QStringList arguments{u"-n"_qs, u"-overwrite_original"_qs, u"-charset"_qs, u"filename=utf8"_qs};
    for (const Fact &fact : facts()) {
        for (const QString &place : fact.places) {
            if (places == All || (places == XmpOnly && place.startsWith(u"XMP")))
                arguments += u'-' + place + u'=' + fact.oldValue.toString();
        }
    }
    arguments += more;
    if (places == None && more.isEmpty())
        return path;
    const QByteArray said = test::outputOf(u"exiftool"_qs, arguments + QStringList(path));
    return said.contains("1 image files updated") ? path : QString();
}

void MetadataEditingTest::initTestCase()
{
    for (const Places places : {All, XmpOnly, None}) {
        m_sources[places] = sourceWith(places);
        QVERIFY(!m_sources[places].isEmpty());
    }
}

/// Writes a copy with edited metadata into the folder. @return its bytes; empty when that failed
QByteArray MetadataEditingTest::copied(const QString &path, const QString &type, const Edit &edit,
                                       const QString &name) const
{
    const auto source = ImageSource::open(path);
    if (!source)
        return {};
    ImageMetadata metadata(source->properties());
    edit(metadata);
    QImage image(32, 32, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    CopyRequest request{type, metadata.imagePropertiesDictionary(), &*source};
    request.cleared = metadata.clearedGroups();
    if (!writeImage(file, image, request))
        return {};
    QFile copy(m_folder.path(name));
    if (!copy.open(QIODevice::WriteOnly) || copy.write(file.data()) != file.size())
        return {};
    return file.data();
}

/// What exiftool says of these files, by name.
QMap<QString, QJsonObject> MetadataEditingTest::recordsOf(const QStringList &names) const
{
    QStringList arguments{u"-json"_qs, u"-n"_qs, u"-a"_qs, u"-G1"_qs, u"-charset"_qs, u"filename=utf8"_qs};
    for (const QString &name : names)
        arguments += m_folder.path(name);
    QMap<QString, QJsonObject> records;
    const QJsonArray list = QJsonDocument::fromJson(test::outputOf(u"exiftool"_qs, arguments)).array();
    for (const auto &record : list)
        records.insert(QFileInfo(record[QLatin1StringView("SourceFile")].toString()).fileName(),
                       record.toObject());
    return records;
}

QJsonObject MetadataEditingTest::copiedRecord(const QString &source, const QString &type,
                                              const Edit &edit) const
{
    const QString name = u"copy"_qs;
    return copied(source, type, edit, name).isEmpty() ? QJsonObject() : recordsOf({name}).value(name);
}

void MetadataEditingTest::editReachesAllPlaces_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("places");
    constexpr const char *kNames[] = {"all", "XMP", "none"};
    for (const ImageFormat &format : imageFormats()) {
        if (!hasRoomForMetadata(format))
            continue;
        for (const int places : {All, XmpOnly, None})
            QTest::addRow("%s, %s", format.name, kNames[places])
                << QString::fromLatin1(format.type) << places;
    }
}

/// A photo says each fact in all places, in XMP only, or nowhere: once each fact is set, once removed.
void MetadataEditingTest::editReachesAllPlaces()
{
    QFETCH(QString, type);
    QFETCH(int, places);
    QStringList names;
    QStringList failures;
    const QList<Fact> all = facts();
    for (qsizetype i = 0; i < all.size(); ++i) {
        const Fact &fact = all[i];
        names += {QStringLiteral("set%1").arg(i), QStringLiteral("removed%1").arg(i)};
        const QByteArray file = copied(
            m_sources[places], type, [&](ImageMetadata &m) { (m.*fact.set)(fact.newValue); }, names[2 * i]);
        QVERIFY2(!file.isEmpty(), fact.name);
        const QByteArray without = copied(
            m_sources[places], type, [&](ImageMetadata &m) { (m.*fact.set)({}); }, names[2 * i + 1]);
        QVERIFY2(!without.isEmpty(), fact.name);
        const QString old = fact.oldValue.toString();
        if (old.startsWith(u"old ") && without.contains(old.toUtf8()))
            failures += QStringLiteral("%1 is still in the file").arg(QLatin1StringView(fact.name));
    }
    const QMap<QString, QJsonObject> records = recordsOf(names);
    for (qsizetype i = 0; i < all.size(); ++i) {
        const QJsonObject set = records.value(names[2 * i]);
        const QJsonObject removed = records.value(names[2 * i + 1]);
        int found = 0;
        for (const QString &place : all[i].places) {
            if (removed.contains(place))
                failures += place + u" was not removed"_qs;
            if (!set.contains(place))
                continue;
            ++found;
            const QString wanted = all[i].newValue.toString();
            QString text = set[place].toVariant().toString();
            // The fraction of a second stands in XMP's dates.
            if (wanted.size() == 19 && text.startsWith(wanted))
                text.truncate(19);
            if (text != wanted)
                failures += place + u" says "_qs + text;
        }
        if (found == 0 && hasPlaceIn(type, all[i]))
            failures += QStringLiteral("%1 was not written").arg(QLatin1StringView(all[i].name));
    }
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void MetadataEditingTest::fractionAndZoneOfDatesReachXmp()
{
    const QString source = sourceWith(All, {u"-XMP-exif:DateTimeOriginal=2001:02:03 04:05:06.17+01:00"_qs,
                                            u"-ExifIFD:OffsetTimeOriginal=+01:00"_qs});
    const QString date = u"XMP-exif:DateTimeOriginal"_qs;
    const QString type = u"image/jpeg"_qs;
    QCOMPARE(copiedRecord(source, type, [](ImageMetadata &) {})[date].toString(),
             u"2001:02:03 04:05:06.17+01:00"_qs);
    const auto edit = [](ImageMetadata &m) { m.setExifSubsecTimeOriginal(u"5"_qs); };
    QCOMPARE(copiedRecord(source, type, edit)[date].toString(), u"2001:02:03 04:05:06.5+01:00"_qs);
    const QJsonObject dateless =
        copiedRecord(source, type, [](ImageMetadata &m) { m.setExifDateTimeOriginalStr({}); });
    QVERIFY(dateless.contains(u"ExifIFD:CreateDate"_qs));
    for (const char *part : {"ExifIFD:SubSecTimeOriginal", "ExifIFD:OffsetTimeOriginal"})
        QVERIFY2(!dateless.contains(QLatin1StringView(part)), part);
}

void MetadataEditingTest::flashReachesXmp()
{
    const QString source = sourceWith(None, {u"-ExifIFD:Flash=25"_qs, u"-XMP-exif:FlashFired=True"_qs,
                                             u"-XMP-exif:FlashMode=3"_qs, u"-XMP-exif:FlashReturn=0"_qs});
    const QJsonObject record =
        copiedRecord(source, u"image/jpeg"_qs, [](ImageMetadata &m) { m.setExifFlash(0); });
    QCOMPARE(record[u"ExifIFD:Flash"].toInt(), 24);
    QCOMPARE(record[u"XMP-exif:FlashFired"].toVariant().toString().toLower(), u"false"_qs);
    QCOMPARE(record[u"XMP-exif:FlashMode"].toInt(), 3);
}

/// exiftool shows the exponents as what they stand for.
void MetadataEditingTest::exponentsAgreeWithPlainValues()
{
    const QStringList places{u"ExifIFD:FNumber"_qs,           u"ExifIFD:ApertureValue"_qs,
                             u"XMP-exif:ApertureValue"_qs,    u"ExifIFD:ExposureTime"_qs,
                             u"ExifIFD:ShutterSpeedValue"_qs, u"XMP-exif:ShutterSpeedValue"_qs};
    QStringList facts;
    for (const QString &place : places)
        facts += u'-' + place + u"=0.7"_qs;
    const QString source = sourceWith(None, facts);
    const QString type = u"image/jpeg"_qs;
    const auto edited = copiedRecord(source, type, [](ImageMetadata &m) {
        m.setExifFNumber(5.6);
        m.setExifExposureTime(5.6);
    });
    const auto removed = copiedRecord(source, type, [](ImageMetadata &m) {
        m.setExifFNumber({});
        m.setExifExposureTime({});
    });
    for (const QString &place : places) {
        QVERIFY2(qAbs(edited[place].toDouble() - 5.6) < 1e-4, qPrintable(place));
        QVERIFY2(!removed.isEmpty() && !removed.contains(place), qPrintable(place));
    }
    // What EXIF cannot hold leaves nothing of the old value: exponents below zero, what is no aperture.
    for (const QVariant &refused : {QVariant(0.95), QVariant(-1), QVariant(u"abc"_qs), QVariant(1e30)}) {
        const auto record = copiedRecord(source, type, [&](ImageMetadata &m) { m.setExifFNumber(refused); });
        QVERIFY(record.contains(u"ExifIFD:ExposureTime"_qs));
        QCOMPARE(record[u"ExifIFD:FNumber"].toDouble(), refused == 0.95 ? 0.95 : 0.0);
        for (const char *place : {"ExifIFD:ApertureValue", "XMP-exif:ApertureValue"})
            QVERIFY2(!record.contains(QLatin1StringView(place)), place);
        QVERIFY(refused == 0.95 || !record.contains(u"XMP-exif:FNumber"_qs));
    }
}

void MetadataEditingTest::keywordsReachTheirTrees()
{
    const QString source = sourceWith(
        None, {u"-XMP-dc:Subject=Berlin"_qs, u"-XMP-dc:Subject=Oslo"_qs, u"-XMP-dc:Subject=Night"_qs,
               u"-XMP-lr:HierarchicalSubject=Places|Berlin"_qs, u"-XMP-lr:HierarchicalSubject=Places|Oslo"_qs,
               u"-XMP-lr:HierarchicalSubject=Night|Oslo"_qs, u"-XMP-digiKam:TagsList=Places/Berlin"_qs,
               u"-XMP-pdf:Keywords=Berlin, Oslo"_qs});
    const QString tree = u"XMP-lr:HierarchicalSubject"_qs;
    const QString key = kCGImagePropertyIPTCKeywords;
    const QJsonObject edited = copiedRecord(
        source, u"image/jpeg"_qs, [&](ImageMetadata &m) { m.setIptcValue(QVariantList{u"Oslo"_qs}, key); });
    QCOMPARE(edited[tree].toString(), u"Places|Oslo"_qs);
    QVERIFY(!edited.contains(u"XMP-digiKam:TagsList"_qs) && !edited.contains(u"XMP-pdf:Keywords"_qs));
    const QJsonObject untouched = copiedRecord(source, u"image/jpeg"_qs, [](ImageMetadata &) {});
    QCOMPARE(untouched[tree].toArray().size(), 3);
    const QJsonObject removed =
        copiedRecord(source, u"image/jpeg"_qs, [&](ImageMetadata &m) { m.setIptcValue({}, key); });
    QVERIFY(!removed.isEmpty() && !removed.contains(tree));
}

/// Even those that say what stood there before.
void MetadataEditingTest::valuesAfterClearingAreWritten()
{
    const QJsonObject record = copiedRecord(m_sources[All], u"image/jpeg"_qs, [](ImageMetadata &m) {
        m.clearExifData();
        m.clearIptcDataKeepCopyright(false, false);
        m.setExifUserComment(u"old comment"_qs);
        m.setIptcCity(u"old city"_qs);
        m.setIptcHeadline(u"new"_qs);
    });
    QCOMPARE(record[u"ExifIFD:UserComment"].toString(), u"old comment"_qs);
    QVERIFY(!record.contains(u"ExifIFD:LensModel"_qs));
    QCOMPARE(record[u"IPTC:City"].toString(), u"old city"_qs);
    QCOMPARE(record[u"IPTC:Headline"].toString(), u"new"_qs);
    QVERIFY(!record.contains(u"IPTC:Writer-Editor"_qs));
}

void MetadataEditingTest::clearingLeavesNothing_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<int>("clearing");
    QTest::addColumn<bool>("isInDictionary");
    for (const ImageFormat &format : imageFormats()) {
        if (!hasRoomForMetadata(format))
            continue;
        const QString type = QString::fromLatin1(format.type);
        constexpr const char *kNames[] = {"EXIF", "GPS", "IPTC", "IPTC but rights", "TIFF"};
        for (int i = 0; i < 5; ++i) {
            QTest::addRow("%s, %s", format.name, kNames[i]) << type << i << true;
            QTest::addRow("%s, %s, unmodelled", format.name, kNames[i]) << type << i << false;
        }
    }
}

QList<Clearing> clearings()
{
    const QStringList iptc{u"IPTC:*"_qs,          u"XMP-iptcExt:*"_qs,      u"XMP-iptcCore:*"_qs,
                           u"XMP-photoshop:*"_qs, u"XMP-dc:Title"_qs,       u"XMP-dc:Creator"_qs,
                           u"XMP-dc:Subject"_qs,  u"XMP-dc:Description"_qs, u"XMP-plus:*"_qs,
                           u"XMP-mwg-rs:*"_qs,    u"XMP-mwg-kw:*"_qs,       u"XMP-MP:*"_qs,
                           u"XMP-pdf:*"_qs,       u"XMP-photomech:*"_qs,    u"XMP-getty:Personality"_qs,
                           u"XMP-acdsee:*"_qs,    u"XMP-xmp:Author"_qs,     u"XMP-xmp:Nickname"_qs,
                           u"XMP-cc:*"_qs,        u"XMP-xmpDM:*"_qs,        u"XMP-prism:*"_qs,
                           u"XMP-album:*"_qs};
    return {
        {"EXIF",
         [](ImageMetadata &m) { m.clearExifData(); },
         {u"ExifIFD:*"_qs, u"*SerialNumber"_qs, u"XMP-exif:[A-FH-Z]*"_qs, u"XMP-exifEX:*"_qs, u"XMP-aux:*"_qs,
          u"XMP-xmp:CreateDate"_qs, u"*Lens*"_qs, u"XMP-GPano:*"_qs},
         {u"headline"_qs, u"make"_qs}},
        {"GPS",
         [](ImageMetadata &m) { m.clearGPSData(); },
         {u"*GPS*"_qs, u"*Latitude*"_qs, u"*Longitude*"_qs, u"*:Geo*"_qs, u"*:Lat"_qs, u"*:Long"_qs,
          u"XMP-cell:*"_qs, u"IFD0:IntergraphMatrix"_qs},
         {u"headline"_qs, u"capture"_qs, u"serial"_qs, u"city"_qs}},
        {"IPTC",
         [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(false, false); },
         iptc + QStringList{u"XMP-dc:Rights"_qs, u"XMP-xmpRights:*"_qs, u"Photoshop:CopyrightFlag"_qs,
                            u"Photoshop:URL"_qs},
         {u"capture"_qs, u"serial"_qs, u"make"_qs}},
        {"IPTC but rights",
         [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(true, true); },
         {u"IPTC:City"_qs, u"IPTC:Headline"_qs, u"IPTC:UniqueObjectName"_qs, u"IPTC:Destination"_qs,
          u"IPTC:DateSent"_qs, u"XMP-photoshop:City"_qs, u"XMP-iptcExt:*"_qs, u"XMP-dc:Title"_qs,
          u"XMP-dc:Description"_qs, u"XMP-acdsee:*"_qs, u"XMP-pdf:*"_qs},
         {u"copyright"_qs, u"creator"_qs, u"profession"_qs, u"email"_qs, u"address"_qs, u"capture"_qs},
         {u"XMP-xmpRights:UsageTerms"_qs, u"XMP-cc:AttributionName"_qs}},
        {"TIFF",
         [](ImageMetadata &m) { m.clearTiffDataKeepCopyright(false, false); },
         {u"IFD0:Make"_qs, u"IFD0:Model"_qs, u"IFD0:UniqueCameraModel"_qs, u"IFD0:Software"_qs,
          u"IFD0:Artist"_qs, u"IFD0:Copyright"_qs, u"IFD0:ImageDescription"_qs, u"IFD0:XP*"_qs,
          u"XMP-tiff:Make"_qs, u"XMP-tiff:Model"_qs, u"XMP-tiff:Software"_qs, u"XMP-tiff:Artist"_qs,
          u"XMP-tiff:Copyright"_qs, u"XMP-tiff:ImageDescription"_qs, u"XMP-xmp:CreatorTool"_qs,
          u"XMP-getty:Camera*"_qs, u"XMP-MP1:*"_qs},
         {u"copyright"_qs, u"creator"_qs, u"description"_qs, u"capture"_qs, u"serial"_qs}},
    };
}

/// With the facts in the dictionary, and where a file has only such as the dictionary does not model.
void MetadataEditingTest::clearingLeavesNothing()
{
    QFETCH(QString, type);
    QFETCH(int, clearing);
    QFETCH(bool, isInDictionary);
    const Clearing wanted = clearings()[clearing];
    const QStringList unmodelled{
        u"-XMP-iptcExt:LocationShownCity=Old"_qs,
        u"-XMP-iptcExt:LocationShownGPSLatitude=51.5"_qs,
        u"-XMP-iptcExt:LocationShownGPSLongitude=7.5"_qs,
        u"-XMP-plus:ImageSupplierName=Old"_qs,
        u"-XMP-aux:Firmware=old"_qs,
        u"-XMP-exifEX:LensSerialNumber=old"_qs,
        u"-IFD0:UniqueCameraModel=old"_qs,
        u"-IFD0:XPSubject=old"_qs,
        u"-Photoshop:CopyrightFlag=1"_qs,
        u"-Photoshop:URL=http://old.example"_qs,
        u"-IFD0:GeoTiffAsciiParams=old"_qs,
        u"-XMP-mwg-rs:RegionName=Old"_qs,
        u"-XMP-mwg-kw:HierarchicalKeywords1=old"_qs,
        u"-XMP-MP:RegionPersonDisplayName=Old"_qs,
        u"-XMP-pdf:Author=Old"_qs,
        u"-XMP-pdf:Keywords=old"_qs,
        u"-XMP-photomech:CreatorIdentity=Old"_qs,
        u"-XMP-getty:Personality=Old"_qs,
        u"-XMP-getty:CameraMakeModel=old"_qs,
        u"-XMP-cell:CellTowerID=4711"_qs,
        u"-XMP-xmp:Author=Old"_qs,
        u"-XMP-xmp:Nickname=Old"_qs,
        u"-XMP-cc:AttributionName=Old"_qs,
        u"-XMP-xmpDM:ShotLocation=Old"_qs,
        u"-XMP-prism:Person=Old"_qs,
        u"-XMP-album:Notes=old"_qs,
        u"-XMP-crs:LensProfileName=old"_qs,
        u"-XMP-GPano:FirstPhotoDate=2001:02:03 04:05:06"_qs,
        u"-XMP-MP1:CameraModelID=old"_qs,
        u"-XMP-xmpRights:UsageTerms=old"_qs,
        u"-IFD0:IntergraphMatrix=1 2 3"_qs,
        u"-IPTC:UniqueObjectName=old"_qs,
        u"-IPTC:Destination=old"_qs,
        u"-IPTC:DateSent=2001:02:03"_qs,
    };
    const QStringList places{u"-GPS:GPSLatitude=51.5"_qs,
                             u"-GPS:GPSLatitudeRef=N"_qs,
                             u"-GPS:GPSLongitude=7.5"_qs,
                             u"-GPS:GPSLongitudeRef=E"_qs,
                             u"-GPS:GPSDateStamp=2001:02:03"_qs,
                             u"-XMP-exif:GPSLatitude=51.5"_qs,
                             u"-XMP-exif:GPSDateTime=2001:02:03 04:05:06Z"_qs,
                             u"-XMP-dc:Subject=old"_qs,
                             u"-IPTC:Keywords=old"_qs};
    const QString source =
        isInDictionary ? sourceWith(All, unmodelled + places) : sourceWith(None, unmodelled);
    QVERIFY(!source.isEmpty());
    const QJsonObject untouched = copiedRecord(source, type, [](ImageMetadata &) {});
    const QJsonObject record = copiedRecord(source, type, wanted.clear);
    QVERIFY(!untouched.isEmpty() && !record.isEmpty());
    int gone = 0;
    const auto isGoneTag = [&](const QString &tag) {
        return std::any_of(wanted.goneTags.begin(), wanted.goneTags.end(), [&](const QString &pattern) {
            return QRegularExpression::fromWildcard(pattern).match(tag).hasMatch();
        });
    };
    for (auto tag = untouched.begin(); tag != untouched.end(); ++tag) {
        if (!isGoneTag(tag.key()) || tag.key().startsWith(u"Composite"))
            continue;
        ++gone;
        QVERIFY2(!record.contains(tag.key()), qPrintable(tag.key()));
    }
    QVERIFY(gone > 0 || !isInDictionary);
    for (auto tag = record.begin(); tag != record.end(); ++tag)
        QVERIFY2(!isGoneTag(tag.key()) || tag.key().startsWith(u"Composite") ||
                     tag.key() == u"IPTC:CodedCharacterSet",
                 qPrintable(tag.key()));
    if (!isInDictionary)
        return;
    for (const QString &tag : wanted.keptTags)
        QVERIFY2(untouched.contains(tag) && record[tag] == untouched[tag], qPrintable(tag));
    for (const Fact &fact : facts()) {
        if (!wanted.keptFacts.contains(QLatin1StringView(fact.name)))
            continue;
        for (const QString &place : fact.places) {
            if (!isGoneTag(place))
                QVERIFY2(record[place] == untouched[place], qPrintable(place));
        }
    }
}

QTEST_GUILESS_MAIN(MetadataEditingTest)
#include "metadataediting_test.moc"
