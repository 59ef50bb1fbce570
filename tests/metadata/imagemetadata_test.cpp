// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"
#include "metadata/propertykeys.h"
#include "platform/localeformat.h"

#include <QTest>

using namespace plexa;

namespace
{

QVariantMap withGps(const QVariantMap &gps)
{
    return {{kCGImagePropertyGPSDictionary, gps}};
}

QVariantMap withExif(const QVariantMap &exif)
{
    return {{kCGImagePropertyExifDictionary, exif}};
}

} // namespace

class ImageMetadataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void shapeIsAlwaysTheSame();
    void copiesShareNothing();
    void orientationAndDensityAreCorrected_data();
    void orientationAndDensityAreCorrected();
    void twinsStayEqual();
    void quality_data();
    void quality();
    void flashKeepsItsOtherBits();
    void arraysOfOne();
    void codesAsText_data();
    void codesAsText();
    void texts_data();
    void texts();
    void dates_data();
    void dates();
    void timesInTheSkippedHour_data();
    void timesInTheSkippedHour();
    void clearing();
};

void ImageMetadataTest::shapeIsAlwaysTheSame()
{
    const QVariantMap odd{
        {kCGImagePropertyTIFFDictionary, QStringLiteral("no dictionary")},
        {kCGImagePropertyIPTCDictionary, QVariantMap{{kCGImagePropertyIPTCCreatorContactInfo, 5}}},
        {kCGImagePropertyDepth, 8}};
    for (const QVariantMap &source : {QVariantMap(), odd}) {
        const QVariantMap properties = ImageMetadata(source).imagePropertiesDictionary();
        for (const QString key : {kCGImagePropertyTIFFDictionary, kCGImagePropertyExifDictionary,
                                  kCGImagePropertyExifAuxDictionary, kCGImagePropertyGPSDictionary})
            QCOMPARE(properties.value(key), QVariant(QVariantMap()));
        QCOMPARE(properties.value(kCGImagePropertyIPTCDictionary),
                 QVariant(QVariantMap{{kCGImagePropertyIPTCCreatorContactInfo, QVariantMap()}}));
        QCOMPARE(properties.value(kCGImagePropertyDepth), source.value(kCGImagePropertyDepth));
    }
    const ImageMetadata none;
    QCOMPARE(none.orientationCorrected(), 1);
    QCOMPARE(none.dpiWidthCorrected(), 72.0);
    QVERIFY(!none.orientation().isValid() && !none.iptcCity().isValid() &&
            !none.gpsAltitudeString().isValid());
}

void ImageMetadataTest::copiesShareNothing()
{
    ImageMetadata original;
    original.setIptcCreatorCity(QStringLiteral("Bonn"));
    ImageMetadata copy = original;
    copy.setIptcCreatorCity(QStringLiteral("Ulm"));
    copy.clearTiffDataKeepCopyright(false, false);
    QCOMPARE(original.iptcCreatorCity().toString(), QStringLiteral("Bonn"));
}

void ImageMetadataTest::orientationAndDensityAreCorrected_data()
{
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<int>("orientation");
    QTest::addColumn<double>("dpi");
    QTest::newRow("none") << QVariant() << 1 << 72.0;
    QTest::newRow("zero") << QVariant(0) << 1 << 72.0;
    QTest::newRow("negative") << QVariant(-3) << 1 << 72.0;
    QTest::newRow("below one") << QVariant(0.9) << 1 << 72.0;
    QTest::newRow("both good") << QVariant(8) << 8 << 8.0;
    QTest::newRow("too large to turn") << QVariant(9) << 1 << 9.0;
    QTest::newRow("fraction") << QVariant(2.54) << 2 << 2.54;
    QTest::newRow("beyond any integer") << QVariant(1e300) << 1 << 72.0;
}

