// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/makernotefacts.h"
#include "imageio/factplaces.h"
#include "imageio/filemetadata.h"
#include "imageio/imagesource.h"
#include "imageio/jpegassembly.h"
#include "metadata/propertykeys.h"
#include "support/datarows.h"
#include "support/exiftool.h"
#include "support/exiftoolcomparison.h"
#include "support/files.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

/// The size as shown, which the table of facts beside the photos has.
QMap<QString, QSize> shownSizes(const QString &folder)
{
    QMap<QString, QSize> sizes;
    QFile table(folder + QStringLiteral("/README.md"));
    if (!table.open(QIODevice::ReadOnly))
        return sizes;
    for (const QByteArray &line : table.readAll().split('\n')) {
        const QStringList cells = QString::fromUtf8(line).split(QStringLiteral(" | "));
        if (!line.startsWith("| ") || cells.size() < 8)
            continue;
        // The last one counts: "stored → shown".
        static const QRegularExpression size(QStringLiteral(".*?([0-9]+)x([0-9]+)[^x]*$"));
        const auto found = size.match(cells[4]);
        if (found.hasMatch())
            sizes.insert(folder + u'/' + cells[0].mid(2),
                         QSize(found.captured(1).toInt(), found.captured(2).toInt()));
    }
    return sizes;
}

QString colorModelOf(const QJsonObject &record)
{
    const QString data = record[u"ICC-header:ColorSpaceData"_s].toString();
    static const QMap<QString, QString> models{
        {u"RGB "_s, u"RGB"_s}, {u"GRAY"_s, u"Gray"_s}, {u"CMYK"_s, u"CMYK"_s}};
    if (models.contains(data))
        return models[data];
    if (const int components = record[u"File:ColorComponents"_s].toInt(); components > 0)
        return components == 1 ? u"Gray"_s : components == 4 ? u"CMYK"_s : u"RGB"_s;
    const QJsonValue pngType = record[u"PNG:ColorType"_s];
    return !pngType.isDouble() ? QString() : pngType.toInt() % 4 == 0 ? u"Gray"_s : u"RGB"_s;
}

/// Bits a component.
int depthOf(const QJsonObject &record)
{
    for (const char *tag :
         {"PNG:BitDepth", "File:BitsPerSample", "QuickTime:BitDepthLuma", "IFD0:BitsPerSample"}) {
        const QString text = comparable(record[QLatin1String(tag)]);
        if (!text.isEmpty() && !record.contains(u"RIFF:ImageWidth"_s))
            return text.section(u' ', 0, 0).toInt();
    }
    return 0;
}

} // namespace

/// Compares the metadata of each photo with those that exiftool reads, and tests forms that no photo has.
class MetadataReadingTest : public QObject
{
    Q_OBJECT

    struct Variant {
        Text name;
        EmbeddedMetadata::Encoded metadata;
        QString where;
        QVariant expected;
    };

private Q_SLOTS:
    void initTestCase()
    {
        if (photosFolder().isEmpty())
            return;
        m_paths = photoPaths();
        m_records = exiftoolRecords(m_paths);
        // exiftool reads metadata of a truncated container, this program none.
        m_records.remove(realPhoto("broken/truncated.heic"));
        QVERIFY(m_records.size() > 50);
        m_shownSizes = shownSizes(photosFolder());
        QVERIFY(m_shownSizes.size() > 50);
    }

    void picture_data()
    {
        PLEXA_NEEDS_PHOTOS();
        QTest::addColumn<QString>("path");
        for (const QString &path : std::as_const(m_paths))
            QTest::newRow(qPrintable(path.mid(photosFolder().size() + 1))) << path;
    }

