// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagedestination.h"
#include "images/copywriter.h"
#include "images/uprighting.h"
#include "support/datarows.h"
#include "support/testenvironment.h"
#include "support/testservices.h"

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
constexpr qint64 kNoise = 10'000'000;

const QString kHeic = u"image/heic"_qs;

/// Runs the command line's program on one photo.
/// @param type  of the copy: HEIC, or else as the photo
/// @return the most memory it had (bytes); 0 when it failed
qint64 peakOfSaving(const QString &photo, const QString &folder, const QString &type, bool isRendered)
{
    const char *format = type == kHeic ? "imageFormat=HEIC" : "imageFormat=Original";
    const bool hasQuality = type == kHeic || photo.endsWith(u".jpg"); // for others it would be refused
    const QStringList command = words("%1 save --quiet --text X --save-set %2 --output %3",
                                      builtProgram(u"plexa-cli"_qs), format, folder) +
                                (hasQuality ? words("--save-set jpegQuality=95") : QStringList()) +
                                (isRendered ? words("--render") : QStringList()) + QStringList(photo);
    QByteArrayList bytes;
    for (const QString &word : command)
        bytes.append(word.toLocal8Bit());
    std::vector<char *> arguments;
    for (QByteArray &word : bytes)
        arguments.push_back(word.data());
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
    const QString path = folder.path(u"%1 %2"_qs.arg(size.width()).arg(name));
    QStringList arguments =
        words("-size %1 gradient:red-blue -depth 8", u"%1x%2"_qs.arg(size.width()).arg(size.height()));
    outputOf(magickConvert(), arguments << options << path);
    return QFileInfo::exists(path) ? path : QString();
}

Uprighting uprightingOf(const ImageSource &source)
{
    return plexa::uprightingOf(source.info().rows.size, ImageMetadata(*source.properties()), 1, {});
}

/// The type of a copy in the photo's own format, or JPEG where that cannot be written.
QString usualType(const ImageSource &source)
{
    return source.format().canWrite ? source.type() : u"image/jpeg"_qs;
}

CopyRequest requestFor(const ImageSource &source, const QString &type)
{
    return {type, {{u"kCGImageDestinationLossyCompressionQuality"_qs, 0.95}}, &source};
}

/// What a rendered copy of that type is said to take.
qint64 toldBytes(const ImageSource &source, const QString &type)
{
    const Uprighting uprighting = uprightingOf(source);
    const qint64 encoding =
        destinationBytes({uprighting.size(), source.info().rows.hasAlpha}, requestFor(source, type));
    if (uprighting.isIdentity())
        return source.rowsBytes() + encoding;
    return std::max(uprightBytes(source, uprighting), pictureBytes(uprighting.size()) + encoding);
}

enum class Road { Rendered, Recompressed, Heic };

using Kind = Row<QString, QStringList, Road>; // file, options, road of the copy
using Conversion = Row<QString, Text>;        // from, to

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

private:
    std::unique_ptr<TestFolder> m_folder;

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
            {"baseline JPEG", u"a.jpg"_qs, {}, Road::Rendered},
            {"progressive JPEG, full chroma", u"c.jpg"_qs, words("-interlace Plane -sampling-factor 1x1"),
             Road::Rendered},
            {"progressive JPEG, recompressed", u"d.jpg"_qs, words("-interlace Plane -sampling-factor 1x1"),
             Road::Recompressed},
            {"interlaced PNG", u"e.png"_qs, words("-interlace PNG"), Road::Rendered},
            {"BMP", u"h.bmp"_qs, words("-type TrueColor"), Road::Rendered},
            {"deep TIFF", u"k.tif"_qs, words("-depth 16"), Road::Rendered},
            {"TIFF of whole planes", u"m.tif"_qs,
             words("-type TrueColor -depth 16 -interlace Plane -define tiff:rows-per-strip=2001"),
             Road::Rendered},
            {"HEIC", u"q.jpg"_qs, words("-sampling-factor 2x2"), Road::Heic},
            {"GIF", u"l.gif"_qs, {}, Road::Rendered},
            {"lossless WebP", u"n.webp"_qs, words("-define webp:lossless=true,webp:method=0"),
             Road::Rendered},
        });
    }
    void toldIsTaken()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("a sanitizer takes more memory than the photos");
