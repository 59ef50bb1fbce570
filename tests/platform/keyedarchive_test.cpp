// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"
#include "platform/propertylistcheck.h"
#include "support/bytes.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/keyedarchives.h"
#include "support/testenvironment.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

using Key = QLatin1StringView;
using Mutability = KeyedArchiver::Mutability;

struct Form {
    Text name;
    bool isXml = false;
    bool isCopy = false;
};

using Bomb = Row<QByteArray, Text>; // bytes, fault

} // namespace

class KeyedArchiveTest : public QObject
{
    Q_OBJECT

private:
    ArchivedValue read(const char *name)
    {
        const auto top = ArchivedValue::readArchive(contentsOf(m_folder.path(name)));
        return top ? *top : ArchivedValue();
    }

    /// The value, out of an archive that it was copied into twice, between other objects.
    static ArchivedValue copyOf(const ArchivedValue &value)
    {
        KeyedArchiver archiver;
        archiver.addString(u"shift the numbers of objects"_qs);
        const KeyedArchiver::Reference copy = archiver.addCopy(value.kept());
        archiver.top().setObject(Key("Other"), archiver.addColor(Qt::red));
        archiver.top().setObject(Key("Copy"), copy);
        const bool isOneObject = archiver.addCopy(value.kept()) == copy;
        const auto bytes = archiver.finish();
        const auto top =
            bytes && isOneObject ? ArchivedValue::readArchive(*bytes) : Result<ArchivedValue>(fail({}));
        return top ? top->value(Key("Copy")) : ArchivedValue();
    }

    QByteArray xmlForm(const char *name) const
    {
        return outputOf(u"plistutil"_qs, {u"-f"_qs, u"xml"_qs, u"-i"_qs, m_folder.path(name)});
    }

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase() { QVERIFY(writeKeyedArchives(m_folder.path())); }

