// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/imagesource.h"
#include "metadata/metadatafields.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"
#include "support/exiftoolcomparison.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

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
        static const QRegularExpression size(QStringLiteral("([0-9]+)x([0-9]+)"));
        for (auto match = size.globalMatch(cells[4]); match.hasNext();) {
            const auto found = match.next(); // the last one counts: "stored → shown"
            sizes.insert(folder + u'/' + cells[0].mid(2),
                         QSize(found.captured(1).toInt(), found.captured(2).toInt()));
        }
    }
    return sizes;
}

/// Why a file cannot be a photo here.
struct KnownFailure {
    const char *file;
    const char *reason;  ///< what the message says
    bool isLate = false; ///< seen only when the pixels are read
};

constexpr KnownFailure kKnownFailures[] = {
    {"broken/3000000x2000000.bmp", "too large: 3000000 x 2000000"},
    {"broken/broken-data-stream.png", "damaged", true},
    {"broken/decompression-bomb.gif", "too large|damaged|end early"},
    {"broken/text-named.jpg", "not a picture"},
    {"broken/truncated.heic", "end early|damaged|not a picture"},
    {"broken/truncated.jpg", "end early", true},
    {"broken/truncated.png", "end early", true},
    {"broken/zero-length.jpg", "empty"},
    // Metadata of a camera without its picture.
    {"raw/canon-metadata-only.cr2", "damaged|end early|camera raw|not a picture"},
};

const KnownFailure *knownFailure(const QString &path)
{
    for (const KnownFailure &failure : kKnownFailures) {
        if (path.endsWith(u'/' + QLatin1String(failure.file)))
            return &failure;
    }
    return nullptr;
}

/// More than this takes too long to decode for a test of facts.
constexpr qint64 kMostDecodedPixels = 25'000'000;

/// The reason why the pixels cannot be read; empty when they can.
QString decodingFailure(const ImageSource &source)
{
    auto reader = source.openRows();
    if (!reader)
        return reader.error().text;
    const RowFormat format = (*reader)->format();
    QImage strip(format.size.width(), 64, format.imageFormat());
    for (int row = 0; row < format.size.height(); row += strip.height()) {
        const int count = qMin(strip.height(), format.size.height() - row);
        if (const auto read = (*reader)->readRows(strip, count); !read)
            return read.error().text;
    }
    return {};
}

QString colorModelOf(const QJsonObject &record)
{
    const QString data = record[u"ICC-header:ColorSpaceData"_qs].toString();
    static const QMap<QString, QString> models{
        {u"RGB "_qs, u"RGB"_qs}, {u"GRAY"_qs, u"Gray"_qs}, {u"CMYK"_qs, u"CMYK"_qs}};
    if (models.contains(data))
        return models[data];
    const QJsonValue components = record[u"File:ColorComponents"_qs];
    if (components.isDouble())
        return components.toInt() == 1 ? u"Gray"_qs : components.toInt() == 4 ? u"CMYK"_qs : u"RGB"_qs;
    const QJsonValue pngType = record[u"PNG:ColorType"_qs];
    if (pngType.isDouble())
        return pngType.toInt() % 4 == 0 ? u"Gray"_qs : u"RGB"_qs;
    return {};
}

/// Bits a component.
int depthOf(const QJsonObject &record)
{
    for (const char *tag :
         {"PNG:BitDepth", "File:BitsPerSample", "QuickTime:BitDepthLuma", "IFD0:BitsPerSample"}) {
        const QString text = comparable(record[QLatin1String(tag)]);
        if (!text.isEmpty() && !record.contains(u"RIFF:ImageWidth"_qs))
            return text.section(u' ', 0, 0).toInt();
    }
    return 0;
}

