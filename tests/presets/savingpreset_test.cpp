// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imageformat.h"
#include "presets/savingpreset.h"
#include "support/testenvironment.h"

#include <QSignalSpy>
#include <QtTest>

#include <limits>
#include <set>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

const QString kAppID = QStringLiteral("Quorvel Plexa");

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
    values.name = QStringLiteral("Web & print <1> \"q\"");
    values.filenameTokens = {u"filename"_qs, u"-"_qs, u"sequence ##"_qs};
    values.fileBaseNameCase = QStringLiteral("upper case");
    values.fileExtensionCase = QStringLiteral("do not change");
    values.imageFormat = QStringLiteral("Original");
    values.alternativeImageFormat = QStringLiteral("PNG");
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

} // namespace

class SavingPresetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyPresetHasAnIdentity();
    void identitiesAreUniqueOnThreads();
    void aCopyIsEqualAndAnother();
    void changesAreAnnounced();
    void formatsDecideWhatIsShown_data();
    void formatsDecideWhatIsShown();
    void validity_data();
    void validity();
    void typesAndExtensions_data();
    void typesAndExtensions();
    void offeredFormats();
    void writesTheFileToTheLetter();
    void readsOldFiles_data();
    void readsOldFiles();
    void brokenPresets_data();
    void brokenPresets();
    void everyStartIsReadBack();
    void whatCannotBeReadBackIsNotWritten();
    void valuesWithMarkupAreWrittenAsInitial();
    void damagedFilesNeverCrash();

private:
    std::optional<std::vector<std::shared_ptr<SavingPreset>>> read(const QByteArray &xml);

    TestFolder m_folder;
    ReadCode m_code = ReadCode::LaterVersion;
};

void SavingPresetTest::init()
{
    SavingPreset::setLastUsedPresetID(0);
}

std::optional<std::vector<std::shared_ptr<SavingPreset>>> SavingPresetTest::read(const QByteArray &xml)
{
    QFile file(m_folder.path(u"presets.pxspr"_qs));
    if (!file.open(QIODevice::WriteOnly) || file.write(xml) != xml.size())
        return std::nullopt;
    file.close();
    return SavingPreset::readObjectsFromFile(file.fileName(), kAppID, m_code, [](const QByteArray &) {});
}

void SavingPresetTest::everyPresetHasAnIdentity()
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
    for (const QByteArray huge : {"9223372036854775807", "99999999999999999999", "-99999999999999999999"}) {
        const auto presets = read(QByteArray(kFile).replace("41", huge));
        QVERIFY(presets);
        const qint64 expected =
            huge.startsWith('-') ? std::numeric_limits<qint64>::min() : std::numeric_limits<qint64>::max();
        QCOMPARE(presets->front()->presetID(), expected);
    }
    QCOMPARE(SavingPreset().presetID(), 45);
    QVERIFY(read(QByteArray(kFile).replace("41", "9000000000000000000")));
    QCOMPARE(SavingPreset().presetID(), 9000000000000000001);
}

void SavingPresetTest::identitiesAreUniqueOnThreads()
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

void SavingPresetTest::aCopyIsEqualAndAnother()
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
    copy->setName(u"other"_qs);
    QCOMPARE(preset.name(), firstOfFile().name);
}

void SavingPresetTest::changesAreAnnounced()
{
    SavingPreset preset;
    QStringList heard;
    connect(&preset, &SavingPreset::fieldChanged, this,
            [&](SavingField id, const FieldValue &old, const FieldValue &now) {
                QVERIFY(old == savingPresetField(id).value(SavingPresetValues()));
                QVERIFY(now == savingPresetField(id).value(firstOfFile()));
                heard.append(QString::number(static_cast<int>(id)));
            });
    connect(&preset, &SavingPreset::hideJPEGQualityChanged, this, [&] { heard.append(u"jpeg"_qs); });
    connect(&preset, &SavingPreset::hideTiffCompressionChanged, this, [&] { heard.append(u"tiff"_qs); });
    connect(&preset, &SavingPreset::hideAlternativeFormatChanged, this,
            [&] { heard.append(u"alternative"_qs); });
    preset.setValues(firstOfFile());
    const QStringList expected = u"0 1 2 3 4 jpeg tiff alternative 5 jpeg tiff 6 7"_qs.split(u' ');
    QCOMPARE(heard, expected);
    preset.setValues(firstOfFile());
    QCOMPARE(heard, expected);
    disconnect(&preset, nullptr, this, nullptr);

    // Somebody who hears of a change may change the very values that are being taken over.
    SavingPreset source;
    source.setName(u"wanted"_qs);
    source.setJpegQuality(50);
    connect(&preset, &SavingPreset::fieldChanged, this, [&] { source.setJpegQuality(99); });
    preset.copyFrom(source);
    QCOMPARE(preset.jpegQuality(), 50);
}

