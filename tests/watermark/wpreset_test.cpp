// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/fontcatalog.h"
#include "support/datarows.h"
#include "support/testenvironment.h"
#include "watermark/wpreset.h"

#include <QDate>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QtTest>

using namespace plexa;

namespace
{

/// Another value than the one that is there.
FieldValue changed(const FieldValue &value)
{
    struct Change {
        FieldValue operator()(const QString &text) const { return text + u'x'; }
        FieldValue operator()(const QStringList &texts) const { return texts + QStringList(u"x"_qs); }
        FieldValue operator()(WholeNumber number) const { return WholeNumber(number.value_or(0) + 1); }
        FieldValue operator()(FloatNumber number) const { return FloatNumber(number.value_or(0) + 0.5F); }
        FieldValue operator()(bool on) const { return !on; }
        FieldValue operator()(const QColor &) const { return QColor(1, 2, 3, 4); }
        FieldValue operator()(const WatermarkPicture &) const
        {
            return WatermarkPicture::fromImage(QImage(2, 1, QImage::Format_RGB32));
        }
        FieldValue operator()(const SavingPresetPtr &) const
        {
            struct Seven : SavingPresetReference {
                qint64 presetID() const override { return 9'007'199'254'740'993; }
            };
            return SavingPresetPtr(std::make_shared<Seven>());
        }
    };
    return std::visit(Change(), value);
}

} // namespace

class WPresetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewPresetNamesYearAndUser()
    {
        const FontCatalog fonts;
        const WPreset preset(fonts);
        QCOMPARE(preset.textTokens().size(), 1);
        QVERIFY(!fullUserName().isEmpty());
        const QString year = QDate::currentDate().toString(u"yyyy"_qs);
        QCOMPARE(preset.textTokens().first(), QString(QChar(0xa9)) + u' ' + year + u' ' + fullUserName());
        QVERIFY(fonts.fontNamed(preset.font(), 10).has_value());
    }

