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
#include <set>
#include <thread>

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
    SavingPresetValues values;
    values.name = u"Web & print <1> \"q\""_s;
    values.filenameTokens = {u"filename"_s, u"-"_s, u"sequence ##"_s};
    values.fileBaseNameCase = u"upper case"_s;
    values.fileExtensionCase = u"do not change"_s;
    values.imageFormat = u"Original"_s;
    values.alternativeImageFormat = u"PNG"_s;
    values.jpegQuality = 64;
    values.tiffCompressionLZW = false;
    return values;
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

struct Shown {
    Text format;
    Text alternative;
    Text shown;
};

struct Written {
    Text name;
    Text format;
    Text alternative;
    Text source;
    Text type;
    QStringList extensions;
};

struct OldFile {
    Text name;
    double version;
    QByteArray content;
    SavingPresetValues expected;
};

struct Broken {
    Text name;
    double version;
    QByteArray from;
    QByteArray to;
    QByteArray reason;
};

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

        QVERIFY(read(kFile));
        QCOMPARE(SavingPreset::lastUsedPresetID(), 42);
        QCOMPARE(SavingPreset().presetID(), 43);
        QVERIFY(read(kFile)); // lower ones do not count back
        QCOMPARE(SavingPreset().presetID(), 44);

        // A damaged file cannot use up all numbers, and not make later ones wrap around.
        for (const QByteArray huge :
             {"9223372036854775807", "99999999999999999999", "-99999999999999999999"}) {
            const auto presets = read(QByteArray(kFile).replace("41", huge));
            QVERIFY(presets);
            const qint64 expected = huge.startsWith('-') ? std::numeric_limits<qint64>::min()
                                                         : std::numeric_limits<qint64>::max();
            QCOMPARE(presets->front()->presetID(), expected);
        }
        QCOMPARE(SavingPreset().presetID(), 45);
        QVERIFY(read(QByteArray(kFile).replace("41", "9000000000000000000")));
        QCOMPARE(SavingPreset().presetID(), 9000000000000000001);
    }

    void identitiesAreUniqueOnThreads()
    {
        constexpr std::size_t kThreads = 4;
        constexpr std::size_t kEach = 500;
        std::vector<std::vector<qint64>> given(kThreads);
        std::vector<std::thread> threads;
        for (auto &ids : given) {
            threads.emplace_back([&ids] {
                for (std::size_t i = 0; i < kEach; ++i) {
                    ids.push_back(SavingPreset().presetID());
                    QByteArray errors;
                    const QByteArray id = QByteArray::number(ids.back());
                    presetOf("<id>" + id + "</id>", 1.4, errors);
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        std::set<qint64> all;
        for (const auto &ids : given)
            all.insert(ids.begin(), ids.end());
        QCOMPARE(all.size(), kThreads * kEach);
        QCOMPARE(SavingPreset::lastUsedPresetID(), qint64(kThreads * kEach));
    }

    void aCopyIsEqualAndAnother()
    {
        SavingPreset preset(firstOfFile());
        const std::unique_ptr<SavingPreset> copy = preset.copy();
        QVERIFY(copy->values() == firstOfFile());
        QVERIFY(copy->presetID() != preset.presetID());
        SavingPreset other;
        const qint64 id = other.presetID();
        other.copyFrom(preset);
        QVERIFY(other.values() == firstOfFile());
        QCOMPARE(other.presetID(), id);
        copy->setName(u"other"_s);
        QCOMPARE(preset.name(), firstOfFile().name);
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
        connect(&preset, &SavingPreset::hideJPEGQualityChanged, this, [&] { heard.append(u"jpeg"_s); });
        connect(&preset, &SavingPreset::hideTiffCompressionChanged, this, [&] { heard.append(u"tiff"_s); });
        connect(&preset, &SavingPreset::hideAlternativeFormatChanged, this,
                [&] { heard.append(u"alternative"_s); });
        preset.setValues(firstOfFile());
        const QStringList expected = u"0 1 2 3 4 jpeg tiff alternative 5 jpeg tiff 6 7"_s.split(u' ');
        QCOMPARE(heard, expected);
        preset.setValues(firstOfFile());
        QCOMPARE(heard, expected);
        disconnect(&preset, nullptr, this, nullptr);

        // Somebody who hears of a change may change the very values that are being taken over.
        SavingPreset source;
        source.setName(u"wanted"_s);
        source.setJpegQuality(50);
        connect(&preset, &SavingPreset::fieldChanged, this, [&] { source.setJpegQuality(99); });
        preset.copyFrom(source);
        QCOMPARE(preset.jpegQuality(), 50);
    }

    void formatsDecideWhatIsShown()
    {
        for (const auto &[format, alternative, shown] : {Shown{"JPEG", "TIFF", "quality"},
                                                         {"HEIC", "PNG", "quality"},
                                                         {"TIFF", "JPEG", "compression"},
                                                         {"PNG", "JPEG", ""},
                                                         {"Original", "JPEG", "quality alternative"},
                                                         {"Original", "HEIC", "quality alternative"},
                                                         {"Original", "TIFF", "compression alternative"},
                                                         {"Original", "PNG", "alternative"}}) {
            SavingPreset preset;
            preset.setImageFormat(format);
            preset.setAlternativeImageFormat(alternative);
            QStringList found;
            if (!preset.property("hideJPEGQuality").toBool())
                found.append(u"quality"_s);
            if (!preset.property("hideTiffCompression").toBool())
                found.append(u"compression"_s);
            if (!preset.property("hideAlternativeFormat").toBool())
                found.append(u"alternative"_s);
            QCOMPARE(found.join(u' '), shown);
        }
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

    void typesAndExtensions_data()
    {
        addRows<Written>({
            {"a format", "JPEG", "PNG", "a.png", "image/jpeg", words("jpg jpeg")},
            {"no such format", "WebP", "PNG", "a.png", "", {}},
            {"Original", "Original", "PNG", "/a.b/c.JPEG", "image/jpeg", words("jpg jpeg")},
            {"Original of a rare suffix", "Original", "PNG", "a.jpe", "image/png", words("png")},
            {"Original that cannot be written", "Original", "PNG", "a.cr2", "image/png", words("png")},
            {"Original without a suffix", "Original", "PNG", "/a.jpg/b", "image/png", words("png")},
            {"Original that is all suffix", "Original", "PNG", "/a/.jpg", "image/png", words("png")},
            {"Original without an alternative", "Original", "Original", "a.cr2", "", {}},
        });
        if (canWrite("image/tiff"))
            addRow<Written>({"TIFF", "TIFF", "PNG", "a.png", "image/tiff", words("tif tiff")});
        if (canWrite("image/bmp"))
            addRow<Written>({"BMP as original", "Original", "PNG", "scan.bmp", "image/bmp", words("bmp")});
    }

    void typesAndExtensions()
    {
        const auto [name, format, alternative, source, type, extensions] = currentRow<Written>();
        const SavingPresetValues values{.imageFormat = format, .alternativeImageFormat = alternative};
        QCOMPARE(values.imageFormatUTI(source), type);
        QCOMPARE(values.filenameExtensions(source), extensions);
    }

    void offeredFormats()
    {
        // In this order, as far as this build can write them.
        const struct {
            const char *name;
            const char *type;
        } formats[] = {{"JPEG", "image/jpeg"}, {"HEIC", "image/heic"}, {"TIFF", "image/tiff"},
                       {"PNG", "image/png"},   {"GIF", "image/gif"},   {"BMP", "image/bmp"}};
        QStringList expected;
        for (const auto &format : formats) {
            const QString type = QLatin1StringView(format.type);
            if (canWrite(format.type))
                expected.append(QLatin1StringView(format.name));
            QCOMPARE(SavingPreset::supportedUTI(type), canWrite(format.type));
            QCOMPARE(SavingPreset::utiForFileExtension(QLatin1StringView(format.name)),
                     canWrite(format.type) ? type : QString());
        }
        QCOMPARE(SavingPreset::supportedFileFormatsWithoutOriginal(), expected);
        QCOMPARE(SavingPreset::supportedFileFormats(), expected + QStringList(u"Original"_s));
        QVERIFY(expected.contains(u"JPEG"_s) && expected.contains(u"PNG"_s));
        QCOMPARE(SavingPreset::utiForFileExtension(u"JpEg"_s), u"image/jpeg"_s);
        for (const QString &other : {u"jpe"_s, u"jfif"_s, u"dib"_s, u"webp"_s, u"Original"_s, QString()})
            QCOMPARE(SavingPreset::utiForFileExtension(other), QString());
        QVERIFY(!SavingPreset::supportedUTI(u"image/webp"_s));
    }

    void writesTheFileToTheLetter()
    {
        SavingPreset::setLastUsedPresetID(40);
        SavingPresetValues second;
        second.name = QString();
        second.filenameTokens.clear();
        second.fileBaseNameCase = QString();
        second.fileExtensionCase = QString();
        const auto first = std::make_shared<SavingPreset>(firstOfFile());
        const std::vector presets{first, std::make_shared<SavingPreset>(second)};
        const QString path = m_folder.path(u"written.pxspr"_s);
        QVERIFY(SavingPreset::writeObjects(presets, path, kAppID));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(file.readAll()), QString::fromUtf8(kFile));

        const auto again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
        QVERIFY(again && again->size() == 2);
        QCOMPARE(m_code, ReadCode::Success);
        QCOMPARE(again->at(0)->presetID(), 41);
        SavingPresetValues expected = firstOfFile();
        expected.tiffCompressionLZW = true; // a bare zero does not switch it off
        QVERIFY(again->at(0)->values() == expected);
        QVERIFY(again->at(1)->values() == second);
    }

    void readsOldFiles_data()
    {
        const QByteArray start = "<id>5</id><name>n</name><filename><token>a</token><t>b</t></filename>";
        const QByteArray quality = "<quality>70</quality>";
        const QByteArray lzwOff = "<tiffCompressionLZW>0\n  </tiffCompressionLZW>";
        const QByteArray numbers = "<format>1</format><alternativeFormat>0</alternativeFormat>";
        const QByteArray cases = "<fileBaseNameCase>lower case</fileBaseNameCase>"
                                 "<fileExtensionCase>upper case</fileExtensionCase>";
        SavingPresetValues values;
        values.name = u"n"_s;
        values.filenameTokens = {u"a"_s, u"b"_s};
        values.jpegQuality = 70;
        values.imageFormat = SavingPreset::supportedFileFormats().at(1);
        values.alternativeImageFormat = SavingPreset::supportedFileFormats().at(0);
        addRow<OldFile>({"1.0", 1.0, start + numbers + quality + lzwOff + cases, values});
        values.tiffCompressionLZW = false;
        addRow<OldFile>({"1.1", 1.1, start + numbers + quality + lzwOff + cases, values});
        addRow<OldFile>({"1.2", 1.2, start + numbers + quality + lzwOff + cases, values});
        SavingPresetValues plain = values;
        values.fileBaseNameCase = u"lower case"_s;
        values.fileExtensionCase = u"upper case"_s;
        addRow<OldFile>({"1.3", 1.3, start + numbers + quality + lzwOff + cases, values});
        addRow<OldFile>({"1.3 without cases", 1.3, start + numbers + quality + lzwOff, plain});
        values.imageFormat = u"1"_s; // a name, now
        values.alternativeImageFormat = u"0"_s;
        addRow<OldFile>({"1.4", 1.4, start + numbers + quality + lzwOff + cases, values});
        plain.imageFormat = u"JPEG"_s;
        plain.alternativeImageFormat = u"JPEG"_s;
        addRow<OldFile>({"1.4 without formats", 1.4, start + quality + lzwOff, plain});
        addRow<OldFile>({"later, in another order", 2.0, lzwOff + "<new />" + quality + start, plain});
        plain.jpegQuality = 0;
        addRow<OldFile>({"no number", 1.4, start + "<quality>best</quality>" + lzwOff, plain});
        plain.jpegQuality = -2147483648;
        addRow<OldFile>({"out of range", 1.4, start + "<quality>-1e99</quality>" + lzwOff, plain});
        plain.jpegQuality = 85;
        plain.tiffCompressionLZW = true;
        addRow<OldFile>({"decimals; a zero that goes on", 1.4,
                         start + "<quality> 85.9 %</quality><tiffCompressionLZW>0\r\n</tiffCompressionLZW>",
                         plain});
    }

    void readsOldFiles()
    {
        const auto [name, version, content, expected] = currentRow<OldFile>();
        QByteArray errors;
        const auto preset = presetOf(content, version, errors);
        QVERIFY2(preset, errors.constData());
        QCOMPARE(errors, QByteArray());
        QCOMPARE(preset->presetID(), 5);
        for (const SavingPresetField &field : savingPresetFields())
            QVERIFY2(field.value(preset->values()) == field.value(expected), field.name.data());
    }

    void brokenPresets_data()
    {
        addRows<Broken>({
            {"no id", 1.4, "<id>5</id>", "", "\"id\""},
            {"no name", 1.0, "<name>n</name>", "", "\"name\""},
            {"no tokens", 1.4, "<filename></filename>", "", "\"filename\""},
            {"no quality", 1.4, "<quality>1</quality>", "", "\"quality\""},
            {"no compression", 1.1, "<tiffCompressionLZW>1</tiffCompressionLZW>", "",
             "\"tiffCompressionLZW\""},
            {"no format", 1.3, "<format>0</format>", "", "\"format\""},
            {"no alternative", 1.3, "<alternativeFormat>0</alternativeFormat>", "", "\"alternativeFormat\""},
            {"format number too high", 1.3, "<format>0<", "<format>7<", "no format number 7"},
            {"format number below zero", 1.3, "<format>0<", "<format>-1<", "no format number -1"},
            {"name not in UTF-8", 1.4, ">n<", ">\xff<", "not UTF-8"},
            {"token not in UTF-8", 1.4, "<filename>", "<filename><t>&#228;</t>", "not UTF-8"},
        });
    }

    void brokenPresets()
    {
        const auto [name, version, from, to, reason] = currentRow<Broken>();
        const QByteArray whole =
            "<id>5</id><name>n</name><filename></filename><format>0</format>"
            "<alternativeFormat>0</alternativeFormat><quality>1</quality><tiffCompressionLZW>1"
            "</tiffCompressionLZW>";
        QByteArray errors;
        QVERIFY(presetOf(whole, version, errors));
        QVERIFY(whole.contains(from));
        QVERIFY(!presetOf(QByteArray(whole).replace(from, to), version, errors));
        QVERIFY2(errors.contains(reason), errors.constData());
    }

    /// What the reader would take for markup, or skip, at the start of a text.
    void everyStartIsReadBack()
    {
        std::vector<std::shared_ptr<SavingPreset>> presets;
        for (const QString &text : {u"\"q\" 'r'"_s, u"'"_s, u"=1"_s, u"/>"_s, u"?>"_s, u">1"_s, u" a "_s,
                                    u"\t"_s, u"\n\n"_s, u"\r\n b"_s, u"&#34;"_s, u"-"_s}) {
            SavingPresetValues values;
            values.name = text;
            if (text != u"&#34;") // tokens are written raw
                values.filenameTokens = {text, u"width"_s};
            presets.push_back(std::make_shared<SavingPreset>(values));
        }
        SavingPresetValues damaged;
        damaged.fileBaseNameCase = u"=lower case"_s; // goes back to its initial value
        presets.push_back(std::make_shared<SavingPreset>(damaged));
        const QString path = m_folder.path(u"starts.pxspr"_s);
        QVERIFY(SavingPreset::writeObjects(presets, path, kAppID));
        auto again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
        QVERIFY(again && again->size() == presets.size());
        for (std::size_t i = 0; i + 1 < presets.size(); ++i)
            QCOMPARE(again->at(i)->values(), presets[i]->values());
        QCOMPARE(again->back()->values(), SavingPresetValues());

        presets.front()->setName(QChar(0xD800) + u"a"_s + QChar(0xDC00));
        presets.front()->setFilenameTokens({QString(QChar(0xDFFF)), u"\U0001F4F7"_s});
        QVERIFY(SavingPreset::writeObjects(presets, path, kAppID));
        again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
        QVERIFY(again);
        QCOMPARE(again->front()->name(), u"\uFFFDa\uFFFD"_s);
        QCOMPARE(again->front()->filenameTokens(), (QStringList{u"\uFFFD"_s, u"\U0001F4F7"_s}));
    }

    void whatCannotBeReadBackIsNotWritten()
    {
        const QString path = m_folder.path(u"markup.pxspr"_s);
        QVERIFY(SavingPreset::writeObjects({std::make_shared<SavingPreset>(firstOfFile())}, path, kAppID));
        const auto contents = [&path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        const QByteArray before = contents();
        QVERIFY(!before.isEmpty());
        SavingPresetValues named;
        named.name = u"cut"_s + QChar(0) + u"off"_s;
        std::vector<SavingPresetValues> refused{named};
        for (const QString &token : {u"a<b"_s, u"R&D"_s, u"a&amp;b"_s, u"&#34;"_s, u"<!--"_s, named.name}) {
            SavingPresetValues values;
            values.filenameTokens = {u"filename"_s, token};
            refused.push_back(values);
        }
        for (const SavingPresetValues &values : refused) {
            const auto preset = std::make_shared<SavingPreset>(values);
            const Result<void> written =
                SavingPreset::writeObjects({std::make_shared<SavingPreset>(), preset}, path, kAppID);
            QVERIFY2(!written && written.error().text.contains(values.name),
                     qPrintable(values.filenameTokens.last()));
            QCOMPARE(contents(), before);
        }
        // The form itself has no references in tokens.
        QString xml;
        SavingPreset(refused[1]).appendObjectToXML(xml);
        QVERIFY(xml.contains(u"<token>a<b</token>"));
    }

    void valuesWithMarkupAreWrittenAsInitial()
    {
        QByteArray damaged = kFile;
        for (const QByteArray value : {"upper case", "do not change", "Original", "PNG"})
            damaged.replace(value, value == "PNG" ? "&amp;amp;" : "a&lt;b");
        const auto presets = read(damaged);
        QVERIFY(presets);
        QCOMPARE(presets->at(0)->imageFormat(), u"a<b"_s);
        const QString path = m_folder.path(u"again.pxspr"_s);
        QVERIFY(SavingPreset::writeObjects(*presets, path, kAppID));
        const auto again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
        QVERIFY(again);
        QCOMPARE(again->size(), presets->size());
        SavingPresetValues expected = firstOfFile();
        const SavingPresetValues initial;
        expected.fileBaseNameCase = initial.fileBaseNameCase;
        expected.fileExtensionCase = initial.fileExtensionCase;
        expected.imageFormat = initial.imageFormat;
        expected.alternativeImageFormat = initial.alternativeImageFormat;
        expected.tiffCompressionLZW = true; // a written 0 is read so
        QCOMPARE(again->at(0)->values(), expected);
    }

private:
    std::optional<std::vector<std::shared_ptr<SavingPreset>>> read(const QByteArray &xml)
    {
        QFile file(m_folder.path(u"presets.pxspr"_s));
        if (!file.open(QIODevice::WriteOnly) || file.write(xml) != xml.size())
            return std::nullopt;
        file.close();
        return SavingPreset::readObjectsFromFile(file.fileName(), kAppID, m_code, [](const QByteArray &) {});
    }

    TestFolder m_folder;
    ReadCode m_code = ReadCode::LaterVersion;
};

QTEST_GUILESS_MAIN(SavingPresetTest)
#include "savingpreset_test.moc"
