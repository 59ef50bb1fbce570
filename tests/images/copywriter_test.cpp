// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/copywriter.h"
#include "images/uprighting.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/photofolder.h"
#include "support/picturedifference.h"
#include "support/programs.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"

#include <QImageReader>
#include <QTest>
#include <QtEndian>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// What happens to the photo at one of its reads.
struct Reads {
    int count = 0;
    qint64 bytes = 0;
    int faultAt = -1;                    ///< the read, from 0
    std::function<ssize_t()> fault = {}; ///< its result; 0: as without a fault
};
Reads reads;

} // namespace

/// In place of the C library's function, which photos are read with.
extern "C" ssize_t pread(int descriptor, void *bytes, size_t count, off_t offset)
{
    if (reads.count++ == reads.faultAt) {
        if (const ssize_t result = reads.fault(); result != 0)
            return result;
    }
    const ssize_t got = syscall(SYS_pread64, descriptor, bytes, count, offset);
    reads.bytes += got;
    return got;
}

namespace
{

ssize_t failWithInputError()
{
    errno = EIO;
    return -1;
}

/// A GIF of one frame, filled up to a length.
QByteArray gifOf(QSize size)
{
    QByteArray gif = QByteArray::fromHex("474946383961 0000 0000 f70000").leftJustified(13 + 768, '\x7f');
    QByteArray frame = QByteArray::fromHex("2c 00000000 0000 0000 00 08");
    for (QByteArray *part : {&gif, &frame}) {
        const int at = part == &gif ? 6 : 5;
        qToLittleEndian(quint16(size.width()), part->data() + at);
        qToLittleEndian(quint16(size.height()), part->data() + at + 2);
    }
    gif += frame;
    // Each code is followed by one that empties the table, so all have nine bits: 256, 1, 256, 1...
    QByteArray codes;
    quint32 bits = 0;
    int count = 0;
    for (int i = 0; i < 2 * 64 * 64; ++i) {
        bits |= quint32(i % 2 == 0 ? 256 : 1) << count;
        for (count += 9; count >= 8; count -= 8, bits >>= 8)
            codes.append(char(bits));
    }
    for (qsizetype at = 0; at < codes.size(); at += 255)
        gif += char(qMin<qsizetype>(255, codes.size() - at)) + codes.mid(at, 255);
    return gif + QByteArray("\0;", 2);
}

/// Writes into the file that is there, and leaves its time of modification.
bool replaceContents(const QString &path, const QByteArray &contents)
{
    const QByteArray name = path.toLocal8Bit();
    struct stat status = {};
    const int file = ::open(name.constData(), O_WRONLY | O_CLOEXEC);
    const bool isWritten = ::fstat(file, &status) == 0 &&
                           ::write(file, contents.constData(), size_t(contents.size())) == contents.size();
    const timespec times[] = {status.st_atim, status.st_mtim};
    return isWritten && ::futimens(file, times) == 0 && ::close(file) == 0;
}

} // namespace

class CopyWriterTest : public QObject
{
    Q_OBJECT

private:
    TestFolder m_folder;
    TestPhotoServices m_services;

    QString copyPath() const { return m_folder.path("copy.jpg"); }

    /// Writes a copy while the read of that number has a fault.
    Result<CopyReport> copyWithFault(const QString &photo, int read, const std::function<ssize_t()> &fault)
    {
        QFile::remove(copyPath());
        CopyOrder order;
        order.path = order.readPath = photo;
        order.target.path = copyPath();
        order.targetType = u"image/jpeg"_qs;
        reads = {0, 0, read, fault};
        return writeCopy(order, m_services.all);
    }

    /// A recompressed copy is at least as close to its photo as a rendered one, and both have the same
    /// metadata and thumbnail.
    /// @param rect           of the mark, origin at the bottom left
    /// @param keepsSampling  does the quality keep the chroma sampling of a rendered copy?
    void compareCopies(const QString &photo, const QString &copy, const QString &rendered, QRectF rect,
                       bool keepsSampling)
    {
        QImageReader reader(photo);
        reader.setAutoTransform(true);
        const QImage original = reader.read();
        const QImage picture(copy);
        const QRect hole = QRectF(rect.x(), picture.height() - rect.bottom(), rect.width(), rect.height())
                               .toAlignedRect()
                               .adjusted(-40, -40, 40, 40);
        // Where most coefficients are halfway between two steps, as from quality 90 to 80, the rounding of
        // the pixels decides for the nearer one.
        QVERIFY(differenceOf(original, picture, hole).psnr() >
                differenceOf(original, QImage(rendered), hole).psnr() - 0.2);

        const char *metadata = keepsSampling ? "exiftool -a -G1 -s -n --ThumbnailImage --System:all %1"
                                             : "exiftool -a -G1 -s -n --ThumbnailImage --System:all "
                                               "--YCbCrSubSampling %1";
        QCOMPARE(outputOf(metadata, copy), outputOf(metadata, rendered));
        const char *thumbnail = "exiftool -b -ThumbnailImage %1";
        const QImage own = QImage::fromData(outputOf(thumbnail, copy));
        const QImage expected = QImage::fromData(outputOf(thumbnail, rendered));
        QCOMPARE(own.size(), expected.size());
        if (own.isNull())
            return;
        QVERIFY2(meanDifference(own, expected) < 12,
                 qPrintable(QString::number(meanDifference(own, expected))));
        const QPointF middle(rect.center().x(), picture.height() - rect.center().y());
        const QColor color = own.pixelColor((middle * own.width() / picture.width()).toPoint());
        QVERIFY2(color.red() > color.blue() + 60, qPrintable(color.name()));
    }