    void picture()
    {
        QFETCH(QString, path);
        const auto source = ImageSource::open(path);
        if (path.contains(u"/broken/") || path.endsWith(u"canon-metadata-only.cr2"))
            return; // brokenFilesGiveAReason() of imagesource_test reads these
        QVERIFY2(source, source ? "" : qPrintable(source.error().text));
        const QJsonObject record = m_records.value(path);
        const QVariantMap properties = *source->properties();
        QSize size(properties[kCGImagePropertyPixelWidth].toInt(),
                   properties[kCGImagePropertyPixelHeight].toInt());
        const int orientation = properties[kCGImagePropertyOrientation].toInt();
        if (orientation >= 5)
            size.transpose();
        QCOMPARE(size, m_shownSizes.value(path));
        // exiftool states the facts of previews; a raw decoder rotates the picture itself.
        if (path.contains(u"/raw/"))
            return;
        // HEIF rotates by boxes.
        if (record.contains(u"IFD0:Orientation"_s) && !source->type().contains(u"hei"))
            QCOMPARE(orientation, record[u"IFD0:Orientation"_s].toInt());
        if (const QString model = colorModelOf(record); !model.isEmpty())
            QCOMPARE(properties[kCGImagePropertyColorModel].toString(), model);
        if (const int depth = depthOf(record); depth > 0)
            QCOMPARE(properties[kCGImagePropertyDepth].toInt(), depth);
        const QString profile = record[u"ICC_Profile:ProfileDescription"_s].toString().trimmed();
        if (!profile.isEmpty())
            QCOMPARE(properties[kCGImagePropertyProfileName].toString(), profile);
        if (const QJsonValue density = record[u"IFD0:XResolution"_s]; density.toDouble() > 0) {
            const double perInch = record[u"IFD0:ResolutionUnit"_s].toInt() == 3 ? 2.54 : 1;
            QVERIFY(std::abs(properties[kCGImagePropertyDPIWidth].toDouble() - density.toDouble() * perInch) <
                    1e-3);
        }
        const QVariantMap jfif = properties[kCGImagePropertyJFIFDictionary].toMap();
        const QVariantMap png = properties[kCGImagePropertyPNGDictionary].toMap();
        QCOMPARE(partsOf(jfif[kCGImagePropertyJFIFVersion]).join(u' '),
                 comparable(record[u"JFIF:JFIFVersion"_s]));
        const auto check = [&](const QString &tag, double value) {
            QVERIFY2(!record.contains(tag) || std::abs(record[tag].toDouble() - value) < 1e-3,
                     qPrintable(tag));
        };
        check(u"JFIF:XResolution"_s, jfif[kCGImagePropertyJFIFXDensity].toDouble());
        check(u"JFIF:ResolutionUnit"_s, jfif[kCGImagePropertyJFIFDensityUnit].toDouble());
        check(u"PNG:Interlace"_s, png[kCGImagePropertyPNGInterlaceType].toDouble());
        // exiftool prints the exponent of the display.
        check(u"PNG:Gamma"_s, 1 / png[kCGImagePropertyPNGGamma].toDouble());
        check(u"PNG:WhitePointX"_s, png[kCGImagePropertyPNGChromaticities].toList().value(0).toDouble());
    }

    /// Every fact in a modelled place that exiftool reads is read with the same value.
    void metadata()
    {
        PLEXA_NEEDS_PHOTOS();
        int compared = 0;
        QStringList failures;
        for (const QString &path : std::as_const(m_paths)) {
            const QVariantMap properties = propertiesOf(path);
            const QJsonObject record = m_records.value(path);
            for (const MetadataField &field : metadataFields()) {
                const QVariant value = groupDictionary(properties, field.group).value(field.key);
                for (const QString &group : exiftoolGroups(field.group)) {
                    const QString tag = group + u':' + exiftoolName(field.group, field.key);
                    QString text = comparable(record[tag]);
                    if (text.trimmed().isEmpty())
                        continue;
                    // HEIF rotates its pictures by boxes, so the orientation in EXIF does not count.
                    if (field.key == kCGImagePropertyTIFFOrientation &&
                        record[u"File:FileType"_s] == u"HEIC"_s)
                        text = u"1"_s;
                    // XMP has the whole text of a cut IIM field.
                    if (group == u"IPTC" && text.size() > field.iptcMaxBytes - 4 &&
                        holdsInXmp(record, partsOf(value).join(u' ')))
                        continue;
                    ++compared;
                    if (!isSame(text, field, withoutApex(field, value)))
                        failures += u"%1 %2: %3 | %4"_s.arg(path, tag, text, partsOf(value).join(u' '));
                }
            }
        }
        QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
        QVERIFY2(compared > 1000, QByteArray::number(compared));
    }

