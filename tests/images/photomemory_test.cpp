// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagedestination.h"
#include "images/copywriter.h"
#include "images/uprighting.h"
#include "support/datarows.h"
#include "support/testenvironment.h"
#include "support/testservices.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <atomic>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// Small beside what is measured: fonts, code, the blocks that the allocator keeps.
constexpr qint64 kNoise = 16'000'000;

const QString kHeic = u"image/heic"_qs;

/// Runs the command line's program on one photo.
/// @param type  of the copy: HEIC, or else as the photo
/// @return the most memory it had (bytes); 0 when it failed
qint64 peakOfSaving(const QString &photo, const QString &folder, const QString &type)
{
    const QString format = type == kHeic ? u"HEIC"_qs : u"Original"_qs;
    QList<QByteArray> command;
    for (const QString &word :
         words("%1 save --quiet --text X --save-set imageFormat=%2 --save-set jpegQuality=95 --output %3 %4",
               builtProgram(u"plexa-cli"_qs), format, folder, photo))
        command.append(word.toLocal8Bit());
    std::vector<char *> arguments;
    for (const QByteArray &word : command)
        arguments.push_back(const_cast<char *>(word.constData()));
    arguments.push_back(nullptr);
    pid_t child = 0;
    if (posix_spawn(&child, arguments[0], nullptr, nullptr, arguments.data(), environ) != 0)
        return 0;
    int status = 0;
    rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return 0;
    return qint64(usage.ru_maxrss) * 1024;
}

/// Has ImageMagick write a picture. @return empty when it cannot
QString made(const TestFolder &folder, const QString &name, QSize size, const QStringList &options)
{
    QStringList arguments = {u"-size"_qs, u"%1x%2"_qs.arg(size.width()).arg(size.height()),
                             u"gradient:red-blue"_qs, u"-depth"_qs, u"8"_qs};
    const QString path = folder.path(u"%1 %2"_qs.arg(size.width()).arg(name));
    arguments << options << path;
    outputOf(magickConvert(), arguments);
    return QFileInfo::exists(path) ? path : QString();
}

Uprighting uprightingOf(const ImageSource &source)
{
    return plexa::uprightingOf(source.info().rows.size, ImageMetadata(source.properties()), 1, {});
}

/// The type of a copy in the photo's own format, or JPEG where that cannot be written.
QString usualType(const ImageSource &source)
{
    return source.format().canWrite ? source.type() : u"image/jpeg"_qs;
}

/// What a copy of that type is said to take.
qint64 toldBytes(const ImageSource &source, const QString &type)
{
    const Uprighting uprighting = uprightingOf(source);
    const CopyRequest request{type, {{u"kCGImageDestinationLossyCompressionQuality"_qs, 0.95}}, &source};
    const qint64 encoding = destinationBytes({uprighting.size(), source.info().rows.hasAlpha}, request);
    if (uprighting.isIdentity())
        return source.rowsBytes() + encoding;
    return std::max(uprightBytes(source, uprighting), pictureBytes(uprighting.size()) + encoding);
}

CopyOrder orderFor(const QString &photo, const QString &target)
{
    CopyOrder order;
    order.path = order.readPath = photo;
    order.target.path = target;
    order.targetType = u"image/jpeg"_qs;
    order.quality = 0.95;
    return order;
}

struct Kind {
    Text name;
    Text file;
    const char *options; ///< of ImageMagick
    bool isHeic = false; ///< the copy, else as the photo
};

} // namespace

class PhotoMemoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        if (magickConvert().isEmpty())
            QSKIP("ImageMagick is not installed");
        m_folder = std::make_unique<TestFolder>();
    }

    void toldIsTaken_data()
    {
        addRows<Kind>({
            {"baseline JPEG", "a.jpg", ""},
            {"progressive JPEG", "b.jpg", "-interlace Plane -quality 80"},
            {"progressive JPEG, full chroma", "c.jpg", "-interlace Plane -sampling-factor 1x1"},
            {"interlaced PNG", "e.png", "-interlace PNG"},
            {"PPM", "f.ppm", ""},
            {"PGM", "g.pgm", ""},
            {"BMP", "h.bmp", "-type TrueColor"},
            {"TIFF", "j.tif", ""},
            {"deep TIFF", "k.tif", "-depth 16"},
            {"TIFF of whole planes", "m.tif",
             "-type TrueColor -depth 16 -interlace Plane -compress Zip -define tiff:rows-per-strip=3001"},
            {"TIFF of one packed strip", "p.tif",
             "+noise Random -type TrueColor -compress LZW -define tiff:rows-per-strip=3001"},
            {"HEIC", "q.jpg", "-sampling-factor 2x2", true},
            {"HEIC, full chroma", "r.jpg", "-sampling-factor 1x1", true},
            {"GIF", "l.gif", ""},
            {"lossless WebP", "n.webp", "-define webp:lossless=true,webp:method=0"},
        });
    }

    void toldIsTaken()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("a sanitizer takes more memory than the photos");