    static void addPhotos()
    {
        for (const char *photo :
             {"jpeg/thompson-springs-gps-city.jpg", "tiff/uss-reagan-iptc-xmp.tif", "png/exif-chunk.png",
              "heic/stonehenge-nikon-d5300.heic", "webp/htc-desire.webp", "gif/animated-cogs.gif",
              "bmp/pal8.bmp", "raw/kodak-dc50.kdc"})
            addRow(Row<QString>{photo, QString::fromUtf8(photo)});
    }

private Q_SLOTS:
    void photoIsOpenedOnce_data() { addPhotos(); }
    void photoIsOpenedOnce()
    {
        PLEXA_NEEDS_PHOTOS();
        const QString path = realPhoto(std::get<1>(currentRow<Row<QString>>()));
        const Result<ImageSource> whole = ImageSource::open(path);
        QVERIFY(whole && whole->properties() && whole->createImage());
        const Result<ImageSource> source = ImageSource::open(path);
        rlimit before = {};
        getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none = {0, before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none); // keeps what is open
        const int another = ::open("/", O_RDONLY | O_CLOEXEC);
        const Result<QVariantMap> properties = source->properties();
        const Result<QImage> image = source->createImage();
        setrlimit(RLIMIT_NOFILE, &before);
        QVERIFY(another < 0);
        QCOMPARE(*properties, *whole->properties());
        QCOMPARE(*image, *whole->createImage());

        const Result<ImageSource> unread = ImageSource::open(path);
        reads = {0, 0, 0, failWithInputError};
        QVERIFY(!unread->properties() || reads.count == 0);
    }

    /// Of whatever read fails, the photo does, and there is no copy.
    void failedReadFailsTheCopy_data() { addPhotos(); }
    void failedReadFailsTheCopy()
    {
        PLEXA_NEEDS_PHOTOS();
        const QString real = realPhoto(std::get<1>(currentRow<Row<QString>>()));
        const QString photo = m_folder.path(u"photo."_qs + QFileInfo(real).suffix());
        const QByteArray contents = contentsOf(real);
        QVERIFY(writeFile(photo, contents) && copyWithFault(photo, -1, {}));
        const int readsOfCopy = reads.count;
        QVERIFY(readsOfCopy > 2);
        for (int read = 0; read < readsOfCopy; ++read) {
            const auto unread = copyWithFault(photo, read, failWithInputError);
            QVERIFY2(!unread && unread.error().text.contains(u"Input/output error"),
                     qPrintable(unread ? QString::number(read) : unread.error().text));
            QVERIFY(!QFile::exists(copyPath()));

            const auto cut = copyWithFault(photo, read, [&] {
                return ssize_t(truncate(photo.toLocal8Bit().constData(), contents.size() / 2));
            });
            QVERIFY2(!cut && cut.error().text.contains(u"the file was changed while it was read"),
                     qPrintable(cut ? QString::number(read) : cut.error().text));
            QVERIFY(!QFile::exists(copyPath()));
            QVERIFY(writeFile(photo, contents));
        }
    }

    /// A wider frame must not be written over the rows of the measured one.
    void gifIsReplacedWhileRead()
    {
        const QString photo = m_folder.path("photo.gif");
        const QByteArray wide = gifOf({64 * 64, 1});
        QVERIFY(writeFile(photo, gifOf({1, 64 * 64})));
        QVERIFY(copyWithFault(photo, -1, {}));
        const int readsOfCopy = reads.count;
        int found = 0;
        for (int read = 0; read < readsOfCopy; ++read) {
            QVERIFY(writeFile(photo, gifOf({1, 64 * 64})));
            const auto copy = copyWithFault(
                photo, read, [&] { return replaceContents(photo, wide) ? ssize_t(0) : ssize_t(-1); });
            found += !copy && copy.error().text == u"the file was changed while it was read" ? 1 : 0;
        }
        QVERIFY(found > 0);
    }