void ImageMetadataTest::orientationAndDensityAreCorrected()
{
    QFETCH(QVariant, given);
    QFETCH(int, orientation);
    QFETCH(double, dpi);
    ImageMetadata fromTop;
    fromTop.setOrientation(given);
    fromTop.setDpiWidth(given);
    fromTop.setDpiHeight(given);
    ImageMetadata fromTiff;
    fromTiff.setTiffOrientation(given);
    fromTiff.setTiffXResolution(given);
    fromTiff.setTiffYResolution(given);
    for (const ImageMetadata &metadata : {fromTop, fromTiff}) {
        QCOMPARE(metadata.orientation().toInt(), orientation);
        QCOMPARE(metadata.tiffOrientation().toInt(), orientation);
        QCOMPARE(metadata.dpiWidth().toDouble(), dpi);
        QCOMPARE(metadata.tiffXResolution().toDouble(), dpi);
        QCOMPARE(metadata.dpiHeight().toDouble(), dpi);
        QCOMPARE(metadata.tiffYResolution().toDouble(), dpi);
        QCOMPARE(metadata.tiffResolutionUnit().toInt(), 2);
    }
}

/// The same fact in TIFF and IPTC, whichever side is set; removing one removes both.
void ImageMetadataTest::twinsStayEqual()
{
    using Getter = QVariant (ImageMetadata::*)() const;
    using Setter = void (ImageMetadata::*)(const QVariant &);
    struct Twins {
        Getter get[2];
        Setter set[2];
    };
    const Twins all[] = {
        {{&ImageMetadata::iptcCopyright, &ImageMetadata::tiffCopyright},
         {&ImageMetadata::setIptcCopyright, &ImageMetadata::setTiffCopyright}},
        {{&ImageMetadata::iptcCreator, &ImageMetadata::tiffArtist},
         {&ImageMetadata::setIptcCreator, &ImageMetadata::setTiffArtist}},
        {{&ImageMetadata::iptcDescription, &ImageMetadata::tiffDescription},
         {&ImageMetadata::setIptcDescription, &ImageMetadata::setTiffDescription}},
    };
    for (const Twins &twins : all) {
        ImageMetadata metadata;
        for (int side = 0; side < 2; ++side) {
            for (const QVariant &value :
                 {QVariant(QStringLiteral("A")), QVariant(QStringLiteral("B")), QVariant()}) {
                (metadata.*twins.set[side])(value);
                QCOMPARE((metadata.*twins.get[0])(), value);
                QCOMPARE((metadata.*twins.get[1])(), value);
            }
        }
        QVERIFY(metadata.tiffData().isEmpty());
        QCOMPARE(metadata.iptcData().size(), 1); // the contact dictionary
    }
}

void ImageMetadataTest::quality_data()
{
    QTest::addColumn<QVariant>("given");
    QTest::addColumn<double>("stored");
    QTest::newRow("none") << QVariant() << 80.0;
    QTest::newRow("fraction") << QVariant(0.95) << 0.95;
    QTest::newRow("ends") << QVariant(100) << 100.0;
    QTest::newRow("whole part inside") << QVariant(100.5) << 100.5;
    QTest::newRow("whole part zero") << QVariant(-0.5) << -0.5;
    QTest::newRow("too large") << QVariant(101) << 80.0;
    QTest::newRow("negative") << QVariant(-1) << 80.0;
}

void ImageMetadataTest::quality()
{
    QFETCH(QVariant, given);
    QFETCH(double, stored);
    ImageMetadata metadata;
    metadata.setCompressionQuality(given);
    QCOMPARE(metadata.compressionQuality().toDouble(), stored);
}

void ImageMetadataTest::flashKeepsItsOtherBits()
{
    ImageMetadata metadata(withExif({{kCGImagePropertyExifFlash, 0x19}}));
    QCOMPARE(metadata.exifFlash(), 1);
    metadata.setExifFlash(0);
    QCOMPARE(metadata.exifValueForKey(kCGImagePropertyExifFlash).toInt(), 0x18);
    metadata.setExifFlash(7);
    QCOMPARE(metadata.exifValueForKey(kCGImagePropertyExifFlash).toInt(), 0x19);
    QCOMPARE(ImageMetadata().exifFlash(), 0);
}