#endif
        const auto [row, name, options, isHeic] = currentRow<Kind>();
        const QString large = made(*m_folder, name, {5003, 3001}, words(options));
        const QString small = made(*m_folder, name, {53, 31}, words(options));
        if (large.isEmpty() || small.isEmpty())
            QSKIP("ImageMagick does not write this format");
        const auto source = ImageSource::open(large);
        if (!source)
            QFAIL(qPrintable(source.error().text));
        const QString type = isHeic ? kHeic : usualType(*source);
        if (!imageFormatOfType(type)->canWrite)
            QSKIP("no encoder of HEVC is installed");
        const qint64 told = toldBytes(*source, type);
        const qint64 usual = peakOfSaving(small, m_folder->path("small"), type);
        const qint64 peak = peakOfSaving(large, m_folder->path("large"), type);
        QVERIFY(usual > 0 && peak > 0); // where strips stream, either may be the larger by a few pages
        const qint64 taken = peak - usual;
        const QString both = u"told %1, taken %2"_qs.arg(told).arg(taken);
        qInfo().noquote() << both;
        QVERIFY2(double(told) >= 0.7 * double(taken - kNoise), qPrintable(both));
        QVERIFY2(double(told) <= 1.6 * double(taken + kNoise), qPrintable(both));
    }

    void largePhotosTakeTurns()
    {
        const QString photo = made(*m_folder, u"photo.jpg"_qs, {1600, 1200}, {u"-interlace"_qs, u"Plane"_qs});
        const auto source = ImageSource::open(photo);
        QVERIFY(source);
        const qint64 told = toldBytes(*source, usualType(*source));
        QVERIFY(told > 2 * 1600 * 1200 * 2);
        TestPhotoServices services(0, told + told / 2);
        // Where one holds its bytes from the first strip to the last, the other cannot have begun.
        std::atomic<int> strips = 0;
        std::atomic<bool> isHeld = true;
        std::atomic<int> written = 0;
        const auto copy = [&](const QString &target) {
            CopyOrder order = orderFor(photo, target);
            order.isCancelled = [&] {
                ++strips;
                isHeld = isHeld && services.budget.total() - services.budget.available() == told;
                return false;
            };
            if (writeCopy(order, services.all))
                ++written;
        };
        std::thread other([&] { copy(m_folder->path("one.jpg")); });
        copy(m_folder->path("two.jpg"));
        other.join();
        QCOMPARE(written.load(), 2);
        QVERIFY(strips > 4);
        QVERIFY(isHeld);
        QCOMPARE(services.budget.available(), services.budget.total());
    }

    void tooLargeForTheBudget()
    {
        const QString photo = made(*m_folder, u"photo.png"_qs, {2000, 1500}, {u"-interlace"_qs, u"PNG"_qs});
        TestPhotoServices services(0, 2000 * 1500 * 4 - 1);
        const QString target = m_folder->path("copy.jpg");
        const auto copied = writeCopy(orderFor(photo, target), services.all);
        QVERIFY(!copied);
        QVERIFY2(copied.error().text.contains(QLatin1String("2000 x 1500")) &&
                     copied.error().text.contains(QLatin1String("12 MB")),
                 qPrintable(copied.error().text));
        QVERIFY(!QFileInfo::exists(target));

        const auto source = ImageSource::open(photo);
        QVERIFY(source);
        QVERIFY(!readUprightWithin(services.budget, *source, uprightingOf(*source)));
        ByteBudget enough(2000 * 1500 * 8);
        QVERIFY(readUprightWithin(enough, *source, uprightingOf(*source)));
        QCOMPARE(enough.available(), enough.total());
    }

    void streamedPhotosNeedNoBudget()
    {
        const QString photo = made(*m_folder, u"photo.jpg"_qs, {2000, 1500}, {});
        TestPhotoServices services(0, 0);
        QVERIFY(writeCopy(orderFor(photo, m_folder->path("copy.jpg")), services.all));
    }

    void fewAddressesFailPhotos_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("from HEIC") << u"photo.heic"_qs << u"PNG"_qs;
        QTest::newRow("to HEIC") << u"photo.jpg"_qs << u"HEIC"_qs;
        QTest::newRow("from JPEG 2000") << u"photo.jp2"_qs << u"PNG"_qs;
    }

    /// Under a limit of addresses allocations fail, which some libraries do not survive: the program has to
    /// say no before it asks them.
    void fewAddressesFailPhotos()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("a sanitizer takes more addresses than any limit leaves");
#endif
        const QString limiter = QStandardPaths::findExecutable(u"prlimit"_qs);
        if (limiter.isEmpty())
            QSKIP("prlimit is not installed");
        QFETCH(QString, from);
        QFETCH(QString, to);
        if (!imageFormatOfType(kHeic)->canWrite)
            QSKIP("no encoder of HEVC is installed");
        const QString photo = made(*m_folder, from, {2000, 1500}, {});
        if (photo.isEmpty())
            QSKIP("ImageMagick does not write this format");
        int written = 0;
        for (const int megabytes : {90, 120, 125, 130, 140, 160, 180, 200, 220, 250, 300, 350, 1000}) {
            QProcess process;
            process.start(limiter,
                          words("--as=%1 %2 save --text X --save-set imageFormat=%3 --jobs 2 --quiet "
                                "--output %4 %5",
                                QString::number(megabytes * 1'000'000LL), builtProgram(u"plexa-cli"_qs), to,
                                m_folder->path("copies"), photo));
            const bool hasEnded = process.waitForFinished(60'000);
            const QByteArray said = QByteArray::number(megabytes) + " MB: " + process.readAllStandardError();
            QVERIFY2(hasEnded && process.exitStatus() == QProcess::NormalExit, said);
            if (process.exitCode() == 0)
                ++written;
            else if (process.exitCode() == 127) // not even its libraries could be loaded
                QVERIFY2(megabytes < 120, said);
            else
                QVERIFY2(process.exitCode() == 1 && said.contains("memory"), said);
        }
        QVERIFY(written > 0 && written < 12);
    }

private:
    std::unique_ptr<TestFolder> m_folder;
};

QTEST_GUILESS_MAIN(PhotoMemoryTest)
#include "photomemory_test.moc"
