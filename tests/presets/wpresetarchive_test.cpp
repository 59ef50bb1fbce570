// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/keyedarchive.h"
#include "presets/savingpreset.h"
#include "presets/wpresetarchive.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/keyedarchives.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QtTest>

#include <sys/stat.h>

#include <map>

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
        const int id = static_cast<int>(field.id);
        const std::map<FieldKind, FieldValue> unusual{
            {FieldKind::String, u"%1 \u00e9\U0001F4F7"_s.arg(field.name)},
            {FieldKind::Strings, QStringList{u"\u00a9 "_s, u"creator"_s}},
            {FieldKind::Integer, WholeNumber(-1000 - id)},
            {FieldKind::Float, FloatNumber(12.34F)},
            {FieldKind::Color, QColor(1, 2, id, 77)}};
        if (field.kind == FieldKind::Boolean)
            field.setValue(values, FieldValue(!std::get<bool>(field.value(values))));
        else if (const auto found = unusual.find(field.kind); found != unusual.end())
            field.setValue(values, found->second);
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
        values.image = WatermarkPicture::fromImage(flatPicture({2, 2}));
        values.assignedSavingPreset = savingPreset;
        WPresetList presets = listOf(values);
        presets.push_back(std::make_shared<WPreset>(WPresetValues()));
        QVERIFY(writeWPresets(presets, file("written.pxwpr")));

        const QByteArray json = keyedArchiveAsJson(file("written.pxwpr"));
        QVERIFY(
            json.contains(R"("$top": {"Application": "Quorvel Plexa", "FileVersion": 1.2000000476837158, )"
                          R"("WPresets": {"NS.objects": [{"WPName": "New Preset", "WPType": "Text", )"));
        QStringList expected = words(
            "WPName WPType WPTextTokens WPFont WPFontSize WPFontSizeUnit WPTextAlignment WPFillColor "
            "WPStroke WPStrokeColor WPStrokeWidth WPImage WPWidth WPWidthUnit WPAnchorPoint "
            "WPOffsetHorizontal WPOffsetHorizontalUnit WPOffsetVertical WPOffsetVerticalUnit WPAngle "
            "WPRotation WPFlip WPReplicateHorizontal WPReplicateHorizontalDistance "
            "WPReplicateHorizontalDistanceUnit WPReplicateVertical WPReplicateVerticalDistance "
            "WPReplicateVerticalDistanceUnit WPOpacity WPBlendMode WPShadow WPShadowBlur WPShadowOffset "
            "WPShadowOffsetUnit WPShadowAngle WPBackground WPBackgroundColor WPBackgroundPaddingTop "
            "WPBackgroundPaddingBottom WPBackgroundPaddingLeft WPBackgroundPaddingRight "
            "WPBackgroundPaddingUnit WPBackgroundOpacity WPBackgroundFullWidth WPAssignedSavingPreset");
        QStringList found;
        auto keys = QRegularExpression(u"\"(WP\\w+)\": "_s).globalMatch(QString::fromUtf8(json));
        while (keys.hasNext())
            found.append(keys.next().captured(1));
        QCOMPARE(found.mid(1, expected.size()), expected); // after "WPresets"
        found.remove(0, 1 + expected.size());
        expected.removeAll(u"WPImage"_s);
        expected.removeAll(u"WPAssignedSavingPreset"_s);
        QCOMPARE(found, expected);
        QVERIFY(json.contains("\"WPAssignedSavingPreset\": " + QByteArray::number(savingPreset->presetID())));
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
        const QImage seen = paintedPicture({3, 2}, QImage::Format_ARGB32_Premultiplied, [](int x, int y) {
            return qRgba(200, 40 * (3 * y + x), 5, 50 * (3 * y + x));
        });
        const QImage opaque = flatPicture({2, 1}, QColor(9, 8, 7));
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
        QVERIFY(writeFile(file("drawing.tif"), image.imageRepresentations().bitmaps.first().toByteArray()));
        QCOMPARE(magick("%1 -format '%w %h %[pixel:p{9,9}]' info:", file("drawing.tif")),
                 QByteArray("2048 1024 srgba(255,0,0,0.498039)"));
    }

    void picturesAreKeptAsTheyAre()
    {
        // Without a size it cannot be drawn, which is known from the start or after the first drawing.
        QList<std::tuple<QString, QSize, QSize>> rows{{u"good"_s, {40, 30}, {40, 30}},
                                                      {u"ends early"_s, {40, 30}, {}},
                                                      {u"smaller one left"_s, {40, 30}, {4, 3}}};
        for (const QString &name :
             words("nonsense 'no directory' 'no color space' vector foreign text absurd"))
            rows.append({name, {}, {}});
        for (const auto &[name, size, drawn] : rows) {
            const auto presets = readWPresetsFromFile(file("pictures.pxwpr"));
            QVERIFY(presets);
            const auto preset =
                *std::find_if(presets->begin(), presets->end(),
                              [name = name](const auto &candidate) { return candidate->name() == name; });
            QVERIFY(!preset->image().isNull());
            QCOMPARE(preset->validPreset(), size.isValid());
            QCOMPARE(preset->image().size().toSize(), size.isValid() ? size : QSizeF().toSize());
            QCOMPARE(preset->image().image().size(), drawn.isValid() ? drawn : QSize(0, 0));
            QCOMPARE(preset->image().imageOfSize(QSize(8, 6)).isNull(), !drawn.isValid());
            // From now on known, if it was not before.
            QCOMPARE(preset->validPreset(), drawn.isValid());
            QCOMPARE(preset->values().pictureFault().contains(u'"' + name + u'"'), !drawn.isValid());

            // Written, read and written again: as others wrote it, to the last byte.
            const QJsonValue stored = m_pictures[0].value(name);
            QVERIFY(stored.isObject() || stored.isString());
            QCOMPARE(m_pictures[1].value(name), stored);
        }
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
        QList<float> shares;
        QVERIFY(!readWPresetsFromFile(file("old.pxwpr"), nullptr, {}, nullptr, [&](float share) {
            shares.append(share);
            return shares.size() < 3;
        }));
        QCOMPARE(shares, QList<float>({0, 0.25F, 0.5F}));
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
        QCOMPARE(first.image().image(), flatPicture({4, 3}, Qt::blue));

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

        // A list that could be written, but not read.
        for (std::size_t i = 0; i < 11; ++i)
            presets[i]->setTextTokens(QStringList(100'000, QString::number(i)));
        const auto refused = archivedWPresets(presets);
        QVERIFY(!refused && refused.error().text.startsWith(u"it could not be read back: "_s));

        presets.assign(10'001, std::make_shared<WPreset>(WPresetValues()));
        QVERIFY(archivedWPresets(presets).error().text.contains(u"more than 10000"_s));
    }

    void whatIsNoPresetsFile()
    {
        QCOMPARE(mkfifo(file("pipe").toLocal8Bit().constData(), 0600), 0);
        for (const char *name :
             {"foreign.pxwpr", "no-version.pxwpr", "no-list.pxwpr", "no-preset.pxwpr", "missing", "pipe"}) {
            const auto presets = readWPresetsFromFile(file(name));
            QVERIFY2(!presets && !presets.error().text.isEmpty(), name);
        }
    }

private:
    QString file(const char *name) const { return m_folder.path(name); }

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