    /// The samples of a TIFF are not read for its metadata.
    void metadataAreReadAlone()
    {
        const QString path = m_folder.path("large.tif");
        magick("-size 3000x2000 xc:gray -compress none -orient RightTop %1", path);
        QVERIFY(QFileInfo(path).size() > 6'000'000);
        const Result<ImageSource> source = ImageSource::open(path);
        reads = {};
        QCOMPARE(ImageMetadata(*source->properties()).orientationCorrected(), 6);
        QVERIFY2(reads.bytes < 1'000'000, qPrintable(QString::number(reads.bytes)));
    }

    void recompressedCopies_data()
    {
        using Photo = Row<bool>;
        addRows<Photo>({{"apple-iphone-5.jpg", true}, // half turn
                        {"canon-eos-450d.jpg", true},
                        {"canon-s5-furnace-creek.jpg", true},
                        {"canon-sx60-orientation-6.jpg", true},
                        {"fujifilm-mx-2900-440.jpg", true},
                        {"htc-desire.jpg", true},
                        {"jupiter-iptc-creator-contact.jpg", true},
                        {"nikon-d60.jpg", true},
                        {"panasonic-dmc-lc70-progressive.jpg", true},
                        {"pentax-ist-d.jpg", true},
                        {"samsung-galaxy-s4.jpg", true},
                        {"sony-dsc-hx5v-gps.jpg", true},
                        {"adobe-rgb-uss-reagan.jpg", false},
                        {"canon-powershot-a85-orientation-8.jpg", false}, // an incomplete MCU
                        {"cmyk-derived.jpg", false},
                        {"display-p3-iphone-13-mini.jpg", false},
                        {"gray-concert.jpg", false}, // with a profile
                        {"nokia-n70-nonsquare-density.jpg", false},
                        {"olympus-e-p3.jpg", false}}); // Adobe RGB by its EXIF
    }
    void recompressedCopies()
    {
        PLEXA_NEEDS_PHOTOS();
        const auto [name, isPossible] = currentRow<Row<bool>>();
        const QString photo = realPhoto(u"jpeg/"_qs + name);
        WPresetValues mark = WPresetValues::forNewPreset(m_services.fonts);
        mark.textTokens = {u"x"_qs};
        mark.width = 12;
        mark.widthUnit = u"% of width"_qs;
        mark.background = true;
        mark.backgroundFullWidth = false;
        mark.backgroundColor = Qt::red;
        mark.backgroundOpacity = 100;
        for (const double quality : {0.8, 1.0}) {
            CopyOrder order;
            order.path = order.readPath = photo;
            order.targetType = u"image/jpeg"_qs;
            order.quality = quality;
            order.marks = {{mark}};
            order.target = {m_folder.path("recompressed.jpg"), AtomicFile::IfExists::Replace};
            const Result<CopyReport> copy = writeCopy(order, m_services.all);
            order.target.path = m_folder.path("rendered.jpg");
            order.rules.rendersAll = true;
            const Result<CopyReport> rendered = writeCopy(order, m_services.all);
            QVERIFY(copy && rendered);
            QVERIFY(!rendered->isRecompressed);
            QCOMPARE(copy->isRecompressed, isPossible);
            QCOMPARE(copy->size, rendered->size);
            QCOMPARE(copy->notices, rendered->notices);
            QCOMPARE(copy->dropped, rendered->dropped);
            if (isPossible)
                compareCopies(photo, m_folder.path("recompressed.jpg"), m_folder.path("rendered.jpg"),
                              *rendered->rects.front(), quality > 0.9);
        }
    }

    void writtenCopiesAreRecognized()
    {
        const QString photo = m_folder.path("plain.png");
        QVERIFY(smoothPicture({60, 40}).save(photo));
        QVERIFY(!isWrittenCopy(photo));
        for (const char *format : {"JPEG", "PNG", "TIFF", "GIF", "BMP"}) {
            SavingPresetValues preset;
            preset.imageFormat = QLatin1String(format);
            const QString copy = m_folder.path(u"copy of "_qs + QLatin1String(format));
            Result<CopyOrder> order = copyOrderFor(photo, {copy}, preset);
            QVERIFY(order);
            order->readPath = photo;
            QVERIFY(writeCopy(*order, m_services.all));
            QVERIFY2(isWrittenCopy(copy), format);
        }
    }
};

QTEST_MAIN(CopyWriterTest)
#include "copywriter_test.moc"
