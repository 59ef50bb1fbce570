// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/copydifferences.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "imageio/pictures.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"

#include <QBuffer>
#include <QHash>
#include <QTest>

using namespace plexa;

namespace
{

/// Another picture than any photo's, so that each picture in a copy tells whose it is.
constexpr QRgb kColor = qRgb(200, 30, 160);
const QSize kSize(48, 32);

/// What each format has room for, as the names of exiftool's groups. A format that is not here has room for
/// all.
const QHash<QByteArray, QStringList> &carriedGroups()
{
    static const QHash<QByteArray, QStringList> groups{
        {"image/heic", {u"EXIF"_qs, u"MakerNotes"_qs, u"XMP"_qs}},
        {"image/gif", {u"XMP"_qs}},
        {"image/bmp", {}},
    };
    return groups;
}

QStringList groupsOf(const QByteArray &type)
{
    return carriedGroups().value(type,
                                 {u"EXIF"_qs, u"MakerNotes"_qs, u"IPTC"_qs, u"XMP"_qs, u"Photoshop"_qs});
}

/// What the source said elsewhere: the resolution in its container, an identity in the frame of its XMP, IPTC
/// facts where only XMP has room for them.
bool mayBeAdded(const QString &tag, const QString &type)
{
    static const QRegularExpression expected(
        QStringLiteral("^EXIF:IFD0:((X|Y)Resolution|ResolutionUnit)$|^XMP:XMP-xmpMM:InstanceID$"));
    return expected.match(tag).hasMatch() ||
           (tag.startsWith(u"XMP:") && !groupsOf(type.toLatin1()).contains(u"IPTC"_qs));
}

/// Does a copy of this format lack or change the value for a reason of its own?
bool mayDifferIn(const QString &type, const QString &tag, const QJsonObject &source)
{
    // There is no IPTC record that it could be a digest of.
    if (!groupsOf(type.toLatin1()).contains(u"IPTC"_qs) && tag.endsWith(u"LegacyIPTCDigest"))
        return true;
    // A resolution of nothing is none, and a TIFF has to say one.
    return tag.endsWith(u"Resolution") && source[tag].toDouble() == 0;
}

/// What EXIF says of who, when, how and where; XMP has it under these names where there is no room for EXIF.
QStringList factsInXmp(const QJsonObject &source)
{
    static const QRegularExpression names(QStringLiteral(
        "^EXIF:(IFD0|ExifIFD|GPS):(Make|Model|Artist|Copyright|ImageDescription|DateTimeOriginal|CreateDate|"
        "ModifyDate"
        "|ExposureTime|FNumber|ISO|ExposureProgram|ExposureCompensation|MeteringMode|FocalLength|LensModel"
        "|SerialNumber|UserComment|WhiteBalance|GPSLatitude|GPSLongitude|GPSAltitude|GPSImgDirection)$"));
    QStringList tags = source.keys();
    tags.removeIf([](const QString &tag) { return !names.match(tag).hasMatch(); });
    return tags;
}

/// Does the copy's XMP say the same as the source's EXIF?
bool saysInXmp(const QJsonObject &copy, const QString &exifTag, const QJsonValue &value)
{
    static const QMap<QString, QString> otherNames{{u"Artist"_qs, u"Creator"_qs},
                                                   {u"Copyright"_qs, u"Rights"_qs},
                                                   {u"ImageDescription"_qs, u"Description"_qs}};
    const QString name = exifTag.section(u':', -1);
    for (auto tag = copy.begin(); tag != copy.end(); ++tag) {
        const QString found = tag.key().section(u':', -1);
        if (!tag.key().startsWith(u"XMP:") || (found != name && found != otherNames.value(name)))
            continue;
        const QString said = test::comparable(tag.value()).trimmed();
        const double number = said.toDouble();
        // Letters tell the half of the globe in EXIF, signs in exiftool's reading of XMP.
        const QString wanted = test::comparable(value).trimmed();
        const bool isIsoDate =
            wanted.contains(u'T') &&
            QString(wanted).replace(u'-', u':').replace(u'T', u' ').startsWith(said.left(19));
        if (said.startsWith(wanted) || (isIsoDate && said.size() >= 19) ||
            qAbs(qAbs(number) - qAbs(value.toDouble(-1))) <= 1e-6 * qAbs(number))
            return true;
    }
    return false;
}

/// The bytes between which a format keeps its pixels can be anything; this picture compresses to a few
/// hundred of them.
qsizetype pictureStarts(const QByteArray &file)
{
    return file.count("\xFF\xD8\xFF") + file.count("\xD8\xFF\xDB") + file.count("\xD8\xFF\xE0") +
           file.count("\xD8\xFF\xE1");
}

bool isOfOneColor(const QByteArray &jpeg)
{
    const QImage image = QImage::fromData(jpeg, "JPG").convertToFormat(QImage::Format_RGB32);
    if (image.isNull())
        return false;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb color = image.pixel(x, y);
            if (std::abs(qRed(color) - qRed(kColor)) > 8 || std::abs(qGreen(color) - qGreen(kColor)) > 8 ||
                std::abs(qBlue(color) - qBlue(kColor)) > 8)
                return false;
        }
    }
    return true;
}

} // namespace

