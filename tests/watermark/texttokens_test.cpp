// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/imagemetadata.h"
#include "platform/filenames.h"
#include "platform/localeformat.h"
#include "support/datarows.h"
#include "support/words.h"
#include "watermark/fakephoto.h"
#include "watermark/texttokens.h"
#include "watermark/watermarktext.h"
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

struct TextField {
    Text name; ///< of the token
    MetadataGroup group;
    QLatin1StringView key;
};

struct PlainValue {
    Text name;
    QLatin1StringView key; ///< of EXIF
    QVariant value;
    Text token;
    Text text; ///< null: the token has no text
};

struct NamesAreParted {
    Text name;
    Text path;
    Text filename;
    Text extension;
};

struct PiecesAreJoinedAsTheyStand {
    Text name;
    QStringList pieces;
    Text text;
};

} // namespace

class TextTokensTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsComeFromTheirFields_data()
    {
        using enum MetadataGroup;
        addRows<TextField>({
            {"copyright", Iptc, "CopyrightNotice"_L1},
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
            {"ICC profile", Top, "ProfileName"_L1},
        });
    }

    void textsComeFromTheirFields()
    {
        const auto [token, group, key] = currentRow<TextField>();
        for (const QString &other : tokenNames()) {
            QCOMPARE(expansion(other, metadataWith(group, key, u"its text"_s)) == u"its text"_s,
                     other == token);
        }
        QCOMPARE(expansion(token, metadataWith(group, key, u""_s)), Expansion());
    }

    void valuesAreWrittenPlainly_data()
    {
        const QVariant taken = u"2024:02:09 18:03:07"_s;
        const auto original = "DateTimeOriginal"_L1;
        addRows<PlainValue>({
            {"whole F-number", "FNumber"_L1, 4.0, "F-number", "4"},
            {"F-number", "FNumber"_L1, 2.8, "F-number", "2.8"},
            {"third", "FocalLength"_L1, 1.0 / 3, "focal length", "0.3333333333333333"},
            {"million", "FocalLength"_L1, 1000000.0, "focal length", "1000000"},
            {"small format", "FocalLenIn35mmFilm"_L1, 35, "focal length 35mm", "35"},
            {"bias of none", "ExposureBiasValue"_L1, 0.0, "exposure bias", "0"},
            {"positive bias", "ExposureBiasValue"_L1, 0.3, "exposure bias", "+0.3"},
            {"negative bias has two signs", "ExposureBiasValue"_L1, -1.0, "exposure bias", "--1"},
            {"negative fraction", "ExposureBiasValue"_L1, -0.7, "exposure bias", "--0.7"},
            {"flash", "Flash"_L1, 0x19, "flash", "did fire"},
            {"no flash", "Flash"_L1, 0x18, "flash", "did not fire"},
            {"flash unknown", "FNumber"_L1, 4, "flash", "did not fire"},
            {"first of several", "ISOSpeedRatings"_L1, QVariantList{200, 400}, "ISO speed", "200"},
            {"exposure", "ExposureTime"_L1, 0.008, "exposure time", "0.008"},
            {"program", "ExposureProgram"_L1, 1, "exposure program", "manual"},
            {"metering", "MeteringMode"_L1, 3, "metering mode", "spot"},
            {"full date", original, taken, "date (full)", "Friday, February 9, 2024"},
            {"long date", original, taken, "date (long)", "February 9, 2024"},
            {"medium date", original, taken, "date (medium)", "Feb 9, 2024"},
            {"short date", original, taken, "date (short)", "2/9/24"},
            {"ISO date", original, taken, "date (YYYY-MM-DD)", "2024-02-09"},
            {"German date", original, taken, "date (DD.MM.YYYY)", "09.02.2024"},
            {"American date", original, taken, "date (MM/DD/YYYY)", "02/09/2024"},
            {"hours and minutes", original, taken, "time (hh:mm)", "18:03"},
            {"and seconds", original, taken, "time (hh:mm:ss)", "18:03:07"},
            {"no date in its place", "DateTimeDigitized"_L1, taken, "date (short)", {}},
            {"not a date", original, u"yesterday"_s, "date (short)", {}},
        });
    }

    void valuesAreWrittenPlainly()
    {
        const auto [name, key, value, token, text] = currentRow<PlainValue>();
        const Expansion found = expansion(token, metadataWith(MetadataGroup::Exif, key, value));
        QCOMPARE(found.has_value(), !text.isNull());
        QCOMPARE(found.value_or(QString()), text);
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

    void namesAreParted_data()
    {
        addRows<NamesAreParted>({
            {"usual", "/a.b/c.d.JPG", "c.d", "JPG"},
            {"no extension", "/a.b/c", "c", QString()},
            {"hidden", "/a/.hidden", ".hidden", QString()},
            {"hidden, with extension", "/a/.hidden.jpg", ".hidden", "jpg"},
            {"dot at the end", "a.", "a", QString()},
        });
    }

    void namesAreParted()
    {
        const auto [name, path, filename, extension] = currentRow<NamesAreParted>();
        QCOMPARE(filenameOf(path), filename);
        const Expansion found = fakePhoto({}, {}, path).stringForInfoToken(u"file extension"_qs);
        QCOMPARE(found.has_value(), !extension.isNull());
        QCOMPARE(found.value_or(QString()), extension);
    }

    /// The flash is reported as not fired.
    void aPhotoWithoutMetadataHasNone()
    {
        const QStringList ofTheFile = words("dimensions width height filename 'file extension' flash");
        for (const QString &name : tokenNames()) {
            QCOMPARE(expansion(name, ImageMetadata()).has_value(), ofTheFile.contains(name));
        }
    }

    void piecesAreJoinedAsTheyStand_data()
    {
        addRows<PiecesAreJoinedAsTheyStand>({
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
        const auto [name, pieces, text] = currentRow<PiecesAreJoinedAsTheyStand>();
        WPresetValues values;
        values.textTokens = pieces;
        const Expansion found = watermarkTextForImage(values, fakePhoto({10, 10}, u"Oslo"_qs));
        QCOMPARE(found.has_value(), !text.isNull());
        QCOMPARE(found.value_or(QString()), text);
    }
};

QTEST_GUILESS_MAIN(TextTokensTest)
#include "texttokens_test.moc"