    /// Facts that several places hold, or that are interpreted, against exiftool's own conclusions.
    void derivedFacts()
    {
        PLEXA_NEEDS_PHOTOS();
        struct Derived {
            const char *photo;
            MetadataGroup group;
            QLatin1StringView key;
            const char *tag;
        };
        // clang-format off
        constexpr MetadataGroup aux = MetadataGroup::ExifAux;
        static const Derived rows[] = {
            {"jpeg/canon-eos-450d.jpg", aux, kCGImagePropertyExifAuxLensModel, "Composite:LensID"},
            {"jpeg/olympus-e-p3.jpg", aux, kCGImagePropertyExifAuxLensModel, "Composite:LensID"},
            {"heic/iphone-8.heic", aux, kCGImagePropertyExifAuxLensModel, "ExifIFD:LensModel"},
            {"jpeg/canon-eos-1d-mark-iii-lightroom.jpg", aux, kCGImagePropertyExifAuxLensModel, "XMP-aux:Lens"},
            {"jpeg/canon-eos-450d.jpg", aux, kCGImagePropertyExifAuxSerialNumber, "Canon:SerialNumber"},
            {"jpeg/nikon-d60.jpg", aux, kCGImagePropertyExifAuxSerialNumber, "Nikon:SerialNumber"},
            {"jpeg/canon-eos-1d-mark-iii-lightroom.jpg", aux, kCGImagePropertyExifAuxSerialNumber, "XMP-aux:SerialNumber"},
            {"heic/stonehenge-nikon-d5300.heic", aux, kCGImagePropertyExifAuxImageNumber, "XMP-aux:ImageNumber"},
            {"jpeg/canon-eos-1d-mark-iii-lightroom.jpg", MetadataGroup::Exif, kCGImagePropertyExifFNumber, "XMP-exif:FNumber"},
            {"webp/denali-canon-7d.webp", MetadataGroup::Iptc, kCGImagePropertyIPTCByline, "XMP-dc:Creator"},
            {"jpeg/nikon-d60.jpg", aux, kCGImagePropertyExifAuxImageNumber, "Nikon:ShutterCount"},
            {"jpeg/canon-powershot-a85-orientation-8.jpg", aux, kCGImagePropertyExifAuxImageNumber, "Canon:FileNumber"},
            {"jpeg/canon-eos-450d.jpg", aux, kCGImagePropertyExifAuxLensID, "Canon:LensType"},
            {"jpeg/nikon-d60.jpg", aux, kCGImagePropertyExifAuxLensInfo, "Nikon:Lens"},
            {"jpeg/olympus-e-p3.jpg", aux, kCGImagePropertyExifAuxSerialNumber, "Olympus:SerialNumber"},
            {"jpeg/olympus-e-p3.jpg", aux, kCGImagePropertyExifAuxLensSerialNumber, "Olympus:LensSerialNumber"},
            {"jpeg/canon-eos-450d.jpg", aux, kCGImagePropertyExifAuxFirmware, "Canon:CanonFirmwareVersion"},
            {"heic/iphone-8.heic", MetadataGroup::Gps, kCGImagePropertyGPSTimeStamp, "GPS:GPSTimeStamp"},
        };
        // clang-format on
        for (const Derived &row : rows) {
            const QString path = realPhoto(row.photo);
            const QString tag = QString::fromUtf8(row.tag);
            QJsonValue expected = m_records.value(path)[tag];
            // exiftool prints names in place of numbers only without -n.
            if ((row.key == kCGImagePropertyExifAuxLensModel && !tag.startsWith(u"XMP")) ||
                tag == u"Canon:SerialNumber")
                expected = QString::fromUtf8(outputOf("exiftool -s3 -%1 %2", tag, path)).trimmed();
            QVERIFY2(!expected.isUndefined() && expected != u""_s, row.tag);
            const QVariant value = groupDictionary(metadataOf(path)->properties(), row.group).value(row.key);
            if (value.typeId() == QMetaType::Double)
                QCOMPARE(value.toDouble(), expected.toDouble());
            else
                QCOMPARE(comparable(QJsonValue::fromVariant(value)), comparable(expected).trimmed());
        }
    }

