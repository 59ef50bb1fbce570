// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/savingpresetview.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "ui/saving/savemultiplepanel.h"
#include "ui/shownwindow.h"
#include "ui/widgets/choicebuttons.h"
#include "ui/widgets/linebreaks.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTimer>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The window with photos a and b and two applied presets, and its panel.
struct Panel : ShownWindow {
    Panel()
    {
        addPhotos(words("a.png b.png"));
        AppliedPresets &presets = controller.appliedPresets();
        presets.modeDidChange(AppliedPresets::Mode::Presets);
        for (const char *name : {"one", "two"}) {
            WPresetValues values = WPresetValues::forNewPreset(files.fonts);
            values.name = QLatin1String(name);
            presets.addWPresetsToApplied({std::make_shared<WPreset>(values)});
        }
        files.defaults.setObject(settings::savingDirectory, out);
        files.defaults.setObject(settings::saveAllToOneDirectory, true);
        files.defaults.setObject(settings::replicateOrigDirStructure, false);
        quick().setFilenameTokens({u"filename"_qs, u"-"_qs, u"sequence ##"_qs});
    }
    ~Panel()
    {
        for (const auto key : {settings::savingDirectory, settings::saveAllToOneDirectory,
                               settings::replicateOrigDirStructure, settings::replicationStartDirectory})
            files.defaults.setObject(key, {});
    }

    SavingPreset &quick() const { return *files.store.quickSavingPreset(); }
    void open()
    {
        set.selection().selectAll();
        window.actions().update();
        window.actions().run(ActionId::SaveSelected);
    }
    void choose(int index)
    {
        QTest::mouseClick(find<ChoiceButtons>("radioButtons").findChildren<QAbstractButton *>()[index],
                          Qt::LeftButton);
    }
    void press(const QString &text)
    {
        for (QPushButton *const button : panel.findChildren<QPushButton *>()) {
            if (button->text() == text)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    QString examples() { return withoutLineBreaks(find<QLabel>("exampleNames").text()); }
    bool isShown(const char *name) { return find<QWidget>(name).isVisible(); }

    const QString out = files.folder.path("copies/new");
    SaveMultiplePanel &panel = find<SaveMultiplePanel>("saveMultiplePanel");
    QLabel &count = find<QLabel>("copiesLabel");
};

} // namespace

class SaveMultiplePanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesWhatItShows()
    {
        Panel f;
        QVERIFY(f.isEnabled(ActionId::SaveAll) ||
                QTest::qWaitFor([&] { return f.isEnabled(ActionId::SaveAll); }));
        f.open();
        QVERIFY(f.panel.isVisible());
        const QStringList lines = f.examples().split(u'\n');
        QCOMPARE(lines, QStringList({f.out + u"/a-01.jpg"_qs, f.out + u"/a-02.jpg"_qs,
                                     f.out + u"/b-03.jpg"_qs, u"…"_qs}));
        f.press(u"Save"_qs);
        QTRY_VERIFY(QFileInfo::exists(f.out + u"/b-04.jpg"_qs));
        QTRY_VERIFY(!f.controller.batchSave().isSavingInProgress());
        QCOMPARE(QDir(f.out).entryList(QDir::Files), words("a-01.jpg a-02.jpg b-03.jpg b-04.jpg"));

        // The next time, names that are taken are marked; Cancel stores nothing.
        f.open();
        QVERIFY(f.examples().contains(u"/a-01.jpg (exists already)"_qs));
        f.choose(0);
        QVERIFY(f.examples().contains(f.files.folder.path("in/a-01.jpg")));
        f.press(u"Cancel"_qs);
        QVERIFY(!f.panel.isVisible() && f.files.defaults.boolForKey(settings::saveAllToOneDirectory));
        QVERIFY(!f.controller.batchSave().isSavingInProgress());
    }

    void folders()
    {
        Panel f;
        f.files.defaults.setObject(settings::saveAllToOneDirectory, false);
        f.open();
        QVERIFY(!f.isShown("destPathControl") && !f.isShown("replicateOrigDirStructureCheckBox"));
        f.choose(1);
        QVERIFY(f.isShown("destPathControl") && !f.isShown("replicationPathControl"));
        QTest::keyClick(&f.find<QCheckBox>("replicateOrigDirStructureCheckBox"), Qt::Key_Space);
        QVERIFY(f.isShown("replicationPathControl"));
        // From the root folder.
        QVERIFY(f.examples().contains(f.out + f.files.folder.path("in/a-01.jpg")));
        QVERIFY(!QFileInfo::exists(f.out)); // examples create no folders
        f.choose(0);
        QVERIFY(!f.isShown("destPathControl") && !f.isShown("replicationPathControl"));
    }

