// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/imagesource.h"
#include "imageio/jpegassembly.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"

#include <QElapsedTimer>
#include <QTest>
#include <QtEndian>

#include <atomic>
#include <random>
#include <thread>
#include <vector>

using namespace plexa;

class MetadataReadingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void variants_data();
    void variants();
    void positionWithoutFix();
    void adobeRgbOfExif_data();
    void adobeRgbOfExif();
    void damagedFilesAreHarmless();
    void deeplyNestedXmpIsLeftOut();
    void manyThreads();

private:
    QStringList m_paths;
};

void MetadataReadingTest::initTestCase()
{
    if (!test::photosFolder().isEmpty())
        m_paths = test::photoPaths();
}

/// Forms that the photos do not have: character sets of IPTC, XMP's ways of writing, XMP alone.
void MetadataReadingTest::variants_data()
{
    QTest::addColumn<QByteArray>("iptc");
    QTest::addColumn<QByteArray>("xmp");
    QTest::addColumn<QString>("where");
    QTest::addColumn<QVariant>("expected");
    const auto dataSet = [](char record, char number, const QByteArray &value) {
        return QByteArray("\x1C") + record + number + test::bigEndian16(value.size()) + value;
    };
    const auto city = [&](const char *name, const QByteArray &characterSet, const QByteArray &bytes,
                          const QString &expected) {
        const QByteArray marker = characterSet.isEmpty() ? QByteArray() : dataSet(1, 90, characterSet);
        QTest::newRow(name) << marker + dataSet(2, 90, bytes) << QByteArray() << u"{IPTC}/City"_qs
                            << QVariant(expected);
    };
    city("UTF-8, unmarked", {}, "Z\xC3\xBCrich", u"Z\u00FCrich"_qs);
    city("Windows, unmarked", {}, "L\x92 Aquila \xE9", u"L\u2019 Aquila \u00E9"_qs);
    city("UTF-8, marked", "\x1B%G", "Z\xC3\xBCrich", u"Z\u00FCrich"_qs);
    city("marked as UTF-8, but is not", "\x1B%G", "Z\xFCrich", u"Z\u00FCrich"_qs);
    city("Latin-1, marked, would be UTF-8", "\x1B-A", "\xC3\xA9", u"\u00C3\u00A9"_qs);
    city("Latin-2, marked", "\x1B-B",
         "\xA3\xF3"
         "d\xBC",
         u"\u0141\u00F3d\u017A"_qs);

    const auto xmp = [](const char *name, const QByteArray &attributes, const QByteArray &elements,
                        const QString &where, const QVariant &expected) {
        const QByteArray packet =
            "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
            "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
            "xmlns:dc='http://purl.org/dc/elements/1.1/' xmlns:exif='http://ns.adobe.com/exif/1.0/' "
            "xmlns:aux='http://ns.adobe.com/exif/1.0/aux/' "
            "xmlns:photoshop='http://ns.adobe.com/photoshop/1.0/' "
            "xmlns:core='http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/' "
            "xmlns:ex='http://cipa.jp/exif/1.0/' xmlns:ext='http://iptc.org/std/Iptc4xmpExt/2008-02-29/' " +
            attributes + ">" + elements + "</rdf:Description></rdf:RDF></x:xmpmeta>";
        QTest::newRow(name) << QByteArray() << packet << where << expected;
    };
    const QString email = u"{IPTC}/CreatorContactInfo/CiEmailWork"_qs;
    xmp("contact, attributes", {}, "<core:CreatorContactInfo core:CiEmailWork='a@b.org'/>", email,
        u"a@b.org"_qs);
    xmp("contact, elements", {},
        "<core:CreatorContactInfo rdf:parseType='Resource'><core:CiEmailWork>a@b.org</core:CiEmailWork>"
        "</core:CreatorContactInfo>",
        email, u"a@b.org"_qs);
    xmp("contact, nested description", {},
        "<core:CreatorContactInfo><rdf:Description><core:CiEmailWork>a@b.org</core:CiEmailWork>"
        "</rdf:Description></core:CreatorContactInfo>",
        email, u"a@b.org"_qs);
    xmp("default language", {},
        "<dc:title><rdf:Alt><rdf:li xml:lang='de'>Stadt</rdf:li><rdf:li xml:lang='x-default'>Town</rdf:li>"
        "</rdf:Alt></dc:title>",
        u"{IPTC}/ObjectName"_qs, u"Town"_qs);
    xmp("one language", {}, "<dc:title><rdf:Alt><rdf:li xml:lang='de'>Stadt</rdf:li></rdf:Alt></dc:title>",
        u"{IPTC}/ObjectName"_qs, u"Stadt"_qs);
    const QByteArray created =
        "<ext:LocationCreated><rdf:Bag><rdf:li ext:City='Bern' ext:CountryName='Schweiz'/>"
        "</rdf:Bag></ext:LocationCreated>";
    xmp("place of creation", {}, created, u"{IPTC}/City"_qs, u"Bern"_qs);
    xmp("a place is told elsewhere", "photoshop:Country='France'", created, u"{IPTC}/City"_qs, {});
    const QByteArray date = "photoshop:DateCreated='2024-05-06T07:08:09.5+02:00'";
    xmp("date of creation", date, {}, u"{IPTC}/DateCreated"_qs, u"20240506"_qs);
    xmp("time of creation", date, {}, u"{IPTC}/TimeCreated"_qs, u"070809+0200"_qs);
    const QByteArray taken = "exif:DateTimeOriginal='2024-05-06T07:08:09.25-03:30'";
    xmp("time", taken, {}, u"{Exif}/DateTimeOriginal"_qs, u"2024:05:06 07:08:09"_qs);
    xmp("fraction of a second", taken, {}, u"{Exif}/SubsecTimeOriginal"_qs, u"25"_qs);
    xmp("offset", taken, {}, u"{Exif}/OffsetTimeOriginal"_qs, u"-03:30"_qs);
    xmp("sensitivity of EXIF 2.3", "ex:PhotographicSensitivity='640'", {}, u"{Exif}/ISOSpeedRatings"_qs,
        QVariantList{640});
    xmp("position", "exif:GPSLongitude='8,30.6W'", {}, u"{GPS}/Longitude"_qs, 8.51);
    xmp("position off the globe", "exif:GPSLatitude='999,99N'", {}, u"{GPS}/Latitude"_qs, {});
    xmp("plain degrees", "exif:GPSLatitude='-33.5'", {}, u"{GPS}/Latitude"_qs, 33.5);
    xmp("letter of plain degrees", "exif:GPSLatitude='-33.5'", {}, u"{GPS}/LatitudeRef"_qs, u"S"_qs);
    xmp("large lens ID", "aux:LensID='-7910804157571773682'", {}, u"{ExifAux}/LensID"_qs,
        QVariant(qlonglong(-7910804157571773682)));
}