/// Does a copy in each format that can be written carry all metadata that the format has room for, and no
/// picture but its own?
class RoundTripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void copyKeepsMetadata_data() { addFormats(); }
    void copyKeepsMetadata();
    void copyHoldsNoOtherPicture_data() { addFormats(); }
    void copyHoldsNoOtherPicture();
    void longXmpIsKept_data() { addFormats(); }
    void longXmpIsKept();
    void heifHoldsOnePicture();

private:
    static void addFormats();
    void writeCopies(const ImageFormat &format);

    test::TestFolder m_folder;
    QMap<QString, QMap<QString, QString>> m_copies; ///< by type: copy by photo
    QMap<QString, QJsonObject> m_sources;           ///< what exiftool says of the photos
};

void RoundTripTest::addFormats()
{
    QTest::addColumn<QString>("type");
    for (const ImageFormat &format : imageFormats()) {
        if (format.canWrite)
            QTest::newRow(format.name) << QString::fromLatin1(format.type);
    }
}

void RoundTripTest::initTestCase()
{
    if (test::photosFolder().isEmpty())
        QSKIP("There is no folder of photos.");
    for (const ImageFormat &format : imageFormats()) {
        if (format.canWrite)
            writeCopies(format);
    }
    m_sources = test::exiftoolRecords(test::photoPaths(), {u"-G0:1"_qs});
}

/// Writes a picture of one colour with the metadata of each photo that this build reads.
void RoundTripTest::writeCopies(const ImageFormat &format)
{
    QImage picture(kSize, QImage::Format_RGB32);
    picture.fill(kColor);
    QMap<QString, QString> &copies = m_copies[QString::fromLatin1(format.type)];
    for (const QString &path : test::photoPaths()) {
        const auto source = ImageSource::open(path);
        if (!source)
            continue;
        QVariantMap properties = source->properties();
        properties.insert(kCGImagePropertyOrientation, 1);
        QBuffer file;
        file.open(QIODevice::ReadWrite);
        const auto written =
            writeImage(file, picture, {QLatin1StringView(format.type), properties, &*source});
        QVERIFY2(written, qPrintable(path + u": "_qs + (written ? QString() : written.error().text)));
        const QString copy =
            m_folder.path(QStringLiteral("%1.%2").arg(copies.size()).arg(format.suffixes.constFirst()));
        QVERIFY(test::writeFile(copy, file.data()));
        copies.insert(path, copy);
    }
    QVERIFY(copies.size() > 50);
}

void RoundTripTest::copyKeepsMetadata()
{
    QFETCH(QString, type);
    const QMap<QString, QString> &copies = m_copies[type];
    const QStringList groups = groupsOf(type.toLatin1());
    const auto records = test::exiftoolRecords(copies.values(), {u"-G0:1"_qs});
    int compared = 0;
    QStringList failures;
    for (auto path = copies.begin(); path != copies.end(); ++path) {
        const QJsonObject source = m_sources.value(path.key());
        const QJsonObject copy = records.value(path.value());
        // exiftool takes a QuickTake's raw data for a PICT, and knows nothing of what they say.
        if (source[u"File:MIMEType"_qs].toString() == u"image/pict")
            continue;
        const auto isCompared = [&](const QString &tag) {
            return groups.contains(tag.section(u':', 0, 0)) && !test::mayDiffer(tag);
        };
        const auto fail = [&](const QString &tag) {
            failures +=
                QStringLiteral("%1 %2: %3 | %4")
                    .arg(QFileInfo(path.key()).fileName(), tag, test::comparable(source[tag]).left(60),
                         test::comparable(copy[tag]).left(60));
        };
        for (auto tag = source.begin(); tag != source.end(); ++tag) {
            // Blanks say nothing, and a digest of no IPTC record is none.
            const bool isEmpty = test::comparable(tag.value()).trimmed().isEmpty();
            const bool isVainDigest =
                tag.key().endsWith(u"IPTCDigest") &&
                source.constFind(u"IPTC:ApplicationRecordVersion"_qs) == source.constEnd();
            if (!isCompared(tag.key()) || isEmpty || isVainDigest)
                continue;
            ++compared;
            if (copy[tag.key()] != tag.value() && !mayDifferIn(type, tag.key(), source))
                fail(tag.key());
        }
        const bool isOnlyXmp = groups == QStringList(u"XMP"_qs);
        for (const QString &tag : isOnlyXmp ? factsInXmp(source) : QStringList()) {
            const bool isEmpty = test::comparable(source[tag]).trimmed().isEmpty();
            ++compared;
            if (!isEmpty && !saysInXmp(copy, tag, source[tag]))
                fail(tag);
        }
        // One moment of two fields.
        static const QRegularExpression moment(QStringLiteral("^[0-9: ]{19}([.][0-9]+)?Z?$"));
        const QString fix = copy[u"XMP:XMP-exif:GPSDateTime"_qs].toString(u"0000:00:00 00:00:00"_qs);
        if (isOnlyXmp && !moment.match(fix).hasMatch())
            fail(u"XMP:XMP-exif:GPSDateTime"_qs);
        for (auto tag = copy.begin(); tag != copy.end(); ++tag) {
            if (isCompared(tag.key()) && !source.contains(tag.key()) && !mayBeAdded(tag.key(), type))
                fail(tag.key());
        }
        QCOMPARE(copy[u"File:MIMEType"].toString().section(u'/', 0, 0), u"image"_qs);
    }
    qInfo("%d values compared", compared);
    for (const QString &failure : std::as_const(failures))
        qWarning().noquote() << failure;
    QCOMPARE(failures.size(), 0);
    QVERIFY(groups.isEmpty() || compared > (groups.size() == 1 ? 300 : 2500));
}

