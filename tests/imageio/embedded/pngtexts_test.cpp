// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "metadata/propertykeys.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using namespace plexa;

namespace
{

QByteArray bigEndian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

quint32 checksum(const QByteArray &bytes)
{
    quint32 sum = 0xFFFFFFFF;
    for (const char byte : bytes) {
        sum ^= static_cast<uchar>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~sum;
}

QByteArray chunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian(quint32(data.size())) + type + data + bigEndian(checksum(type + data));
}

QByteArray plain(const QByteArray &keyword, const QByteArray &text)
{
    return chunk("tEXt", keyword + '\0' + text);
}

QByteArray packed(const QByteArray &keyword, const QByteArray &text)
{
    return chunk("zTXt", keyword + '\0' + '\0' + qCompress(text, 9).mid(4));
}

QByteArray international(const QByteArray &keyword, const QString &text, bool isPacked)
{
    const QByteArray bytes = isPacked ? qCompress(text.toUtf8()).mid(4) : text.toUtf8();
    return chunk("iTXt", keyword + '\0' + (isPacked ? '\1' : '\0') + '\0' + "en" + '\0' + '\0' + bytes);
}

QByteArray contentsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVariant iptc(const QVariantMap &properties, QLatin1StringView key)
{
    return properties.value(kCGImagePropertyIPTCDictionary).toMap().value(key);
}

QVariantMap withGroup(QVariantMap properties, QLatin1StringView group, const QVariantMap &values)
{
    properties.insert(group, values);
    return properties;
}

} // namespace

class PngTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesKeepTexts();
    void otherFormatsSayTheSame();
    void clearedAndEditedTexts();
    void manyTextsCostLittle_data();
    void manyTextsCostLittle();

private:
    /// A small PNG with these chunks. @return its path
    QString pngWith(const QByteArray &chunks) const
    {
        QImage image(8, 8, QImage::Format_RGB32);
        image.fill(Qt::red);
        QBuffer buffer;
        image.save(&buffer, "PNG");
        const QString path = m_folder.filePath(QStringLiteral("source.png"));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray(buffer.data()).insert(33, chunks)); // behind the header
        return path;
    }

    /// @param properties  of the copy, from those of the source
    /// @return the copy's path; empty on failure
    template<class Properties>
    QString copyOf(const QString &path, const QString &type, Properties properties) const
    {
        const Result<ImageSource> source = ImageSource::open(path);
        const QString copy = m_folder.filePath(QStringLiteral("copy"));
        QFile file(copy);
        if (!source || !file.open(QIODevice::WriteOnly))
            return {};
        const CopyRequest request{type, properties(source->properties()), &*source};
        return writeImage(file, QImage(path), request) ? copy : QString();
    }

    QByteArray someTexts() const
    {
        return plain("Author", "Ann") + plain("Copyright", "\xA9 Ann") + packed("Title", "A lake") +
               international("Description", QStringLiteral("Łódź"), true) +
               international("Disclaimer", QStringLiteral("no warranty"), false) + plain("Comment", "hello");
    }

    QTemporaryDir m_folder;
};

