// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/fontcatalog.h"
#include "support/datarows.h"
#include "support/testenvironment.h"
#include "watermark/wpreset.h"

#include <QDate>
#include <QGuiApplication>
#include <QJsonArray>
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

struct FieldsAreSetFromTexts {
    test::Text name;
    test::Text field;
    test::Text text;
    QJsonValue json;
};

struct WrongValuesAreRefused {
    test::Text name;
    test::Text field;
    test::Text text;
    test::Text hint;
};

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

    void fieldsAreSetFromTexts_data()
    {
        test::addRows<FieldsAreSetFromTexts>({
            {"number", "fontSize", "12", QJsonValue(12)},
            {"whole number with decimals", "fontSize", "12.0", QJsonValue(12)},
            {"absent number", "opacity", "null", QJsonValue()},
            {"float", "angle", "-12.5", QJsonValue(-12.5)},
            {"boolean", "shadow", "true", QJsonValue(true)},
            {"unit", "widthUnit", "% of long edge", QJsonValue(u"% of long edge"_qs)},
            {"color", "fillColor", "#ff8800", QJsonValue(u"#ff8800"_qs)},
            {"color with alpha", "fillColor", "#FF8800cc", QJsonValue(u"#ff8800cc"_qs)},
            {"color, quoted", "fillColor", "\"#01020304\"", QJsonValue(u"#01020304"_qs)},
            {"list", "textTokens", "[\"(c) \",\"creator\"]",
             QJsonValue(QJsonArray{u"(c) "_qs, u"creator"_qs})},
            {"one piece", "textTokens", "(c) me", QJsonValue(QJsonArray{u"(c) me"_qs})},
            {"a piece that is a number", "textTokens", "2024", QJsonValue(QJsonArray{u"2024"_qs})},
            {"a text that is a number", "name", "2024", QJsonValue(u"2024"_qs)},
            {"a text with JSON in it", "name", "1],[2", QJsonValue(u"1],[2"_qs)},
            {"a quoted text", "name", "\"a\\nb\"", QJsonValue(u"a\nb"_qs)},
            {"blend mode", "blendMode", "Color Dodge", QJsonValue(u"Color Dodge"_qs)},
        });
    }

    void fieldsAreSetFromTexts()
    {
        const auto [name, field, text, json] = test::currentRow<FieldsAreSetFromTexts>();
        WPresetValues values;
        const Result<void> set = setFieldFromText(values, field, text);
        QVERIFY2(set.has_value(), qPrintable(set ? QString() : set.error().text));
        QCOMPARE(asJson(values).value(field), json);
        WPresetValues again;
        QVERIFY(setField(again, field, asJson(values).value(field)).has_value());
        QVERIFY(again == values);
    }

    void wrongValuesAreRefused_data()
    {
        test::addRows<WrongValuesAreRefused>({
            {"unknown field", "fontsize", "1", "shadowAngle"},
            {"unknown unit", "widthUnit", "percent", "% of short edge"},
            {"fraction", "width", "1.5", "whole number"},
            {"too large", "width", "2147483648", "whole number"},
            {"not a number", "width", "wide", "whole number"},
            {"too large a float", "angle", "1e39", "number"},
            {"boolean", "stroke", "1", "true or false"},
            {"color's name", "fillColor", "red", "#rrggbb"},
            {"short color", "fillColor", "#fff", "#rrggbb"},
            {"not hexadecimal", "fillColor", "#12345g", "#rrggbb"},
            {"list of numbers", "textTokens", "[1]", "list of texts"},
            {"missing picture", "image", "/nowhere/logo.png", "/nowhere/logo.png"},
            {"saving preset", "assignedSavingPreset", "7", "saving preset"},
        });
    }

    void wrongValuesAreRefused()
    {
        const auto [name, field, text, hint] = test::currentRow<WrongValuesAreRefused>();
        WPresetValues values;
        const Result<void> set = setFieldFromText(values, field, text);
        QVERIFY(!set.has_value());
        QVERIFY2(set.error().text.contains(hint), qPrintable(set.error().text));
        if (field != u"image"_qs)
            QVERIFY2(set.error().text.contains(field), qPrintable(set.error().text));
        QVERIFY(values == WPresetValues());
    }
};

QTEST_MAIN(WPresetTest)
#include "wpreset_test.moc"