void RoundTripTest::copyHoldsNoOtherPicture()
{
    QFETCH(QString, type);
    const QMap<QString, QString> &copies = m_copies[type];
    const auto records =
        test::exiftoolRecords(copies.values(), {u"-G1"_qs, u"-preview:all"_qs, u"-all:*Image"_qs, u"-b"_qs});
    int thumbnails = 0;
    for (auto path = copies.begin(); path != copies.end(); ++path) {
        const QJsonObject record = records.value(path.value());
        QByteArray file = test::contentsOf(path.value());
        for (auto tag = record.begin(); tag != record.end(); ++tag) {
            const QString value = tag.value().toString();
            if (!value.startsWith(u"base64:"))
                continue;
            // The one picture that may be there shows what was written.
            QVERIFY2(tag.key() == u"IFD1:ThumbnailImage", qPrintable(path.key() + u": "_qs + tag.key()));
            const QByteArray thumbnail = QByteArray::fromBase64(value.mid(7).toLatin1());
            QVERIFY2(isOfOneColor(thumbnail), qPrintable(path.key()));
            QCOMPARE(file.count(thumbnail), 1);
            file.replace(thumbnail, QByteArray());
            ++thumbnails;
        }
        if (type == u"image/jpeg")
            file.remove(0, 3); // its own beginning
        QVERIFY2(pictureStarts(file) == 0, qPrintable(path.key()));
        QVERIFY2(!file.contains("/9j/"), qPrintable(path.key()));
    }
    qInfo("%d thumbnails", thumbnails);
}

/// Longer than one segment of a JPEG.
void RoundTripTest::longXmpIsKept()
{
    QFETCH(QString, type);
    if (!groupsOf(type.toLatin1()).contains(u"XMP"_qs))
        QSKIP("The format has no room for XMP.");
    QImage picture(kSize, QImage::Format_RGB32);
    picture.fill(kColor);
    const QString path = m_folder.path(u"long.png"_qs);
    QVERIFY(picture.save(path));
    const QByteArray instructions(150'000, 'i');
    const QString arguments = m_folder.path(u"arguments"_qs);
    QVERIFY(test::writeFile(arguments, "-XMP-photoshop:Instructions=" + instructions + '\n' + path.toUtf8()));
    test::outputOf(u"exiftool"_qs,
                   {u"-charset"_qs, u"filename=utf8"_qs, u"-overwrite_original"_qs, u"-@"_qs, arguments});
    const auto source = ImageSource::open(path);
    QVERIFY(source);
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    QVERIFY(writeImage(file, picture, {type, source->properties(), &*source}));
    const QString copy = m_folder.path(u"longcopy"_qs);
    QVERIFY(test::writeFile(copy, file.data()));
    QCOMPARE(test::exiftoolValue(copy, u"XMP-photoshop:Instructions"_qs), instructions);
}

/// The container could carry pictures that are no metadata.
void RoundTripTest::heifHoldsOnePicture()
{
    const QMap<QString, QString> copies = m_copies.value(u"image/heic"_qs);
    if (copies.isEmpty())
        QSKIP("This build does not write HEIC.");
    const QString program = test::firstProgram({u"heif-info"_qs});
    if (program.isEmpty())
        QSKIP("There is no heif-info.");
    for (const QString &copy : copies) {
        const QByteArray info = test::outputOf(program, {copy});
        QCOMPARE(info.count("image: "), 1);
        QVERIFY(!info.contains("thumbnail: "));
        QVERIFY(!info.contains("depth channel: yes"));
    }
}

QTEST_GUILESS_MAIN(RoundTripTest)
#include "roundtrip_test.moc"
