// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"
#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"
#include "support/keyedarchives.h"
#include "support/testenvironment.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <sys/stat.h>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::StringLiterals;

namespace
{

const QByteArray kSvg = "<svg xmlns='http://www.w3.org/2000/svg' width='40' height='20'>"
                        "<rect width='40' height='20' fill='#ff0000' fill-opacity='0.5'/></svg>";

/// Values of which none is the default.
WPresetValues unusualValues()
{
    WPresetValues values;
    for (const WPresetField &field : wPresetFields()) {
        switch (field.kind) {
        case FieldKind::String:
            field.setValue(values, FieldValue(u"%1 \u00e9\U0001F4F7"_s.arg(field.name)));
            break;
        case FieldKind::Strings:
            field.setValue(values, FieldValue(QStringList{u"\u00a9 "_s, u"creator"_s}));
            break;
        case FieldKind::Integer:
            field.setValue(values, FieldValue(WholeNumber(-1000 - static_cast<int>(field.id))));
            break;
        case FieldKind::Float:
            field.setValue(values, FieldValue(FloatNumber(12.34F)));
            break;
        case FieldKind::Boolean:
            field.setValue(values, FieldValue(!std::get<bool>(field.value(values))));
            break;
        case FieldKind::Color:
            field.setValue(values, FieldValue(QColor(1, 2, static_cast<int>(field.id), 77)));
            break;
        case FieldKind::Image:
        case FieldKind::SavingPreset:
            break;
        }
    }
    return values;
}

WPresetList listOf(const WPresetValues &values)
{
    return {std::make_shared<WPreset>(values)};
}

} // namespace

class WPresetArchiveTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(writeKeyedArchives(m_folder.path()));
        const auto presets = readWPresetsFromFile(file("pictures.pxwpr"));
        QVERIFY(presets && writeWPresets(*presets, file("once.pxwpr")));
        QVERIFY(writeWPresets(*readWPresetsFromFile(file("once.pxwpr")), file("twice.pxwpr")));
        m_pictures[0] = picturesIn("pictures.pxwpr");
        m_pictures[1] = picturesIn("twice.pxwpr");
    }

    void keysAndTheirOrder()
    {
        const auto savingPreset = std::make_shared<SavingPreset>();
        WPresetValues values;
        values.image = WatermarkPicture::fromImage(QImage(2, 2, QImage::Format_RGB32));
        values.assignedSavingPreset = savingPreset;
        WPresetList presets = listOf(values);
        presets.push_back(std::make_shared<WPreset>(WPresetValues()));
        QVERIFY(writeWPresets(presets, file("written.pxwpr")));

        const QByteArray json = keyedArchiveAsJson(file("written.pxwpr"));
        QVERIFY(
            json.contains(R"("$top": {"Application": "Quorvel Plexa", "FileVersion": 1.2000000476837158, )"
                          R"("WPresets": {"NS.objects": [{"WPName": "New Preset", "WPType": "Text", )"));
        const QByteArrayList expected =
            QByteArray(
                "WPName WPType WPTextTokens WPFont WPFontSize WPFontSizeUnit WPTextAlignment WPFillColor "
                "WPStroke WPStrokeColor WPStrokeWidth WPImage WPWidth WPWidthUnit WPAnchorPoint "
                "WPOffsetHorizontal WPOffsetHorizontalUnit WPOffsetVertical WPOffsetVerticalUnit WPAngle "
                "WPRotation WPFlip WPReplicateHorizontal WPReplicateHorizontalDistance "
                "WPReplicateHorizontalDistanceUnit WPReplicateVertical WPReplicateVerticalDistance "
                "WPReplicateVerticalDistanceUnit WPOpacity WPBlendMode WPShadow WPShadowBlur WPShadowOffset "
                "WPShadowOffsetUnit WPShadowAngle WPBackground WPBackgroundColor WPBackgroundPaddingTop "
                "WPBackgroundPaddingBottom WPBackgroundPaddingLeft WPBackgroundPaddingRight "
                "WPBackgroundPaddingUnit WPBackgroundOpacity WPBackgroundFullWidth WPAssignedSavingPreset")
                .split(' ');
        qsizetype at = 0;
        for (const QByteArray &key : expected) {
            const qsizetype found = json.indexOf("\"" + key + "\": ", at);
            QVERIFY2(found > at, key);
            at = found;
        }
        const QJsonObject top = QJsonDocument::fromJson(json).object().value(u"$top"_s).toObject();
        const QJsonArray list = top.value(u"WPresets"_s).toObject().value(u"NS.objects"_s).toArray();
        QCOMPARE(list.at(0).toObject().size(), expected.size() + 1); // and "$class"
        QCOMPARE(list.at(0).toObject().value(u"WPAssignedSavingPreset"_s).toInteger(),
                 savingPreset->presetID());
        const QJsonObject plain = list.at(1).toObject();
        QVERIFY(!plain.contains(u"WPImage"_s) && !plain.contains(u"WPAssignedSavingPreset"_s));
        QVERIFY(!outputOf(u"plistutil"_s, {u"-i"_s, file("written.pxwpr")}).isEmpty());
    }

    void valuesComeBack()
    {
        const auto savingPreset = std::make_shared<SavingPreset>();
        WPresetValues values = unusualValues();
        values.assignedSavingPreset = savingPreset;
        WPresetValues absent;
        for (const WPresetField &field : wPresetFields())
            std::visit([&](auto value) { field.setValue(absent, FieldValue(decltype(value)())); },
                       field.value(absent));
        WPresetList presets = listOf(values);
        presets.push_back(std::make_shared<WPreset>(absent));
        const auto bytes = archivedWPresets(presets);
        QVERIFY(bytes);
        bool isLater = true;
        const auto read = wPresetsFromArchive(*bytes, &isLater, [&](qint64 id) {
            return id == savingPreset->presetID() ? SavingPresetPtr(savingPreset) : SavingPresetPtr();
        });
        QVERIFY(read && read->size() == 2 && !isLater);
        for (const WPresetField &field : wPresetFields())
            QVERIFY2(field.value(read->front()->values()) == field.value(values), field.name.data());
        QVERIFY(read->back()->values() == absent);
        QVERIFY(!(*wPresetsFromArchive(*bytes))[0]->assignedSavingPreset());
    }

    void picturesComeBack()
    {
        QImage seen(3, 2, QImage::Format_ARGB32_Premultiplied);
        for (int i = 0; i < 6; ++i)
            seen.setPixel(i % 3, i / 3, qPremultiply(qRgba(200, 40 * i, 5, 50 * i)));
        QImage opaque(2, 1, QImage::Format_RGB32);
        opaque.fill(QColor(9, 8, 7));
        for (const QImage &image : {seen, opaque}) {
            WPresetValues values;
            values.image = WatermarkPicture::fromImage(image);
            const auto read = wPresetsFromArchive(*archivedWPresets(listOf(values)));
            QVERIFY(read);
            QCOMPARE(read->front()->image().image(), image);
        }

        WPresetValues values;
        values.image = *WatermarkPicture::fromSvg(kSvg);
        WPresetList twice = listOf(values);
        twice.push_back(twice.front()->copy());
        const auto bytes = archivedWPresets(twice);
        QVERIFY(bytes);
        QCOMPARE(bytes->count(kSvg), 1);
        const auto read = wPresetsFromArchive(*bytes);
        QCOMPARE(read->front()->image().svg(), kSvg);
        QCOMPARE(read->front()->image().size(), QSizeF(40, 20));
        QVERIFY(read->front()->image() == read->back()->image());
        // For others there are pixels, sharp enough to print.
        const auto image = ArchivedValue::readArchive(*bytes)
                               ->value(QLatin1StringView("WPresets"))
                               .array()
                               ->front()
                               .value(QLatin1StringView("WPImage"));
        QFile tiff(file("drawing.tif"));
        QVERIFY(tiff.open(QIODevice::WriteOnly));
        const QByteArrayView pixels = image.imageRepresentations().bitmaps.first();
        tiff.write(pixels.data(), pixels.size());
        tiff.close();
        QCOMPARE(outputOf(magickConvert(),
                          {tiff.fileName(), u"-format"_s, u"%w %h %[pixel:p{9,9}]"_s, u"info:"_s}),
                 QByteArray("2048 1024 srgba(255,0,0,0.498039)"));
    }

    void picturesAreKeptAsTheyAre_data()
    {
        QTest::addColumn<QSize>("size");  // none: it cannot be drawn, and that is known from the start
        QTest::addColumn<QSize>("drawn"); // none: it cannot be drawn
        QTest::newRow("good") << QSize(40, 30) << QSize(40, 30);
        for (const char *name :
             {"nonsense", "no directory", "no color space", "vector", "foreign", "text", "absurd"})
            QTest::newRow(name) << QSize() << QSize();
        QTest::newRow("ends early") << QSize(40, 30) << QSize();
        QTest::newRow("smaller one left") << QSize(40, 30) << QSize(4, 3);
    }

    void picturesAreKeptAsTheyAre()
    {
        QFETCH(QSize, size);
        QFETCH(QSize, drawn);
        const QString name = QString::fromLatin1(QTest::currentDataTag());
        const auto presets = readWPresetsFromFile(file("pictures.pxwpr"));
        QVERIFY(presets);
        const auto preset = *std::find_if(presets->begin(), presets->end(),
                                          [&](const auto &candidate) { return candidate->name() == name; });
        QVERIFY(!preset->image().isNull());
        QCOMPARE(preset->validPreset(), size.isValid());
        QCOMPARE(preset->image().size().toSize(), size.isValid() ? size : QSizeF().toSize());
        QCOMPARE(preset->image().image().size(), drawn.isValid() ? drawn : QSize(0, 0));
        QCOMPARE(preset->image().imageOfSize(QSize(8, 6)).isNull(), !drawn.isValid());
        // From now on known, if it was not before.
        QCOMPARE(preset->validPreset(), drawn.isValid());
        QCOMPARE(preset->values().pictureFault().contains(u'"' + name + u'"'), !drawn.isValid());
        WPresetValues text = preset->values();
        text.type = u"Text"_s;
        QVERIFY(text.validPreset());

        // Written, read and written again: as others wrote it, to the last byte.
        const QJsonValue picture = m_pictures[0].value(name);
        QVERIFY(picture.isObject() || picture.isString());
        QCOMPARE(m_pictures[1].value(name), picture);
    }

    void picturesAreNotDecodedUntilTheyAreDrawn()
    {
        const auto presets = readWPresetsFromFile(file("large.pxwpr"));
        QVERIFY2(presets, presets ? "" : qPrintable(presets.error().text));
        QCOMPARE(presets->size(), std::size_t(256));
        QVERIFY(presets->back()->validPreset());
        QCOMPARE(presets->back()->image().size(), QSizeF(8000, 8000));
        QVERIFY(archivedWPresets(*presets));
    }

    void oldFiles()
    {
        const auto savingPreset = std::make_shared<SavingPreset>();
        bool isLater = true;
        const auto presets = readWPresetsFromFile(file("old.pxwpr"), &isLater, [&](qint64 presetID) {
            return presetID == 57 ? SavingPresetPtr(savingPreset) : SavingPresetPtr();
        });
        QVERIFY2(presets, presets ? "" : qPrintable(presets.error().text));
        QCOMPARE(presets->size(), std::size_t(4));
        QVERIFY(!isLater);
        const WPreset &first = *presets->at(0);
        QCOMPARE(first.name(), u"Old"_s);
        QCOMPARE(first.textTokens(), QStringList({u"\u00a9 "_s, u"creator"_s}));
        QCOMPARE(first.fontSize(), WholeNumber(7));
        QCOMPARE(first.fillColor(), QColor(Qt::red));
        QVERIFY(first.stroke() && !first.replicateHorizontal());
        QCOMPARE(first.angle(), FloatNumber(90.0F));
        QCOMPARE(qRound(*first.shadowAngle() * 1000), 45'000);
        for (const WholeNumber padding : {first.backgroundPaddingTop(), first.backgroundPaddingBottom(),
                                          first.backgroundPaddingLeft(), first.backgroundPaddingRight()})
            QCOMPARE(padding, WholeNumber(12));
        QCOMPARE(first.backgroundPaddingUnit(), u"% of width"_s);
        QVERIFY(first.opacity() == std::nullopt && first.blendMode().isNull());
        QCOMPARE(first.assignedSavingPreset().get(), savingPreset.get());
        QImage largest(4, 3, QImage::Format_RGB32);
        largest.fill(Qt::blue);
        QCOMPARE(first.image().image(), largest);

        const WPreset &second = *presets->at(1);
        QCOMPARE(second.angle(), FloatNumber(-90.0F));
        QVERIFY(second.name().isNull() && !second.fontSize() && !second.width() && second.image().isNull());
        QCOMPARE(presets->at(2)->angle(), FloatNumber(-160.0F));
        QVERIFY(!presets->at(2)->assignedSavingPreset());
        const WPreset &last = *presets->at(3);
        QVERIFY(!last.angle() && !last.shadowAngle() && last.textTokens().isEmpty());
    }

    void filesOfTodayAndLater()
    {
        bool isLater = true;
        auto presets = readWPresetsFromFile(file("today.pxwpr"), &isLater);
        QVERIFY(presets && presets->size() == 2 && !isLater);
        // One object in the list twice: two presets, which are changed one by one.
        QVERIFY(presets->front() != presets->back());
        QVERIFY(presets->front()->values() == presets->back()->values());
        QCOMPARE(presets->front()->angle(), FloatNumber(270.0F));
        QCOMPARE(presets->front()->backgroundPaddingTop(), WholeNumber(3));
        QVERIFY(!presets->front()->backgroundPaddingLeft());
        presets = readWPresetsFromFile(file("later.pxwpr"), &isLater);
        QVERIFY(presets && presets->size() == 2 && isLater);
        presets = readWPresetsFromFile(file("empty.pxwpr"), &isLater);
        QVERIFY(presets && presets->empty() && !isLater);
    }

    void whatIsLeftOutIsTold()
    {
        QStringList leftOut;
        const auto presets = readWPresetsFromFile(file("some.pxwpr"), nullptr, {}, &leftOut);
        QVERIFY(presets && presets->size() == 1);
        QCOMPARE(presets->front()->name(), u"Old"_s);
        QCOMPARE(leftOut.size(), 4);
        for (qsizetype i = 0; i < leftOut.size(); ++i)
            QVERIFY(leftOut[i].startsWith(u"number %1 "_s.arg(QList({1, 2, 4, 5})[i])));
        // A key that today's form does not have may be a damaged one.
        QVERIFY(readWPresetsFromFile(file("today.pxwpr"), nullptr, {}, &leftOut));
        QCOMPARE(leftOut, QStringList{u"\"WPUnknown\" of number 1 in its list is not known"_s});

        // Of values what is there but cannot be read.
        const auto old = readWPresetsFromFile(file("old.pxwpr"), nullptr, {}, &leftOut);
        QVERIFY(old);
        QCOMPARE(leftOut.join(u'\n').remove(u" in its list cannot be read"_s),
                 QStringLiteral(
                     "\"textTokens\" of number 2\n\"fontSize\" of number 2\n\"fillColor\" of number 2\n"
                     "\"width\" of number 2\n\"shadow\" of number 2\n\"backgroundOpacity\" of number 2\n"
                     "\"textTokens\" of number 4\n\"angle\" of number 4\n\"shadowAngle\" of number 4"));
        QCOMPARE(old->at(1)->textTokens(), QStringList(u"x"_s));
        QCOMPARE(old->at(1)->opacity(), WholeNumber(40));
    }

    void bounds()
    {
        // Presets of two files that share a long text each.
        WPresetList presets;
        for (int i = 0; i < 1000; ++i) {
            WPresetValues values;
            static const QStringList texts[] = {{QString(1'000'000, u'a')}, {QString(1'000'000, u'b')}};
            values.textTokens = texts[i % 2];
            presets.push_back(std::make_shared<WPreset>(values));
        }
        const auto shared = archivedWPresets(presets);
        QVERIFY(shared && shared->size() < 4'000'000);
        const auto read = wPresetsFromArchive(*shared);
        QVERIFY(read && read->at(0)->textTokens() == presets[0]->textTokens());
        QVERIFY(read->at(0)->textTokens().constData() == read->at(2)->textTokens().constData());

        // What could be written, but not be read.
        for (std::size_t i = 0; i < 11; ++i) {
            QStringList pieces(100'000, u"x"_s);
            pieces[0] = QString::number(i);
            presets[i]->setTextTokens(pieces);
        }
        const auto refused = archivedWPresets(presets);
        QVERIFY(!refused && refused.error().text.startsWith(u"it could not be read back: "_s));

        // As many as can be read can be written.
        presets.clear();
        for (int i = 0; i < 10'000; ++i) {
            WPresetValues values = unusualValues();
            values.name = QString::number(i);
            values.textTokens = QStringList{values.name};
            values.fillColor = QColor::fromRgb(static_cast<QRgb>(i));
            presets.push_back(std::make_shared<WPreset>(values));
        }
        const auto most = archivedWPresets(presets);
        QVERIFY(most && wPresetsFromArchive(*most)->size() == presets.size());
        presets.push_back(presets.front());
        QVERIFY(archivedWPresets(presets).error().text.contains(u"more than 10000"_s));
    }

    void whatIsNoPresetsFile_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name :
             {"foreign.pxwpr", "no-version.pxwpr", "no-list.pxwpr", "no-preset.pxwpr", "missing", "pipe"})
            QTest::newRow(name) << QString::fromLatin1(name);
        QCOMPARE(mkfifo(file("pipe").toLocal8Bit().constData(), 0600), 0);
    }

    void whatIsNoPresetsFile()
    {
        QFETCH(QString, name);
        const auto presets = readWPresetsFromFile(m_folder.path(name));
        QVERIFY(!presets);
        QVERIFY(!presets.error().text.isEmpty());
    }

private:
    QString file(const char *name) const { return m_folder.path(QLatin1StringView(name)); }

    /// The pictures in an archive as JSON, by the names of their presets.
    QHash<QString, QJsonValue> picturesIn(const char *archive) const
    {
        const QByteArray json = keyedArchiveAsJson(file(archive));
        const QJsonValue list = QJsonDocument::fromJson(json)[u"$top"_s][u"WPresets"_s];
        QHash<QString, QJsonValue> pictures;
        for (const QJsonValue object : list[u"NS.objects"_s].toArray())
            pictures.insert(object[u"WPName"_s].toString(), object[u"WPImage"_s]);
        return pictures;
    }

    TestFolder m_folder;
    QHash<QString, QJsonValue> m_pictures[2]; // as others wrote them, and as we did after that
};

QTEST_GUILESS_MAIN(WPresetArchiveTest)
#include "wpresetarchive_test.moc"
