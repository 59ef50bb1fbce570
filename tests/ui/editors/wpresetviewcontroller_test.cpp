// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "ui/editors/wpresetviewcontroller.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/colorwell.h"
#include "ui/widgets/foldingsection.h"
#include "ui/widgets/imagewell.h"
#include "ui/widgets/linebreaks.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QColorDialog>
#include <QComboBox>
#include <QCompleter>
#include <QDoubleSpinBox>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QWheelEvent>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The editor, shown, of a preset with shadow, outline, box and repeats, so that no row is hidden.
struct Editor {
    Editor()
    {
        for (FoldingSection *const section : view.findChildren<FoldingSection *>())
            section->setFolded(false);
        WPresetValues values = WPresetValues::forNewPreset(files.fonts);
        values.shadow = values.background = values.replicateHorizontal = values.replicateVertical = true;
        values.backgroundFullWidth = false;
        values.anchorPoint = 0;
        preset = std::make_shared<WPreset>(values);
        view.setPreset(preset);
        view.resize(320, 1400);
        view.show();
        isActive = QTest::qWaitForWindowActive(&view);
    }

    template<class Widget>
    Widget &find(const QString &name) const
    {
        auto *const found = view.findChild<Widget *>(name);
        if (!found)
            qFatal("no control named %s", qPrintable(name));
        return *found;
    }
    bool isShown(const char *name) const { return find<QWidget>(QLatin1String(name)).isVisible(); }

    WorkingSet files;
    std::shared_ptr<WPreset> preset;
    WPresetViewController view{{files.store, files.fonts, files.defaults},
                               WPresetViewController::SavingPresetRow::Shown};
    bool isActive = false;
};

/// @param delta  of the wheel, 120 a notch
void turnWheel(QWidget &control, int delta)
{
    control.setFocus();
    const QPointF center = QRectF(control.rect()).center();
    QWheelEvent event(center, control.mapToGlobal(center), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&control, &event);
}

} // namespace

class WPresetViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Each field has a control, which follows the preset and writes what the user does.
    void fields_data()
    {
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < wPresetFields().size(); ++i)
            QTest::newRow(wPresetFields()[i].name.latin1()) << int(i);
    }
    void fields()
    {
        QFETCH(int, index);
        const WPresetField &field = wPresetFields()[std::size_t(index)];
        Editor editor;
        QVERIFY(editor.isActive);
        const QString name = field.name;
        const auto value = [&] { return editor.preset->value(field.id); };
        const FieldValue before = value();
        if (auto *const box = editor.view.findChild<QSpinBox *>(name + u"TextField"_qs)) {
            editor.preset->setValue(field.id, WholeNumber(37));
            QCOMPARE(box->value(), 37);
            box->setFocus();
            QTest::keyClick(box, Qt::Key_Up);
            QCOMPARE(value(), FieldValue(WholeNumber(38)));
            QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(box, u"12"_qs);
            QCOMPARE(value(), FieldValue(WholeNumber(12)));
            QTest::keyClicks(box, u".61"_qs);
            QCOMPARE(value(), FieldValue(WholeNumber(13)));
            QTest::keyClick(box, Qt::Key_Return);
            QCOMPARE(box->cleanText(), u"13"_qs);
            QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(box, u"7,4"_qs);
            QCOMPARE(value(), FieldValue(WholeNumber(7)));
        } else if (auto *const unit = editor.view.findChild<QComboBox *>(name + u"PopUp"_qs);
                   unit && field.kind == FieldKind::String) {
            editor.preset->setValue(field.id,
                                    FieldValue(unit->itemData(1 + (unit->itemText(1).isEmpty())).toString()));
            QCOMPARE(FieldValue(unit->currentData().toString()), value());
            const FieldValue shown = value();
            unit->setFocus();
            QTest::keyClick(unit, Qt::Key_Down);
            QVERIFY(value() != shown);
            QCOMPARE(FieldValue(unit->currentData().toString()), value());
            editor.preset->setValue(field.id, FieldValue(u"furlongs"_qs));
            QCOMPARE(unit->currentIndex(), -1);
            QCOMPARE(value(), FieldValue(u"furlongs"_qs));
        } else if (field.kind == FieldKind::Boolean) {
            auto &box = editor.find<QAbstractButton>(name + u"CheckBox"_qs);
            QTest::keyClick(&box, Qt::Key_Space);
            QCOMPARE(value(), FieldValue(!std::get<bool>(before)));
            editor.preset->setValue(field.id, before);
            QCOMPARE(box.isChecked(), std::get<bool>(before));
        } else if (field.kind == FieldKind::Color) {
            auto &well = editor.find<ColorWell>(name + u"Well"_qs);
            QTest::mouseClick(&well, Qt::LeftButton, {}, QPoint(10, 10));
            auto *const dialog = well.findChild<QColorDialog *>();
            QVERIFY(dialog);
            dialog->setCurrentColor(QColor(1, 2, 3));
            QCOMPARE(value(), FieldValue(QColor(1, 2, 3))); // while the dialog is open
            QTest::keyClick(dialog, Qt::Key_Escape);
            QCOMPARE(value(), before);
            // A change from outside closes the dialog, whose former color may be that of another preset.
            QTest::mouseClick(&well, Qt::LeftButton, {}, QPoint(10, 10));
            editor.preset->setValue(field.id, FieldValue(QColor(4, 5, 6)));
            QVERIFY(!QApplication::activeModalWidget());
            QCOMPARE(value(), FieldValue(QColor(4, 5, 6)));
        } else if (field.kind == FieldKind::Float) {
            auto &wheel = editor.find<QAbstractSlider>(name + u"Slider"_qs);
            auto &box = editor.find<QDoubleSpinBox>(name + u"Field"_qs);
            editor.preset->setValue(field.id, FloatNumber(30.5F));
            QCOMPARE(box.value(), 30.5);
            QCOMPARE(value(), FieldValue(FloatNumber(30.5F)));
            // A quarter of a turn is up.
            QTest::mouseClick(&wheel, Qt::LeftButton, {}, QPoint(wheel.width() / 2, 2));
            QCOMPARE(box.value(), 90.0);
            QTest::keyClick(&wheel, Qt::Key_Right);
            QCOMPARE(value(), FieldValue(FloatNumber(89.0F)));
            for (const int part : {60, 60, 40})
                turnWheel(wheel, part);
            QCOMPARE(value(), FieldValue(FloatNumber(90.0F)));
            turnWheel(wheel, -160);
            QCOMPARE(value(), FieldValue(FloatNumber(89.0F)));
            box.setFocus();
            QTest::keyClick(&box, Qt::Key_Down);
            QCOMPARE(value(), FieldValue(FloatNumber(88.0F)));
            QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(&box, u"45.5"_qs);
            QCOMPARE(value(), FieldValue(FloatNumber(45.5F)));
            QTest::keyClick(&box, Qt::Key_A, Qt::ControlModifier);
            QTest::keyClicks(&box, u"-7,5"_qs);
            QCOMPARE(value(), FieldValue(FloatNumber(-7.5F)));
        } else if (field.kind == FieldKind::Integer || field.id == FieldId::Type) {
            const bool isType = field.id == FieldId::Type;
            auto &choices = editor.find<ChoiceButtons>(
                name + (isType || field.id == FieldId::AnchorPoint ? u"RadioButtons"_qs : u"Segments"_qs));
            const QList<QAbstractButton *> buttons = choices.findChildren<QAbstractButton *>();
            for (int i = int(buttons.size()) - 1; i >= 0; --i) {
                QTest::mouseClick(buttons[i], Qt::LeftButton);
                QCOMPARE(value(),
                         isType ? FieldValue(i ? u"Image"_qs : u"Text"_qs) : FieldValue(WholeNumber(i)));
            }
            QTest::keyClick(buttons[0], Qt::Key_Right);
            QVERIFY(value() != before || isType);
            QCOMPARE(choices.index(), 1);
        }
    }

    /// A row is hidden while its values have no effect.
    void hiddenRows()
    {
        Editor editor;
        for (const auto &[anchor, across, down] : {std::tuple(0, true, true),
                                                   {1, false, true},
                                                   {3, true, false},
                                                   {4, false, false},
                                                   {7, false, true},
                                                   {8, true, true}}) {
            editor.preset->setAnchorPoint(anchor);
            QCOMPARE(editor.isShown("offsetHorizontalTextField"), across);
            QCOMPARE(editor.isShown("offsetVerticalTextField"), down);
            QCOMPARE(editor.isShown("offsetLabelHelpButton"), across || down);
        }
        using Switch = void (WPreset::*)(const bool &);
        for (const auto &[change, name, isShownWhile] :
             {std::tuple<Switch, const char *, bool>(&WPreset::setShadow, "shadowAngleField", true),
              {&WPreset::setStroke, "strokeColorWell", true},
              {&WPreset::setReplicateHorizontal, "replicateHorizontalDistanceTextField", true},
              {&WPreset::setReplicateVertical, "replicateVerticalDistanceUnitPopUp", true},
              {&WPreset::setBackgroundFullWidth, "backgroundPaddingLeftTextField", false},
              {&WPreset::setBackground, "backgroundPaddingTopTextField", true}}) {
            for (const bool isOn : {false, true}) {
                (editor.preset.get()->*change)(isOn);
                QCOMPARE(editor.isShown(name), isOn == isShownWhile);
            }
        }
    }

    void textSurvivesAnotherKind()
    {
        Editor editor;
        const QStringList text = editor.preset->textTokens();
        const auto &kinds = editor.find<ChoiceButtons>(u"typeRadioButtons"_qs);
        QTest::mouseClick(kinds.findChildren<QAbstractButton *>()[1], Qt::LeftButton);
        QVERIFY(editor.isShown("imageWell") && !editor.isShown("textTokensField"));
        QTest::mouseClick(kinds.findChildren<QAbstractButton *>()[0], Qt::LeftButton);
        QVERIFY(!editor.isShown("imageWell") && editor.isShown("textTokensField"));
        QCOMPARE(editor.preset->textTokens(), text);

        editor.view.setPreset(nullptr);
        QVERIFY(!editor.isShown("imageWell") && !editor.isShown("textTokensField"));
        QVERIFY(!editor.find<QWidget>(u"widthTextField"_qs).isEnabled());
    }

    void fonts()
    {
        Editor editor;
        auto &family = editor.find<QComboBox>(u"fontFamilyPopUp"_qs);
        auto &style = editor.find<QComboBox>(u"fontStylePopUp"_qs);
        editor.preset->setFont(u"DejaVuSans-Bold"_qs);
        QCOMPARE(family.currentText() + u'/' + style.currentText(), u"DejaVu Sans/Bold"_qs);
        // A part of a name finds the family; its first style becomes the font.
        family.setFocus();
        QTest::keyClick(&family, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&family, u"javu ser"_qs);
        QTest::keyClick(family.completer()->popup(), Qt::Key_Return);
        QCOMPARE(family.currentText(), u"DejaVu Serif"_qs);
        QCOMPARE(editor.preset->font(),
                 editor.files.fonts.postScriptName(u"DejaVu Serif"_qs,
                                                   editor.files.fonts.styles(u"DejaVu Serif"_qs)[0]));
        // What is no family's name changes nothing.
        const QString before = editor.preset->font();
        QTest::keyClick(&family, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(&family, u"Nowhere Sans"_qs);
        style.setFocus();
        QCOMPARE(editor.preset->font(), before);
        QCOMPARE(family.currentText(), u"DejaVu Serif"_qs);
        editor.preset->setFont(u"Nowhere-Bold"_qs);
        QVERIFY(family.currentText().isEmpty() && style.currentIndex() == -1 && !style.isEnabled());
        QCOMPARE(editor.preset->font(), u"Nowhere-Bold"_qs);
    }

    void pictureIsDropped()
    {
        Editor editor;
        editor.preset->setType(u"Image"_qs);
        auto &well = editor.find<ImageWell>(u"imageWell"_qs);
        const auto &facts = editor.find<QLabel>(u"pictureFacts"_qs);
        const auto drop = [&](const QString &path) {
            QMimeData data;
            data.setUrls({QUrl::fromLocalFile(path)});
            QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
            QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, {});
            return QCoreApplication::sendEvent(&well, &enter) && QCoreApplication::sendEvent(&well, &drop) &&
                   drop.isAccepted();
        };
        QVERIFY(drop(editor.files.photo("logo.png", {40, 30})));
        QTRY_COMPARE(editor.preset->image().size(), QSizeF(40, 30));
        QTRY_COMPARE(facts.text(), u"40 x 30 pixels"_qs);
        const QImage shown = well.grab().toImage();
        QTRY_COMPARE(well.grab().toImage().pixelColor(shown.width() / 2, shown.height() / 2),
                     QColor(Qt::darkGreen));
        // A file that is no picture leaves it.
        const WatermarkPicture before = editor.preset->image();
        const QString broken = editor.files.brokenPhoto(QString(120, u'x') + u".png"_qs);
        QVERIFY(drop(broken));
        QTRY_VERIFY2(withoutLineBreaks(facts.text()).contains(broken), qPrintable(facts.text()));
        QTRY_VERIFY(editor.view.widget()->width() <= editor.view.width()); // its name is wrapped
        QVERIFY(editor.preset->image() == before);
        // Another preset is selected before the file is read.
        QVERIFY(drop(editor.files.photo("other.png", {20, 10})));
        const auto second = std::make_shared<WPreset>(editor.preset->values());
        editor.view.setPreset(second);
        QTRY_COMPARE(editor.preset->image().size(), QSizeF(20, 10));
        QTRY_COMPARE(facts.text(), u"40 x 30 pixels"_qs);
        QVERIFY(second->image() == before);
    }

    void savingPresets()
    {
        Editor editor;
        auto &popUp = editor.find<QComboBox>(u"savingPresetPopUp"_qs);
        QVERIFY(!popUp.isEnabled() && popUp.currentText() == u"None"_qs);
        SavingPresetValues values;
        values.name = u"web"_qs;
        const auto web = std::make_shared<SavingPreset>(values);
        editor.files.store.savingPresetList().append({web});
        QVERIFY(popUp.isEnabled() && popUp.currentText() == u"None"_qs);
        popUp.setFocus();
        QTest::keyClick(&popUp, Qt::Key_Down);
        QVERIFY(editor.preset->assignedSavingPreset() == web);
        web->setName(u"print"_qs);
        QCOMPARE(popUp.currentText(), u"print"_qs);
    }
};

QTEST_MAIN(WPresetViewControllerTest)
#include "wpresetviewcontroller_test.moc"
