// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"
#include "platform/filenames.h"
#include "platform/localeformat.h"
#include "support/datarows.h"
#include "support/words.h"
#include "watermark/fakephoto.h"
#include "watermark/texttokens.h"
#include "watermark/wpresetvalues.h"

#include <QtTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

using Expansion = std::optional<QString>;

Expansion expansion(const QString &token, const ImageMetadata &metadata)
{
    static const LocaleFormat locale(u"en_US"_qs);
    const QSize unscaled(4000, 3000);
    return PhotoFacts(u"/photos/a.b.JPG"_qs, metadata, 2 * unscaled, unscaled, locale)
        .stringForInfoToken(token);
}

/// The dictionary of a photo with one fact.
ImageMetadata metadataWith(MetadataGroup group, QLatin1StringView key, const QVariant &value)
{
    const QVariantMap none;
    ImageMetadata metadata({{u"{TIFF}"_s, none},
                            {u"{Exif}"_s, none},
                            {u"{ExifAux}"_s, none},
                            {u"{IPTC}"_s, QVariantMap{{u"CreatorContactInfo"_s, none}}}});
    metadata.setValueForKey(group, value, key);
    return metadata;
}

} // namespace

class TextTokensTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsComeFromTheirFields()
    {
        using enum MetadataGroup;
        using Row = std::tuple<Text, MetadataGroup, QLatin1StringView>;
        for (const auto &[token, group, key] :
             std::initializer_list<Row>{{"copyright", Iptc, "CopyrightNotice"_L1},
                                        {"headline", Iptc, "Headline"_L1},
                                        {"title", Iptc, "ObjectName"_L1},
                                        {"caption", Iptc, "Caption/Abstract"_L1},
                                        {"sublocation", Iptc, "SubLocation"_L1},
                                        {"country", Iptc, "Country/PrimaryLocationName"_L1},
                                        {"state", Iptc, "Province/State"_L1},
                                        {"city", Iptc, "City"_L1},
                                        {"writer/editor", Iptc, "Writer/Editor"_L1},
                                        {"creator", Iptc, "Byline"_L1},
                                        {"creator title", Iptc, "BylineTitle"_L1},
                                        {"creator e-mail", Contact, "CiEmailWork"_L1},
                                        {"creator website", Contact, "CiUrlWork"_L1},
                                        {"creator phone", Contact, "CiTelWork"_L1},
                                        {"creator country", Contact, "CiAdrCtry"_L1},
                                        {"creator state", Contact, "CiAdrRegion"_L1},
                                        {"creator city", Contact, "CiAdrCity"_L1},
                                        {"creator postal code", Contact, "CiAdrPcode"_L1},
                                        {"creator address", Contact, "CiAdrExtadr"_L1},
                                        {"camera make", Tiff, "Make"_L1},
                                        {"camera model", Tiff, "Model"_L1},
                                        {"software", Tiff, "Software"_L1},
                                        {"subsecond time", Exif, "SubsecTimeOriginal"_L1},
                                        {"EXIF user comment", Exif, "UserComment"_L1},
                                        {"lens", ExifAux, "LensModel"_L1},
                                        {"lens ID", ExifAux, "LensID"_L1},
                                        {"camera serial #", ExifAux, "SerialNumber"_L1},
                                        {"image number", ExifAux, "ImageNumber"_L1},
                                        {"color model", Top, "ColorModel"_L1},
                                        {"ICC profile", Top, "ProfileName"_L1}}) {
            for (const QString &other : tokenNames()) {
                QCOMPARE(expansion(other, metadataWith(group, key, u"its text"_s)) == u"its text"_s,
                         other == token);
            }
            QCOMPARE(expansion(token, metadataWith(group, key, u""_s)), Expansion());
        }
    }

    void valuesAreWrittenPlainly()
    {
        const QVariant taken = u"2024:02:09 18:03:07"_s;
        const auto original = "DateTimeOriginal"_L1;
        using Row = std::tuple<QLatin1StringView, QVariant, Text, Text>;
        for (const auto &[key, value, token, text] :
             std::initializer_list<Row>{{"FNumber"_L1, 4.0, "F-number", "4"},
                                        {"FNumber"_L1, 2.8, "F-number", "2.8"},
                                        {"FocalLength"_L1, 1.0 / 3, "focal length", "0.3333333333333333"},
                                        {"FocalLength"_L1, 1000000.0, "focal length", "1000000"},
                                        {"FocalLenIn35mmFilm"_L1, 35, "focal length 35mm", "35"},
                                        {"ExposureBiasValue"_L1, 0.0, "exposure bias", "0"},
                                        {"ExposureBiasValue"_L1, 0.3, "exposure bias", "+0.3"},
                                        {"ExposureBiasValue"_L1, -1.0, "exposure bias", "--1"},
                                        {"ExposureBiasValue"_L1, -0.7, "exposure bias", "--0.7"},
                                        {"Flash"_L1, 0x19, "flash", "did fire"},
                                        {"Flash"_L1, 0x18, "flash", "did not fire"},
                                        {"FNumber"_L1, 4, "flash", "did not fire"},
                                        {"ISOSpeedRatings"_L1, QVariantList{200, 400}, "ISO speed", "200"},
                                        {"ExposureTime"_L1, 0.008, "exposure time", "0.008"},
                                        {"ExposureProgram"_L1, 1, "exposure program", "manual"},
                                        {"MeteringMode"_L1, 3, "metering mode", "spot"},
                                        {original, taken, "date (full)", "Friday, February 9, 2024"},
                                        {original, taken, "date (long)", "February 9, 2024"},
                                        {original, taken, "date (medium)", "Feb 9, 2024"},
                                        {original, taken, "date (short)", "2/9/24"},
                                        {original, taken, "date (YYYY-MM-DD)", "2024-02-09"},
                                        {original, taken, "date (DD.MM.YYYY)", "09.02.2024"},
                                        {original, taken, "date (MM/DD/YYYY)", "02/09/2024"},
                                        {original, taken, "time (hh:mm)", "18:03"},
                                        {original, taken, "time (hh:mm:ss)", "18:03:07"},
                                        {"DateTimeDigitized"_L1, taken, "date (short)", {}},
                                        {original, u"yesterday"_s, "date (short)", {}}}) {
            const Expansion found = expansion(token, metadataWith(MetadataGroup::Exif, key, value));
            QCOMPARE(found.has_value(), !text.isNull());
            QCOMPARE(found.value_or(QString()), text);
        }
    }

    void theFileSpeaksForItself()
    {
        const QVariantMap gps{{u"Latitude"_s, 48.5},
                              {u"LatitudeRef"_s, u"N"_s},
                              {u"Longitude"_s, 7.25},
                              {u"LongitudeRef"_s, u"W"_s},
                              {u"Altitude"_s, 100}};
        const ImageMetadata metadata({{u"DPIWidth"_s, 299.999}, {u"Depth"_s, 8}, {u"{GPS}"_s, gps}});
        const std::pair<const char *, Text> texts[] = {
            {"dimensions", "4000 x 3000"},
            {"width", "4000"},
            {"height", "3000"},
            {"filename", "a.b"},
            {"file extension", "JPG"},
            {"DPI width", "299.999"},
            {"DPI height", {}},
            {"bit depth", "8"},
            {"latitude", "48\u00b0 30' 0.000\" N"},
            {"longitude", "7\u00b0 15' 0.000\" W"},
            {"altitude", "100.00 m (328.08 ft) above sea level"},
        };
        for (const auto &[token, text] : texts)
            QCOMPARE(expansion(QLatin1StringView(token), metadata).value_or(QString()), text);
    }

    void namesAreParted()
    {
        for (const auto &[path, filename, extension] : {std::tuple("/a.b/c.d.JPG", "c.d", "JPG"),
                                                        {"/a.b/c", "c", ""},
                                                        {"/a/.hidden", ".hidden", ""},
                                                        {"/a/.hidden.jpg", ".hidden", "jpg"},
                                                        {"a.", "a", ""}}) {
            QCOMPARE(filenameOf(Text(path)), Text(filename));
            const Expansion found = fakePhoto({}, {}, Text(path)).stringForInfoToken(u"file extension"_qs);
            QCOMPARE(found, *extension ? Expansion(Text(extension)) : std::nullopt);
        }
    }

    /// The flash is reported as not fired.
    void aPhotoWithoutMetadataHasNone()
    {
        const QStringList ofTheFile = words("dimensions width height filename 'file extension' flash");
        for (const QString &name : tokenNames()) {
            QCOMPARE(expansion(name, ImageMetadata()).has_value(), ofTheFile.contains(name));
        }
    }

    void piecesAreJoinedAsTheyStand()
    {
        for (const auto &[pieces, text] :
             {std::pair(QStringList(), Expansion()),
              {QStringList(u" as\ntyped "_qs), u" as\ntyped "_qs},
              {QStringList{u"In "_qs, u"city"_qs, u", "_qs, u"City"_qs}, u"In Oslo, City"_qs},
              {QStringList{u"Shot in "_qs, u"country"_qs}, u"Shot in "_qs},
              {QStringList{u"country"_qs}, Expansion()},
              {QStringList{u""_qs, u""_qs}, Expansion()}}) {
            WPresetValues values;
            values.textTokens = pieces;
            QCOMPARE(watermarkTextForImage(values, fakePhoto({10, 10}, u"Oslo"_qs)), text);
        }
    }
};

QTEST_GUILESS_MAIN(TextTokensTest)
#include "texttokens_test.moc"