void ImageMetadataTest::arraysOfOne()
{
    ImageMetadata metadata(withExif({{kCGImagePropertyExifISOSpeedRatings, QVariantList{200, 400}}}));
    QCOMPARE(metadata.exifISOSpeed().toInt(), 200);
    metadata.setExifISOSpeed(800);
    QCOMPARE(metadata.exifValueForKey(kCGImagePropertyExifISOSpeedRatings), QVariant(QVariantList{800}));
    metadata.setExifISOSpeed({});
    QVERIFY(!metadata.exifData().contains(kCGImagePropertyExifISOSpeedRatings));
    // A lone value in place of an array is read as it is; a creator goes to TIFF as plain text.
    metadata.setIptcValue(QStringLiteral("W"), kCGImagePropertyIPTCWriterEditor);
    QCOMPARE(metadata.iptcDescriptionWriter().toString(), QStringLiteral("W"));
    metadata.setIptcCreator(QStringLiteral("C"));
    QCOMPARE(metadata.iptcValueForKey(kCGImagePropertyIPTCByline),
             QVariant(QVariantList{QStringLiteral("C")}));
    QCOMPARE(metadata.tiffValueForKey(kCGImagePropertyTIFFArtist), QVariant(QStringLiteral("C")));
}

void ImageMetadataTest::codesAsText_data()
{
    QTest::addColumn<QVariant>("code");
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("metering");
    const auto row = [](const char *name, const QVariant &code, const char *program, const char *metering) {
        QTest::newRow(name) << code << QString::fromLatin1(program) << QString::fromLatin1(metering);
    };
    row("none", {}, "", "");
    row("0", 0, "undefined", "unknown");
    row("1", 1, "manual", "average");
    row("2", 2, "normal program", "center-weighted average");
    row("3", 3, "aperture priority", "spot");
    row("4", 4, "shutter priority", "multi-spot");
    row("5", 5, "creative program", "pattern");
    row("6", 6, "action program", "partial");
    row("7", 7, "portrait mode", "unknown");
    row("8", 8, "landscape mode", "unknown");
    row("9", 9, "unknown", "unknown");
    row("255", 255, "unknown", "other");
    row("-1", -1, "unknown", "unknown");
}

void ImageMetadataTest::codesAsText()
{
    QFETCH(QVariant, code);
    ImageMetadata metadata;
    metadata.setExifExposureProgram(code);
    metadata.setExifMeteringMode(code);
    QCOMPARE(metadata.exifExposureProgramStr().isValid(), code.isValid());
    QTEST(metadata.exifExposureProgramStr().toString(), "program");
    QTEST(metadata.exifMeteringModeStr().toString(), "metering");
}