void SavingPresetTest::formatsDecideWhatIsShown_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("alternative");
    QTest::addColumn<QString>("shown");
    QTest::newRow("JPEG") << u"JPEG"_qs << u"TIFF"_qs << u"quality"_qs;
    QTest::newRow("HEIC") << u"HEIC"_qs << u"PNG"_qs << u"quality"_qs;
    QTest::newRow("TIFF") << u"TIFF"_qs << u"JPEG"_qs << u"compression"_qs;
    QTest::newRow("PNG") << u"PNG"_qs << u"JPEG"_qs << QString();
    QTest::newRow("Original, JPEG") << u"Original"_qs << u"JPEG"_qs << u"quality alternative"_qs;
    QTest::newRow("Original, HEIC") << u"Original"_qs << u"HEIC"_qs << u"quality alternative"_qs;
    QTest::newRow("Original, TIFF") << u"Original"_qs << u"TIFF"_qs << u"compression alternative"_qs;
    QTest::newRow("Original, PNG") << u"Original"_qs << u"PNG"_qs << u"alternative"_qs;
}

void SavingPresetTest::formatsDecideWhatIsShown()
{
    QFETCH(QString, format);
    QFETCH(QString, alternative);
    QFETCH(QString, shown);
    SavingPreset preset;
    preset.setImageFormat(format);
    preset.setAlternativeImageFormat(alternative);
    QStringList found;
    if (!preset.property("hideJPEGQuality").toBool())
        found.append(u"quality"_qs);
    if (!preset.property("hideTiffCompression").toBool())
        found.append(u"compression"_qs);
    if (!preset.property("hideAlternativeFormat").toBool())
        found.append(u"alternative"_qs);
    QCOMPARE(found.join(u' '), shown);
}

void SavingPresetTest::validity_data()
{
    QTest::addColumn<QStringList>("tokens");
    QTest::addColumn<int>("quality");
    QTest::addColumn<bool>("isValid");
    const QStringList tokens{u"filename"_qs};
    QTest::newRow("lowest") << tokens << 40 << true;
    QTest::newRow("highest") << tokens << 100 << true;
    QTest::newRow("too low") << tokens << 39 << false;
    QTest::newRow("too high") << tokens << 101 << false;
    QTest::newRow("no tokens") << QStringList() << 80 << false;
    QTest::newRow("an empty token") << QStringList(QString()) << 80 << true;
}

void SavingPresetTest::validity()
{
    QFETCH(QStringList, tokens);
    QFETCH(int, quality);
    SavingPreset preset;
    preset.setFilenameTokens(tokens);
    preset.setJpegQuality(quality);
    QTEST(preset.validPreset(), "isValid");
}

void SavingPresetTest::typesAndExtensions_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("alternative");
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("extensions");
    const auto add = [](const char *name, const char *format, const char *alternative, const char *source,
                        const char *type, const char *extensions) {
        QTest::newRow(name) << QString::fromLatin1(format) << QString::fromLatin1(alternative)
                            << QString::fromUtf8(source) << QString::fromLatin1(type)
                            << QString::fromLatin1(extensions);
    };
    add("a format", "JPEG", "PNG", "a.png", "image/jpeg", "jpg jpeg");
    add("no such format", "WebP", "PNG", "a.png", "", "");
    add("Original", "Original", "PNG", "/a.b/c.JPEG", "image/jpeg", "jpg jpeg");
    add("Original of a rare suffix", "Original", "PNG", "a.jpe", "image/png", "png");
    add("Original that cannot be written", "Original", "PNG", "a.cr2", "image/png", "png");
    add("Original without a suffix", "Original", "PNG", "/a.jpg/b", "image/png", "png");
    add("Original that is all suffix", "Original", "PNG", "/a/.jpg", "image/png", "png");
    add("Original without an alternative", "Original", "Original", "a.cr2", "", "");
    if (canWrite("image/tiff"))
        add("TIFF", "TIFF", "PNG", "a.png", "image/tiff", "tif tiff");
    if (canWrite("image/bmp"))
        add("BMP as original", "Original", "PNG", "scan.bmp", "image/bmp", "bmp");
}