    void othersReadWhatIsWritten()
    {
        KeyedArchiver archiver;
        KeyedArchiver::Object thing;
        thing.setObject(Key("Text"), archiver.addString(u"\u00a9 \U0001F4F7 <&>"_qs));
        thing.setObject(Key("Negative"), archiver.addInteger(-7));
        thing.setObject(Key("Half"), archiver.addFloat(0.5F));
        thing.setObject(Key("Nothing"), archiver.addString({}));
        thing.setBool(Key("On"), true);
        thing.setObject(Key("Color"), archiver.addColor(QColor(255, 0, 51, 102)));
        thing.setObject(Key("Image"), archiver.addImage({QSizeF(4, 2.5), "II*", {}}));
        archiver.top().setFloat(Key("Version"), 1.2F);
        archiver.top().setInteger(Key("Big"), 1LL << 40);
        archiver.top().setObject(
            Key("Things"),
            archiver.addArray({archiver.addObject(std::move(thing), Key("Thing"))}, Mutability::Mutable));
        const auto bytes = archiver.finish();
        QVERIFY(bytes);
        const QString path = m_folder.path("written.plist");
        QVERIFY(writeFile(path, *bytes));

        const QByteArray json = keyedArchiveAsJson(path);
        const char *const expected =
            R"({"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"Version": 1.2000000476837158, )"
            R"("Big": 1099511627776, "Things": {"NS.objects": [{"Text": "\u00a9 \ud83d\udcf7 <&>", "Negative": -7, )"
            R"("Half": 0.5, "Nothing": null, "On": true, "Color": {"NSColorSpace": 1, "NSRGB": "1 0 0.2 0.4\u0000", )"
            R"("$class": "NSColor"}, "Image": {"NSImageFlags": 549453824, "NSSize": "{4, 2.5}", )"
            R"("NSReps": {"NS.objects": [{"NS.objects": [0, {"NSTIFFRepresentation": {"NS.data": "II*", )"
            R"("$class": "NSMutableData"}, "NSInternalLayoutDirection": 0, "$class": "NSBitmapImageRep"}], )"
            R"("$class": "NSArray"}], "$class": "NSMutableArray"}, "NSColor": {"NSColorSpace": 3, )"
            R"("NSWhite": "0 0\u0000", "$class": "NSColor"}, "NSResizingMode": 0, "$class": "NSImage"}, )"
            R"("$class": "Thing"}], "$class": "NSMutableArray"}}, "$objects": "$null"})";
        QCOMPARE(json.trimmed(), QByteArray(expected));
        // A float of four bytes, as the form has for this kind.
        QVERIFY(bytes->contains(QByteArray::fromHex("223f99999a")));
        const QByteArray xml = outputOf("plistutil -i %1", path);
        QVERIFY(xml.contains("<string>NSKeyedArchiver</string>") && xml.contains("<key>CF$UID</key>"));
    }

    void whatIsWrittenIsReadBack()
    {
        KeyedArchiver archiver;
        const QColor color(1, 128, 254, 33);
        const QString strange = u"$null"_qs;
        archiver.top().setObject(Key("Color"), archiver.addColor(color));
        archiver.top().setObject(Key("Strange"), archiver.addString(strange));
        archiver.top().setObject(Key("Empty"), archiver.addString(QString::fromLatin1("")));
        archiver.top().setObject(Key("Infinite"), archiver.addFloat(std::numeric_limits<float>::infinity()));
        archiver.top().setObject(Key("Image"),
                                 archiver.addImage({QSizeF(1, 1), QByteArray("a\0b", 3), "<svg/>"}));
        archiver.top().setObject(Key("None"), archiver.addColor({}));
        const auto bytes = archiver.finish();
        QVERIFY(bytes);
        const auto top = ArchivedValue::readArchive(*bytes);
        QVERIFY(top);
        QCOMPARE(top->value(Key("Color")).color(), color);
        QCOMPARE(top->value(Key("Strange")).string(), strange);
        QCOMPARE(top->value(Key("Empty")).string(), QString::fromLatin1(""));
        QVERIFY(top->value(Key("Infinite")).isNone() && top->value(Key("None")).isNone());
        const ImageRepresentations image = top->value(Key("Image")).imageRepresentations();
        QCOMPARE(image.bitmaps, QList<QByteArrayView>({QByteArrayView("a\0b", 3)}));
        QCOMPARE(image.svg, QByteArrayView("<svg/>"));

        KeyedArchiver tooMany;
        for (qint64 i = 0; i < kMaxPropertyListKeys + 1; ++i)
            tooMany.top().setBool(Key(QByteArray::number(i).constData()), true);
        const auto refused = tooMany.finish();
        QVERIFY(!refused && !refused.error().text.contains(u"MB"_qs));
    }

    void whatOthersWriteIsRead_data()
    {
        addRows<Form>({{"binary"}, {"XML", true}, {"copied into another archive", false, true}});
    }
    void whatOthersWriteIsRead()
    {
        const auto [row, isXml, isCopy] = currentRow<Form>();
        const auto opened = ArchivedValue::readArchive(isXml ? xmlForm("values.plist")
                                                             : contentsOf(m_folder.path("values.plist")));
        QVERIFY(opened);
        const ArchivedValue top = isCopy ? copyOf(*opened) : *opened;
        QVERIFY(!top.isNone());
        const QString shared = u"shared \u00e9 \U0001F4F7"_qs;
        QCOMPARE(top.value(Key("plain")).string(), shared);
        QCOMPARE(top.value(Key("plain")).identity(), top.value(Key("again")).identity());
        QCOMPARE(top.value(Key("mutable")).string(), u"mutable"_qs);
        QCOMPARE(top.value(Key("empty")).string(), QString());
        QCOMPARE(top.value(Key("int")).integer(), -5);
        QCOMPARE(top.value(Key("double")).number(), 0.1);
        QCOMPARE(top.value(Key("inlineInt")).integer(), 1LL << 40);
        QCOMPARE(top.value(Key("inlineReal")).integer(), 1);
        QVERIFY(top.value(Key("inlineBool")).boolean() && top.value(Key("boolObject")).boolean());
        QVERIFY(!top.value(Key("missing")).boolean() && top.value(Key("none")).isNone());
        QVERIFY(!top.value(Key("nan")).number() && !top.value(Key("nan")).integer());
        QCOMPARE(top.value(Key("intNumber")).integer(), 12);
        QCOMPARE(top.value(Key("realNumber")).number(), 12.5);
        QVERIFY(top.value(Key("boolNumber")).boolean() && !top.value(Key("decimal")).number());
        const auto array = top.value(Key("array")).array();
        QVERIFY(array && array->size() == 3 && (*array)[1].isNone());
        QCOMPARE((*array)[2].string(), shared);
        QVERIFY(top.value(Key("mutableArray")).array());

        QCOMPARE(top.value(Key("calibrated")).color(), QColor(51, 102, 153));
        QCOMPARE(top.value(Key("device")).color().rgba(), qRgba(51, 102, 153, 128));
        QCOMPARE(top.value(Key("white")).color(), QColor(153, 153, 153, 102));
        QCOMPARE(top.value(Key("deviceWhite")).color(), QColor(Qt::white));
        QCOMPARE(top.value(Key("cmyk")).color(), QColor(Qt::red));
        QCOMPARE(top.value(Key("catalogue")).color(), QColor(0, 255, 0));
        QCOMPARE(top.value(Key("srgb")).color(), QColor(255, 51, 102));
        QCOMPARE(top.value(Key("wide")).color(), QColor(255, 0, 102));
        QVERIFY(!top.value(Key("pattern")).color().isValid());
        QCOMPARE(top.value(Key("image")).imageRepresentations().bitmaps,
                 QList<QByteArrayView>({QByteArrayView("first"), QByteArrayView("second")}));
    }

    void whatIsBrokenIsNone_data() { whatOthersWriteIsRead_data(); }

    void whatIsBrokenIsNone()
    {
        const ArchivedValue top =
            currentRow<Form>().isCopy ? copyOf(read("broken.plist")) : read("broken.plist");
        QVERIFY(!top.isNone());
        for (const char *key : {"far", "furthest", "null", "reference"})
            QVERIFY2(top.value(Key(key)).isNone(), key);
        for (const char *key :
             {"noClass", "badClass", "selfClass", "notAnArray", "noObjects", "wrongObjects", "color"})
            QVERIFY2(!top.value(Key(key)).array(), key);
        for (const char *key : {"color", "badColor", "shortColor", "foreignColor", "loop"})
            QVERIFY2(!top.value(Key(key)).color().isValid(), key);
        QVERIFY(top.value(Key("vector")).imageRepresentations().bitmaps.isEmpty());
        const auto loop = top.value(Key("loop")).array();
        QVERIFY(loop && loop->size() == 1);
    }

    void bombsAreRefused_data()
    {
        const auto file = [this](const char *name) { return contentsOf(m_folder.path(name)); };
        const Text damaged = "it is damaged";
        const Text tooMuch = "it holds more than can be read";
        const Text noArchive = "it is no archive of objects";
        addRow(Bomb{"unfolds to 10^16 objects", file("unfolds.plist"), tooMuch});
        addRow(Bomb{"two thousand keys", file("keys.plist"), tooMuch});
        addRow(Bomb{"a null character in a key", file("null-in-ascii-key.plist"), damaged});
        addRow(Bomb{"the same in UTF-16", file("null-in-utf16-key.plist"), damaged});
        addRow(Bomb{"nested 500 deep", file("nested.plist"), damaged});
        // One object, its place in a table of one, and the trailer.
        const auto list = [](const char *object, quint64 count = 1) {
            const QByteArray bytes = QByteArray::fromHex(object);
            const QByteArray file = "bplist00" + bytes + '\x08' + QByteArray(6, '\0') + "\x01\x01";
            return file + bigEndian(count, 8) + bigEndian(0, 8) + bigEndian(8 + bytes.size(), 8);
        };
        addRow(Bomb{"inside of itself", list("a100"), damaged});
        addRow(Bomb{"endless data", list("4f137fffffffffffffff"), damaged});
        addRow(Bomb{"endless array", list("af137fffffffffffffff"), damaged});
        addRow(Bomb{"endless table", list("09", 1ULL << 60), damaged});
        addRow(Bomb{"no archive", list("09"), noArchive});
        addRow(Bomb{"nothing", QByteArray(), damaged});
        const auto xml = [](const QByteArray &contents, const QByteArray &start = {}) {
            return "<?xml version=\"1.0\"?>" + start + "<plist>" + contents + "</plist>";
        };
        addRow(Bomb{"XML, nested 500 deep",
                    xml(QByteArray("<array>").repeated(500) + QByteArray("</array>").repeated(500)),
                    damaged});
        addRow(Bomb{"XML, two thousand keys",
                    xml("<dict>" + QByteArray("<key>k</key><true/>").repeated(2000) + "</dict>"), tooMuch});
        addRow(Bomb{"XML, with entities of its own",
                    xml("<string>&a;</string>", "<!DOCTYPE plist [<!ENTITY a \"aaaa\">]>"), damaged});
        QByteArray attributes;
        for (int i = 0; i < 100'000; ++i)
            attributes += " a" + QByteArray::number(i) + "='1'";
        addRow(Bomb{"XML, attributes", xml("<dict" + attributes + "/>"),
                    u"an element has more than 16 attributes"_qs});
        addRow(Bomb{"XML, default attributes",
                    xml("<dict/>", "<!DOCTYPE p [<!ATTLIST a" + attributes + ">]>"),
                    u"its document type is too long"_qs});
        for (const char *wrong :
             {"<integer>12345678901234567890</integer>", "<data>?</data>", "<null/>", "<string>",
              "<dict><true/></dict>", "<dict><key>k</key></dict>", "<true/><true/>", ""})
            addRow(Bomb{u"XML, "_qs + QLatin1String(wrong), xml(wrong), damaged});
        const QString wide = u"\uFEFF<plist><dict/></plist>"_qs;
        addRow(Bomb{"XML in UTF-16, no archive",
                    QByteArray(reinterpret_cast<const char *>(wide.utf16()), wide.size() * 2), noArchive});
        addRow(Bomb{"XML, no archive", xml("<dict/>"), noArchive});
    }

    void bombsAreRefused()
    {
        const auto [row, bytes, fault] = currentRow<Bomb>();
        const auto top = ArchivedValue::readArchive(bytes);
        QVERIFY(!top);
        QCOMPARE(top.error().text, fault);
    }

    void endlessAndTruncatedArchives()
    {
        // Arrays that are one array: more than an archive may hold when each is looked at.
        const auto nones = [](const ArchivedValue &array) {
            int none = 0;
            for (const ArchivedValue &element : array.array().value_or(std::vector<ArchivedValue>()))
                none += !element.array() && !element.string() ? 1 : 0;
            return none;
        };
        const ArchivedValue wide = read("wide.plist");
        QVERIFY(nones(wide.value(Key("many"))) > 0 && wide.isExhausted());
        // Texts that are one text cost no more than one.
        const ArchivedValue texts = read("wide.plist");
        QCOMPARE(nones(texts.value(Key("texts"))), 0);
        QVERIFY(!texts.isExhausted());

        for (const QByteArray &whole :
             {contentsOf(m_folder.path("values.plist")), xmlForm("values.plist").trimmed()}) {
            QVERIFY(ArchivedValue::readArchive(whole));
            for (qsizetype size = 0; size < whole.size(); ++size)
                QVERIFY(!ArchivedValue::readArchive(whole.first(size)));
        }
    }
};

QTEST_APPLESS_MAIN(KeyedArchiveTest)
#include "keyedarchive_test.moc"
