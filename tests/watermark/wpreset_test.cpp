// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/fontcatalog.h"
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

} // namespace

class WPresetTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableHoldsEveryFieldInOrder();
    void aNewPresetNamesYearAndUser();
    void aFileThatIsNotThereMakesANewPreset();
    void everyFieldReportsItsChangesOnce();
    void theAnchorHidesOffsets();
    void aCopyIsEqualAndSeparate();
    void fieldsAreSetFromTexts_data();
    void fieldsAreSetFromTexts();
    void wrongValuesAreRefused_data();
    void wrongValuesAreRefused();
};

void WPresetTest::theTableHoldsEveryFieldInOrder()
{
    const QStringList names =
        u"name type textTokens font fontSize fontSizeUnit textAlignment fillColor stroke "
        "strokeColor strokeWidth image width widthUnit anchorPoint offsetHorizontal "
        "offsetHorizontalUnit offsetVertical offsetVerticalUnit angle rotation flip "
        "replicateHorizontal replicateHorizontalDistance "
        "replicateHorizontalDistanceUnit replicateVertical replicateVerticalDistance "
        "replicateVerticalDistanceUnit opacity blendMode shadow shadowBlur shadowOffset "
        "shadowOffsetUnit shadowAngle background backgroundColor backgroundPaddingTop "
        "backgroundPaddingBottom backgroundPaddingLeft backgroundPaddingRight "
        "backgroundPaddingUnit backgroundOpacity backgroundFullWidth "
        "assignedSavingPreset"_qs.split(u' ');
    QStringList found;
    for (const WPresetField &field : wPresetFields()) {
        found.append(field.name);
        // The archive's keys are the names with their first letter in upper case.
        const QString capital = QString(field.name.first(1)).toUpper() + field.name.sliced(1);
        QCOMPARE(QString(field.archiveKey), u"WP"_qs + capital);
    }
    QCOMPARE(found, names);
}

void WPresetTest::aNewPresetNamesYearAndUser()
{
    const FontCatalog fonts;
    const WPreset preset(fonts);
    QCOMPARE(preset.textTokens().size(), 1);
    QVERIFY(!fullUserName().isEmpty());
    const QString year = QDate::currentDate().toString(u"yyyy"_qs);
    QCOMPARE(preset.textTokens().first(), QString(QChar(0xa9)) + u' ' + year + u' ' + fullUserName());
    QVERIFY(fonts.fontNamed(preset.font(), 10).has_value());
}

void WPresetTest::aFileThatIsNotThereMakesANewPreset()
{
    const FontCatalog fonts;
    const std::unique_ptr<WPreset> preset = WPreset::initWithFile(u"/no/such/file"_qs, fonts);
    QVERIFY(preset->values() == WPreset(fonts).values());
    QVERIFY(!preset->parent());
}

