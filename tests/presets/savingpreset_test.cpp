// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imageformat.h"
#include "presets/savingpreset.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testenvironment.h"
#include "support/words.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

const QString kAppID = u"Quorvel Plexa"_s;

// A file as the program has always written it.
const QByteArray kFile = R"(<?xml version="1.0" encoding="UTF-8"?>
<savingPresets application="Quorvel Plexa" fileVersion="1.4">
  <preset>
    <id>41</id>
    <name>Web &amp; print &lt;1&gt; "q"</name>
    <filename>
      <token>filename</token>
      <token>-</token>
      <token>sequence ##</token>
      <token>a>b</token>
    </filename>
    <fileBaseNameCase>upper case</fileBaseNameCase>
    <fileExtensionCase>do not change</fileExtensionCase>
    <format>Original</format>
    <alternativeFormat>PNG</alternativeFormat>
    <quality>64</quality>
    <tiffCompressionLZW>0</tiffCompressionLZW>
  </preset>
  <preset>
    <id>42</id>
    <name></name>
    <filename>
    </filename>
    <fileBaseNameCase></fileBaseNameCase>
    <fileExtensionCase></fileExtensionCase>
    <format>JPEG</format>
    <alternativeFormat>JPEG</alternativeFormat>
    <quality>80</quality>
    <tiffCompressionLZW>1</tiffCompressionLZW>
  </preset>
</savingPresets>
)";

SavingPresetValues firstOfFile()
{
    return {.name = u"Web & print <1> \"q\""_s,
            .filenameTokens = words("filename - 'sequence ##' a>b"),
            .fileBaseNameCase = u"upper case"_s,
            .fileExtensionCase = u"do not change"_s,
            .imageFormat = u"Original"_s,
            .alternativeImageFormat = u"PNG"_s,
            .jpegQuality = 64,
            .tiffCompressionLZW = false};
}

bool canWrite(const char *type)
{
    const ImageFormat *format = imageFormatOfType(QLatin1StringView(type));
    return format && format->canWrite;
}

/// The preset in a file of this version with this content; null when there is none.
std::shared_ptr<SavingPreset> presetOf(const QByteArray &content, double version, QByteArray &errors)
{
    XMLParser parser([&errors](const QByteArray &line) { errors += line; });
    if (!parser.parse("<?xml version=\"1.0\"?><preset>" + content + "</preset>"))
        return nullptr;
    return SavingPreset::initWithXMLData(*parser.root(), version);
}

} // namespace

class SavingPresetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { SavingPreset::setLastUsedPresetID(0); }

    void everyPresetHasAnIdentity()
    {
        QCOMPARE(SavingPreset().presetID(), 1);
        QCOMPARE(SavingPreset::initWithoutNewID()->presetID(), 0);
        QCOMPARE(SavingPreset().presetID(), 2);
        const SavingPreset preset(firstOfFile());
        SavingPreset other;
        other.copyFrom(preset);
        const std::unique_ptr<SavingPreset> copy = preset.copy();
        QVERIFY(copy->values() == firstOfFile() && other.values() == firstOfFile());
        QVERIFY(preset.presetID() == 3 && other.presetID() == 4 && copy->presetID() == 5);

        QVERIFY(read(kFile));
        QCOMPARE(SavingPreset::lastUsedPresetID(), 42);
        QCOMPARE(SavingPreset().presetID(), 43);
        QVERIFY(read(kFile)); // lower ones do not count back
        QCOMPARE(SavingPreset().presetID(), 44);

        // A damaged file cannot use up all numbers, nor make later ones wrap around.
        for (const auto &[huge, expected] :
             {std::pair("9223372036854775807", std::numeric_limits<qint64>::max()),
              {"99999999999999999999", std::numeric_limits<qint64>::max()},
              {"-99999999999999999999", std::numeric_limits<qint64>::min()}}) {
            const auto presets = read(QByteArray(kFile).replace("41", huge));
            QVERIFY(presets);
            QCOMPARE(presets->front()->presetID(), expected);
        }
        QCOMPARE(SavingPreset().presetID(), 45);
        QVERIFY(read(QByteArray(kFile).replace("41", "9000000000000000000")));
        QCOMPARE(SavingPreset().presetID(), 9000000000000000001);
    }

    void changesAreAnnounced()
    {
        SavingPreset preset;
        QStringList heard;
        connect(&preset, &SavingPreset::fieldChanged, this,
                [&](SavingField id, const FieldValue &old, const FieldValue &now) {
                    QVERIFY(old == savingPresetField(id).value(SavingPresetValues()));
                    QVERIFY(now == savingPresetField(id).value(firstOfFile()));
                    heard.append(QString::number(static_cast<int>(id)));
                });
        const auto record = [&](const char *name) { return [&heard, name] { heard.append(words(name)); }; };
        connect(&preset, &SavingPreset::hideJPEGQualityChanged, this, record("jpeg"));
        connect(&preset, &SavingPreset::hideTiffCompressionChanged, this, record("tiff"));
        connect(&preset, &SavingPreset::hideAlternativeFormatChanged, this, record("alternative"));
        preset.setValues(firstOfFile());
        const QStringList expected = words("0 1 2 3 4 jpeg tiff alternative 5 jpeg tiff 6 7");
        QCOMPARE(heard, expected);
        preset.setValues(firstOfFile());
        QCOMPARE(heard, expected);
        disconnect(&preset, nullptr, this, nullptr);

        // A slot may change the very values that are being copied.
        SavingPreset source;
        source.setName(u"wanted"_s);
        source.setJpegQuality(50);
        connect(&preset, &SavingPreset::fieldChanged, this, [&] { source.setJpegQuality(99); });
        preset.copyFrom(source);
        QCOMPARE(preset.jpegQuality(), 50);
    }

    void validity()
    {
        const auto isValid = [](const QStringList &tokens, int quality) {
            return SavingPresetValues{.filenameTokens = tokens, .jpegQuality = quality}.validPreset();
        };
        const QStringList tokens = words("filename");
        QVERIFY(isValid(tokens, 40) && isValid(tokens, 100) && isValid(QStringList(QString()), 80));
        QVERIFY(!isValid(tokens, 39) && !isValid(tokens, 101) && !isValid({}, 80));
    }

    void typesAndExtensions()
    {
        const QString original = u"Original"_s;
        for (const auto &[format, alternative, source, type, extensions] :
             {std::tuple(u"JPEG"_s, u"PNG"_s, u"a.png"_s, u"image/jpeg"_s, words("jpg jpeg")),
              {u"TIFF"_s, u"PNG"_s, u"a.png"_s, u"image/tiff"_s, words("tif tiff")},
              {u"WebP"_s, u"PNG"_s, u"a.png"_s, QString(), {}},
              {original, u"PNG"_s, u"/a.b/c.JPEG"_s, u"image/jpeg"_s, words("jpg jpeg")},
              {original, u"PNG"_s, u"a.jpe"_s, u"image/png"_s, words("png")},
              {original, u"PNG"_s, u"a.cr2"_s, u"image/png"_s, words("png")},
              {original, u"PNG"_s, u"/a.jpg/b"_s, u"image/png"_s, words("png")},
              {original, u"PNG"_s, u"/a/.jpg"_s, u"image/png"_s, words("png")},
              {original, u"PNG"_s, u"scan.bmp"_s, u"image/bmp"_s, words("bmp")},
              {original, original, u"a.cr2"_s, QString(), {}}}) {
            const SavingPresetValues values{.imageFormat = format, .alternativeImageFormat = alternative};
            QCOMPARE(values.imageFormatUTI(source), type);
            QCOMPARE(values.filenameExtensions(source), extensions);
        }
    }

    void offeredFormats()
    {
        QStringList expected; // in this order, as far as this build can write them
        for (const auto &[name, type] : {std::pair("JPEG", "image/jpeg"),
                                         {"HEIC", "image/heic"},
                                         {"TIFF", "image/tiff"},
                                         {"PNG", "image/png"},
                                         {"GIF", "image/gif"},
                                         {"BMP", "image/bmp"}}) {
            const Text uti(canWrite(type) ? type : "");
            expected.append(canWrite(type) ? words(name) : QStringList());
            QCOMPARE(SavingPreset::supportedUTI(Text(type)), canWrite(type));
            QCOMPARE(SavingPreset::utiForFileExtension(Text(name)), uti);
            QCOMPARE(SavingPreset::utiForFileExtension(Text(name).toLower()), uti);
        }
        QCOMPARE(SavingPreset::supportedFileFormatsWithoutOriginal(), expected);
        QCOMPARE(SavingPreset::supportedFileFormats(), expected + words("Original"));
        for (const QString &other : words("jpe jfif dib webp Original ''"))
            QCOMPARE(SavingPreset::utiForFileExtension(other), QString());
    }

    void writesTheFileToTheLetter()
    {
        SavingPreset::setLastUsedPresetID(40);
        const SavingPresetValues second{
            .name = {}, .filenameTokens = {}, .fileBaseNameCase = {}, .fileExtensionCase = {}};
        const auto again = writtenAndRead({firstOfFile(), second});
        QCOMPARE(QString::fromUtf8(contentsOf(m_path)), QString::fromUtf8(kFile));
        QVERIFY(again && again->size() == 2);
        QCOMPARE(m_code, ReadCode::Success);
        QCOMPARE(again->at(0)->presetID(), 41);
        SavingPresetValues expected = firstOfFile();
        expected.tiffCompressionLZW = true; // a bare zero does not switch it off
        QVERIFY(again->at(0)->values() == expected && again->at(1)->values() == second);
    }

    void readsOldFiles()
    {
        const QByteArray start = "<id>5</id><name>n</name><filename><token>a</token><t>b</t></filename>";
        const QByteArray quality = "<quality>70</quality>";
        const QByteArray lzwOff = "<tiffCompressionLZW>0\n  </tiffCompressionLZW>";
        const QByteArray numbers =
            start + "<format>1</format><alternativeFormat>0</alternativeFormat>" + quality + lzwOff;
        const QByteArray cases = "<fileBaseNameCase>lower case</fileBaseNameCase>"
                                 "<fileExtensionCase>upper case</fileExtensionCase>";
        SavingPresetValues values{.name = u"n"_s,
                                  .filenameTokens = words("a b"),
                                  .imageFormat = SavingPreset::supportedFileFormats().at(1),
                                  .alternativeImageFormat = SavingPreset::supportedFileFormats().at(0),
                                  .jpegQuality = 70};
        expectPreset(1.0, numbers + cases, values);
        values.tiffCompressionLZW = false;
        expectPreset(1.1, numbers + cases, values);
        expectPreset(1.2, numbers + cases, values);
        SavingPresetValues plain = values;
        values.fileBaseNameCase = u"lower case"_s;
        values.fileExtensionCase = u"upper case"_s;
        expectPreset(1.3, numbers + cases, values);
        expectPreset(1.3, numbers, plain);
        values.imageFormat = u"1"_s; // a name, now
        values.alternativeImageFormat = u"0"_s;
        expectPreset(1.4, numbers + cases, values);
        plain.imageFormat = u"JPEG"_s;
        plain.alternativeImageFormat = u"JPEG"_s;
        expectPreset(1.4, start + quality + lzwOff, plain);
        expectPreset(2.0, lzwOff + "<new />" + quality + start, plain);
        plain.jpegQuality = 0;
        expectPreset(1.4, start + "<quality>best</quality>" + lzwOff, plain);
        plain.jpegQuality = -2147483648;
        expectPreset(1.4, start + "<quality>-1e99</quality>" + lzwOff, plain);
        plain.jpegQuality = 85;
        plain.tiffCompressionLZW = true;
        expectPreset(1.4, start + "<quality> 85.9 %</quality><tiffCompressionLZW>0\r\n</tiffCompressionLZW>",
                     plain);
    }

    void brokenPresets()
    {
        const QByteArray whole =
            "<id>5</id><name>n</name><filename></filename><format>0</format>"
            "<alternativeFormat>0</alternativeFormat><quality>1</quality><tiffCompressionLZW>1"
            "</tiffCompressionLZW>";
        for (const auto &[version, from, to, reason] :
             {std::tuple(1.4, "<id>5</id>", "", "\"id\""),
              {1.0, "<name>n</name>", "", "\"name\""},
              {1.4, "<filename></filename>", "", "\"filename\""},
              {1.4, "<quality>1</quality>", "", "\"quality\""},
              {1.1, "<tiffCompressionLZW>1</tiffCompressionLZW>", "", "\"tiffCompressionLZW\""},
              {1.3, "<format>0</format>", "", "\"format\""},
              {1.3, "<alternativeFormat>0</alternativeFormat>", "", "\"alternativeFormat\""},
              {1.3, "<format>0<", "<format>7<", "no format number 7"},
              {1.3, "<format>0<", "<format>-1<", "no format number -1"},
              {1.4, ">n<", ">\xff<", "not UTF-8"},
              {1.4, "<filename>", "<filename><t>&#228;</t>", "not UTF-8"}}) {
            QByteArray errors;
            QVERIFY(presetOf(whole, version, errors));
            QVERIFY(!presetOf(QByteArray(whole).replace(from, to), version, errors));
            QVERIFY2(errors.contains(reason), reason);
        }
    }

    /// What the reader would take for markup, or skip at the start of a text.
    void markupIsReadBack()
    {
        QList<SavingPresetValues> list;
        for (const QString &text :
             {u"\"q\" 'r'"_s, u"'"_s, u"=1"_s, u"/>"_s, u"?>"_s, u">1"_s, u" a "_s, u"\t"_s, u"\n\n"_s,
              u"\r\n b"_s, u"&#34;"_s, u"-"_s, u"Smith & Sons-"_s, u"<a>&"_s, u">&amp;<"_s})
            list.append({.name = text, .filenameTokens = {text, u"width"_s}});
        // Values with markup become the default.
        const QString markup = u"a<b"_s;
        list.append({.fileBaseNameCase = u"=lower case"_s});
        list.append({.fileBaseNameCase = markup,
                     .fileExtensionCase = markup,
                     .imageFormat = markup,
                     .alternativeImageFormat = u"&amp;"_s});
        const auto again = writtenAndRead(list);
        list[list.size() - 2] = list.last() = {};
        QVERIFY(again);
        QVERIFY(contentsOf(m_path).contains("<token>Smith &amp; Sons-</token>"));
        QCOMPARE(again->size(), static_cast<std::size_t>(list.size()));
        for (qsizetype i = 0; i < list.size(); ++i)
            QCOMPARE(again->at(static_cast<std::size_t>(i))->values(), list[i]);
    }

    void filesOfOthers()
    {
        QVERIFY(read(QByteArray(kFile).replace("Plexa\"", "Plexa 1\""))); // of the first major version
        const QByteArray later = QByteArray(kFile).replace("fileVersion=\"1.4\"", "fileVersion='12.5x'");
        bool isLater = false;
        QVERIFY(read(later, &isLater) && isLater && m_code == ReadCode::Success);
        for (const char *noNumber : {"new", "inf"}) // the version 0
            QVERIFY(read(QByteArray(kFile).replace("1.4", noNumber), &isLater) && !isLater);
        for (const auto &[from, to] : {std::pair("Quorvel Plexa", "Quorvel Plexa 2"),
                                       {"application", "other"},
                                       {"fileVersion", "a=\"\" fileVersion"},
                                       {" fileVersion=\"1.4\"", ""},
                                       {"savingPresets", "savingPreset"},
                                       {"savingPresets", "savingPresetsX"},
                                       {" encoding=\"UTF-8\"", ""},
                                       {"?>", " standalone=\"yes\"?>"},
                                       {"UTF-8", "utf-8"},
                                       {"xml version=\"1.0", "xml version=\"1.1"},
                                       {"<id>42</id>", ""},
                                       {"</savingPresets>", ""}}) {
            QVERIFY2(!read(QByteArray(kFile).replace(from, to)), to);
            QCOMPARE(m_code, ReadCode::Failed);
            QVERIFY2(m_errors.contains(m_path.toUtf8()), m_errors.constData());
        }
    }