/// Where XMP has what IIM says elsewhere.
struct XmpHome {
    QLatin1StringView key;
    const char *tag;
};
constexpr XmpHome kIptcInXmp[] = {
    {kCGImagePropertyIPTCObjectName, "XMP-dc:Title"},
    {kCGImagePropertyIPTCByline, "XMP-dc:Creator"},
    {kCGImagePropertyIPTCCaptionAbstract, "XMP-dc:Description"},
    {kCGImagePropertyIPTCCopyrightNotice, "XMP-dc:Rights"},
    {kCGImagePropertyIPTCKeywords, "XMP-dc:Subject"},
    {kCGImagePropertyIPTCHeadline, "XMP-photoshop:Headline"},
    {kCGImagePropertyIPTCCity, "XMP-photoshop:City"},
    {kCGImagePropertyIPTCProvinceState, "XMP-photoshop:State"},
    {kCGImagePropertyIPTCCountryPrimaryLocationName, "XMP-photoshop:Country"},
    {kCGImagePropertyIPTCCountryPrimaryLocationCode, "XMP-iptcCore:CountryCode"},
    {kCGImagePropertyIPTCSubLocation, "XMP-iptcCore:Location"},
    {kCGImagePropertyIPTCCredit, "XMP-photoshop:Credit"},
    {kCGImagePropertyIPTCSource, "XMP-photoshop:Source"},
    {kCGImagePropertyIPTCSpecialInstructions, "XMP-photoshop:Instructions"},
    {kCGImagePropertyIPTCBylineTitle, "XMP-photoshop:AuthorsPosition"},
    {kCGImagePropertyIPTCWriterEditor, "XMP-photoshop:CaptionWriter"},
    {kCGImagePropertyIPTCOriginalTransmissionReference, "XMP-photoshop:TransmissionReference"},
    {kCGImagePropertyIPTCRightsUsageTerms, "XMP-xmpRights:UsageTerms"},
    {kCGImagePropertyIPTCStarRating, "XMP-xmp:Rating"},
};
constexpr XmpHome kAuxInXmp[] = {
    {kCGImagePropertyExifAuxLensID, "XMP-aux:LensID"},
    {kCGImagePropertyExifAuxImageNumber, "XMP-aux:ImageNumber"},
    {kCGImagePropertyExifAuxFirmware, "XMP-aux:Firmware"},
    {kCGImagePropertyExifAuxFlashCompensation, "XMP-aux:FlashCompensation"},
    {kCGImagePropertyExifAuxOwnerName, "XMP-aux:OwnerName"},
    {kCGImagePropertyExifAuxLensSerialNumber, "XMP-aux:LensSerialNumber"},
    {kCGImagePropertyExifAuxSerialNumber, "XMP-aux:SerialNumber"},
};
constexpr XmpHome kExifInXmp[] = {
    {kCGImagePropertyExifExposureTime, "XMP-exif:ExposureTime"},
    {kCGImagePropertyExifFNumber, "XMP-exif:FNumber"},
    {kCGImagePropertyExifISOSpeedRatings, "XMP-exif:ISO"},
    {kCGImagePropertyExifFocalLength, "XMP-exif:FocalLength"},
    {kCGImagePropertyExifExposureBiasValue, "XMP-exif:ExposureCompensation"},
    {kCGImagePropertyExifMeteringMode, "XMP-exif:MeteringMode"},
    {kCGImagePropertyExifExposureProgram, "XMP-exif:ExposureProgram"},
};

QString quoted(const QString &name, const QString &expected, const QVariant &value)
{
    return QStringLiteral("%1: %2 | %3").arg(name, expected.left(80), partsOf(value).join(u' ').left(80));
}

} // namespace

/// Each photo against what exiftool says of it while the test runs.
class PhotoFactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loadsOrTellsWhy_data() { addPhotos(); }
    void loadsOrTellsWhy();
    void picture_data() { addPhotos(); }
    void picture();
    void metadata_data() { addPhotos(); }
    void metadata();
    void xmpInPlaceOfOthers_data() { addPhotos(); }
    void xmpInPlaceOfOthers();
    void position_data() { addPhotos(); }
    void position();
    void derivedFacts_data();
    void derivedFacts();
    void enoughWasCompared();

private:
    void addPhotos() const;
    QVariantMap propertiesOf(const QString &path) const;

    QString m_folder;
    QStringList m_paths;
    QMap<QString, QJsonObject> m_records;
    QMap<QString, QSize> m_shownSizes;
    int m_compared = 0;
};

