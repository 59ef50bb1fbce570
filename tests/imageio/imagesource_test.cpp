// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/raw/dngassembly.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/filemetadata.h"
#include "imageio/imageformat.h"
#include "imageio/pictures.h"
#include "support/datarows.h"
#include "support/files.h"

#include <QMimeDatabase>
#include <QRegularExpression>

#include <atomic>
#include <thread>

using namespace plexa;
using namespace plexa::test;

/// Is every kind of picture read completely and in the right colors, or refused with a reason?
class ImageSourceTest : public QObject
{
    Q_OBJECT

    struct Kind {
        Text name;             ///< options of ImageMagick, kind and suffix; %1 to %3 are the profiles
        bool hasAlpha = false; ///< of the origin
        double limit = 2;      ///< of the mean difference
    };

    struct Path {
        Text name;
    };

    struct Limit {
        const char *file;
        ReadLimits limits;
        bool streams = false; ///< rows may be read, but not the whole picture
    };

    struct Sample {
        Text name;
        QString suffix;
        QByteArray file;
    };

    TestFolder m_folder;
    QString m_opaque;        ///< a picture with detail everywhere
    QString m_translucent;   ///< the same with alpha
    QStringList m_profiles;  ///< files: sRGB not made by this program, Adobe RGB, gray, CMYK
    QList<Sample> m_samples; ///< a small file of every kind that is decoded in its own way

    QString put(const Sample &sample, const QByteArray &file)
    {
        const QString path = m_folder.path(u"sample."_qs + sample.suffix);
        return writeFile(path, file) ? path : QString();
    }

    /// Converts the picture with ImageMagick, or with another program that `command` begins with.
    QByteArray made(const char *suffix, const QByteArray &command, const QString &origin)
    {
        const QString path = m_folder.path(u"made."_qs + QLatin1String(suffix));
        QFile::remove(path);
        if (command.contains("%1"))
            outputOf(command.constData(), origin, path);
        else
            outputOf(magickConvert(), QStringList{origin} + words(command.constData()) + QStringList{path});
        return contentsOf(path);
    }

    /// Each pixel the mean of a square, cut off at the right and lower edges.
    static QImage blockMeans(const QImage &whole, int side)
    {
        QImage means((whole.width() + side - 1) / side, (whole.height() + side - 1) / side, whole.format());
        for (int i = 0; i < means.width() * means.height(); ++i) {
            const int x = i % means.width(), y = i / means.width();
            const QRect block = QRect(x * side, y * side, side, side) & whole.rect();
            uchar *mean = means.scanLine(y) + 4 * x;
            for (int channel = 0; channel < 4; ++channel) {
                int sum = 0;
                for (int row = block.top(); row <= block.bottom(); ++row) {
                    for (int column = block.left(); column <= block.right(); ++column)
                        sum += whole.constScanLine(row)[4 * column + channel];
                }
                mean[channel] = uchar(sum / (block.width() * block.height()));
            }
        }
        return means;
    }