void WPresetTest::everyFieldReportsItsChangesOnce()
{
    WPreset preset{WPresetValues()};
    QStringList observed;
    auto observer = std::make_unique<QObject>();
    preset.addObserverForAllKeys(
        observer.get(), [&](const WPresetField &field, auto &&, auto &&) { observed.append(field.name); });
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

void WPresetTest::theAnchorHidesOffsets()
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

void WPresetTest::aCopyIsEqualAndSeparate()
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

void WPresetTest::fieldsAreSetFromTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QJsonValue>("json");
    QTest::newRow("number") << "fontSize"
                            << "12" << QJsonValue(12);
    QTest::newRow("whole number with decimals") << "fontSize"
                                                << "12.0" << QJsonValue(12);
    QTest::newRow("absent number") << "opacity"
                                   << "null" << QJsonValue();
    QTest::newRow("float") << "angle"
                           << "-12.5" << QJsonValue(-12.5);
    QTest::newRow("boolean") << "shadow"
                             << "true" << QJsonValue(true);
    QTest::newRow("unit") << "widthUnit"
                          << "% of long edge" << QJsonValue(u"% of long edge"_qs);
    QTest::newRow("colour") << "fillColor"
                            << "#ff8800" << QJsonValue(u"#ff8800"_qs);
    QTest::newRow("colour with alpha") << "fillColor"
                                       << "#FF8800cc" << QJsonValue(u"#ff8800cc"_qs);
    QTest::newRow("colour, quoted") << "fillColor"
                                    << "\"#01020304\"" << QJsonValue(u"#01020304"_qs);
    QTest::newRow("list") << "textTokens"
                          << "[\"(c) \",\"creator\"]" << QJsonValue(QJsonArray{u"(c) "_qs, u"creator"_qs});
    QTest::newRow("one piece") << "textTokens"
                               << "(c) me" << QJsonValue(QJsonArray{u"(c) me"_qs});
    QTest::newRow("a piece that is a number") << "textTokens"
                                              << "2024" << QJsonValue(QJsonArray{u"2024"_qs});
    QTest::newRow("a text that is a number") << "name"
                                             << "2024" << QJsonValue(u"2024"_qs);
    QTest::newRow("a text with JSON in it") << "name"
                                            << "1],[2" << QJsonValue(u"1],[2"_qs);
    QTest::newRow("a quoted text") << "name"
                                   << "\"a\\nb\"" << QJsonValue(u"a\nb"_qs);
    QTest::newRow("blend mode") << "blendMode"
                                << "Color Dodge" << QJsonValue(u"Color Dodge"_qs);
}

void WPresetTest::fieldsAreSetFromTexts()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QJsonValue, json);
    WPresetValues values;
    const Result<void> set = setFieldFromText(values, name, text);
    QVERIFY2(set.has_value(), qPrintable(set ? QString() : set.error().text));
    QCOMPARE(asJson(values).value(name), json);
    WPresetValues again;
    QVERIFY(setField(again, name, asJson(values).value(name)).has_value());
    QVERIFY(again == values);
}

void WPresetTest::wrongValuesAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("hint");
    QTest::newRow("unknown field") << "fontsize"
                                   << "1"
                                   << "shadowAngle";
    QTest::newRow("unknown unit") << "widthUnit"
                                  << "percent"
                                  << "% of short edge";
    QTest::newRow("fraction") << "width"
                              << "1.5"
                              << "whole number";
    QTest::newRow("too large") << "width"
                               << "2147483648"
                               << "whole number";
    QTest::newRow("not a number") << "width"
                                  << "wide"
                                  << "whole number";
    QTest::newRow("too large a float") << "angle"
                                       << "1e39"
                                       << "number";
    QTest::newRow("boolean") << "stroke"
                             << "1"
                             << "true or false";
    QTest::newRow("colour's name") << "fillColor"
                                   << "red"
                                   << "#rrggbb";
    QTest::newRow("short colour") << "fillColor"
                                  << "#fff"
                                  << "#rrggbb";
    QTest::newRow("not hexadecimal") << "fillColor"
                                     << "#12345g"
                                     << "#rrggbb";
    QTest::newRow("list of numbers") << "textTokens"
                                     << "[1]"
                                     << "list of texts";
    QTest::newRow("missing picture") << "image"
                                     << "/nowhere/logo.png"
                                     << "/nowhere/logo.png";
    QTest::newRow("saving preset") << "assignedSavingPreset"
                                   << "7"
                                   << "saving preset";
}

void WPresetTest::wrongValuesAreRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, text);
    QFETCH(QString, hint);
    WPresetValues values;
    const Result<void> set = setFieldFromText(values, name, text);
    QVERIFY(!set.has_value());
    QVERIFY2(set.error().text.contains(hint), qPrintable(set.error().text));
    if (name != u"image"_qs)
        QVERIFY2(set.error().text.contains(name), qPrintable(set.error().text));
    QVERIFY(values == WPresetValues());
}

QTEST_MAIN(WPresetTest)
#include "wpreset_test.moc"