void PhotoFactsTest::initTestCase()
{
    m_folder = photosFolder();
    if (m_folder.isEmpty())
        QSKIP("There is no folder of photos.");
    m_paths = photoPaths();
    m_records = exiftoolRecords(m_paths);
    QVERIFY(m_records.size() > 50);
    m_shownSizes = shownSizes(m_folder);
    QVERIFY(m_shownSizes.size() > 50);
}

void PhotoFactsTest::addPhotos() const
{
    QTest::addColumn<QString>("path");
    for (const QString &path : m_paths)
        QTest::newRow(qPrintable(path.mid(m_folder.size() + 1))) << path;
}

/// The whole dictionary, or that of the metadata where the picture cannot be opened.
QVariantMap PhotoFactsTest::propertiesOf(const QString &path) const
{
    const auto source = ImageSource::open(path);
    return source ? source->properties() : EmbeddedMetadata::read(path)->properties();
}

void PhotoFactsTest::loadsOrTellsWhy()
{
    QFETCH(QString, path);
    const KnownFailure *known = knownFailure(path);
    const auto source = ImageSource::open(path);
    const QSize size = source ? source->info().rows.size : QSize();
    const bool isDecoded = source && qint64(size.width()) * size.height() <= kMostDecodedPixels;
    const QString reason = !source ? source.error().text : isDecoded ? decodingFailure(*source) : QString();
    if (known) {
        QVERIFY2(!known->isLate || source, qPrintable(reason));
        QVERIFY2(reason.contains(QRegularExpression(QLatin1String(known->reason))), qPrintable(reason));
    } else if (!imageFormatOfSuffix(QFileInfo(path).suffix())) {
        // A format without a codec in this build: it has to be refused in plain words, unless the contents
        // are of another format.
        if (!reason.isEmpty())
            QVERIFY2(reason.contains(u"camera raw"_qs) || reason.contains(u"not a picture"_qs),
                     qPrintable(reason));
    } else {
        QVERIFY2(reason.isEmpty(), qPrintable(reason));
    }
}

void PhotoFactsTest::picture()
{
    QFETCH(QString, path);
    const auto source = ImageSource::open(path);
    if (!source)
        return; // loadsOrTellsWhy() looks after these
    const QJsonObject record = m_records.value(path);
    const QVariantMap properties = source->properties();
    QSize size(properties[kCGImagePropertyPixelWidth].toInt(),
               properties[kCGImagePropertyPixelHeight].toInt());
    const int orientation = properties[kCGImagePropertyOrientation].toInt();
    if (orientation >= 5)
        size.transpose();
    QCOMPARE(size, m_shownSizes.value(path));
    const bool isHeif = source->type().contains(u"hei");
    const bool isRaw = path.contains(u"/raw/");
    // HEIF turns by boxes, a raw decoder turns by itself.
    if (record.contains(u"IFD0:Orientation"_qs) && !isHeif && !isRaw)
        QCOMPARE(orientation, record[u"IFD0:Orientation"_qs].toInt());
    if (isRaw) // what exiftool tells are the sizes and depths of previews
        return;
    if (const QString model = colorModelOf(record); !model.isEmpty())
        QCOMPARE(properties[kCGImagePropertyColorModel].toString(), model);
    if (const int depth = depthOf(record); depth > 0)
        QCOMPARE(properties[kCGImagePropertyDepth].toInt(), depth);
    const QString profile = record[u"ICC_Profile:ProfileDescription"_qs].toString().trimmed();
    if (!profile.isEmpty())
        QCOMPARE(properties[kCGImagePropertyProfileName].toString(), profile);
    if (const QJsonValue density = record[u"IFD0:XResolution"_qs]; density.toDouble() > 0) {
        const double perInch = record[u"IFD0:ResolutionUnit"_qs].toInt() == 3 ? 2.54 : 1;
        QVERIFY(std::abs(properties[kCGImagePropertyDPIWidth].toDouble() - density.toDouble() * perInch) <
                1e-3);
    }
    const QJsonValue jfif = record[u"JFIF:JFIFVersion"_qs];
    const QVariantMap ours = properties[kCGImagePropertyJFIFDictionary].toMap();
    QCOMPARE(partsOf(ours[kCGImagePropertyJFIFVersion]).join(u' '), comparable(jfif));
    if (!jfif.isUndefined()) {
        QCOMPARE(ours[kCGImagePropertyJFIFXDensity].toInt(), record[u"JFIF:XResolution"_qs].toInt());
        QCOMPARE(ours[kCGImagePropertyJFIFDensityUnit].toInt(), record[u"JFIF:ResolutionUnit"_qs].toInt());
    }
    if (record.contains(u"PNG:Interlace"_qs)) {
        const QVariantMap png = properties[kCGImagePropertyPNGDictionary].toMap();
        QCOMPARE(png[kCGImagePropertyPNGInterlaceType].toInt(), record[u"PNG:Interlace"_qs].toInt());
        if (record.contains(u"PNG:Gamma"_qs)) // exiftool prints the exponent of the display
            QVERIFY(std::abs(1 / png[kCGImagePropertyPNGGamma].toDouble() -
                             record[u"PNG:Gamma"_qs].toDouble()) < 1e-3);
        if (record.contains(u"PNG:WhitePointX"_qs))
            QCOMPARE(png[kCGImagePropertyPNGChromaticities].toList().value(0).toDouble(),
                     record[u"PNG:WhitePointX"_qs].toDouble());
    }
}