    void addSamples()
    {
        for (const Sample &sample : m_samples)
            addRow(sample);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_opaque = m_folder.path("opaque.png");
        m_translucent = m_folder.path("translucent.png");
        QVERIFY(detailedPicture({97, 61}).save(m_opaque));
        QVERIFY(detailedPicture({97, 61}, QImage::Format_ARGB32).save(m_translucent));
        QVERIFY(detailedPicture({97, 61}).save(m_folder.path("opaque.bmp")));
        const char *photos[] = {"jpeg/htc-desire.jpg", "jpeg/adobe-rgb-uss-reagan.jpg",
                                "jpeg/gray-concert.jpg", "jpeg/cmyk-derived.jpg"};
        for (const char *name : photos) {
            m_profiles.append(m_folder.path(QString::number(m_profiles.size()) + u".icc"_qs));
            if (!photosFolder().isEmpty())
                QVERIFY(
                    writeFile(m_profiles.constLast(), ImageSource::open(realPhoto(name))->info().iccProfile));
        }
        const struct {
            const char *name, *suffix, *command;
        } kinds[] = {
            {"JPEG", "jpg", "-sampling-factor 1x1"},
            {"JPEG, half chroma", "jpg", "-sampling-factor 2x2"},
            {"JPEG, progressive", "jpg", "-interlace Plane"},
            {"JPEG, gray", "jpg", "-colorspace Gray"},
            {"JPEG, CMYK", "jpg", "-colorspace CMYK"},
            {"PNG", "png", ""},
            {"PNG, 16 bit", "png", "-depth 16"},
            {"PNG, interlaced", "png", "-interlace Plane"},
            {"TIFF", "tif", "-compress None"},
            {"TIFF, LZW", "tif", "-compress LZW"},
            {"TIFF, JPEG", "tif", "-compress JPEG"},
            {"TIFF, Group 4", "tif", "-monochrome -compress Group4"},
            {"TIFF, tiles", "tif", "-compress Zip -define tiff:tile-geometry=32x32"},
            {"GIF", "gif", "-interlace None"},
            {"GIF, interlaced", "gif", "-interlace Line"},
            {"BMP", "bmp", "-type TrueColor"},
            {"BMP, 1 bit", "bmp", "-monochrome"},
            {"BMP, run lengths", "bmp", "-colors 200 -type Palette -compress RLE"},
            {"TGA", "tga", "-type TrueColor -compress None"},
            {"TGA, run lengths", "tga", "-type TrueColor -compress RLE"},
            {"WebP", "webp", "-quality 80"},
            {"WebP, lossless", "webp", "-define webp:lossless=true"},
            {"ICO", "ico", ""},
            {"ICO with PNG", "ico", "-resize 256x256!"},
            {"PPM", "ppm", ""},
            {"PPM, text", "ppm", "-compress None"},
            {"PGM, 16 bit, text", "pgm", "-depth 16 -compress None"},
            {"PBM", "pbm", "-monochrome"},
        };
        for (const auto &[name, suffix, command] : kinds) {
            QByteArray file = made(suffix, command, m_opaque);
            if (file.endsWith('\n') && QByteArrayView(suffix).startsWith('p'))
                file.chop(1); // which no reader needs
            m_samples.append({name, QLatin1String(suffix), file});
        }
        QVERIFY(smoothPicture({151, 97}).save(m_folder.path("smooth.ppm")));
        m_samples.append({"JPEG, arithmetic", u"jpg"_qs,
                          made("jpg", "cjpeg -arithmetic -outfile %2 %1", m_folder.path("opaque.bmp"))});
        for (const char *options : {"", "-t 40,33", "-n 1", "-d 13,7"})
            m_samples.append({QLatin1String("JPEG 2000 ") + QLatin1String(options), u"jp2"_qs,
                              made("jp2", QByteArray("opj_compress -i %1 -o %2 ") + options,
                                   m_folder.path("smooth.ppm"))});
        m_samples.append({"JPEG 2000, lossy", u"j2k"_qs,
                          made("j2k", "opj_compress -i %1 -o %2 -r 12 -I", m_folder.path("smooth.ppm"))});
        m_samples.append({"ICNS", u"icns"_qs, encoded(detailedPicture({128, 128}), "icns")});
        m_samples.append({"raw", u"dng"_qs, assembledDng({{96, 64}, 16, 0, false, 1, {}})});
        m_samples.append({"raw, preview", u"dng"_qs, assembledDng({{199, 133}, 8, 8, true, 1, {}})});
        const QByteArray jpeg = encoded(detailedPicture({80, 60}), "JPEG");
        m_samples.append({"raw, JPEG", u"dng"_qs, assembledDng({{80, 60}, 8, 1, true, 1, jpeg})});
        for (const QFileInfo &file :
             QDir(sourceFolder() + u"/tests/fuzz/corpus/fuzz_heif"_qs).entryInfoList(QDir::Files))
            m_samples.append({file.fileName(), file.suffix(), contentsOf(file.filePath())});
        m_samples.removeIf([](const Sample &sample) { return sample.file.isEmpty(); }); // no program makes it
        QVERIFY(m_samples.size() > 10);
    }

