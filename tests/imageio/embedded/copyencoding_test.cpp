// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/copydifferences.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "metadata/propertykeys.h"
#include "support/exiftool.h"
#include "support/files.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <QBuffer>
#include <QHash>
#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

/// A picture unlike any photo's, so that each picture in a copy shows its origin.
const QImage kPicture = flatPicture({48, 32}, QColor(200, 30, 160));

/// The groups of exiftool that each format has room for. A format that is absent here has room for all.
QStringList groupsOf(const QString &type)
{
    static const QHash<QString, QStringList> groups{
        {u"image/heic"_s, words("EXIF MakerNotes XMP")}, {u"image/gif"_s, {u"XMP"_s}}, {u"image/bmp"_s, {}}};
    return groups.value(type, words("EXIF MakerNotes IPTC XMP Photoshop"));
}

/// May a copy of this format add the tag, lack it or change its value?
bool isFree(const QString &tag, const QString &type, const QJsonObject &source)
{
    const bool hasIptc = groupsOf(type).contains(u"IPTC"_s);
    // The resolution comes from the container, an identity from the frame of the XMP, and IPTC and EXIF facts
    // go into XMP where only that has room.
    static const QRegularExpression added(
        u"^EXIF:IFD0:((X|Y)Resolution|ResolutionUnit)$|^XMP:XMP-xmpMM:InstanceID$"_s);
    if (!source.contains(tag))
        return added.match(tag).hasMatch() || (tag.startsWith(u"XMP:") && !hasIptc);
    // Without an IPTC record its digest goes. A resolution of zero counts as missing, but a TIFF states one.
    return (!hasIptc && tag.endsWith(u"LegacyIPTCDigest")) ||
           (tag.endsWith(u"Resolution") && source[tag].toDouble() == 0);
}

bool isOfOneColor(const QByteArray &jpeg)
{
    const QImage image = QImage::fromData(jpeg, "JPG").convertToFormat(QImage::Format_RGB32);
    if (image.isNull())
        return false;
    return differenceOf(image, flatPicture(image.size(), kPicture.pixelColor(0, 0))).worst <= 8;
}

} // namespace