void ImageMetadataTest::texts_data()
{
    QTest::addColumn<QVariant>("text");
    QTest::addColumn<QString>("expected");
    const auto gps = [](const QVariantMap &values) { return ImageMetadata(withGps(values)); };
    const auto exposure = [](double seconds, const char *locale) {
        return ImageMetadata(withExif({{kCGImagePropertyExifExposureTime, seconds}}))
            .exifExposureTimeStr(LocaleFormat(QString::fromLatin1(locale)));
    };
    QTest::newRow("latitude") << gps({{kCGImagePropertyGPSLatitude, 48.8584}}).gpsLatitudeFull()
                              << QString::fromUtf8("48\u00B0 51' 30.240\"");
    QTest::newRow("longitude with a letter")
        << gps({{kCGImagePropertyGPSLongitude, 2.5}, {kCGImagePropertyGPSLongitudeRef, QStringLiteral("E")}})
               .gpsLongitudeFull()
        << QString::fromUtf8("2\u00B0 30' 0.000\" E");
    QTest::newRow("negative latitude")
        << gps({{kCGImagePropertyGPSLatitude, -33.5}, {kCGImagePropertyGPSLatitudeRef, QStringLiteral("S")}})
               .gpsLatitudeFull()
        << QString::fromUtf8("-33\u00B0 -30' 0.000\" S");
    QTest::newRow("below the sea")
        << gps({{kCGImagePropertyGPSAltitude, 10}, {kCGImagePropertyGPSAltitudeRef, 1}}).gpsAltitudeString()
        << QStringLiteral("10.00 m (32.81 ft) below sea level");
    // With the exact factor it would be 328.08 ft at 100 m, but 32808.40 ft at 10,000.
    QTest::newRow("above the sea") << gps({{kCGImagePropertyGPSAltitude, 10000}}).gpsAltitudeString()
                                   << QStringLiteral("10000.00 m (32808.00 ft) above sea level");
    QTest::newRow("direction") << gps({{kCGImagePropertyGPSImgDirection, 46.5}}).gpsImageDirection()
                               << QStringLiteral("46.500");
    QTest::newRow("true north") << gps({{kCGImagePropertyGPSImgDirection, 1},
                                        {kCGImagePropertyGPSImgDirectionRef, QStringLiteral("T")}})
                                       .gpsImageDirection()
                                << QStringLiteral("1.000 (true north direction)");
    QTest::newRow("magnetic north") << gps({{kCGImagePropertyGPSImgDirection, 1},
                                            {kCGImagePropertyGPSImgDirectionRef, QStringLiteral("t")}})
                                           .gpsImageDirection()
                                    << QStringLiteral("1.000 (magnetic north direction)");
    QTest::newRow("time") << gps({{kCGImagePropertyGPSTimeStamp, QStringLiteral("15:12:07")}}).gpsTimeStamp()
                          << QStringLiteral("15:12:07 (UTC)");
    QTest::newRow("exposure") << exposure(0.008, "en_US") << QStringLiteral("0.008");
    QTest::newRow("exposure rounded") << exposure(1.0 / 3, "en_US") << QStringLiteral("0.3333");
    QTest::newRow("exposure elsewhere") << exposure(2.5, "de_DE") << QStringLiteral("2,5");
    QTest::newRow("no number") << ImageMetadata().gpsLatitudeFull() << QString();
}

void ImageMetadataTest::texts()
{
    QFETCH(QVariant, text);
    QFETCH(QString, expected);
    QCOMPARE(text.isValid(), !expected.isEmpty());
    QCOMPARE(text.toString(), expected);
}

void ImageMetadataTest::dates_data()
{
    QTest::addColumn<QString>("raw");
    QTest::addColumn<QDateTime>("expected");
    QTest::newRow("date") << QStringLiteral("2004:06:21 23:37:53")
                          << QDateTime(QDate(2004, 6, 21), QTime(23, 37, 53));
    QTest::newRow("unknown") << QStringLiteral("0000:00:00 00:00:00") << QDateTime();
    QTest::newRow("blank") << QStringLiteral("    :  :     :  :  ") << QDateTime();
    QTest::newRow("no such day") << QStringLiteral("2023:02:29 10:00:00") << QDateTime();
    QTest::newRow("no such minute") << QStringLiteral("2023:02:28 10:60:00") << QDateTime();
    QTest::newRow("hyphens") << QStringLiteral("2015-06-29T18:19:12") << QDateTime();
    QTest::newRow("more behind it") << QStringLiteral("2004:06:21 23:37:53Z") << QDateTime();
}

void ImageMetadataTest::dates()
{
    QFETCH(QString, raw);
    QFETCH(QDateTime, expected);
    ImageMetadata metadata;
    metadata.setExifDateTimeOriginalStr(raw);
    QCOMPARE(metadata.exifDateTimeOriginal(), expected);
    metadata.setExifDateTimeDigitized(expected);
    QCOMPARE(metadata.exifDateTimeDigitizedStr(), expected.isValid() ? QVariant(raw) : QVariant());
}