void SavingPresetTest::typesAndExtensions()
{
    QFETCH(QString, format);
    QFETCH(QString, alternative);
    QFETCH(QString, source);
    SavingPreset preset;
    preset.setImageFormat(format);
    preset.setAlternativeImageFormat(alternative);
    QTEST(preset.imageFormatUTI(source), "type");
    QTEST(preset.filenameExtensions(source).join(u' '), "extensions");
}

void SavingPresetTest::offeredFormats()
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
    QCOMPARE(SavingPreset::supportedFileFormats(), expected + QStringList(u"Original"_qs));
    QVERIFY(expected.contains(u"JPEG"_qs) && expected.contains(u"PNG"_qs));
    QCOMPARE(SavingPreset::utiForFileExtension(u"JpEg"_qs), u"image/jpeg"_qs);
    for (const QString &other : {u"jpe"_qs, u"jfif"_qs, u"dib"_qs, u"webp"_qs, u"Original"_qs, QString()})
        QCOMPARE(SavingPreset::utiForFileExtension(other), QString());
    QVERIFY(!SavingPreset::supportedUTI(u"image/webp"_qs));
}

void SavingPresetTest::writesTheFileToTheLetter()
{
    SavingPreset::setLastUsedPresetID(40);
    SavingPresetValues second;
    second.name = QString();
    second.filenameTokens.clear();
    second.fileBaseNameCase = QString();
    second.fileExtensionCase = QString();
    const auto first = std::make_shared<SavingPreset>(firstOfFile());
    const std::vector presets{first, std::make_shared<SavingPreset>(second)};
    const QString path = m_folder.path(u"written.pxspr"_qs);
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

void SavingPresetTest::readsOldFiles_data()
{
    QTest::addColumn<double>("version");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<SavingPresetValues>("expected");
    const QByteArray start = "<id>5</id><name>n</name><filename><token>a</token><t>b</t></filename>";
    const QByteArray quality = "<quality>70</quality>";
    const QByteArray lzwOff = "<tiffCompressionLZW>0\n  </tiffCompressionLZW>";
    const QByteArray numbers = "<format>1</format><alternativeFormat>0</alternativeFormat>";
    const QByteArray cases = "<fileBaseNameCase>lower case</fileBaseNameCase>"
                             "<fileExtensionCase>upper case</fileExtensionCase>";
    SavingPresetValues values;
    values.name = u"n"_qs;
    values.filenameTokens = {u"a"_qs, u"b"_qs};
    values.jpegQuality = 70;
    values.imageFormat = SavingPreset::supportedFileFormats().at(1);
    values.alternativeImageFormat = SavingPreset::supportedFileFormats().at(0);
    QTest::newRow("1.0") << 1.0 << start + numbers + quality + lzwOff + cases << values;
    values.tiffCompressionLZW = false;
    QTest::newRow("1.1") << 1.1 << start + numbers + quality + lzwOff + cases << values;
    QTest::newRow("1.2") << 1.2 << start + numbers + quality + lzwOff + cases << values;
    SavingPresetValues plain = values;
    values.fileBaseNameCase = u"lower case"_qs;
    values.fileExtensionCase = u"upper case"_qs;
    QTest::newRow("1.3") << 1.3 << start + numbers + quality + lzwOff + cases << values;
    QTest::newRow("1.3 without cases") << 1.3 << start + numbers + quality + lzwOff << plain;
    values.imageFormat = u"1"_qs; // a name, now
    values.alternativeImageFormat = u"0"_qs;
    QTest::newRow("1.4") << 1.4 << start + numbers + quality + lzwOff + cases << values;
    plain.imageFormat = u"JPEG"_qs;
    plain.alternativeImageFormat = u"JPEG"_qs;
    QTest::newRow("1.4 without formats") << 1.4 << start + quality + lzwOff << plain;
    QTest::newRow("later, in another order") << 2.0 << lzwOff + "<new />" + quality + start << plain;
    plain.jpegQuality = 0;
    QTest::newRow("no number") << 1.4 << start + "<quality>best</quality>" + lzwOff << plain;
    plain.jpegQuality = -2147483648;
    QTest::newRow("out of range") << 1.4 << start + "<quality>-1e99</quality>" + lzwOff << plain;
    plain.jpegQuality = 85;
    plain.tiffCompressionLZW = true;
    QTest::newRow("decimals; a zero that goes on")
        << 1.4 << start + "<quality> 85.9 %</quality><tiffCompressionLZW>0\r\n</tiffCompressionLZW>" << plain;
}

void SavingPresetTest::readsOldFiles()
{
    QFETCH(double, version);
    QFETCH(QByteArray, content);
    QFETCH(SavingPresetValues, expected);
    QByteArray errors;
    const auto preset = presetOf(content, version, errors);
    QVERIFY2(preset, errors.constData());
    QCOMPARE(errors, QByteArray());
    QCOMPARE(preset->presetID(), 5);
    for (const SavingPresetField &field : savingPresetFields())
        QVERIFY2(field.value(preset->values()) == field.value(expected), field.name.data());
}

void SavingPresetTest::brokenPresets_data()
{
    QTest::addColumn<double>("version");
    QTest::addColumn<QByteArray>("from");
    QTest::addColumn<QByteArray>("to");
    QTest::addColumn<QByteArray>("reason");
    const QByteArray nothing;
    QTest::newRow("no id") << 1.4 << QByteArray("<id>5</id>") << nothing << QByteArray("\"id\"");
    QTest::newRow("no name") << 1.0 << QByteArray("<name>n</name>") << nothing << QByteArray("\"name\"");
    QTest::newRow("no tokens") << 1.4 << QByteArray("<filename></filename>") << nothing
                               << QByteArray("\"filename\"");
    QTest::newRow("no quality") << 1.4 << QByteArray("<quality>1</quality>") << nothing
                                << QByteArray("\"quality\"");
    const QByteArray lzw = "<tiffCompressionLZW>1</tiffCompressionLZW>";
    QTest::newRow("no compression") << 1.1 << lzw << nothing << QByteArray("\"tiffCompressionLZW\"");
    const QByteArray format = "<format>0</format>";
    const QByteArray alternative = "<alternativeFormat>0</alternativeFormat>";
    QTest::newRow("no format") << 1.3 << format << nothing << QByteArray("\"format\"");
    QTest::newRow("no alternative") << 1.3 << alternative << nothing << QByteArray("\"alternativeFormat\"");
    QTest::newRow("format number too high")
        << 1.3 << format << QByteArray("<format>7</format>") << QByteArray("no format number 7");
    QTest::newRow("format number below zero")
        << 1.3 << format << QByteArray("<format>-1</format>") << QByteArray("no format number -1");
    QTest::newRow("name not in UTF-8")
        << 1.4 << QByteArray(">n<") << QByteArray(">\xff<") << QByteArray("not UTF-8");
    QTest::newRow("token not in UTF-8") << 1.4 << QByteArray("<filename>")
                                        << QByteArray("<filename><t>&#228;</t>") << QByteArray("not UTF-8");
}

void SavingPresetTest::brokenPresets()
{
    QFETCH(double, version);
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(QByteArray, reason);
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

void SavingPresetTest::valuesWithMarkupAreWrittenAsInitial()
{
    QByteArray damaged = kFile;
    for (const QByteArray value : {"upper case", "do not change", "Original", "PNG"})
        damaged.replace(value, value == "PNG" ? "&amp;amp;" : "a&lt;b");
    const auto presets = read(damaged);
    QVERIFY(presets);
    QCOMPARE(presets->at(0)->imageFormat(), u"a<b"_qs);
    const QString path = m_folder.path(u"again.pxspr"_qs);
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

/// What the reader would take for markup, or skip, at the start of a text.
void SavingPresetTest::everyStartIsReadBack()
{
    std::vector<std::shared_ptr<SavingPreset>> presets;
    for (const QString &text : {u"\"q\" 'r'"_qs, u"'"_qs, u"=1"_qs, u"/>"_qs, u"?>"_qs, u">1"_qs, u" a "_qs,
                                u"\t"_qs, u"\n\n"_qs, u"\r\n b"_qs, u"&#34;"_qs, u"-"_qs}) {
        SavingPresetValues values;
        values.name = text;
        if (text != u"&#34;") // tokens are written raw
            values.filenameTokens = {text, u"width"_qs};
        presets.push_back(std::make_shared<SavingPreset>(values));
    }
    SavingPresetValues damaged;
    damaged.fileBaseNameCase = u"=lower case"_qs; // goes back to its initial value
    presets.push_back(std::make_shared<SavingPreset>(damaged));
    const QString path = m_folder.path(u"starts.pxspr"_qs);
    QVERIFY(SavingPreset::writeObjects(presets, path, kAppID));
    auto again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
    QVERIFY(again && again->size() == presets.size());
    for (std::size_t i = 0; i + 1 < presets.size(); ++i)
        QCOMPARE(again->at(i)->values(), presets[i]->values());
    QCOMPARE(again->back()->values(), SavingPresetValues());

    presets.front()->setName(QChar(0xD800) + u"a"_qs + QChar(0xDC00));
    presets.front()->setFilenameTokens({QString(QChar(0xDFFF)), u"\U0001F4F7"_qs});
    QVERIFY(SavingPreset::writeObjects(presets, path, kAppID));
    again = SavingPreset::readObjectsFromFile(path, kAppID, m_code);
    QVERIFY(again);
    QCOMPARE(again->front()->name(), u"\uFFFDa\uFFFD"_qs);
    QCOMPARE(again->front()->filenameTokens(), (QStringList{u"\uFFFD"_qs, u"\U0001F4F7"_qs}));
}

void SavingPresetTest::whatCannotBeReadBackIsNotWritten()
{
    const QString path = m_folder.path(u"markup.pxspr"_qs);
    QVERIFY(SavingPreset::writeObjects({std::make_shared<SavingPreset>(firstOfFile())}, path, kAppID));
    const auto contents = [&path] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    const QByteArray before = contents();
    QVERIFY(!before.isEmpty());
    SavingPresetValues named;
    named.name = u"cut"_qs + QChar(0) + u"off"_qs;
    std::vector<SavingPresetValues> refused{named};
    for (const QString &token : {u"a<b"_qs, u"R&D"_qs, u"a&amp;b"_qs, u"&#34;"_qs, u"<!--"_qs, named.name}) {
        SavingPresetValues values;
        values.filenameTokens = {u"filename"_qs, token};
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

void SavingPresetTest::damagedFilesNeverCrash()
{
    const auto tryBytes = [](const QByteArray &xml) {
        // Memory of exactly this size, so that the sanitizer sees a step over its end.
        const std::vector<char> exact(xml.begin(), xml.end());
        XMLParser parser([](const QByteArray &) {});
        const bool isRead =
            parser.parse(QByteArray::fromRawData(exact.data(), static_cast<qsizetype>(exact.size())));
        for (qsizetype i = 0; isRead && i < parser.root()->subelementCount(); ++i)
            SavingPreset::initWithXMLData(*parser.root()->subelement(i), 1.3);
        return isRead;
    };
    const qsizetype end = kFile.size() - 1; // a line end, which may be missing
    for (qsizetype length = 0; length < end; ++length)
        QVERIFY2(!tryBytes(kFile.first(length)), qPrintable(QString::number(length)));
    QVERIFY(tryBytes(kFile.first(end)));
    for (qsizetype i = 0; i < kFile.size(); ++i) {
        for (const char mask : {'\x01', '\x02', '\x20', '\x7f', '\xff', kFile.at(i)}) { // the last one: NUL
            QByteArray damaged = kFile;
            damaged[i] = static_cast<char>(damaged.at(i) ^ mask);
            tryBytes(damaged);
        }
    }
}

QTEST_GUILESS_MAIN(SavingPresetTest)
#include "savingpreset_test.moc"
