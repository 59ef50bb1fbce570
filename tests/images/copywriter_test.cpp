// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/copywriter.h"
#include "images/uprighting.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/photofolder.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/testservices.h"

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

QTEST_GUILESS_MAIN(CopyWriterTest)
#include "copywriter_test.moc"