/// The hour that the local clock skips: a camera in another zone took photos in it.
void ImageMetadataTest::timesInTheSkippedHour_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDateTime>("taken");
    QTest::newRow("ahead of UTC") << QByteArray("Europe/Berlin")
                                  << QDateTime(QDate(2021, 3, 28), QTime(2, 30), Qt::UTC);
    QTest::newRow("UTC in winter") << QByteArray("Europe/London")
                                   << QDateTime(QDate(2021, 3, 28), QTime(1, 0), Qt::UTC);
    QTest::newRow("UTC in summer") << QByteArray("Atlantic/Azores")
                                   << QDateTime(QDate(2021, 3, 28), QTime(0, 59, 59), Qt::UTC);
    QTest::newRow("half an hour") << QByteArray("Australia/Lord_Howe")
                                  << QDateTime(QDate(2021, 10, 3), QTime(2, 10), Qt::UTC);
    QTest::newRow("a whole day") << QByteArray("Pacific/Apia")
                                 << QDateTime(QDate(2011, 12, 30), QTime(12, 0), Qt::UTC);
}

void ImageMetadataTest::timesInTheSkippedHour()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDateTime, taken);
    const QByteArray before = qgetenv("TZ");
    qputenv("TZ", zone);
    tzset();
    const QString raw = taken.toString(ImageMetadata::exifDateTimeFormatter());
    ImageMetadata metadata;
    metadata.setExifDateTimeOriginalStr(raw);
    const QDateTime read = metadata.exifDateTimeOriginal();
    metadata.setExifDateTimeDigitized(read);
    const LocaleFormat german(QStringLiteral("de_DE"));
    const QString shown = read.isValid()
                              ? german.date(read, LocaleFormat::Style::Medium) + u' ' +
                                    german.time(read, LocaleFormat::Style::Medium) + u' ' +
                                    onItsWallClock(read).toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))
                              : QString();
    before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
    tzset();
    QCOMPARE(shown, taken.toString(QStringLiteral("dd.MM.yyyy HH:mm:ss yyyy-MM-dd HH:mm:ss")));
    QCOMPARE(metadata.exifDateTimeDigitizedStr(), QVariant(raw));
}

void ImageMetadataTest::clearing()
{
    ImageMetadata full;
    full.setTiffCopyright(QStringLiteral("(c)"));
    full.setTiffArtist(QStringLiteral("Ann"));
    full.setTiffDescription(QStringLiteral("a lake"));
    full.setTiffSoftware(QStringLiteral("camera"));
    full.setTiffCameraModel(QStringLiteral("X"));
    full.setDpiWidth(300);
    full.setIptcCity(QStringLiteral("Ulm"));
    full.setIptcCreatorTitle(QStringLiteral("photographer"));
    full.setIptcCreatorEmail(QStringLiteral("ann@example.org"));
    full.setExifFNumber(8);
    full.setExifLens(QStringLiteral("50 mm"));
    for (int choice = 0; choice < 4; ++choice) {
        const bool copyright = (choice & 1) != 0;
        const bool contact = (choice & 2) != 0;
        ImageMetadata metadata = full;
        metadata.clearTiffDataKeepCopyright(copyright, contact);
        metadata.clearIptcDataKeepCopyright(copyright, contact);
        metadata.clearExifData();
        QCOMPARE(metadata.iptcCopyright().isValid(), copyright);
        QCOMPARE(metadata.tiffCopyright().isValid(), copyright);
        QCOMPARE(metadata.iptcCreator().isValid(), contact);
        QCOMPARE(metadata.tiffArtist().isValid(), contact);
        QCOMPARE(metadata.iptcCreatorTitle().isValid(), contact);
        QCOMPARE(metadata.iptcCreatorEmail().isValid(), contact);
        QCOMPARE(metadata.iptcData().size(), 1 + (copyright ? 1 : 0) + (contact ? 2 : 0));
        QCOMPARE(metadata.tiffData().size(),
                 2 + (copyright ? 1 : 0) + (contact ? 1 : 0)); // and the resolution
        QVERIFY(metadata.exifData().isEmpty() && metadata.exifAuxData().isEmpty());
    }
}

QTEST_GUILESS_MAIN(ImageMetadataTest)
#include "imagemetadata_test.moc"