private:
    /// A preset in a file of this version is read as these values.
    static void expectPreset(double version, const QByteArray &content, const SavingPresetValues &expected)
    {
        QByteArray errors;
        const auto preset = presetOf(content, version, errors);
        QVERIFY2(preset && errors.isEmpty(), errors.constData());
        QCOMPARE(preset->presetID(), 5);
        for (const SavingPresetField &field : savingPresetFields())
            QVERIFY2(field.value(preset->values()) == field.value(expected), field.name.data());
    }

    Result<void> write(const QList<SavingPresetValues> &list) const
    {
        std::vector<std::shared_ptr<SavingPreset>> presets;
        for (const SavingPresetValues &values : list)
            presets.push_back(std::make_shared<SavingPreset>(values));
        return SavingPreset::writeObjects(presets, m_path, kAppID);
    }

    std::optional<SavingPresetList> writtenAndRead(const QList<SavingPresetValues> &list)
    {
        if (!write(list))
            return std::nullopt;
        return read(contentsOf(m_path));
    }

    std::optional<SavingPresetList> read(const QByteArray &xml, bool *isLater = nullptr)
    {
        if (!writeFile(m_path, xml))
            return std::nullopt;
        m_errors.clear();
        return SavingPreset::readObjectsFromFile(
            m_path, kAppID, m_code, [this](const QByteArray &line) { m_errors += line; }, isLater);
    }

    TestFolder m_folder;
    QString m_path = m_folder.path("presets.pxspr");
    ReadCode m_code = ReadCode::LaterVersion;
    QByteArray m_errors;
};

QTEST_GUILESS_MAIN(SavingPresetTest)
#include "savingpreset_test.moc"