    void defaultsOfAllFields()
    {
        const QByteArray expected = R"({"name": "New Preset", "type": "Text", "textTokens": [], "font": null,
            "fontSize": 8, "fontSizeUnit": "% of short edge", "textAlignment": 0, "fillColor": "#ffffff",
            "stroke": true, "strokeColor": "#000000", "strokeWidth": 2, "image": null, "width": 98,
            "widthUnit": "% of width", "anchorPoint": 6, "offsetHorizontal": 1,
            "offsetHorizontalUnit": "% of width", "offsetVertical": 1, "offsetVerticalUnit": "% of height",
            "angle": 0, "rotation": 0, "flip": 0, "replicateHorizontal": false,
            "replicateHorizontalDistance": 10, "replicateHorizontalDistanceUnit": "% of width",
            "replicateVertical": false, "replicateVerticalDistance": 10,
            "replicateVerticalDistanceUnit": "% of height", "opacity": 100, "blendMode": "Normal",
            "shadow": false, "shadowBlur": 5, "shadowOffset": 1, "shadowOffsetUnit": "% of short edge",
            "shadowAngle": -45, "background": false, "backgroundColor": "#000000",
            "backgroundPaddingTop": 20, "backgroundPaddingBottom": 20, "backgroundPaddingLeft": 20,
            "backgroundPaddingRight": 20, "backgroundPaddingUnit": "Pixels", "backgroundOpacity": 50,
            "backgroundFullWidth": true, "assignedSavingPreset": null})";
        QCOMPARE(asJson(WPresetValues()), QJsonDocument::fromJson(expected).object());
    }

    void everyFieldReportsItsChangesOnce()
    {
        WPreset preset{WPresetValues()};
        QStringList observed;
        auto observer = std::make_unique<QObject>();
        preset.addObserverForAllKeys(observer.get(), [&](const WPresetField &field, auto &&, auto &&) {
            observed.append(field.name);
        });
        QSignalSpy spy(&preset, &WPreset::fieldChanged);
        QStringList all;
        for (const WPresetField &field : wPresetFields()) {
            const FieldValue old = preset.value(field.id);
            const FieldValue now = changed(old);
            preset.setValue(field.id, now);
            preset.setValue(field.id, now);
            QCOMPARE(spy.size(), 1);
            const QList<QVariant> signal = spy.takeFirst();
            QVERIFY(signal.at(0).value<FieldId>() == field.id);
            QVERIFY(signal.at(1).value<FieldValue>() == old);
            QVERIFY(signal.at(2).value<FieldValue>() == now);
            all.append(field.name);
        }
        QCOMPARE(observed, all);
        preset.removeObserverForAllKeys(observer.get());
        preset.setFontSize(99);
        QCOMPARE(observed, all);
    }

    void theAnchorHidesOffsets()
    {
        WPreset preset{WPresetValues()};
        preset.setAnchorPoint(0);
        QSignalSpy spy(&preset, &WPreset::offsetHidingChanged);
        const QList<int> horizontal{1, 4, 7};
        const QList<int> vertical{3, 4, 5};
        for (int anchor = 1; anchor <= 8; ++anchor) {
            preset.setAnchorPoint(anchor);
            QCOMPARE(preset.offsetHorizontalHidden(), horizontal.contains(anchor));
            QCOMPARE(preset.offsetVerticalHidden(), vertical.contains(anchor));
            QCOMPARE(preset.offsetHidden(), anchor == 4);
        }
        QCOMPARE(spy.size(), 8);
    }

    void aCopyIsEqualAndSeparate()
    {
        WPreset preset{WPresetValues()};
        for (const WPresetField &field : wPresetFields())
            preset.setValue(field.id, changed(preset.value(field.id)));
        const std::unique_ptr<WPreset> copy = preset.copy();
        QVERIFY(copy->values() == preset.values());
        WPreset other{WPresetValues()};
        other.setValues(preset.values());
        QVERIFY(other.values() == preset.values());
        copy->setName(u"other"_qs);
        QVERIFY(preset.name() != copy->name());
        QCOMPARE(asJson(preset.values()).value(u"assignedSavingPreset").toInteger(), 9'007'199'254'740'993);
    }

    void fieldsAreSetFromTexts()
    {
        using Row = std::tuple<test::Text, test::Text, QJsonValue>;
        for (const auto &[field, text, json] : std::initializer_list<Row>{
                 {"fontSize", "12", QJsonValue(12)},
                 {"fontSize", "12.0", QJsonValue(12)},
                 {"opacity", "null", QJsonValue()},
                 {"angle", "-12.5", QJsonValue(-12.5)},
                 {"shadow", "true", QJsonValue(true)},
                 {"widthUnit", "% of long edge", QJsonValue(u"% of long edge"_qs)},
                 {"fillColor", "#ff8800", QJsonValue(u"#ff8800"_qs)},
                 {"fillColor", "#FF8800cc", QJsonValue(u"#ff8800cc"_qs)},
                 {"fillColor", "\"#01020304\"", QJsonValue(u"#01020304"_qs)},
                 {"textTokens", "[\"(c) \",\"creator\"]", QJsonValue(QJsonArray{u"(c) "_qs, u"creator"_qs})},
                 {"textTokens", "(c) me", QJsonValue(QJsonArray{u"(c) me"_qs})},
                 {"name", "2024", QJsonValue(u"2024"_qs)},
                 {"name", "1],[2", QJsonValue(u"1],[2"_qs)},
                 {"name", "\"a\\nb\"", QJsonValue(u"a\nb"_qs)},
                 {"blendMode", "Color Dodge", QJsonValue(u"Color Dodge"_qs)}}) {
            WPresetValues values;
            const Result<void> set = setFieldFromText(values, field, text);
            QVERIFY2(set.has_value(), qPrintable(set ? QString() : set.error().text));
            QCOMPARE(asJson(values).value(field), json);
            WPresetValues again;
            QVERIFY(setField(again, field, asJson(values).value(field)).has_value());
            QVERIFY(again == values);
        }
    }

    void wrongValuesAreRefused()
    {
        using Row = std::tuple<test::Text, test::Text, test::Text>;
        for (const auto &[field, text, hint] :
             std::initializer_list<Row>{{"fontsize", "1", "shadowAngle"},
                                        {"widthUnit", "percent", "% of short edge"},
                                        {"width", "1.5", "whole number"},
                                        {"width", "2147483648", "whole number"},
                                        {"width", "wide", "whole number"},
                                        {"angle", "1e39", "number"},
                                        {"stroke", "1", "true or false"},
                                        {"fillColor", "red", "#rrggbb"},
                                        {"fillColor", "#fff", "#rrggbb"},
                                        {"fillColor", "#12345g", "#rrggbb"},
                                        {"textTokens", "[1]", "list of texts"},
                                        {"textTokens", "5", "list of texts in JSON, as in '[\"Photo: \""},
                                        {"textTokens", "null", "write '[\"null\"]'"},
                                        {"textTokens", "{}", "list of texts"},
                                        {"textTokens", "[(c) ,creator]", "is not JSON"},
                                        {"textTokens", "[a],[b]", "is not JSON"},
                                        {"blendMode", "multiply", "Multiply, Screen"},
                                        {"type", "text", "Text, Image"},
                                        {"fontSizeUnit", "Pixels", "Points"},
                                        {"anchorPoint", "77", "from 0 to 8 (0 top left"},
                                        {"opacity", "900", "from 0 to 100"},
                                        {"opacity", "-1", "from 0 to 100"},
                                        {"flip", "4", "3 both"},
                                        {"fontSize", "0", "from 1 to"},
                                        {"strokeWidth", "-100000", "from -300 to 300"},
                                        {"image", "/nowhere/logo.png", "/nowhere/logo.png"},
                                        {"assignedSavingPreset", "7", "saving preset"}}) {
            WPresetValues values;
            const Result<void> set = setFieldFromText(values, field, text);
            QVERIFY(!set.has_value());
            QVERIFY2(set.error().text.contains(hint), qPrintable(set.error().text));
            if (field != u"image"_qs)
                QVERIFY2(set.error().text.contains(field), qPrintable(set.error().text));
            QVERIFY(values == WPresetValues());
        }
    }
};

QTEST_MAIN(WPresetTest)
#include "wpreset_test.moc"
