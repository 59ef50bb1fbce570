// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/imagesource.h"
#include "metadata/imagemetadata.h"
#include "platform/filenames.h"
#include "platform/localeformat.h"
#include "support/datarows.h"
#include "support/exiftool.h"
#include "watermark/fakephoto.h"
#include "watermark/texttokens.h"
#include "watermark/watermarktext.h"
#include "watermark/wpresetvalues.h"

#include <QtTest>

#include <cmath>

using namespace plexa;

namespace
{

using Text = std::optional<QString>;

Text expansion(const QString &token, const ImageMetadata &metadata)
{
    static const LocaleFormat locale(u"en_US"_qs);
    const QSize unscaled(4000, 3000);
    return PhotoFacts(u"/photos/a.b.JPG"_qs, metadata, 2 * unscaled, unscaled, locale)
        .stringForInfoToken(token);
}

/// How a token's text is made from what exiftool says.
enum class Form { Text, Number, Decimals4, Date, Position, Flash, Bias, Program };

struct Expectation {
    const char *token;
    QStringList tags; ///< the first that is there counts
    Form form;
};

const QList<Expectation> kExpectations{
    {"copyright", {u"IPTC:CopyrightNotice"_qs}, Form::Text},
    {"headline", {u"IPTC:Headline"_qs}, Form::Text},
    {"title", {u"IPTC:ObjectName"_qs}, Form::Text},
    {"caption", {u"IPTC:Caption-Abstract"_qs}, Form::Text},
    {"sublocation", {u"IPTC:Sub-location"_qs}, Form::Text},
    {"country", {u"IPTC:Country-PrimaryLocationName"_qs}, Form::Text},
    {"state", {u"IPTC:Province-State"_qs}, Form::Text},
    {"city", {u"IPTC:City"_qs}, Form::Text},
    {"writer/editor", {u"IPTC:Writer-Editor"_qs}, Form::Text},
    {"creator", {u"IPTC:By-line"_qs}, Form::Text},
    {"creator title", {u"IPTC:By-lineTitle"_qs}, Form::Text},
    {"creator e-mail", {u"XMP-iptcCore:CreatorWorkEmail"_qs}, Form::Text},
    {"creator website", {u"XMP-iptcCore:CreatorWorkURL"_qs}, Form::Text},
    {"creator phone", {u"XMP-iptcCore:CreatorWorkTelephone"_qs}, Form::Text},
    {"creator country", {u"XMP-iptcCore:CreatorCountry"_qs}, Form::Text},
    {"creator state", {u"XMP-iptcCore:CreatorRegion"_qs}, Form::Text},
    {"creator city", {u"XMP-iptcCore:CreatorCity"_qs}, Form::Text},
    {"creator postal code", {u"XMP-iptcCore:CreatorPostalCode"_qs}, Form::Text},
    {"creator address", {u"XMP-iptcCore:CreatorAddress"_qs}, Form::Text},
    {"date (YYYY-MM-DD)", {u"ExifIFD:DateTimeOriginal"_qs}, Form::Date},
    {"subsecond time", {u"ExifIFD:SubSecTimeOriginal"_qs}, Form::Text},
    {"latitude", {u"GPS:GPSLatitude"_qs}, Form::Position},
    {"longitude", {u"GPS:GPSLongitude"_qs}, Form::Position},
    {"exposure time", {u"ExifIFD:ExposureTime"_qs}, Form::Decimals4},
    {"F-number", {u"ExifIFD:FNumber"_qs}, Form::Number},
    {"ISO speed", {u"ExifIFD:ISO"_qs}, Form::Number},
    {"exposure program", {u"ExifIFD:ExposureProgram"_qs}, Form::Program},
    {"focal length", {u"ExifIFD:FocalLength"_qs}, Form::Number},
    {"focal length 35mm", {u"ExifIFD:FocalLengthIn35mmFormat"_qs}, Form::Number},
    {"flash", {u"ExifIFD:Flash"_qs}, Form::Flash},
    {"exposure bias", {u"ExifIFD:ExposureCompensation"_qs}, Form::Bias},
    {"camera make", {u"IFD0:Make"_qs}, Form::Text},
    {"camera model", {u"IFD0:Model"_qs}, Form::Text},
    {"lens", {u"XMP-aux:Lens"_qs, u"ExifIFD:LensModel"_qs}, Form::Text},
    {"camera serial #", {u"XMP-aux:SerialNumber"_qs, u"ExifIFD:SerialNumber"_qs}, Form::Text},
    {"EXIF user comment", {u"ExifIFD:UserComment"_qs}, Form::Text},
    {"software", {u"IFD0:Software"_qs}, Form::Text},
    {"bit depth", {u"File:BitsPerSample"_qs, u"PNG:BitDepth"_qs}, Form::Number},
    {"ICC profile", {u"ICC_Profile:ProfileDescription"_qs}, Form::Text},
};

QString withSign(double value, const QString &plain)
{
    return value > 0 ? u'+' + plain : value < 0 ? u'-' + plain : plain;
}

/// Is it the text that this form makes of exiftool's value? Numbers: exiftool prints ten digits.
bool agrees(Form form, const QString &found, const QJsonValue &value, const QString &reference)
{
    const QString text = test::comparable(value.isArray() ? value.toArray().first() : value);
    const double number = text.toDouble();
    switch (form) {
    case Form::Text:
        // exiftool writes "6.0" as a number.
        return found.simplified() == text.simplified() || (value.isDouble() && found.toDouble() == number);
    case Form::Number:
        return std::abs(found.toDouble() - number) <= 1e-8 * std::abs(number);
    case Form::Decimals4:
        return std::abs(QString(found).remove(u',').toDouble() - number) <= 0.5001e-4;
    case Form::Date:
        return found == text.first(10).replace(u':', u'-');
    case Form::Position: {
        static const QRegularExpression form(u"^(\\d+)\u00b0 (\\d+)' (\\d+\\.\\d{3})\" ([NSEW])$"_qs);
        const QRegularExpressionMatch match = form.match(found);
        const double degrees = match.captured(1).toInt() + match.captured(2).toInt() / 60.0 +
                               match.captured(3).toDouble() / 3600;
        return match.hasMatch() && match.captured(4) == reference && std::abs(degrees - number) < 1e-6;
    }
    case Form::Flash:
        return found == (value.toInt() % 2 == 1 ? u"did fire"_qs : u"did not fire"_qs);
    case Form::Bias: {
        const QString unsignedPart = found.mid(number == 0 ? 0 : 1);
        return found == withSign(number, unsignedPart) && std::abs(unsignedPart.toDouble() - number) < 1e-8;
    }
    case Form::Program: {
        static const QStringList names{
            u"undefined"_qs,         u"manual"_qs,           u"normal program"_qs,
            u"aperture priority"_qs, u"shutter priority"_qs, u"creative program"_qs,
            u"action program"_qs,    u"portrait mode"_qs,    u"landscape mode"_qs};
        return found == names.value(value.toInt(), u"unknown"_qs);
    }
    }
    return false;
}

struct NamesAreParted {
    test::Text name;
    test::Text path;
    test::Text filename;
    test::Text extension;
};

struct PiecesAreJoinedAsTheyStand {
    test::Text name;
    QStringList pieces;
    test::Text text;
};

} // namespace

class TextTokensTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesAreWrittenPlainly_data()
    {
        QTest::addColumn<QString>("group");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("token");
        QTest::addColumn<QString>("text"); // null: none
        const auto row = [](const char *name, const char *group, const char *key, const QVariant &value,
                            const char *token, const char *text) {
            QTest::newRow(name) << QString::fromLatin1(group) << QString::fromLatin1(key) << value
                                << QString::fromLatin1(token) << QString::fromUtf8(text);
        };
        row("whole F-number", "{Exif}", "FNumber", 4.0, "F-number", "4");
        row("F-number", "{Exif}", "FNumber", 2.8, "F-number", "2.8");
        row("third", "{Exif}", "FocalLength", 1.0 / 3, "focal length", "0.3333333333333333");
        row("million", "{Exif}", "FocalLength", 1000000.0, "focal length", "1000000");
        row("bias of none", "{Exif}", "ExposureBiasValue", 0.0, "exposure bias", "0");
        row("positive bias", "{Exif}", "ExposureBiasValue", 0.3, "exposure bias", "+0.3");
        row("negative bias has two signs", "{Exif}", "ExposureBiasValue", -1.0, "exposure bias", "--1");
        row("negative fraction", "{Exif}", "ExposureBiasValue", -0.7, "exposure bias", "--0.7");
        row("flash", "{Exif}", "Flash", 0x19, "flash", "did fire");
        row("no flash", "{Exif}", "Flash", 0x18, "flash", "did not fire");
        row("flash unknown", "{Exif}", "FNumber", 4, "flash", "did not fire");
        row("first of several", "{Exif}", "ISOSpeedRatings", QVariantList{200, 400}, "ISO speed", "200");
        row("exposure", "{Exif}", "ExposureTime", 0.008, "exposure time", "0.008");
        row("title is the object name", "{IPTC}", "ObjectName", u"x"_qs, "title", "x");
        row("title is not the headline", "{IPTC}", "Headline", u"x"_qs, "title", nullptr);
        row("empty text", "{IPTC}", "City", u""_qs, "city", nullptr);
        const QVariant taken = u"2024:02:09 18:03:07"_qs;
        row("full date", "{Exif}", "DateTimeOriginal", taken, "date (full)", "Friday, February 9, 2024");
        row("long date", "{Exif}", "DateTimeOriginal", taken, "date (long)", "February 9, 2024");
        row("medium date", "{Exif}", "DateTimeOriginal", taken, "date (medium)", "Feb 9, 2024");
        row("short date", "{Exif}", "DateTimeOriginal", taken, "date (short)", "2/9/24");
        row("ISO date", "{Exif}", "DateTimeOriginal", taken, "date (YYYY-MM-DD)", "2024-02-09");
        row("German date", "{Exif}", "DateTimeOriginal", taken, "date (DD.MM.YYYY)", "09.02.2024");
        row("American date", "{Exif}", "DateTimeOriginal", taken, "date (MM/DD/YYYY)", "02/09/2024");
        row("hours and minutes", "{Exif}", "DateTimeOriginal", taken, "time (hh:mm)", "18:03");
        row("and seconds", "{Exif}", "DateTimeOriginal", taken, "time (hh:mm:ss)", "18:03:07");
        row("no date in its place", "{Exif}", "DateTimeDigitized", taken, "date (short)", nullptr);
        row("not a date", "{Exif}", "DateTimeOriginal", u"yesterday"_qs, "date (short)", nullptr);
    }

    void valuesAreWrittenPlainly()
    {
        QFETCH(QString, group);
        QFETCH(QString, key);
        QFETCH(QVariant, value);
        QFETCH(QString, token);
        QFETCH(QString, text);
        const ImageMetadata metadata({{group, QVariantMap{{key, value}}}});
        const Text found = expansion(token, metadata);
        QCOMPARE(found.has_value(), !text.isNull());
        QCOMPARE(found.value_or(QString()), text);
    }

    void theFileSpeaksForItself()
    {
        const ImageMetadata metadata(
            {{u"DPIWidth"_qs, 299.999}, {u"Depth"_qs, 8}, {u"ColorModel"_qs, u"RGB"_qs}});
        QCOMPARE(expansion(u"dimensions"_qs, metadata), Text(u"4000 x 3000"_qs));
        QCOMPARE(expansion(u"width"_qs, metadata), Text(u"4000"_qs));
        QCOMPARE(expansion(u"height"_qs, metadata), Text(u"3000"_qs));
        QCOMPARE(expansion(u"filename"_qs, metadata), Text(u"a.b"_qs));
        QCOMPARE(expansion(u"file extension"_qs, metadata), Text(u"JPG"_qs));
        QCOMPARE(expansion(u"DPI width"_qs, metadata), Text(u"299.999"_qs));
        QCOMPARE(expansion(u"DPI height"_qs, metadata), Text());
        QCOMPARE(expansion(u"bit depth"_qs, metadata), Text(u"8"_qs));
        QCOMPARE(expansion(u"color model"_qs, metadata), Text(u"RGB"_qs));
    }

    void namesAreParted_data()
    {
        test::addRows<NamesAreParted>({
            {"usual", "/a.b/c.d.JPG", "c.d", "JPG"},
            {"no extension", "/a.b/c", "c", QString()},
            {"hidden", "/a/.hidden", ".hidden", QString()},
            {"hidden, with extension", "/a/.hidden.jpg", ".hidden", "jpg"},
            {"dot at the end", "a.", "a", QString()},
        });
    }

    void namesAreParted()
    {
        const auto [name, path, filename, extension] = test::currentRow<NamesAreParted>();
        QCOMPARE(filenameOf(path), filename);
        const Text found = test::fakePhoto({}, {}, path).stringForInfoToken(u"file extension"_qs);
        QCOMPARE(found.has_value(), !extension.isNull());
        QCOMPARE(found.value_or(QString()), extension);
    }

    void aPhotoWithoutMetadataHasNone()
    {
        const QStringList ofTheFile{u"dimensions"_qs, u"width"_qs, u"height"_qs, u"filename"_qs,
                                    u"file extension"_qs};
        for (const QString &name : tokenNames()) {
            const Text found = expansion(name, ImageMetadata());
            QCOMPARE(found.has_value(), ofTheFile.contains(name) || name == u"flash"_qs);
        }
    }

    void piecesAreJoinedAsTheyStand_data()
    {
        test::addRows<PiecesAreJoinedAsTheyStand>({
            {"nothing", QStringList(), QString()},
            {"a literal", QStringList(u" as\ntyped "_qs), " as\ntyped "},
            {"tokens and literals", QStringList{u"In "_qs, u"city"_qs, u", "_qs, u"City"_qs},
             "In Oslo, City"},
            {"a token without a value", QStringList{u"Shot in "_qs, u"country"_qs}, "Shot in "},
            {"nothing but that", QStringList{u"country"_qs}, QString()},
            {"empty pieces", QStringList{u""_qs, u""_qs}, QString()},
        });
    }

    void piecesAreJoinedAsTheyStand()
    {
        const auto [name, pieces, text] = test::currentRow<PiecesAreJoinedAsTheyStand>();
        WPresetValues values;
        values.textTokens = pieces;
        const Text found = watermarkTextForImage(values, test::fakePhoto({10, 10}, u"Oslo"_qs));
        QCOMPARE(found.has_value(), !text.isNull());
        QCOMPARE(found.value_or(QString()), text);
    }

    /// What exiftool finds in a field, the field's token says.
    void realPhotosAgreeWithExiftool()
    {
        if (test::photosFolder().isEmpty())
            QSKIP("There is no folder of photos.");
        const QStringList paths = test::photoPaths();
        const auto records = test::exiftoolRecords(paths, {u"-G1"_qs});
        QVERIFY(!records.isEmpty());
        QStringList failures;
        QSet<QString> seen;
        for (const QString &path : paths) {
            if (path.contains(u"/broken/"_qs))
                continue;
            const Result<ImageSource> source = ImageSource::open(path);
            const ImageMetadata metadata(source ? source->properties()
                                                : EmbeddedMetadata::read(path)->properties());
            const QJsonObject record = records.value(path);
            for (const Expectation &expected : kExpectations) {
                QJsonValue value(QJsonValue::Undefined);
                QString tag;
                for (const QString &name : expected.tags) {
                    if (value.isUndefined() && !test::comparable(record[name]).trimmed().isEmpty())
                        value = record[tag = name];
                }
                // What the pixels say is known only of formats that are decoded.
                if (!source &&
                    !expected.tags.first().contains(QRegularExpression(u"^(IPTC|XMP|Exif|GPS|IFD0)"_qs)))
                    continue;
                // exiftool's words for what is not a number.
                if (value.isUndefined() || value.toString() == u"undef"_qs || value.toString() == u"inf"_qs)
                    continue;
                const QString token = QLatin1StringView(expected.token);
                const QString found = expansion(token, metadata).value_or(QString());
                seen.insert(token);
                if (!agrees(expected.form, found, value, record[tag + u"Ref"_qs].toString()))
                    failures += QStringLiteral("%1: \"%2\" gives \"%3\", exiftool %4")
                                    .arg(QFileInfo(path).fileName(), token, found, test::comparable(value));
            }
        }
        QVERIFY2(failures.isEmpty(), qPrintable(u'\n' + failures.join(u'\n')));
        // The photos must be rich enough for this to mean something.
        QVERIFY2(seen.size() >= 30, qPrintable(QString::number(seen.size())));
    }
};

QTEST_GUILESS_MAIN(TextTokensTest)
#include "texttokens_test.moc"
