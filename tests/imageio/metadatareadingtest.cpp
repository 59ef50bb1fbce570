// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embeddedmetadata.h"
#include "imageio/exiftoolrecords.h"
#include "imageio/metadatafields.h"
#include "imageio/propertykeys.h"

#include <QElapsedTimer>
#include <QTest>
#include <QtEndian>

#include <atomic>
#include <cmath>
#include <random>
#include <thread>
#include <vector>

using namespace plexa;

namespace
{

/// Where exiftool's names differ from the dictionary's.
QString exiftoolName(MetadataGroup group, const QString &key)
{
    static const QMap<QString, QString> names{
        {u"DateTime"_qs, u"ModifyDate"_qs},
        {u"ISOSpeedRatings"_qs, u"ISO"_qs},
        {u"DateTimeDigitized"_qs, u"CreateDate"_qs},
        {u"ExposureBiasValue"_qs, u"ExposureCompensation"_qs},
        {u"SubsecTime"_qs, u"SubSecTime"_qs},
        {u"SubsecTimeOriginal"_qs, u"SubSecTimeOriginal"_qs},
        {u"SubsecTimeDigitized"_qs, u"SubSecTimeDigitized"_qs},
        {u"FlashPixVersion"_qs, u"FlashpixVersion"_qs},
        {u"PixelXDimension"_qs, u"ExifImageWidth"_qs},
        {u"PixelYDimension"_qs, u"ExifImageHeight"_qs},
        {u"FocalLenIn35mmFilm"_qs, u"FocalLengthIn35mmFormat"_qs},
        {u"SubjectDistRange"_qs, u"SubjectDistanceRange"_qs},
        {u"CameraOwnerName"_qs, u"OwnerName"_qs},
        {u"BodySerialNumber"_qs, u"SerialNumber"_qs},
        {u"LensSpecification"_qs, u"LensInfo"_qs},
        {u"GPSVersion"_qs, u"GPSVersionID"_qs},
        {u"Differental"_qs, u"GPSDifferential"_qs},
        {u"Byline"_qs, u"By-line"_qs},
        {u"BylineTitle"_qs, u"By-lineTitle"_qs},
        {u"Caption/Abstract"_qs, u"Caption-Abstract"_qs},
        {u"Writer/Editor"_qs, u"Writer-Editor"_qs},
        {u"Province/State"_qs, u"Province-State"_qs},
        {u"SubLocation"_qs, u"Sub-location"_qs},
        {u"Country/PrimaryLocationName"_qs, u"Country-PrimaryLocationName"_qs},
        {u"Country/PrimaryLocationCode"_qs, u"Country-PrimaryLocationCode"_qs},
        {u"SupplementalCategory"_qs, u"SupplementalCategories"_qs},
    };
    QString name = names.value(key, key);
    if (group == MetadataGroup::Gps && !name.startsWith(u"GPS"))
        name.prepend(u"GPS");
    return name;
}

QStringList exiftoolGroups(MetadataGroup group)
{
    switch (group) {
    case MetadataGroup::Tiff:
        return {u"IFD0"_qs};
    case MetadataGroup::Exif:
        return {u"ExifIFD"_qs};
    case MetadataGroup::Gps:
        return {u"GPS"_qs};
    case MetadataGroup::Iptc:
        return {u"IPTC"_qs};
    default:
        return {};
    }
}

QStringList words(const QVariant &value)
{
    QStringList result;
    if (value.typeId() == QMetaType::QVariantList) {
        for (const QVariant &item : value.toList())
            result += words(item);
        return result;
    }
    return value.typeId() == QMetaType::Double ? QStringList(QString::number(value.toDouble(), 'g', 17))
                                               : value.toString().split(u' ');
}

/// exiftool turns APEX values into seconds and F-numbers.
QVariant withoutApex(const MetadataField &field, const QVariant &value)
{
    if (field.key == kCGImagePropertyExifShutterSpeedValue && value.toDouble() < 100)
        return std::exp2(-value.toDouble());
    if (field.key == kCGImagePropertyExifApertureValue || field.key == kCGImagePropertyExifMaxApertureValue)
        return std::exp2(value.toDouble() / 2);
    return value;
}

bool isSame(const QString &expected, const MetadataField &field, const QVariant &value)
{
    const MetadataKind kind = field.kind;
    if (kind == MetadataKind::Version) {
        const QVariantList parts = value.toList();
        QString digits = QStringLiteral("%1%2")
                             .arg(parts.value(0).toInt(), 2, 10, QChar(u'0'))
                             .arg(parts.value(1).toInt());
        return (digits + (parts.size() > 2 ? parts[2].toString() : QStringLiteral("0"))) == expected;
    }
    if (kind == MetadataKind::IptcDate)
        return QString(expected).remove(u':') == value.toString();
    if (field.group == MetadataGroup::Iptc && QString(field.key).contains(u"Time"))
        return value.toString().startsWith(QString(expected).remove(u':'));
    if (field.key == kCGImagePropertyExifCFAPattern) // exiftool leaves the high bytes of both sides out
        return value.toList().size() == expected.split(u' ').size() + 2;
    const QStringList left =
        QString(expected).replace(QLatin1StringView("undef"), QLatin1StringView("0")).split(u' ');
    const QStringList right = words(value);
    if (left.size() != right.size())
        return false;
    for (qsizetype i = 0; i < left.size(); ++i) {
        bool isNumber = false;
        const double wanted = left[i].toDouble(&isNumber);
        // exiftool prints a quotient with ten digits.
        if (left[i] != right[i] &&
            !(isNumber && std::abs(right[i].toDouble() - wanted) <= 1e-8 * std::abs(wanted)))
            return false;
    }
    return true;
}

} // namespace

class MetadataReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void agreesWithExiftool();
    void derivedFacts_data();
    void derivedFacts();
    void damagedFilesAreHarmless();
    void deeplyNestedXmpIsLeftOut();
    void manyThreads();

private:
    QStringList m_paths;
};

void MetadataReadingTest::initTestCase()
{
    if (test::photosFolder().isEmpty())
        QSKIP("There is no folder of photos.");
    m_paths = test::photoPaths();
}

/// Every fact that both know is the same, and whatever exiftool finds in a place that we model, we have.
void MetadataReadingTest::agreesWithExiftool()
{
    const auto records = test::exiftoolRecords(m_paths, {u"-G1"_qs});
    QVERIFY(!records.isEmpty());
    QStringList failures;
    int compared = 0;
    for (const QString &path : std::as_const(m_paths)) {
        if (path.endsWith(u"truncated.heic")) // the library reads nothing of a container that ends early
            continue;
        const QVariantMap properties = EmbeddedMetadata::read(path)->properties();
        const QJsonObject record = records.value(path);
        for (const MetadataField &field : metadataFields()) {
            const QVariant value = groupDictionary(properties, field.group).value(field.key);
            for (const QString &group : exiftoolGroups(field.group)) {
                const QJsonValue expected = record[group + u':' + exiftoolName(field.group, field.key)];
                const QString text = test::comparable(expected);
                if (expected.isUndefined() || text.trimmed().isEmpty())
                    continue;
                ++compared;
                if (!isSame(text, field, withoutApex(field, value)))
                    failures += QStringLiteral("%1 %2 %3: %4 | %5")
                                    .arg(QFileInfo(path).fileName(), group, QString(field.key), text.left(60),
                                         words(value).join(u' ').left(60));
            }
        }
    }
    qInfo("%d values compared", compared);
    for (const QString &failure : std::as_const(failures))
        qWarning().noquote() << failure;
    QCOMPARE(failures.size(), 0);
    QVERIFY(compared > 1000);
}

/// Facts that several places hold, or that are interpreted, as exiftool's own conclusions have them.
void MetadataReadingTest::derivedFacts_data()
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
    row("time stamp with a fraction", u"heic/iphone-8.heic"_qs, gps, kCGImagePropertyGPSTimeStamp,
        u"GPS:GPSTimeStamp"_qs);
}