    void threadsDoNotDisturbEachOther()
    {
        QStringList paths;
        QList<QImage> alone;
        for (const Sample &sample : std::as_const(m_samples)) {
            paths.append(m_folder.path(QString::number(paths.size()) + u'.' + sample.suffix));
            QVERIFY(writeFile(paths.constLast(), sample.file));
            alone.append(decoded(paths.constLast()));
        }
        const QString photo = photosFolder().isEmpty() ? QString() : realPhoto("jpeg/canon-eos-450d.jpg");
        const QVariantMap properties = metadataOf(photo)->properties();
        std::atomic<int> wrong = 0;
        const auto work = [&] {
            for (qsizetype i = 0; i < paths.size(); ++i)
                wrong +=
                    decoded(paths[i]) == alone[i] && metadataOf(photo)->properties() == properties ? 0 : 1;
        };
        std::thread first(work);
        std::thread second(work);
        first.join();
        second.join();
        QCOMPARE(wrong.load(), 0);
    }

    void cutFileIsWholeOrFails_data() { addSamples(); }
    void cutFileIsWholeOrFails()
    {
        const auto sample = currentRow<Sample>();
        const QImage whole = decoded(put(sample, sample.file));
        QVERIFY(!whole.isNull());
        constexpr int kCuts = 20;
        QList<qsizetype> lengths;
        for (qsizetype i = 1; i < kCuts; ++i)
            lengths.append(sample.file.size() * i / kCuts);
        for (qsizetype left = 1; left < 10; ++left)
            lengths.append(sample.file.size() - left);
        int failures = 0;
        for (const qsizetype length : lengths) {
            QString error;
            const QImage image = decoded(put(sample, sample.file.first(length)), &error);
            failures += image.isNull() ? 1 : 0;
            QVERIFY2(image.isNull() || image == whole, qPrintable(QString::number(length)));
            QCOMPARE(image.isNull(), !error.isEmpty());
        }
        QVERIFY2(failures > kCuts * 3 / 4, qPrintable(QString::number(failures)));
    }

    /// Whatever follows the data that are there: an end marker, or the zeros of a download that broke off.
    void jpegWithoutAllItsScans()
    {
        PLEXA_NEEDS_MAGICK();
        const QByteArray whole = made("jpg", "-interlace Plane -sampling-factor 1x1", m_opaque);
        QList<qsizetype> starts; // of scans with their tables
        for (qsizetype at = 0, last = 0; (at = whole.indexOf("\xff\xda", last + 1)) >= 0; last = at) {
            const qsizetype tables = whole.indexOf("\xff\xc4", last);
            starts.append(tables >= 0 && tables < at ? tables : at);
        }
        QCOMPARE(starts.size(), 10); // first all coefficients without their last bit, then that of each
        const auto without = [&](int first, int count) {
            const qsizetype end = first + count < 10 ? starts[first + count] : whole.size() - 2;
            return whole.first(starts[first]) + whole.sliced(end);
        };
        const QByteArray zeros = QByteArray(whole.size() / 2, '\0');
        const QByteArray baseline = encoded(smoothPicture({320, 200}), "JPEG");
        const QString truncated = PictureFailures::truncated(), damaged = PictureFailures::damaged();
        for (const auto &[file, error, notices] :
             {std::tuple(whole, QString(), false),
              {without(9, 1), {}, true},
              {without(7, 3), {}, true},
              {without(5, 5), truncated, false},
              {without(1, 9), truncated, false},
              {without(0, 1), damaged, false},
              {without(5, 1), damaged, false},
              {whole.first(starts[9] + 40) + zeros, truncated, false},
              {baseline.first(baseline.size() * 3 / 4) + zeros, truncated, false}}) {
            const auto source = ImageSource::open(put({{}, u"jpg"_qs, {}}, file));
            QVERIFY2(source, source ? "" : qPrintable(source.error().text));
            for (const int side : {0, 12}) {
                const auto image = source->createImage(side);
                QCOMPARE(image ? QString() : image.error().text, error);
            }
            const auto reader = source->openRows();
            QImage rows(source->info().rows.size, QImage::Format_RGB32);
            QCOMPARE((*reader)->readRows(rows, rows.height()).has_value(), error.isEmpty());
            QCOMPARE(error.isEmpty() && !(*reader)->notice().isEmpty(), notices);
        }
    }