void PngTextsTest::copiesKeepTexts()
{
    const QString path = pngWith(
        someTexts() + plain("Software", "Old") + plain("Thumb::URI", "file:///a") +
        plain("date:create", "2020") + plain("Preview", "\xFF\xD8\xFF\xE0 and so on") +
        plain("Picture", "/9j/4AAQSkZJRg") + plain("Source", QByteArray(300'000, 'x')) +
        plain(" not proper", "x") + plain("", "x") + chunk("iTXt", "Warning") + chunk("zTXt", "Warning\0"));
    const QString copy = copyOf(path, QStringLiteral("image/png"), [](const QVariantMap &properties) {
        return withGroup(properties, kCGImagePropertyTIFFDictionary,
                         {{kCGImagePropertyTIFFSoftware, QStringLiteral("New")},
                          {kCGImagePropertyTIFFArtist, QStringLiteral("Ann")}});
    });
    const QByteArray bytes = contentsOf(copy);
    QImage image;
    QVERIFY(image.loadFromData(bytes, "PNG"));
    QMap<QString, QString> texts;
    for (const QString &key : image.textKeys())
        texts.insert(key, image.text(key));
    texts.remove(QStringLiteral("XML:com.adobe.xmp"));
    texts.remove(QStringLiteral("Raw profile type iptc"));
    const QMap<QString, QString> expected{{QStringLiteral("Author"), QStringLiteral("Ann")},
                                          {QStringLiteral("Copyright"), QStringLiteral("© Ann")},
                                          {QStringLiteral("Title"), QStringLiteral("A lake")},
                                          {QStringLiteral("Description"), QStringLiteral("Łódź")},
                                          {QStringLiteral("Disclaimer"), QStringLiteral("no warranty")},
                                          {QStringLiteral("Comment"), QStringLiteral("hello")},
                                          {QStringLiteral("Software"), QStringLiteral("New")}};
    QCOMPARE(texts, expected);
    QVERIFY(bytes.contains(QByteArray("tEXtCopyright\0\xA9 Ann", 19)));
    QVERIFY(bytes.contains("iTXtDescription"));
}

void PngTextsTest::otherFormatsSayTheSame()
{
    const QString copy = copyOf(pngWith(someTexts()), QStringLiteral("image/jpeg"), std::identity());
    const QVariantMap properties = EmbeddedMetadata::read(copy)->properties();
    QCOMPARE(iptc(properties, kCGImagePropertyIPTCByline), QVariant(QVariantList{QStringLiteral("Ann")}));
    QCOMPARE(iptc(properties, kCGImagePropertyIPTCObjectName), QVariant(QStringLiteral("A lake")));
    QCOMPARE(iptc(properties, kCGImagePropertyIPTCCaptionAbstract), QVariant(QStringLiteral("Łódź")));
    QCOMPARE(iptc(properties, kCGImagePropertyIPTCCopyrightNotice), QVariant(QStringLiteral("© Ann")));
    QCOMPARE(properties.value(kCGImagePropertyTIFFDictionary).toMap().value(kCGImagePropertyTIFFArtist),
             QVariant(QStringLiteral("Ann")));
}

void PngTextsTest::clearedAndEditedTexts()
{
    const QString path = pngWith(someTexts());
    const auto copyWithIptc = [&](const QVariantMap &values) {
        return copyOf(path, QStringLiteral("image/png"), [&](const QVariantMap &properties) {
            return withGroup(withGroup(properties, kCGImagePropertyTIFFDictionary, {}),
                             kCGImagePropertyIPTCDictionary, values);
        });
    };
    const QByteArray cleared = contentsOf(copyWithIptc({}));
    QVERIFY(!cleared.isEmpty());
    for (const char *word : {"Ann", "A lake", "warranty", "Description", "tEXt"})
        QVERIFY2(!cleared.contains(word), word);

    const QImage kept(copyWithIptc({{kCGImagePropertyIPTCCopyrightNotice, QStringLiteral("© Ann")}}));
    QCOMPARE(kept.text(QStringLiteral("Copyright")), QStringLiteral("© Ann"));
    QVERIFY(!kept.textKeys().contains(QStringLiteral("Author")));

    const QImage edited(copyWithIptc({{kCGImagePropertyIPTCByline, QVariantList{QStringLiteral("Bob")}},
                                      {kCGImagePropertyIPTCCity, QStringLiteral("Ulm")}}));
    QCOMPARE(edited.text(QStringLiteral("Author")), QStringLiteral("Bob"));
    QCOMPARE(edited.text(QStringLiteral("Disclaimer")), QStringLiteral("no warranty"));
    QVERIFY(!edited.textKeys().contains(QStringLiteral("Title")));
}

void PngTextsTest::manyTextsCostLittle_data()
{
    QTest::addColumn<QByteArray>("one");
    const QByteArray bomb(16 * 1024 * 1024, '0');
    QTest::newRow("texts") << packed("Disclaimer", bomb);
    QTest::newRow("profiles") << packed("Raw profile type other", bomb);
    QTest::newRow("of no interest") << packed("date:create", bomb);
    QTest::newRow("small") << plain("Disclaimer", "x");
}

void PngTextsTest::manyTextsCostLittle()
{
    QFETCH(QByteArray, one);
    const QString path = pngWith(one.repeated(1000));
    QElapsedTimer timer;
    timer.start();
    const auto metadata = EmbeddedMetadata::read(path);
    const qint64 elapsed = timer.elapsed();
    QVERIFY2(elapsed < 5000, qPrintable(QString::number(elapsed)));
    QVERIFY(metadata->encodeForCopy(metadata->properties(), {QSize(8, 8)}).texts.size() <= 200);
}

QTEST_GUILESS_MAIN(PngTextsTest)
#include "pngtexts_test.moc"