void MetadataReadingTest::derivedFacts()
{
    QFETCH(QString, photo);
    QFETCH(QLatin1StringView, group);
    QFETCH(QLatin1StringView, key);
    QFETCH(QString, tag);
    const QString path = test::photosFolder() + u'/' + photo;
    QStringList options{u"-G1"_qs};
    const bool isInterpreted = tag.contains(u"Lens") && !tag.startsWith(u"XMP");
    QJsonObject record;
    if (isInterpreted) { // names instead of numbers
        const QByteArray json = test::outputOf(u"exiftool"_qs, {u"-json"_qs, u"-G1"_qs, path});
        record = QJsonDocument::fromJson(json).array()[0].toObject();
    } else {
        record = test::exiftoolRecords({path}, options).value(path);
    }
    const QVariant value = EmbeddedMetadata::read(path)->properties().value(group).toMap().value(key);
    QVERIFY2(record.contains(tag), "exiftool does not know the fact.");
    if (value.typeId() == QMetaType::Double)
        QCOMPARE(value.toDouble(), record[tag].toDouble());
    else
        QCOMPARE(words(value).join(u' '), test::comparable(record[tag]));
}

/// Whatever is done to a file's metadata, reading and encoding end, soon and without a crash.
void MetadataReadingTest::damagedFilesAreHarmless()
{
    const test::TestFolder folder;
    const QString damaged = folder.path(u"damaged"_qs);
    std::mt19937 random(1); // the same damage in every run
    QElapsedTimer slowest;
    for (const QString &path : std::as_const(m_paths)) {
        constexpr qsizetype kSmall = 60'000;
        QFile source(path);
        if (source.size() > kSmall || !source.open(QIODevice::ReadOnly))
            continue;
        const QByteArray whole = source.readAll();
        for (int round = 0; round < 12 && !whole.isEmpty(); ++round) {
            QByteArray data = whole;
            if (round % 3 == 0)
                data.truncate(static_cast<qsizetype>(random() % static_cast<size_t>(data.size())));
            for (int flips = round * 4; flips > 0 && !data.isEmpty(); --flips) {
                const auto range = static_cast<size_t>(std::min<qsizetype>(data.size(), 12'000));
                data[static_cast<qsizetype>(random() % range)] = static_cast<char>(random());
            }
            QFile file(damaged);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(data);
            file.close();
            slowest.start();
            const auto metadata = EmbeddedMetadata::read(damaged);
            const auto encoded = metadata->encodeForCopy({}, {QSize(8, 8), 1000});
            QVERIFY(!encoded.exif.contains("\xFF\xD8\xFF"));
            QVERIFY2(slowest.elapsed() < 5000, qPrintable(path));
        }
    }
}

/// A packet that nests its elements without end must not exhaust the stack.
void MetadataReadingTest::deeplyNestedXmpIsLeftOut()
{
    QByteArray packet("<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                      "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
                      "<rdf:Description rdf:about='' xmlns:dc='http://purl.org/dc/elements/1.1/'><dc:title>");
    packet += QByteArray("<rdf:Alt><rdf:li>").repeated(300'000);
    const QByteArray chunk = "XML:com.adobe.xmp" + QByteArray(5, '\0') + packet;
    QByteArray length(4, '\0');
    qToBigEndian(static_cast<quint32>(chunk.size()), length.data());
    const test::TestFolder folder;
    QFile file(folder.path(u"deep.png"_qs));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("\x89PNG\r\n\x1A\n" + length + "iTXt" + chunk + QByteArray(4, '\0'));
    file.close();
    QVERIFY(EmbeddedMetadata::read(file.fileName())->properties().isEmpty());
}

void MetadataReadingTest::manyThreads()
{
    QMap<QString, QVariantMap> expected;
    for (const QString &path : std::as_const(m_paths))
        expected.insert(path, EmbeddedMetadata::read(path)->properties());
    std::atomic_int failures = 0;
    std::vector<std::thread> threads;
    for (qsizetype start = 0; start < 4; ++start) {
        threads.emplace_back([&, start] {
            for (qsizetype i = 0; i < m_paths.size(); ++i) {
                const QString &path = m_paths[(i + start * 7) % m_paths.size()];
                const auto metadata = EmbeddedMetadata::read(path);
                const auto encoded = metadata->encodeForCopy(metadata->properties(), {QSize(8, 8), 1000});
                if (metadata->properties() != expected.value(path) || encoded.exif.isEmpty())
                    ++failures;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
}

QTEST_GUILESS_MAIN(MetadataReadingTest)
#include "metadatareadingtest.moc"