    void reducedPictureHasTheAnnouncedSize_data()
    {
        addSamples();
        for (const char *name :
             {"jpeg/apple-iphone-5.jpg", "raw/canon-kiss-x4-colorchart.dng", "raw/kodak-dc50.kdc"})
            if (!photosFolder().isEmpty())
                addRow(Sample{name, QFileInfo(QLatin1String(name)).suffix(), contentsOf(realPhoto(name))});
    }
    void reducedPictureHasTheAnnouncedSize()
    {
        const auto sample = currentRow<Sample>();
        const auto source = ImageSource::open(put(sample, sample.file));
        QVERIFY(source);
        const auto whole = source->createImage();
        QVERIFY(whole);
        const int longer = qMax(whole->width(), whole->height());
        for (const int factor : {1, 2, 4, 8}) {
            const int side = longer / factor;
            const auto reduced = source->createImage(side);
            QVERIFY(reduced);
            QCOMPARE(reduced->size(),
                     QSize((whole->width() + factor - 1) / factor, (whole->height() + factor - 1) / factor));
            QCOMPARE(source->imageSize(side), reduced->size());
            const double difference = meanDifference(*reduced, blockMeans(*whole, factor));
            QVERIFY2(difference < 9, qPrintable(QString::number(difference)));
        }
        QCOMPARE(source->createImage(100'000)->size(), whole->size());
    }

    void kindsAreReadAsByImageMagick_data()
    {
        for (const char *options :
             {"-define bmp:subtype=RGB565 bmp:bmp", "-define bmp:subtype=RGB555 bmp:bmp",
              "-monochrome bmp3:bmp", "-colors 16 -type Palette bmp3:bmp",
              "-colors 200 -type Palette -compress RLE bmp3:bmp", "-colors 200 -type Palette bmp2:bmp",
              "-define webp:lossless=true webp:webp", "-quality 90 -profile %1 webp:webp", "ico:ico",
              "-monochrome ico:ico", "-colors 16 -type Palette ico:ico", "ppm:ppm",
              "-depth 16 -compress None pgm:pgm", "-monochrome -compress None pbm:pbm",
              "-type TrueColor -compress RLE tga:tga", "-colors 100 -type Palette -compress RLE tga:tga",
              "-colorspace Gray -compress RLE tga:tga"})
            addRow(Kind{options});
        for (const char *options :
             {"-define webp:lossless=true webp:webp", "-profile %1 -define webp:lossless=true webp:webp",
              "ico:ico", "-resize 256x256! ico:ico", "-type TrueColorAlpha -compress RLE tga:tga"})
            addRow(Kind{QLatin1String("-channel RGBA ") + QLatin1String(options), true});
        for (const char *options :
             {"-interlace Line gif:gif", "-fuzz 30% -transparent green -colors 17 gif:gif"})
            addRow(Kind{options, false, 0});
        for (const char *options :
             {"-interlace Plane -define png:color-type=6", "-depth 16 -profile %1",
              "-colorspace Gray -depth 8 -define png:color-type=4",
              "-alpha off -colorspace Gray -define png:color-type=0 -define png:bit-depth=2 -depth 2",
              "-alpha off -transparent black -define png:color-type=2",
              "-alpha off -colors 9 -transparent black -define png:color-type=3",
              "-alpha off -colorspace Gray -transparent black -define png:color-type=0",
              "-alpha off -depth 16 -define png:color-type=2",
              "-alpha off -colorspace Gray -depth 16 -define png:color-type=0", "-profile %1",
              "-alpha off -colorspace Gray -profile %2",
              "-colorspace Gray -depth 16 -define png:color-type=4 -profile %2"})
            addRow(Kind{QLatin1String(options) + QLatin1String(" png:png"), true, 1});
        const QByteArray numbers = " -define quantum:format=";
        for (const QByteArray &options : std::initializer_list<QByteArray>{
                 "-alpha off -depth 16 -compress Zip -endian MSB",
                 "-alpha off -depth 32" + numbers + "floating-point",
                 "-type TrueColor -depth 12 -compress LZW",
                 "-type TrueColor -depth 12 -interlace Plane -endian MSB",
                 "-type TrueColor -depth 32 -endian MSB",
                 "-type TrueColor -depth 16" + numbers + "signed",
                 "-type TrueColorAlpha -depth 16 -endian MSB" + numbers + "floating-point",
                 "-type TrueColor -depth 64" + numbers + "floating-point",
                 "-type TrueColor -depth 32 -profile %1 -define tiff:tile-geometry=16x16" + numbers +
                     "floating-point",
                 "-alpha off -colorspace Gray -depth 12",
                 "-alpha off -colorspace Gray -depth 16 -profile %2" + numbers + "floating-point",
                 "-type TrueColor -depth 8 -colorspace Lab",
                 "-type TrueColor -depth 16 -colorspace Lab -interlace Plane",
                 "-alpha off -depth 8 -interlace Plane -compress RLE",
                 "-alpha off -depth 16 -interlace Plane -define tiff:rows-per-strip=7",
                 "-depth 16 -define tiff:tile-geometry=32x16 -endian MSB",
                 "-alpha off -depth 8 -compress JPEG -quality 98",
                 "-depth 8 -define tiff:alpha=unassociated",
                 "-depth 16 -define tiff:alpha=associated",
                 "-alpha off -monochrome -compress Group4",
                 "-alpha off -colorspace Gray -depth 8 -define quantum:polarity=min-is-white",
                 "-colorspace Gray -depth 16",
                 "-alpha off -colorspace Gray -depth 16 -profile %2",
                 "-alpha off -type Palette -colors 20",
                 "-alpha off -depth 16 -colorspace CMYK -profile %3 -compress LZW",
                 "-alpha off -depth 8 -colorspace CMYK",
                 "-alpha off -depth 8 -colorspace YCbCr -compress Zip -orient RightTop",
                 "-alpha off -depth 8 -colorspace YCbCr -compress Zip -define tiff:tile-geometry=32x16"})
            addRow(Kind{QString::fromLatin1(options + " TIFF:tif"), true});
        addRow(Kind{"-alpha off -depth 8 TIFF64:tif", true});
    }
    void kindsAreReadAsByImageMagick()
    {
        PLEXA_NEEDS_MAGICK();
        PLEXA_NEEDS_PHOTOS();
        const auto [name, hasAlpha, limit] = currentRow<Kind>();
        QStringList arguments = words(name.toUtf8().constData(), m_profiles[1], m_profiles[2], m_profiles[3]);
        const QStringList kind = arguments.takeLast().split(u':');
        const QString path = m_folder.path(u"kind."_qs + kind[1]);
        outputOf(magickConvert(), QStringList{hasAlpha ? m_translucent : m_opaque} + arguments +
                                      QStringList{kind[0] + u':' + path});
        QString error;
        const QImage ours = decoded(path, &error);
        QVERIFY2(!ours.isNull(), qPrintable(error));
        if (name.contains(u"-channel RGBA"))
            QVERIFY(ours.hasAlphaChannel());
        QImage theirs = decodedByMagick(path, ours.size(), m_profiles[0]);
        if (kind[1] == u"tga") // ImageMagick keeps the order of the file, from the bottom up
            theirs = theirs.mirrored();
        const double difference = meanDifference(ours, theirs);
        QVERIFY2(difference <= limit, qPrintable(QString::number(difference)));
        QFile::remove(path);
    }

    void colorsOfPhotosAreThoseOfImageMagick_data()
    {
        for (const QString &path : photoPaths()) {
            static const QRegularExpression folders(u"/(jpeg|png|gif|bmp|webp|tiff|logos)/"_qs);
            // ImageMagick ignores a gamma on its way to a profile.
            if (folders.match(path).hasMatch() && !path.endsWith(u"gray8-gamma.png"))
                addRow(Path{path});
        }
    }
    void colorsOfPhotosAreThoseOfImageMagick()
    {
        PLEXA_NEEDS_MAGICK();
        PLEXA_NEEDS_PHOTOS();
        const QString path = currentRow<Path>().name;
        QString error;
        const QImage ours = decoded(path, &error);
        QVERIFY2(!ours.isNull(), qPrintable(error));
        // Only the EXIF of this photo names Adobe RGB; here Adobe's own profile.
        const QString assumed = path.endsWith(u"olympus-e-p3.jpg") ? m_profiles[1] : QString();
        const double difference =
            meanDifference(ours, decodedByMagick(path, ours.size(), m_profiles[0], assumed));
        QVERIFY2(difference < 2, qPrintable(QString::number(difference)));
    }

    void factsOfTheContainer()
    {
        PLEXA_NEEDS_PHOTOS();
        const struct {
            const char *name, *key;
            double value;
        } facts[] = {{"jpeg/nokia-n70-nonsquare-density.jpg", "DPIWidth", 44},
                     {"jpeg/nokia-n70-nonsquare-density.jpg", "DPIHeight", 300},
                     {"png/nonsquare-pixels.png", "DPIWidth", 4},
                     {"png/nonsquare-pixels.png", "DPIHeight", 1},
                     {"png/alpha-paper.png", "HasAlpha", 1},
                     {"webp/htc-desire.webp", "HasAlpha", 0}};
        for (const auto &[name, key, value] : facts) {
            const auto source = ImageSource::open(realPhoto(name));
            QVERIFY(source);
            const QVariant found = source->properties()->value(QLatin1String(key));
            QVERIFY2(found.isValid() && std::abs(found.toDouble() - value) < 0.05, name);
        }
    }

    void brokenFilesGiveAReason()
    {
        PLEXA_NEEDS_PHOTOS();
        const QString truncated = PictureFailures::truncated();
        for (const auto &[name, reason] :
             {std::pair{"broken/zero-length.jpg", u"the file is empty"_qs},
              {"broken/text-named.jpg", PictureFailures::notAPicture()},
              {"broken/truncated.heic", truncated},
              {"broken/truncated.jpg", truncated},
              {"broken/truncated.png", truncated},
              {"broken/broken-data-stream.png", PictureFailures::damaged()},
              {"broken/3000000x2000000.bmp",
               u"the picture is too large: 3000000 x 2000000 pixels, at most 1000 megapixels can be read"_qs},
              {"broken/jpeg-named.nef", QString()},
              {"broken/png-named.jpg", QString()},
              {"raw/canon-metadata-only.cr2", PictureFailures::noRawData()},
              {"jpeg", u"it is a folder"_qs},
              {"absent.jpg", u"there is no file or folder of this name"_qs}}) {
            QString error;
            QCOMPARE(decoded(realPhoto(name), &error).isNull(), !reason.isEmpty());
            QCOMPARE(error, reason);
        }
    }

    void limitsHold()
    {
        PLEXA_NEEDS_PHOTOS();
        constexpr qint64 kMany = 1'000'000'000;
        for (const auto &[file, limits, streams] :
             {Limit{"broken/20000x14000-gray.jpg", {1'000'000, kMany}},
              {"broken/30000x30000-one-bit.png", {1'000'000, kMany}},
              {"bmp/rgb24.bmp", {100, kMany}},
              {"tiff/lzw-rgb8.tif", {100, kMany}},
              {"raw/kodak-dc50.kdc", {100, kMany}},
              {"raw/canon-kiss-x4-colorchart.dng", {kMany, 1'000'000}},
              {"broken/20000x14000-gray.jpg", {kMany, 1'000'000}, true},
              {"broken/30000x30000-one-bit.png", {kMany, 1'000'000}, true},
              {"jpeg/panasonic-dmc-lc70-progressive.jpg", {kMany, 5'000'000}},
              {"png/rgb8-interlaced.png", {kMany, 2'000}},
              {"tiff/lzw-rgb8.tif", {kMany, 100'000}, true},
              {"webp/htc-desire.webp", {kMany, 1'000'000}}}) {
            QString error;
            QVERIFY(decoded(realPhoto(file), &error, limits).isNull());
            QVERIFY2(error.startsWith(u"the picture is too large"), qPrintable(error));
            const auto source = ImageSource::open(realPhoto(file), limits);
            QCOMPARE(source && source->openRows(), streams);
        }
    }

    /// A desktop offers the program for each kind of photo that it knows, and for no other.
    void desktopKnowsTheKinds()
    {
        const QByteArray packaging = contentsOf(sourceFolder() + u"/packaging/CMakeLists.txt"_qs);
        static const QRegularExpression imageType(u"image/[a-z0-9.-]+(?=;)"_qs);
        QSet<QString> offered;
        for (const QRegularExpressionMatch &match : imageType.globalMatch(QString::fromUtf8(packaging)))
            offered.insert(match.captured());
        const QMimeDatabase database;
        QSet<QString> known{u"image/heic"_qs,
                            u"image/x-dcraw"_qs}; // another name, and the parent of raw types
        QStringList missing;
        for (const ImageFormat &format : imageFormats())
            for (const QString &suffix : format.suffixes)
                for (const QMimeType &type : database.mimeTypesForFileName(u"a."_qs + suffix))
                    if (type.name().startsWith(u"image/")) {
                        known.insert(type.name());
                        if (!offered.contains(type.name()) && !type.inherits(u"image/x-dcraw"_qs))
                            missing.append(type.name());
                    }
        QVERIFY(known.size() > 30 && offered.contains(u"image/x-dcraw"_qs));
        QCOMPARE(missing, QStringList());
        QCOMPARE(QStringList((offered - known).values()), QStringList());
    }

    void unmarkedPicturesAreNamed()
    {
        PLEXA_NEEDS_PHOTOS();
        for (const auto &[name, pictures] :
             {std::pair{"jpeg/display-p3-iphone-13-mini.jpg", QStringList{u"gain map"_qs}},
              {"jpeg/pixel-4a-gain-map.jpg", {u"gain map"_qs}},
              {"jpeg/canon-eos-450d.jpg", {}},
              {"webp/animation-lossy.webp", {u"animation"_qs}},
              {"tiff/multipage.tif", {u"further pages"_qs}},
              {"heic/libheif-example.heic", {u"further pictures"_qs}},
              {"heic/iphone-8.heic", {}}}) {
            const auto source = ImageSource::open(realPhoto(name));
            QVERIFY(source);
            QCOMPARE(droppedPictures(*source), pictures);
        }
    }
};

QTEST_GUILESS_MAIN(ImageSourceTest)

#include "imagesource_test.moc"