#endif
        const auto [row, file, options, road] = currentRow<Kind>();
        const QString large = made(*m_folder, file, {3335, 2001}, options);
        const QString small = made(*m_folder, file, {53, 31}, options);
        if (large.isEmpty() || small.isEmpty())
            QSKIP("ImageMagick does not write this format");
        const auto source = ImageSource::open(large);
        if (!source)
            QFAIL(qPrintable(source.error().text));
        const QString type = road == Road::Heic ? kHeic : usualType(*source);
        if (!imageFormatOfType(type)->canWrite)
            QSKIP("no encoder of HEVC is installed");
        const bool isRendered = road != Road::Recompressed;
        const qint64 told =
            isRendered ? toldBytes(*source, type) : retouchBytes(requestFor(*source, type), 1);
        const qint64 usual = peakOfSaving(small, m_folder->path("small"), type, isRendered);
        const qint64 peak = peakOfSaving(large, m_folder->path("large"), type, isRendered);
        QVERIFY(usual > 0 && peak > 0); // where strips stream, either may be the larger by a few pages
        const qint64 taken = peak - usual;
        const QString both = u"told %1, taken %2"_qs.arg(told).arg(taken);
        qInfo().noquote() << both;
        QVERIFY2(double(told) >= 0.7 * double(taken - kNoise), qPrintable(both));
        QVERIFY2(double(told) <= 1.6 * double(taken + kNoise), qPrintable(both));
    }

    void largePhotosTakeTurns()
    {
        const QString photo = made(*m_folder, u"photo.jpg"_qs, {1600, 1200}, words("-interlace Plane"));
        const auto source = ImageSource::open(photo);
        QVERIFY(source);
        const qint64 told = retouchBytes(requestFor(*source, usualType(*source)), 1);
        QVERIFY(told > 1600 * 1200 * 2);
        TestPhotoServices services(0, told + told / 2);
        // Where one holds its bytes from the first strip to the last, the other cannot have begun.
        std::atomic<int> strips = 0;
        std::atomic<bool> isHeld = true;
        std::atomic<int> written = 0;
        const auto copy = [&](const QString &target) {
            CopyOrder order = orderFor(photo, target);
            order.isCanceled = [&] {
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
        const QString photo = made(*m_folder, u"photo.png"_qs, {2000, 1500}, words("-interlace PNG"));
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
        addRows<Conversion>({{"from HEIC", u"photo.heic"_qs, "PNG"},
                             {"to HEIC", u"photo.jpg"_qs, "HEIC"},
                             {"from JPEG 2000", u"photo.jp2"_qs, "PNG"}});
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
        const auto [row, from, to] = currentRow<Conversion>();
        if (!imageFormatOfType(kHeic)->canWrite)
            QSKIP("no encoder of HEVC is installed");
        const QString photo = made(*m_folder, from, {2000, 1500}, {});
        if (photo.isEmpty())
            QSKIP("ImageMagick does not write this format");
        int written = 0;
        for (const int megabytes : {90, 125, 140, 180, 220, 300, 1000}) {
            const ProgramRun run = runProgram(
                limiter,
                words("--as=%1 %2 save --text X --save-set imageFormat=%3 --jobs 2 --quiet --output %4 %5",
                      QString::number(megabytes * 1'000'000LL), builtProgram(u"plexa-cli"_qs), to,
                      m_folder->path("copies"), photo));
            const QByteArray said = QByteArray::number(megabytes) + " MB: " + run.err;
            QVERIFY2(run.status != -1, said);
            if (run.status == 0)
                ++written;
            else if (run.status == 127) // not even its libraries could be loaded
                QVERIFY2(megabytes < 120, said);
            else
                QVERIFY2(run.status == 1 && said.contains("memory"), said);
        }
        QVERIFY(written > 0 && written < 6);
    }
};

QTEST_GUILESS_MAIN(PhotoMemoryTest)
#include "photomemory_test.moc"
