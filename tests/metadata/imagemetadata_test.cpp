// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"
#include "platform/localeformat.h"

#include <QTest>

using namespace plexa;
using namespace Qt::Literals::StringLiterals;

namespace
{

ImageMetadata withGps(const QVariantMap &gps)
{
    return ImageMetadata({{kCGImagePropertyGPSDictionary, gps}});
}

ImageMetadata withExif(const QVariantMap &exif)
{
    return ImageMetadata({{kCGImagePropertyExifDictionary, exif}});
}

} // namespace

class ImageMetadataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Every row of the table stores and removes its value and that of its twin; GPS is read only.
    void everyPropertyIsStored()
    {
        for (size_t i = 0; i < metadataProperties().size(); ++i) {
            const auto property = MetadataProperty(i);
            const MetadataPropertyRow &row = metadataProperties()[i];
            const auto twin = twinOf(property);
            ImageMetadata metadata;
            const QVariantMap empty = metadata.imagePropertiesDictionary();
            metadata.setValue(property, 1);
            const bool isStored = row.form != MetadataForm::ReadOnly;
            QCOMPARE(metadata.value(property), isStored ? QVariant(1) : QVariant());
            QVERIFY2(!twin || metadata.value(*twin) == 1, row.name);
            QCOMPARE(metadata.dictionary(row.group).contains(row.key), isStored);
            metadata.setValue(property, {});
            const bool isCorrected = row.form == MetadataForm::Orientation ||
                                     row.form == MetadataForm::Resolution ||
                                     row.form == MetadataForm::Quality || row.form == MetadataForm::Flash;
            QVERIFY2(isCorrected || metadata.imagePropertiesDictionary() == empty, row.name);
        }
    }

    void orientationAndDensityAreCorrected()
    {
        const auto check = [](const QVariant &given, int orientation, double density) {
            ImageMetadata metadata({{kCGImagePropertyOrientation, given}, {kCGImagePropertyDPIWidth, given}});
            QCOMPARE(metadata.orientationCorrected(), orientation);
            QCOMPARE(metadata.dpiWidthCorrected(), density);
            metadata.setTiffOrientation(given);
            metadata.setDpiHeight(given);
            QCOMPARE(metadata.orientation(), QVariant(orientation));
            QCOMPARE(metadata.tiffYResolution().toDouble(), density);
            QCOMPARE(metadata.tiffResolutionUnit(), QVariant(2));
        };
        check({}, 1, 72);
        check(-3, 1, 72);
        check(8, 8, 8);
        check(9, 1, 9);
        check(6.7, 6, 6.7);
        check(0.9, 1, 72);
        check(1e300, 1, 72);
    }

    void quality()
    {
        const std::pair<QVariant, double> rows[] = {{QVariant(), 80}, {0.95, 0.95}, {100, 100},
                                                    {100.5, 100.5},   {-0.5, -0.5}, {101, 80},
                                                    {-1, 80},         {u"1"_s, 80}};
        for (const auto &[given, stored] : rows) {
            ImageMetadata metadata;
            metadata.setCompressionQuality(given);
            QCOMPARE(metadata.compressionQuality().toDouble(), stored);
        }
    }

    void arraysOfOne()
    {
        ImageMetadata metadata = withExif({{kCGImagePropertyExifISOSpeedRatings, QVariantList{200, 400}}});
        QCOMPARE(metadata.exifISOSpeed().toInt(), 200);
        metadata.setExifISOSpeed(800);
        QCOMPARE(metadata.exifValueForKey(kCGImagePropertyExifISOSpeedRatings), QVariant(QVariantList{800}));
        // A lone value in place of an array is read unchanged; a creator goes to TIFF as plain text.
        metadata.setIptcValue(u"W"_s, kCGImagePropertyIPTCWriterEditor);
        QCOMPARE(metadata.iptcDescriptionWriter().toString(), u"W"_s);
        metadata.setTiffValue(QVariantList{u"A"_s, u"B"_s}, kCGImagePropertyTIFFArtist);
        QCOMPARE(metadata.tiffArtist(), QVariant(u"A"_s));
        metadata.setIptcCreator(u"C"_s);
        QCOMPARE(metadata.iptcValueForKey(kCGImagePropertyIPTCByline), QVariant(QVariantList{u"C"_s}));
        QCOMPARE(metadata.tiffValueForKey(kCGImagePropertyTIFFArtist), QVariant(u"C"_s));
    }

    void codesAsText()
    {
        const auto check = [](const QVariant &code, const char *program, const char *metering) {
            ImageMetadata metadata;
            metadata.setExifExposureProgram(code);
            metadata.setExifMeteringMode(code);
            QCOMPARE(metadata.exifExposureProgramStr().isValid(), code.isValid());
            QCOMPARE(metadata.exifExposureProgramStr().toString(), QLatin1StringView(program));
            QCOMPARE(metadata.exifMeteringModeStr().toString(), QLatin1StringView(metering));
        };
        check({}, "", "");
        check(0, "undefined", "unknown");
        check(1, "manual", "average");
        check(2, "normal program", "center-weighted average");
        check(6, "action program", "partial");
        check(7, "portrait mode", "unknown");
        check(8, "landscape mode", "unknown");
        check(9, "unknown", "unknown");
        check(255, "unknown", "other");
        check(-1, "unknown", "unknown");
    }

    void texts()
    {
        const auto check = [](const QVariant &text, const QString &expected) {
            QCOMPARE(text.isValid(), !expected.isEmpty());
            QCOMPARE(text.toString(), expected);
        };
        const ImageMetadata north = withGps({{kCGImagePropertyGPSLatitude, 48.8584},
                                             {kCGImagePropertyGPSLongitude, -33.5},
                                             {kCGImagePropertyGPSLongitudeRef, u"W"_s},
                                             {kCGImagePropertyGPSAltitude, 10},
                                             {kCGImagePropertyGPSAltitudeRef, 1},
                                             {kCGImagePropertyGPSImgDirection, 46.5},
                                             {kCGImagePropertyGPSTimeStamp, u"15:12:07"_s}});
        check(north.gpsLatitudeFull(), u"48\u00B0 51' 30.240\""_s);
        check(north.gpsLongitudeFull(), u"-33\u00B0 -30' 0.000\" W"_s);
        check(north.gpsAltitudeString(), u"10.00 m (32.81 ft) below sea level"_s);
        check(north.gpsImageDirection(), u"46.500"_s);
        check(north.gpsTimeStamp(), u"15:12:07 (UTC)"_s);
        check(ImageMetadata().gpsLatitudeFull(), {});
        check(ImageMetadata().gpsAltitudeString(), {});
        // The exact factor gives the same at 10 m, and 32808.40 here.
        check(withGps({{kCGImagePropertyGPSAltitude, 10000}}).gpsAltitudeString(),
              u"10000.00 m (32808.00 ft) above sea level"_s);
        const auto direction = [](const QString &reference) {
            return withGps({{kCGImagePropertyGPSImgDirection, 1},
                            {kCGImagePropertyGPSImgDirectionRef, reference}})
                .gpsImageDirection();
        };
        check(direction(u"T"_s), u"1.000 (true north direction)"_s);
        check(direction(u"t"_s), u"1.000 (magnetic north direction)"_s);
        const ImageMetadata third = withExif({{kCGImagePropertyExifExposureTime, 1.0 / 3}});
        check(third.exifExposureTimeStr(LocaleFormat(u"en_US"_s)), u"0.3333"_s);
        check(third.exifExposureTimeStr(LocaleFormat(u"de_DE"_s)), u"0,3333"_s);
    }

    void dates()
    {
        const auto check = [](const QString &raw, const QDateTime &expected) {
            ImageMetadata metadata;
            metadata.setExifDateTimeOriginalStr(raw);
            QCOMPARE(metadata.exifDateTimeOriginal(), expected);
            metadata.setExifDateTimeDigitized(expected);
            QCOMPARE(metadata.exifDateTimeDigitizedStr(), expected.isValid() ? QVariant(raw) : QVariant());
        };
        check(u"2004:06:21 23:37:53"_s, QDateTime(QDate(2004, 6, 21), QTime(23, 37, 53)));
        for (const QString &invalid :
             {u"0000:00:00 00:00:00"_s, u"    :  :     :  :  "_s, u"2023:02:29 10:00:00"_s,
              u"2023:02:28 10:60:00"_s, u"2015-06-29T18:19:12"_s, u"2004:06:21 23:37:53Z"_s})
            check(invalid, {});
    }

    /// The hour that the local clock skips: a camera in another zone took photos in it.
    void timesInTheSkippedHour()
    {
        const auto check = [](const QByteArray &zone, QDate date, QTime time, const char *shownZone) {
            const QDateTime taken(date, time, Qt::UTC);
            const QByteArray before = qgetenv("TZ");
            qputenv("TZ", zone);
            tzset();
            const QString raw = taken.toString(ImageMetadata::exifDateTimeFormatter());
            ImageMetadata metadata;
            metadata.setExifDateTimeOriginalStr(raw);
            const QDateTime read = metadata.exifDateTimeOriginal();
            metadata.setExifDateTimeDigitized(read);
            const QString shown = LocaleFormat(u"de_DE"_s).time(read, LocaleFormat::Style::Long);
            before.isNull() ? qunsetenv("TZ") : qputenv("TZ", before);
            tzset();
            QCOMPARE(shown, taken.toString(u"HH:mm:ss "_s) + QLatin1StringView(shownZone));
            QCOMPARE(metadata.exifDateTimeDigitizedStr(), QVariant(raw));
        };
        check("Europe/Berlin", QDate(2021, 3, 28), QTime(2, 30), "GMT+1");
        check("Australia/Lord_Howe", QDate(2021, 10, 3), QTime(2, 10), "GMT+10:30"); // half an hour
        check("Pacific/Apia", QDate(2011, 12, 30), QTime(12, 0), "GMT-10");          // a whole day
    }
};

QTEST_GUILESS_MAIN(ImageMetadataTest)
#include "imagemetadata_test.moc"