/// A copy in each format that this build writes holds all metadata that the format has room for, and no
/// picture but its own.
class CopyEncodingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        PLEXA_NEEDS_PROGRAMS("exiftool");
        if (photosFolder().isEmpty())
            return;
        for (const ImageFormat &format : imageFormats()) {
            if (format.canWrite)
                writeCopies(format);
        }
        m_sources = exiftoolRecords(photoPaths(), {u"-G0:1"_s});
    }

    void copyKeepsMetadata_data() { addFormats(); }
    void copyKeepsMetadata()
    {
        PLEXA_NEEDS_PHOTOS();
        QFETCH(QString, type);
        const QMap<QString, QString> &copies = m_copies[type];
        const QStringList groups = groupsOf(type);
        const auto records = exiftoolRecords(copies.values(), {u"-G0:1"_s});
        int compared = 0;
        QStringList faults;
        for (auto path = copies.begin(); path != copies.end(); ++path) {
            const QJsonObject source = m_sources.value(path.key());
            const QJsonObject copy = records.value(path.value());
            // exiftool reads a QuickTake's raw data as a PICT.
            if (source[u"File:MIMEType"_s].toString() == u"image/pict")
                continue;
            QStringList tags = source.keys() + copy.keys();
            tags.removeDuplicates();
            for (const QString &tag : std::as_const(tags)) {
                if (!groups.contains(tag.section(u':', 0, 0)) || mayDiffer(tag) || isVoid(source, tag))
                    continue;
                ++compared;
                if (copy[tag] != source[tag] && !isFree(tag, type, source))
                    faults += u"%1 %2: %3 | %4"_s.arg(QFileInfo(path.key()).fileName(), tag,
                                                      comparable(source[tag]).left(60),
                                                      comparable(copy[tag]).left(60));
            }
            QCOMPARE(copy[u"File:MIMEType"].toString().section(u'/', 0, 0), u"image"_s);
            if (groups.contains(u"EXIF"_s)) {
                QCOMPARE(copy[u"EXIF:IFD0:Orientation"].toInt(), 1);
                QVERIFY(copy[u"EXIF:ExifIFD:ColorSpace"].toInt(1) == 1);
                QVERIFY(copy[u"EXIF:InteropIFD:InteropIndex"].toString() != u"R03");
            }
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
        QVERIFY(groups.isEmpty() || compared > (groups.size() == 1 ? 300 : 2500));
    }

    void copyHoldsNoOtherPicture_data() { addFormats(); }
    void copyHoldsNoOtherPicture()
    {
        PLEXA_NEEDS_PHOTOS();
        QFETCH(QString, type);
        const QMap<QString, QString> &copies = m_copies[type];
        const auto records = exiftoolRecords(copies.values(), words("-G1 -preview:all -all:*Image -b"));
        int thumbnails = 0;
        for (auto path = copies.begin(); path != copies.end(); ++path) {
            const QJsonObject record = records.value(path.value());
            QByteArray file = contentsOf(path.value());
            for (auto tag = record.begin(); tag != record.end(); ++tag) {
                const QString value = tag.value().toString();
                if (!value.startsWith(u"base64:"))
                    continue;
                // The one picture that may be there shows the copy.
                QVERIFY2(tag.key() == u"IFD1:ThumbnailImage", qPrintable(path.key() + u": "_s + tag.key()));
                const QByteArray thumbnail = QByteArray::fromBase64(value.mid(7).toLatin1());
                QVERIFY2(isOfOneColor(thumbnail), qPrintable(path.key()));
                QCOMPARE(file.count(thumbnail), 1);
                file.replace(thumbnail, QByteArray());
                ++thumbnails;
            }
            if (type == u"image/jpeg")
                file.remove(0, 3); // its own beginning
            QVERIFY2(!file.contains("/9j/"), qPrintable(path.key()));
            // JPEGs, those included of which a camera has spoiled the first byte.
            for (qsizetype at = file.indexOf("\xD8\xFF"); at >= 0; at = file.indexOf("\xD8\xFF", at + 1))
                QVERIFY2(QImage::fromData('\xFF' + file.mid(at), "JPG").isNull(), qPrintable(path.key()));
            if (type == u"image/heic") {
                PLEXA_NEEDS_PROGRAMS("heif-info");
                const QByteArray info = outputOf("heif-info %1", path.value());
                QCOMPARE(info.count("image: "), 1);
                QVERIFY(!info.contains("thumbnail: ") && !info.contains("depth channel: yes"));
            }
        }
        QVERIFY(type != u"image/jpeg" || thumbnails > 10);
    }

    /// Longer than one segment of a JPEG: read from several, written in several.
    void longXmpIsKept_data() { addFormats(); }
    void longXmpIsKept()
    {
        QFETCH(QString, type);
        if (!groupsOf(type).contains(u"XMP"_s))
            QSKIP("The format has no room for XMP.");
        const QString path = m_folder.path("long.jpg");
        const QString arguments = m_folder.path("arguments");
        const QByteArray instructions(150'000, 'i');
        QVERIFY(writeFile(path, encoded(kPicture, "JPEG")));
        QVERIFY(writeFile(arguments, "-XMP-photoshop:Instructions=" + instructions + "\n-XMP-dc:Title=T\n" +
                                         path.toUtf8()));
        outputOf("exiftool -charset filename=utf8 -overwrite_original -@ %1", arguments);
        QCOMPARE(contentsOf(path).count("http://ns.adobe.com/xmp/extension/"), 3);
        const QString copy = m_folder.path("longcopy");
        QVERIFY(writeFile(copy, copyOf(path, type)));
        QCOMPARE(exiftoolValue(copy, u"XMP-photoshop:Instructions"_s), instructions);
        QCOMPARE(exiftoolValue(copy, u"XMP-dc:Title"_s), "T");
    }

private:
    static void addFormats()
    {
        QTest::addColumn<QString>("type");
        for (const ImageFormat &format : imageFormats()) {
            if (format.canWrite)
                QTest::newRow(format.name) << QString::fromLatin1(format.type);
        }
    }

    /// Blanks are no value, and a digest of no IPTC record is none.
    static bool isVoid(const QJsonObject &source, const QString &tag)
    {
        return (source.contains(tag) && comparable(source[tag]).trimmed().isEmpty()) ||
               (tag.endsWith(u"IPTCDigest") && !source.contains(u"IPTC:ApplicationRecordVersion"_s));
    }

    /// The bytes of a copy with the metadata of a photo; empty where this build cannot read it.
    static QByteArray copyOf(const QString &path, const QString &type)
    {
        const auto source = ImageSource::open(path);
        if (!source)
            return {};
        QVariantMap properties = *source->properties();
        properties.insert(kCGImagePropertyOrientation, 1);
        QBuffer file;
        file.open(QIODevice::ReadWrite);
        const auto written = writeImage(file, kPicture, {type, properties, &*source});
        if (!written)
            qWarning().noquote() << path << written.error().text;
        return written ? file.data() : "failed"_ba;
    }

    void writeCopies(const ImageFormat &format)
    {
        const QString type = QString::fromLatin1(format.type);
        QMap<QString, QString> &copies = m_copies[type];
        for (const QString &path : photoPaths()) {
            const QByteArray file = copyOf(path, type);
            if (file.isEmpty())
                continue;
            QVERIFY2(file != "failed", qPrintable(path));
            const QString copy =
                m_folder.path(u"%1.%2"_s.arg(copies.size()).arg(format.suffixes.constFirst()));
            QVERIFY(writeFile(copy, file));
            copies.insert(path, copy);
        }
        QVERIFY(copies.size() > 50);
    }

    TestFolder m_folder;
    QMap<QString, QMap<QString, QString>> m_copies; ///< by type: copy by photo
    QMap<QString, QJsonObject> m_sources;           ///< the photos as exiftool reads them
};

QTEST_GUILESS_MAIN(CopyEncodingTest)
#include "copyencoding_test.moc"