/// Every fact that both know is the same, and whatever exiftool finds in a place that we model, we have.
void PhotoFactsTest::metadata()
{
    QFETCH(QString, path);
    if (path.endsWith(u"truncated.heic")) // the library reads nothing of a container that end early
        return;
    const QVariantMap properties = propertiesOf(path);
    const QJsonObject record = m_records.value(path);
    QStringList failures;
    for (const MetadataField &field : metadataFields()) {
        const QVariant value = groupDictionary(properties, field.group).value(field.key);
        for (const QString &group : exiftoolGroups(field.group)) {
            const QString tag = group + u':' + exiftoolName(field.group, field.key);
            const QString text = comparable(record[tag]);
            if (text.trimmed().isEmpty())
                continue;
            // HEIF turns its pictures by itself: what EXIF says of that is not to be followed.
            const bool isTurned = m_records.value(path)[u"File:FileType"_qs].toString() == u"HEIC";
            if (isTurned && field.key == kCGImagePropertyTIFFOrientation) {
                QCOMPARE(value.toInt(), 1);
                continue;
            }
            ++m_compared;
            if (!isSame(text, field, withoutApex(field, value)))
                failures += quoted(tag, text, value);
        }
    }
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

void PhotoFactsTest::xmpInPlaceOfOthers()
{
    QFETCH(QString, path);
    if (path.endsWith(u"truncated.heic"))
        return;
    const QVariantMap properties = propertiesOf(path);
    const QJsonObject record = m_records.value(path);
    QStringList failures;
    const auto compare = [&](const XmpHome &home, MetadataGroup group, const QString &exiftoolGroup) {
        const QJsonValue expected = record[QLatin1String(home.tag)];
        const QString text = comparable(expected).trimmed();
        // A place that goes first has its own say; metadata() has compared it.
        const bool isElsewhere =
            !exiftoolGroup.isEmpty() && record.contains(exiftoolGroup + u':' + exiftoolName(group, home.key));
        const bool isInTexts = expected.isUndefined() || text.isEmpty() || text == u"undef";
        if (isElsewhere || isInTexts)
            return;
        ++m_compared;
        const QVariant value = groupDictionary(properties, group).value(home.key);
        const QString ours = partsOf(value).join(u' ').trimmed();
        bool isNumber = false;
        const double number = text.toDouble(&isNumber);
        if (ours != text && !(isNumber && std::abs(ours.toDouble() - number) <= 1e-8 * std::abs(number)))
            failures += quoted(QLatin1String(home.tag), text, value);
    };
    for (const XmpHome &home : kIptcInXmp)
        compare(home, MetadataGroup::Iptc, u"IPTC"_qs);
    for (const XmpHome &home : kAuxInXmp)
        compare(home, MetadataGroup::ExifAux, u"ExifIFD"_qs);
    for (const XmpHome &home : kExifInXmp)
        compare(home, MetadataGroup::Exif, u"ExifIFD"_qs);
    const QJsonObject contact = record[u"XMP-iptcCore:CreatorContactInfo"_qs].toObject();
    const QVariantMap ours = groupDictionary(properties, MetadataGroup::Contact);
    for (auto part = contact.begin(); part != contact.end(); ++part, ++m_compared) {
        if (!part->toString().trimmed().isEmpty() && ours.value(part.key()).toString() != part->toString())
            failures += quoted(part.key(), part->toString(), ours.value(part.key()));
    }
    QVERIFY2(failures.isEmpty(), qPrintable(failures.join(u'\n')));
}

/// Wherever the position comes from: unsigned degrees and a letter.
void PhotoFactsTest::position()
{
    QFETCH(QString, path);
    const QJsonObject record = m_records.value(path);
    if (!record.contains(u"Composite:GPSLatitude"_qs) || path.endsWith(u"truncated.heic"))
        return;
    const QVariantMap gps = propertiesOf(path).value(kCGImagePropertyGPSDictionary).toMap();
    const auto check = [&](QLatin1StringView key, QLatin1StringView letterKey, const QString &tag,
                           char positive, char negative) {
        const double expected = record[tag].toDouble();
        const double degrees = gps.value(key).toDouble();
        QVERIFY2(gps.contains(key) && std::abs(degrees - std::abs(expected)) < 1e-7,
                 qPrintable(QStringLiteral("%1 %2").arg(degrees).arg(expected)));
        QCOMPARE(gps.value(letterKey).toString(), QString(QLatin1Char(expected < 0 ? negative : positive)));
    };
    check(kCGImagePropertyGPSLatitude, kCGImagePropertyGPSLatitudeRef, u"Composite:GPSLatitude"_qs, 'N', 'S');
    check(kCGImagePropertyGPSLongitude, kCGImagePropertyGPSLongitudeRef, u"Composite:GPSLongitude"_qs, 'E',
          'W');
    ++m_compared;
}

/// Facts that several places hold, or that are interpreted, as exiftool's own conclusions have them.
void PhotoFactsTest::derivedFacts_data()
{
    QTest::addColumn<QString>("photo");
    QTest::addColumn<QLatin1StringView>("group");
    QTest::addColumn<QLatin1StringView>("key");
    QTest::addColumn<QString>("tag");
    const QLatin1StringView aux = kCGImagePropertyExifAuxDictionary;
    const QLatin1StringView gps = kCGImagePropertyGPSDictionary;
    const QLatin1StringView iptc = kCGImagePropertyIPTCDictionary;
    const auto row = [](const char *name, const QString &photo, QLatin1StringView group,
                        QLatin1StringView key,
                        const QString &tag) { QTest::newRow(name) << photo << group << key << tag; };
    row("lens of maker notes, Canon", u"jpeg/canon-eos-450d.jpg"_qs, aux, kCGImagePropertyExifAuxLensModel,
        u"Composite:LensID"_qs);
    row("lens of maker notes, Olympus", u"jpeg/olympus-e-p3.jpg"_qs, aux, kCGImagePropertyExifAuxLensModel,
        u"Composite:LensID"_qs);
    row("lens of maker notes, Pentax", u"jpeg/pentax-ist-d.jpg"_qs, aux, kCGImagePropertyExifAuxLensModel,
        u"Pentax:LensType"_qs);
    row("lens of EXIF", u"heic/iphone-8.heic"_qs, aux, kCGImagePropertyExifAuxLensModel,
        u"ExifIFD:LensModel"_qs);
    row("lens of XMP", u"jpeg/canon-eos-1d-mark-iii-lightroom.jpg"_qs, aux, kCGImagePropertyExifAuxLensModel,
        u"XMP-aux:Lens"_qs);
    row("serial number of maker notes", u"jpeg/canon-eos-450d.jpg"_qs, aux,
        kCGImagePropertyExifAuxSerialNumber, u"Canon:SerialNumber"_qs);
    row("serial number of maker notes, Nikon", u"jpeg/nikon-d60.jpg"_qs, aux,
        kCGImagePropertyExifAuxSerialNumber, u"Nikon:SerialNumber"_qs);
    row("serial number of XMP", u"jpeg/canon-eos-1d-mark-iii-lightroom.jpg"_qs, aux,
        kCGImagePropertyExifAuxSerialNumber, u"XMP-aux:SerialNumber"_qs);
    row("image number of XMP", u"heic/stonehenge-nikon-d5300.heic"_qs, aux,
        kCGImagePropertyExifAuxImageNumber, u"XMP-aux:ImageNumber"_qs);
    row("F-number of XMP", u"jpeg/canon-eos-1d-mark-iii-lightroom.jpg"_qs, kCGImagePropertyExifDictionary,
        kCGImagePropertyExifFNumber, u"XMP-exif:FNumber"_qs);
    row("title of XMP", u"webp/denali-canon-7d.webp"_qs, iptc, kCGImagePropertyIPTCObjectName,
        u"XMP-dc:Title"_qs);
    row("creator of XMP", u"webp/denali-canon-7d.webp"_qs, iptc, kCGImagePropertyIPTCByline,
        u"XMP-dc:Creator"_qs);
    row("image number is the shutter's count, Nikon", u"jpeg/nikon-d60.jpg"_qs, aux,
        kCGImagePropertyExifAuxImageNumber, u"Nikon:ShutterCount"_qs);
    row("image number is the file's, Canon", u"jpeg/canon-powershot-a85-orientation-8.jpg"_qs, aux,
        kCGImagePropertyExifAuxImageNumber, u"Canon:FileNumber"_qs);
    row("lens ID, Canon", u"jpeg/canon-eos-450d.jpg"_qs, aux, kCGImagePropertyExifAuxLensID,
        u"Canon:LensType"_qs);
    row("lens range, Nikon", u"jpeg/nikon-d60.jpg"_qs, aux, kCGImagePropertyExifAuxLensInfo,
        u"Nikon:Lens"_qs);
    row("serial number, Olympus", u"jpeg/olympus-e-p3.jpg"_qs, aux, kCGImagePropertyExifAuxSerialNumber,
        u"Olympus:SerialNumber"_qs);
    row("serial number of the lens, Olympus", u"jpeg/olympus-e-p3.jpg"_qs, aux,
        kCGImagePropertyExifAuxLensSerialNumber, u"Olympus:LensSerialNumber"_qs);
    row("firmware, Canon", u"jpeg/canon-eos-450d.jpg"_qs, aux, kCGImagePropertyExifAuxFirmware,
        u"Canon:CanonFirmwareVersion"_qs);
    row("time stamp with a fraction", u"heic/iphone-8.heic"_qs, gps, kCGImagePropertyGPSTimeStamp,
        u"GPS:GPSTimeStamp"_qs);
}

void PhotoFactsTest::derivedFacts()
{
    QFETCH(QString, photo);
    QFETCH(QLatin1StringView, group);
    QFETCH(QLatin1StringView, key);
    QFETCH(QString, tag);
    const QString path = photosFolder() + u'/' + photo;
    QStringList options{u"-G1"_qs};
    const bool isInterpreted =
        (key == kCGImagePropertyExifAuxLensModel && !tag.startsWith(u"XMP")) || tag == u"Canon:SerialNumber";
    QJsonObject record;
    if (isInterpreted) { // names instead of numbers
        const QByteArray json = outputOf(u"exiftool"_qs, {u"-json"_qs, u"-G1"_qs, path});
        record = QJsonDocument::fromJson(json).array()[0].toObject();
    } else {
        record = exiftoolRecords({path}, options).value(path);
    }
    const QVariant value = EmbeddedMetadata::read(path)->properties().value(group).toMap().value(key);
    QVERIFY2(record.contains(tag), "exiftool does not know the fact.");
    if (value.typeId() == QMetaType::Double)
        QCOMPARE(value.toDouble(), record[tag].toDouble());
    else
        QCOMPARE(QVariant(value).toList().isEmpty() ? value.toString()
                                                    : comparable(QJsonValue::fromVariant(value)),
                 comparable(record[tag]).trimmed());
}

/// A comparison with nothing would succeed as well.
void PhotoFactsTest::enoughWasCompared()
{
    qInfo("%d values compared", m_compared);
    QVERIFY(m_compared > 1500);
}

QTEST_GUILESS_MAIN(PhotoFactsTest)
#include "photofacts_test.moc"
