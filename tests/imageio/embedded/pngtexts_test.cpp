// SPDX-License-Identifier: GPL-3.0-or-later

#include "editedcopies.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/filemetadata.h"
#include "support/bytes.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

namespace
{

QByteArray plain(const QByteArray &keyword, const QByteArray &text)
{
    return pngChunk("tEXt", keyword + '\0' + text);
}

QByteArray packed(const QByteArray &keyword, const QByteArray &text)
{
    return pngChunk("zTXt", keyword + '\0' + '\0' + qCompress(text, 9).mid(4));
}

QByteArray international(const QByteArray &keyword, char isPacked, const QByteArray &bytes)
{
    return pngChunk("iTXt", keyword + '\0' + isPacked + '\0' + "en" + '\0' + '\0' + bytes);
}

QByteArray someTexts()
{
    return plain("Author", "Ann") + plain("Copyright", "\xA9 Ann") + packed("Title", "A lake") +
           international("Description", 1, qCompress("Łódź").mid(4)) +
           international("Disclaimer", 0, "no warranty") + plain("Comment", "hello");
}

} // namespace

class PngTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesKeepTexts()
    {
        const QByteArray jpeg("\xFF\xD8\xFF\xC0\0\x0B\x08\0\1\0\1\1\1\x11"_ba);
        const QString path =
            pngWith(someTexts() + plain("Software", "Old") + plain("Thumb::URI", "file:///a") +
                    plain("Thumbnail", "small") + plain("date:create", "2020") + plain("Preview", jpeg) +
                    plain("Picture", "data:image/jpeg;base64," + jpeg.toBase64()) +
                    plain("Digits", jpeg.toHex()) + plain("Words", "by chance: img/9j/2 ffd8ff00") +
                    plain("Source", QByteArray(300'000, 'x')) + plain(" not proper", "x") + plain("", "x") +
                    pngChunk("iTXt", "Warning") + pngChunk("zTXt", "Warning\0"));
        const QByteArray bytes = copyOf(path, [](ImageMetadata &m) { m.setTiffSoftware(u"New"_s); });
        QImage image;
        QVERIFY(image.loadFromData(bytes, "PNG"));
        QMap<QString, QString> texts;
        for (const QString &key : image.textKeys())
            texts.insert(key, image.text(key));
        texts.remove(u"XML:com.adobe.xmp"_s);
        texts.remove(u"Raw profile type iptc"_s);
        const QMap<QString, QString> expected{{u"Author"_s, u"Ann"_s},
                                              {u"Copyright"_s, u"© Ann"_s},
                                              {u"Title"_s, u"A lake"_s},
                                              {u"Description"_s, u"Łódź"_s},
                                              {u"Disclaimer"_s, u"no warranty"_s},
                                              {u"Comment"_s, u"hello"_s},
                                              {u"Software"_s, u"New"_s},
                                              {u"Words"_s, u"by chance: img/9j/2 ffd8ff00"_s}};
        QCOMPARE(texts, expected);
        QVERIFY(bytes.contains("tEXtCopyright\0\xA9 Ann"_ba));
        QVERIFY(bytes.contains("iTXtDescription"));
    }

    void otherFormatsHoldTheSame()
    {
        const QString copy = m_copies.copyOf(pngWith(someTexts()), [](ImageMetadata &) {});
        const ImageMetadata read(metadataOf(copy)->properties());
        QCOMPARE(read.iptcCreator(), QVariant(u"Ann"_s));
        QCOMPARE(read.iptcTitle(), QVariant(u"A lake"_s));
        QCOMPARE(read.iptcDescription(), QVariant(u"Łódź"_s));
        QCOMPARE(read.iptcCopyright(), QVariant(u"© Ann"_s));
        QCOMPARE(read.tiffArtist(), QVariant(u"Ann"_s));
    }

    void clearedAndEditedTexts()
    {
        const QString path = pngWith(someTexts());
        const QByteArray cleared = copyOf(path, [](ImageMetadata &m) {
            m.clearIptcDataKeepCopyright(false, false);
            m.clearTiffDataKeepCopyright(false, false);
        });
        QVERIFY(!cleared.isEmpty());
        for (const char *word : {"Ann", "A lake", "warranty", "Description", "tEXt"})
            QVERIFY2(!cleared.contains(word), word);

        const QImage kept = QImage::fromData(
            copyOf(path, [](ImageMetadata &m) { m.clearIptcDataKeepCopyright(true, false); }));
        QCOMPARE(kept.text(u"Copyright"_s), u"© Ann"_s);
        QVERIFY(!kept.textKeys().contains(u"Author"_s));

        const QImage edited = QImage::fromData(copyOf(path, [](ImageMetadata &m) {
            m.setIptcCreator(u"Bob"_s);
            m.setIptcTitle({});
        }));
        QCOMPARE(edited.text(u"Author"_s), u"Bob"_s);
        QCOMPARE(edited.text(u"Disclaimer"_s), u"no warranty"_s);
        QVERIFY(!edited.textKeys().contains(u"Title"_s));

        const QString facts = pngWith(plain("GPS position", "1") + plain("Lens", "2") + plain("Camera", "3"));
        const auto textsAfter = [&](const EditedCopies::Edit &edit) {
            const QImage image = QImage::fromData(copyOf(facts, edit));
            return image.text(u"GPS position"_s) + image.text(u"Lens"_s) + image.text(u"Camera"_s);
        };
        QCOMPARE(textsAfter([](ImageMetadata &m) { m.clearGPSData(); }), u"23"_s);
        QCOMPARE(textsAfter([](ImageMetadata &m) { m.clearExifData(); }), u"13"_s);
        QCOMPARE(textsAfter([](ImageMetadata &m) { m.clearTiffDataKeepCopyright(false, false); }), u"12"_s);
    }

    /// However many there are and however far they inflate: 16 GB would exceed the time limit of the test.
    void manyTextsCostLittle()
    {
        const QByteArray bomb(16 * 1024 * 1024, '0');
        for (const QByteArray &one : {packed("Disclaimer", bomb), packed("Raw profile type other", bomb),
                                      packed("date:create", bomb), plain("Disclaimer", "x")}) {
            const QString path = pngWith(one.repeated(1000));
            const auto metadata = metadataOf(path);
            QVERIFY(metadata->encodeForCopy(metadata->properties(), {QSize(8, 8)}).texts.size() <= 200);
        }
    }

private:
    /// A small PNG with these chunks after its header. @return its path
    QString pngWith(const QByteArray &chunks) const
    {
        const QString path = m_folder.path("source.png");
        const QByteArray file = encoded(flatPicture({8, 8}, Qt::red), "PNG").insert(33, chunks);
        return writeFile(path, file) ? path : QString();
    }

    /// The bytes of a PNG with edited metadata.
    QByteArray copyOf(const QString &path, const EditedCopies::Edit &edit)
    {
        return contentsOf(m_copies.copyOf(path, edit, "image/png"));
    }

    EditedCopies m_copies;
    TestFolder m_folder;
};

QTEST_GUILESS_MAIN(PngTextsTest)
#include "pngtexts_test.moc"