    /// Forms that the photos do not have: character sets of IPTC, XMP's ways of writing, XMP alone.
    void variants_data()
    {
        const auto city = [&](const char *name, const QByteArray &characterSet, const QByteArray &bytes,
                              const QString &expected) {
            const QByteArray marker = characterSet.isEmpty() ? QByteArray() : dataSet(1, 90, characterSet);
            addRow<Variant>({name, {.iptc = marker + dataSet(2, 90, bytes)}, u"{IPTC}/City"_s, expected});
        };
        city("Windows, unmarked", {}, "L\x92 Aquila \xE9", u"L\u2019 Aquila \u00E9"_s);
        city("UTF-8, marked", "\x1B%G", "Z\xC3\xBCrich", u"Z\u00FCrich"_s);
        city("marked as UTF-8, but is not", "\x1B%G", "Z\xFCrich", u"Z\u00FCrich"_s);
        city("Latin-1, marked, would be UTF-8", "\x1B-A", "\xC3\xA9", u"\u00C3\u00A9"_s);
        city("Latin-2, marked", "\x1B-B",
             "\xA3\xF3"
             "d\xBC",
             u"\u0141\u00F3d\u017A"_s);

        // IIM holds 32 bytes of a city, 64 of a keyword.
        const auto cut = [](const char *name, int dataSetNumber, const QByteArray &bytes,
                            const QByteArray &elements, const QString &where, const QVariant &expected) {
            const QByteArray packet = xmpPacket("xmlns:dc='http://purl.org/dc/elements/1.1/' "
                                                "xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/'",
                                                elements);
            const QByteArray records = dataSet(1, 90, "\x1B%G") + dataSet(2, dataSetNumber, bytes);
            addRow<Variant>({name, {.iptc = records, .xmp = packet}, where, expected});
        };
        const QString town = u"Llanfairpwllgwyngyllgogerychwyr\u00F4bwll"_s;
        const QByteArray inXmp = "<photoshop:City>" + town.toUtf8() + "</photoshop:City>";
        cut("cut", 90, town.toUtf8().left(31), inXmp, u"{IPTC}/City"_s, town);
        cut("cut in a character", 90, town.toUtf8().left(32), inXmp, u"{IPTC}/City"_s, town);
        cut("short", 90, "Llanfair", inXmp, u"{IPTC}/City"_s, u"Llanfair"_s);
        cut("another", 90, QByteArray(32, 'x'), inXmp, u"{IPTC}/City"_s, QString(32, u'x'));
        const auto keyword = [&](const char *name, int bytes, const QByteArray &other, int expected) {
            cut(name, 25, QByteArray(bytes, 'k'),
                "<dc:subject><rdf:Bag><rdf:li>" + QByteArray(70, 'k') + "</rdf:li><rdf:li>" + other +
                    "</rdf:li></rdf:Bag></dc:subject>",
                u"{IPTC}/Keywords"_s, QVariantList{QString(expected, u'k')});
        };
        keyword("keyword", 64, "a", 70);
        keyword("keyword below the limit", 63, "a", 63);
        keyword("keyword and a longer one", 64, QByteArray(64, 'k'), 64);

        const auto xmp = [](const char *name, const QByteArray &attributes, const QByteArray &elements,
                            const QString &where, const QVariant &expected) {
            const QByteArray namespaces =
                "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:exif='http://ns.adobe.com/exif/1.0/' "
                "xmlns:aux='http://ns.adobe.com/exif/1.0/aux/' xmlns:ex='http://cipa.jp/exif/1.0/' "
                "xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/' "
                "xmlns:core='http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/' "
                "xmlns:ext='http://iptc.org/std/Iptc4xmpExt/2008-02-29/' "
                "xmlns:xmp='http://ns.adobe.com/xap/1.0/' ";
            const QByteArray packet = xmpPacket(namespaces + attributes, elements);
            addRow<Variant>({name, {.xmp = packet}, where, expected});
        };
        const QString email = u"{IPTC}/CreatorContactInfo/CiEmailWork"_s;
        xmp("contact, attributes", {}, "<core:CreatorContactInfo core:CiEmailWork='a@b.org'/>", email,
            u"a@b.org"_s);
        xmp("default language", {},
            "<dc:title><rdf:Alt><rdf:li xml:lang='de'>Stadt</rdf:li><rdf:li "
            "xml:lang='x-default'>Town</rdf:li>"
            "</rdf:Alt></dc:title>",
            u"{IPTC}/ObjectName"_s, u"Town"_s);
        const QByteArray created =
            "<ext:LocationCreated><rdf:Bag><rdf:li ext:City='Bern' ext:CountryName='Schweiz'/>"
            "</rdf:Bag></ext:LocationCreated>";
        xmp("place of creation", {}, created, u"{IPTC}/City"_s, u"Bern"_s);
        xmp("another place elsewhere", "photoshop:Country='France'", created, u"{IPTC}/City"_s, {});
        const QByteArray date = "photoshop:DateCreated='2024-05-06T07:08:09.5+02:00'";
        xmp("date of creation", date, {}, u"{IPTC}/DateCreated"_s, u"20240506"_s);
        xmp("time of creation", date, {}, u"{IPTC}/TimeCreated"_s, u"070809+0200"_s);
        const QByteArray taken = "exif:DateTimeOriginal='2024-05-06T07:08:09.25-03:30'";
        xmp("time", taken, {}, u"{Exif}/DateTimeOriginal"_s, u"2024:05:06 07:08:09"_s);
        xmp("fraction of a second", taken, {}, u"{Exif}/SubsecTimeOriginal"_s, u"25"_s);
        xmp("offset", taken, {}, u"{Exif}/OffsetTimeOriginal"_s, u"-03:30"_s);
        const QByteArray scanned = "xmp:CreateDate='2024-05-06T07:08:09.25' xmp:CreatorTool='Scan 2'";
        xmp("date of digitizing", scanned, {}, u"{Exif}/DateTimeDigitized"_s, u"2024:05:06 07:08:09"_s);
        xmp("its fraction", scanned, {}, u"{Exif}/SubsecTimeDigitized"_s, u"25"_s);
        xmp("tool", scanned, {}, u"{TIFF}/Software"_s, u"Scan 2"_s);
        xmp("own name before the tool", scanned + " exif:DateTimeDigitized='2023-01-01T00:00:00'", {},
            u"{Exif}/DateTimeDigitized"_s, u"2023:01:01 00:00:00"_s);
        xmp("sensitivity of EXIF 2.3", "ex:PhotographicSensitivity='640'", {}, u"{Exif}/ISOSpeedRatings"_s,
            QVariantList{640});
        xmp("position", "exif:GPSLongitude='8,30.6W'", {}, u"{GPS}/Longitude"_s, 8.51);
        xmp("position off the globe", "exif:GPSLatitude='999,99N'", {}, u"{GPS}/Latitude"_s, {});
        xmp("plain degrees", "exif:GPSLatitude='-33.5'", {}, u"{GPS}/Latitude"_s, 33.5);
        xmp("letter of plain degrees", "exif:GPSLatitude='-33.5'", {}, u"{GPS}/LatitudeRef"_s, u"S"_s);
        const QByteArray fix = "exif:GPSTimeStamp='2024-05-06T07:08:09.5Z'";
        xmp("date of the fix", fix, {}, u"{GPS}/DateStamp"_s, u"2024:05:06"_s);
        xmp("time of the fix", fix, {}, u"{GPS}/TimeStamp"_s, u"07:08:09.5"_s);
        xmp("large lens ID", "aux:LensID='-7910804157571773682'", {}, u"{ExifAux}/LensID"_s,
            QVariant(qlonglong(-7910804157571773682)));

        // A big-endian directory that leads to that of the position, with three quotients after it.
        const QByteArray exif =
            QByteArray::fromHex("4d4d002a00000008 0001 8825 0004 00000001 0000001a 00000000"
                                "0002 0003 0002 00000002 45000000"
                                "0004 0005 00000003 00000038 00000000");
        const auto quotients = [](int denominator) { return (big32(0) + big32(denominator)).repeated(3); };
        // Cameras without a fix write zeros over zeros.
        addRow<Variant>({"no fix", {.exif = exif + quotients(0)}, u"{GPS}/Longitude"_s, {}});
        addRow<Variant>({"zero degrees", {.exif = exif + quotients(1)}, u"{GPS}/Longitude"_s, 0.0});
    }

