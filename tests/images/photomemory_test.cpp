// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagedestination.h"
#include "images/copywriter.h"
#include "images/uprighting.h"
#include "support/testenvironment.h"

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
    const char *format = type == kHeic ? "imageFormat=HEIC" : "imageFormat=Original";
    const QList<QByteArray> words = {builtProgram(u"plexa-cli"_qs).toLocal8Bit(),
                                     "save",
                                     "--quiet",
                                     "--text",
                                     "X",
                                     "--save-set",
                                     format,
                                     "--save-set",
                                     "jpegQuality=95",
                                     "--output",
                                     folder.toLocal8Bit(),
                                     photo.toLocal8Bit()};
    std::vector<char *> arguments;
    for (const QByteArray &word : words)
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

struct Services {
    explicit Services(qint64 budgetBytes)
        : budget(budgetBytes)
    {
    }

    FontCatalog fonts;
    LocaleFormat locale{u"en_US"_qs};
    PixelCache cache{0};
    ByteBudget budget;
    PhotoServices all{fonts, locale, cache, budget, {}};
};

CopyOrder orderFor(const QString &photo, const QString &target)
{
    CopyOrder order;
    order.path = order.readPath = photo;
    order.target.path = target;
    order.targetType = u"image/jpeg"_qs;
    order.quality = 0.95;
    return order;
}

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
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("options");
        // A name with ">heic" is that of the photo, of which the copy is a HEIC.
        const QStringList progressive = {u"-interlace"_qs, u"Plane"_qs};
        const QStringList half = {u"-sampling-factor"_qs, u"2x2"_qs};
        const QStringList full = {u"-sampling-factor"_qs, u"1x1"_qs};
        QTest::newRow("baseline JPEG") << u"a.jpg"_qs << QStringList();
        QTest::newRow("progressive JPEG")
            << u"b.jpg"_qs << progressive + QStringList{u"-quality"_qs, u"80"_qs};
        QTest::newRow("progressive JPEG, full chroma") << u"c.jpg"_qs << progressive + full;
        QTest::newRow("interlaced PNG") << u"e.png"_qs << QStringList{u"-interlace"_qs, u"PNG"_qs};
        QTest::newRow("PPM") << u"f.ppm"_qs << QStringList();
        QTest::newRow("PGM") << u"g.pgm"_qs << QStringList();
        QTest::newRow("BMP") << u"h.bmp"_qs << QStringList{u"-type"_qs, u"TrueColor"_qs};
        QTest::newRow("TIFF") << u"j.tif"_qs << QStringList();
        QTest::newRow("deep TIFF") << u"k.tif"_qs << QStringList{u"-depth"_qs, u"16"_qs};
        QTest::newRow("TIFF of whole planes")
            << u"m.tif"_qs
            << QStringLiteral("-type TrueColor -depth 16 -interlace Plane -compress Zip "
                              "-define tiff:rows-per-strip=3001")
                   .split(u' ');
        QTest::newRow("TIFF of one packed strip")
            << u"p.tif"_qs
            << u"+noise Random -type TrueColor -compress LZW -define tiff:rows-per-strip=3001"_qs.split(u' ');
        QTest::newRow("HEIC") << u"q.jpg>heic"_qs << half;
        QTest::newRow("HEIC, full chroma") << u"r.jpg>heic"_qs << full;
        QTest::newRow("GIF") << u"l.gif"_qs << QStringList();
        QTest::newRow("lossless WebP")
            << u"n.webp"_qs << QStringList{u"-define"_qs, u"webp:lossless=true,webp:method=0"_qs};
    }

    void toldIsTaken()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("a sanitizer takes more memory than the photos");
#endif
        QFETCH(QString, name);
        QFETCH(QStringList, options);
        const bool isHeic = name.endsWith(QLatin1String(">heic"));
        name = name.section(u'>', 0, 0);
        const QString large = made(*m_folder, name, {5003, 3001}, options);
        const QString small = made(*m_folder, name, {53, 31}, options);
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
        Services services(told + told / 2);
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
        Services services(2000 * 1500 * 4 - 1);
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
        Services services(0);
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
            process.start(limiter, {u"--as=%1"_qs.arg(megabytes * 1'000'000LL), builtProgram(u"plexa-cli"_qs),
                                    u"save"_qs, u"--text"_qs, u"X"_qs, u"--save-set"_qs,
                                    u"imageFormat=%1"_qs.arg(to), u"--jobs"_qs, u"2"_qs, u"--quiet"_qs,
                                    u"--output"_qs, m_folder->path("copies"), photo});
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