void MetadataReadingTest::variants()
{
    QFETCH(QByteArray, iptc);
    QFETCH(QByteArray, xmp);
    QFETCH(QString, where);
    QFETCH(QVariant, expected);
    EmbeddedMetadata::Encoded metadata;
    metadata.iptc = iptc;
    metadata.xmp = xmp;
    const test::TestFolder folder;
    QFile file(folder.path(u"variant.jpg"_qs));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(test::jpegWith(metadata));
    file.close();
    QVariant found = EmbeddedMetadata::read(file.fileName())->properties();
    for (const QString &key : where.split(u'/'))
        found = found.toMap().value(key);
    QCOMPARE(found, expected);
}

/// Cameras without a fix write zeros over zeros, which is no place on the equator.
void MetadataReadingTest::positionWithoutFix()
{
    const auto number = [](quint32 value) {
        QByteArray bytes(4, '\0');
        qToBigEndian(value, bytes.data());
        return bytes;
    };
    const auto entry = [&](qsizetype tag, qsizetype type, quint32 count, const QByteArray &value) {
        return test::bigEndian16(tag) + test::bigEndian16(type) + number(count) + value;
    };
    const QByteArray end = number(0);
    // A directory that leads to that of the position, with three quotients behind it.
    QByteArray exif = "MM" + test::bigEndian16(42) + number(8) + test::bigEndian16(1) +
                      entry(0x8825, 4, 1, number(26)) + end;
    QCOMPARE(exif.size(), 26);
    exif +=
        test::bigEndian16(2) + entry(3, 2, 2, QByteArray("E\0\0\0", 4)) + entry(4, 5, 3, number(56)) + end;
    for (const quint32 denominator : {0U, 1U}) {
        EmbeddedMetadata::Encoded metadata;
        metadata.exif = exif + (number(0) + number(denominator)).repeated(3);
        const test::TestFolder folder;
        QFile file(folder.path(u"position.jpg"_qs));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(test::jpegWith(metadata));
        file.close();
        const QVariantMap gps = EmbeddedMetadata::read(file.fileName())
                                    ->properties()
                                    .value(kCGImagePropertyGPSDictionary)
                                    .toMap();
        QCOMPARE(gps.value(kCGImagePropertyGPSLongitudeRef).toString(), u"E"_qs);
        QCOMPARE(gps.value(kCGImagePropertyGPSLongitude), denominator == 0 ? QVariant() : QVariant(0.0));
    }
}