    void variants()
    {
        const auto [name, metadata, where, expected] = currentRow<Variant>();
        const QString path = m_folder.path("photo.jpg");
        QVERIFY(writeFile(path, jpegWith(metadata)));
        QVariant found = metadataOf(path)->properties();
        for (const QString &key : where.split(u'/'))
            found = found.toMap().value(key);
        QCOMPARE(found, expected);
    }

    /// Photos without a profile whose EXIF names the color space.
    void adobeRgbOfExif()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool");
        const auto check = [this](const char *tags, bool isAdobeRgb, const char *name = "photo.jpg",
                                  QImage::Format format = QImage::Format_RGB32) {
            const QString path = m_folder.path(name);
            QVERIFY(flatPicture({16, 16}, QColor(40, 160, 80), format).save(path));
            outputOf(u"exiftool"_s, words("-q -overwrite_original") + words(tags) + QStringList(path));
            const auto source = ImageSource::open(path);
            QVERIFY(source);
            QCOMPARE(source->properties()->value(kCGImagePropertyProfileName).toString(),
                     isAdobeRgb ? u"Adobe RGB (1998)"_s : QString());
            const auto decoded = source->createImage();
            QVERIFY(decoded);
            // The same green is stronger in Adobe RGB: its red lies outside of sRGB then.
            QCOMPARE(qRed(decoded->pixel(8, 8)) < 20, isAdobeRgb);
        };
        check("-ColorSpace#=65535 -InteropIndex=R03", true); // the usual form
        check("-ColorSpace#=65535 -InteropIndex=R03", true, "photo.tif");
        check("-ExifByteOrder=MM -ColorSpace#=65535 -InteropIndex=R03", true);
        check("-ColorSpace#=2", true); // some cameras' own number
        check("-ColorSpace#=1 -InteropIndex=R03", false);
        check("-ColorSpace#=65535 -InteropIndex=R98", false);
        check("-ColorSpace#=65535 -InteropIndex=R03", false, "gray.jpg", QImage::Format_Grayscale8);
    }

    /// exiftool continues an EXIF structure of more than 64 kB in a second segment.
    void exifOfSeveralSegmentsIsJoined()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool");
        const QString path = m_folder.path("long.jpg");
        QVERIFY(writeFile(path, encoded(flatPicture({16, 16}), "JPEG")));
        const QString comment(80'000, u'c');
        outputOf(u"exiftool"_s,
                 words("-q -q -overwrite_original -ColorSpace#=65535 -InteropIndex=R03 -Artist=Ann") +
                     QStringList{u"-UserComment="_s + comment, path});
        QCOMPARE(contentsOf(path).count("Exif\0\0"_ba), 2);
        const QVariantMap properties = propertiesOf(path);
        QCOMPARE(groupDictionary(properties, MetadataGroup::Exif)[kCGImagePropertyExifUserComment].toString(),
                 comment);
        QCOMPARE(properties[kCGImagePropertyProfileName].toString(), u"Adobe RGB (1998)"_s);
    }

    /// The number that a camera writes for an unknown one is none.
    void shutterCountsAreKnown()
    {
        for (const uint32_t count : {4711U, 0xFFFFFFFFU - 2046}) {
            Exiv2::ExifData exif;
            exif["Exif.Nikon3.ShutterCount"] = count;
            QVariantMap facts;
            insertMakerNoteFacts(facts, exif);
            QCOMPARE(facts.contains(kCGImagePropertyExifAuxImageNumber), count == 4711);
        }
    }

private:
    /// The whole dictionary, or that of the metadata where the picture cannot be opened.
    static QVariantMap propertiesOf(const QString &path)
    {
        const auto source = ImageSource::open(path);
        return source ? *source->properties() : metadataOf(path)->properties();
    }

    static bool holdsInXmp(const QJsonObject &record, const QString &text)
    {
        return std::ranges::any_of(record.keys(), [&](const QString &tag) {
            return tag.startsWith(u"XMP") && comparable(record[tag]) == text;
        });
    }

    TestFolder m_folder;
    QStringList m_paths;
    QMap<QString, QJsonObject> m_records;
    QMap<QString, QSize> m_shownSizes;
};

QTEST_GUILESS_MAIN(MetadataReadingTest)
#include "metadatareading_test.moc"