    void countsAndMarks()
    {
        Panel f;
        // Of few copies all are written, so the estimate is right.
        f.open();
        QTRY_VERIFY(f.count.text().startsWith(u"4 copies, about "_qs));
        f.press(u"Save"_qs);
        QTRY_VERIFY(QFileInfo::exists(f.out + u"/b-04.jpg"_qs));
        QTRY_VERIFY(!f.controller.batchSave().isSavingInProgress());
        qint64 bytes = 0;
        for (const QFileInfo &copy : QDir(f.out).entryInfoList(QDir::Files))
            bytes += copy.size();
        const auto about = [](qint64 size) {
            return u"4 copies, about "_qs + QLocale().formattedDataSize(size, 1, QLocale::DataSizeSIFormat);
        };
        f.open();
        QTRY_COMPARE(f.count.text(), about(bytes));
        // Another quality: another size. Another name: the same.
        f.quick().setJpegQuality(100);
        QCOMPARE(f.count.text(), u"4 copies; their size is being estimated…"_qs);
        QTRY_VERIFY(f.count.text().startsWith(u"4 copies, about "_qs));
        f.quick().setFilenameTokens({u"filename"_qs});
        QVERIFY(f.count.text().startsWith(u"4 copies, about "_qs));
        QVERIFY(f.examples().contains(u"/a.jpg (the same name again)"_qs));
        f.quick().setImageFormat(u"PNG"_qs);
        f.choose(0);
        QVERIFY(f.examples().contains(u"in/a.png (is the original)"_qs));
        f.press(u"Cancel"_qs);
    }

    void presetsMenu()
    {
        Panel f;
        const SavingPresetList stored{
            std::make_shared<SavingPreset>(SavingPresetValues{.name = u"A & B"_qs, .jpegQuality = 55})};
        f.files.store.savingPresetList().append(stored);
        f.open();
        const auto choose = [&f](const QString &text) {
            QTimer::singleShot(0, &f.panel, [text] {
                auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
                for (QMenu *const one : {menu, menu->actions().first()->menu()}) {
                    for (QAction *const action : one->actions()) {
                        if (action->text() == text)
                            action->trigger();
                    }
                }
                menu->close();
            });
            QTest::mouseClick(&f.find<QPushButton>("savingPresetsButton"), Qt::LeftButton);
        };
        choose(u"A && B"_qs); // in a menu that is one "&"
        QCOMPARE(f.quick().values(), stored.front()->values());
        f.quick().setJpegQuality(70);
        QCOMPARE(stored.front()->jpegQuality(), 55);
        choose(u"Save as new preset"_qs);
        choose(u"Save as new preset"_qs);
        const SavingPresetList &all = f.files.store.savingPresets();
        QCOMPARE(all.size(), std::size_t(3));
        QVERIFY(all[1]->name() == u"Saved preset"_qs && all[2]->name() == u"Saved preset"_qs);
        QVERIFY(all[1]->presetID() != all[2]->presetID());
        // It is selected in the manager, which the sheet does not block.
        const auto managers = QApplication::topLevelWidgets();
        const auto manager = std::find_if(managers.begin(), managers.end(), [](const QWidget *widget) {
            return widget->objectName() == u"SavingPresetsManagement"_qs;
        });
        QVERIFY(manager != managers.end() && (*manager)->isVisible());
        QTest::keyClicks((*manager)->findChild<QLineEdit *>(u"presetNameField"_qs), u" 2"_qs);
        QCOMPARE(all[2]->name(), u"Saved preset 2"_qs);
        (*manager)->close();
        choose(u"Manage presets"_qs);
        QVERIFY((*manager)->isVisible() && f.panel.isVisible());
    }

    /// The quick preset is edited, and what has no effect is hidden.
    void savingPreset()
    {
        Panel f;
        f.open();
        auto &format = f.find<QComboBox>("imageFormatPopUp");
        for (const auto &[name, quality, lzw, alternative] : {std::tuple(u"TIFF"_qs, false, true, false),
                                                              {u"PNG"_qs, false, false, false},
                                                              {u"Original"_qs, true, false, true},
                                                              {u"JPEG"_qs, true, false, false}}) {
            format.setFocus();
            QTest::keyClick(&format, Qt::Key_Home);
            while (format.currentText() != name && format.currentIndex() + 1 < format.count())
                QTest::keyClick(&format, Qt::Key_Down);
            QCOMPARE(f.quick().imageFormat(), name);
            QCOMPARE(f.isShown("jpegQualitySlider"), quality);
            QCOMPARE(f.isShown("tiffCompressionLZWCheckBox"), lzw);
            QCOMPARE(f.isShown("alternativeImageFormatPopUp"), alternative);
        }
        f.find<QSlider>("jpegQualitySlider").setFocus();
        QTest::keyClick(&f.find<QSlider>("jpegQualitySlider"), Qt::Key_End);
        QCOMPARE(f.quick().jpegQuality(), 100);
        QCOMPARE(f.find<QSpinBox>("jpegQualityTextField").value(), 100);
        auto &tokens = f.find<TokenFieldWithInsertPopup>("filenameTokensField");
        tokens.setFocus();
        tokens.selectAll();
        QTest::keyClicks(&tokens, u"proof "_qs);
        tokens.insertToken(u"sequence ###"_qs);
        QCOMPARE(f.quick().filenameTokens(), QStringList({u"proof "_qs, u"sequence ###"_qs}));
        QVERIFY(f.examples().contains(u"/proof 001.jpg"_qs));
    }
};

QTEST_MAIN(SaveMultiplePanelTest)
#include "savemultiplepanel_test.moc"