/// Photos without a profile whose EXIF names the colour space.
void MetadataReadingTest::adobeRgbOfExif_data()
{
    QTest::addColumn<QStringList>("tags");
    QTest::addColumn<bool>("isAdobeRgb");
    const QString uncalibrated = u"-ColorSpace#=65535"_qs;
    const QString optional = u"-InteropIndex=R03"_qs;
    QTest::newRow("as cameras do it") << QStringList{uncalibrated, optional} << true;
    QTest::newRow("TIFF") << QStringList{uncalibrated, optional, u"-Comment=tiff"_qs} << true;
    QTest::newRow("big endian") << QStringList{u"-ExifByteOrder=MM"_qs, uncalibrated, optional} << true;
    QTest::newRow("a number of its own") << QStringList{u"-ColorSpace#=2"_qs} << true;
    QTest::newRow("sRGB, whatever the rule") << QStringList{u"-ColorSpace#=1"_qs, optional} << false;
    QTest::newRow("uncalibrated") << QStringList{uncalibrated} << false;
    QTest::newRow("basic rule") << QStringList{uncalibrated, u"-InteropIndex=R98"_qs} << false;
    QTest::newRow("grey") << QStringList{uncalibrated, optional, u"-Comment=grey"_qs} << false;
}

void MetadataReadingTest::adobeRgbOfExif()
{
    if (test::firstProgram({u"exiftool"_qs}).isEmpty())
        QSKIP("exiftool is not installed.");
    QFETCH(QStringList, tags);
    QFETCH(bool, isAdobeRgb);
    const test::TestFolder folder;
    const bool isTiff = tags.removeAll(u"-Comment=tiff"_qs) > 0;
    const QString path = folder.path(isTiff ? u"photo.tif"_qs : u"photo.jpg"_qs);
    QImage image(16, 16, QImage::Format_RGB32);
    image.fill(QColor(40, 160, 80));
    if (tags.contains(u"-Comment=grey"_qs))
        image.convertTo(QImage::Format_Grayscale8);
    QVERIFY(image.save(path));
    test::outputOf(u"exiftool"_qs,
                   QStringList{u"-q"_qs, u"-overwrite_original"_qs} + tags + QStringList{path});
    const auto source = ImageSource::open(path);
    QVERIFY(source);
    QCOMPARE(source->properties().value(kCGImagePropertyProfileName).toString(),
             isAdobeRgb ? u"Adobe RGB (1998)"_qs : QString());
    const auto decoded = source->createImage();
    QVERIFY(decoded);
    // The same green is stronger in Adobe RGB: red lies outside of sRGB then.
    QCOMPARE(qRed(decoded->pixel(8, 8)) < 20, isAdobeRgb);
}

/// Whatever is done to a file's metadata, reading and encoding end, soon and without a crash.
void MetadataReadingTest::damagedFilesAreHarmless()
{
    if (m_paths.isEmpty())
        QSKIP("There is no folder of photos.");
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
    if (m_paths.isEmpty())
        QSKIP("There is no folder of photos.");
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
#include "metadatareading_test.moc"
