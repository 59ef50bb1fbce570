// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/factplaces.h"
#include "support/exiftool.h"
#include "ui/metadata/imagemetadatapanel.h"
#include "ui/metadata/keywordsfield.h"
#include "ui/shownwindow.h"
#include "ui/widgets/linebreaks.h"

#include <QCalendarWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTimer>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The window and its metadata window, on photos that exiftool has written facts into.
struct Panel : ShownWindow {
    explicit Panel(const QStringList &paths)
    {
        for (const char *key : {"lastMetadataPanelTabID", "enableExifDataEditing"})
            files.defaults.setObject(QLatin1StringView(key), {});
        for (const QString &path : paths)
            set.addImage(path, {});
        for (const auto &image : *set.images())
            image->loadImageFromDisk();
        set.selection().selectAll();
        panel = std::make_unique<ImageMetadataPanel>(ImageMetadataPanel::Services{
            controller, files.defaults, window.actions(), [this](const QUrl &url) { opened = url; }});
        panel->toggle();
        active = active && QTest::qWaitForWindowActive(panel.get());
    }

    template<class Widget>
    Widget &part(const QString &name) const
    {
        return *panel->findChild<Widget *>(name);
    }
    void showTab(const char *id)
    {
        const auto &pages = metadataPages();
        const auto page = std::find_if(pages.begin(), pages.end(), [id](const MetadataPage &candidate) {
            return qstrcmp(candidate.id, id) == 0;
        });
        auto &bar = *part<QTabWidget>(u"tabView"_qs).tabBar();
        QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(int(page - pages.begin())).center());
    }
    QLineEdit &line(const char *property) const
    {
        return part<QLineEdit>(QLatin1StringView(property) + u"TextField"_qs);
    }
    void type(QWidget &field, const QString &text) const
    {
        field.setFocus();
        QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
        if (text.isEmpty())
            QTest::keyClick(&field, Qt::Key_Delete);
        else
            QTest::keyClicks(&field, text);
    }
    void enter(QWidget &field, const QString &text) const
    {
        type(field, text);
        QTest::keyClick(&field, Qt::Key_Return);
    }
    void settle() const { QCoreApplication::processEvents(); }
    ImageMetadata metadata(std::size_t photo) const { return *(*set.images())[photo]->metadata(); }
    QStringList values(MetadataProperty property) const
    {
        QStringList texts;
        for (const auto &image : *set.images())
            texts.append(image->metadata()->value(property).toString());
        return texts;
    }
    /// What exiftool reads of a copy.
    QJsonObject copied(std::size_t photo)
    {
        const QString path = files.folder.path(u"copy%1.jpg"_qs.arg(photo));
        const auto written = (*set.images())[photo]->saveImageAtPath({path, AtomicFile::IfExists::Replace},
                                                                     {}, SavingPresetValues(), {});
        return written ? exiftoolRecords({path}).value(path) : QJsonObject();
    }

    QUrl opened;
    std::unique_ptr<ImageMetadataPanel> panel;
};

const char *const kAllGroups =
    "-EXIF:Make=Any -EXIF:Artist=Bob -EXIF:Copyright=Mine -EXIF:ExposureTime=0.008 "
    "-EXIF:FNumber=2.8 -EXIF:UserComment=Hello -IPTC:By-line=Bob "
    "-IPTC:By-lineTitle=Boss -IPTC:CopyrightNotice=Mine -IPTC:Headline=News "
    "-IPTC:Caption-Abstract=Sea -IPTC:Keywords=sea -IPTC:Keywords=sky "
    "-XMP-iptcCore:CreatorCity=Rome -XMP-dc:Creator=Bob -XMP-exif:FNumber=2.8 "
    "-GPS:GPSLatitude=33.5 -GPS:GPSLatitudeRef=S -GPS:GPSLongitude=18.25 "
    "-GPS:GPSLongitudeRef=E -GPS:GPSAltitude=10 -GPS:GPSAltitudeRef=1";

/// The tags of exiftool that belong to the metadata of these groups ("IFD0", "XMP-dc", ...).
QStringList tagsOf(const QJsonObject &record, const QStringList &groups)
{
    QStringList tags = record.keys();
    tags.removeIf([&groups](const QString &tag) { return !groups.contains(tag.section(u':', 0, 0)); });
    return tags;
}

} // namespace

class ImageMetadataPanelTest : public QObject
{
    Q_OBJECT

    /// A real photo with these facts written into it.
    QString photo(const char *arguments, const char *name = "a.jpg")
    {
        const QString path = m_folder.path(QLatin1StringView(name));
        QFile::remove(path);
        if (!flatPicture({64, 48}, Qt::darkGreen).save(path))
            return {};
        const QByteArray out =
            outputOf(u"exiftool"_qs, words("-n -overwrite_original") + words(arguments) + QStringList(path));
        return out.contains("1 image files updated") ? path : QString();
    }

    enum class Leave { Return, Tab, Selection, Close, OtherTab };
    using Leaving = Row<Leave>;
    struct Cleared {
        Text name, action;
        Text gone; ///< groups of exiftool of which nothing is left
        Text kept; ///< tags that are still there
    };

    TestFolder m_folder;

private Q_SLOTS:
    void initTestCase() { PLEXA_NEEDS_PROGRAMS("exiftool"); }

    void editsOnlyOneFieldOfAllPhotos()
    {
        Panel f({photo("-IPTC:City=Rome -IPTC:Headline=Same -IPTC:Keywords=sea -IPTC:Keywords=one", "a.jpg"),
                 photo("-IPTC:City=Bonn -IPTC:Headline=Same -IPTC:Keywords=sea", "b.jpg")});
        QVERIFY(f.active);
        f.showTab("IPTC");
        QCOMPARE(f.line("iptcHeadline").text(), u"Same"_qs);
        QCOMPARE(f.line("iptcCity").text(), QString());
        QCOMPARE(f.line("iptcCity").placeholderText(), u"Multiple values"_qs);
        f.enter(f.line("iptcCity"), u"Oslo"_qs);
        QCOMPARE(f.values(MetadataProperty::iptcCity), words("Oslo Oslo"));
        QCOMPARE(f.values(MetadataProperty::iptcHeadline), words("Same Same"));
        QCOMPARE((*f.set.images())[0]->facts().stringForInfoToken(u"city"_qs), u"Oslo"_qs);

        auto &keywords = f.line("keywords");
        QCOMPARE(f.panel->findChildren<QAbstractButton *>(u"keywordPill"_qs).size(), 1);
        f.type(keywords, u"sky,"_qs);
        QCOMPARE(f.metadata(0).iptcKeywords().toStringList(), words("sea one sky"));
        QCOMPARE(f.metadata(1).iptcKeywords().toStringList(), words("sea sky"));
        f.settle();
        QAbstractButton *const sea = f.panel->findChildren<QAbstractButton *>(u"keywordPill"_qs).front();
        QTest::keyClick(sea, Qt::Key_Delete);
        QCOMPARE(f.metadata(0).iptcKeywords().toStringList(), words("one sky"));
        QCOMPARE(f.metadata(1).iptcKeywords().toStringList(), words("sky"));

        UndoHistory &history = f.controller.undoHistory();
        for (int i = 0; i < 3; ++i)
            history.undo();
        f.settle();
        QCOMPARE(f.values(MetadataProperty::iptcCity), words("Rome Bonn"));
        QCOMPARE(f.metadata(1).iptcKeywords().toStringList(), words("sea"));
        QVERIFY(!history.canUndo());
        history.redo();
        f.settle();
        QCOMPARE(f.line("iptcCity").text(), u"Oslo"_qs);
    }

    void commitsWhenTheFieldIsLeft_data()
    {
        addRows<Leaving>({{"Return", Leave::Return},
                          {"the next field", Leave::Tab},
                          {"another selection", Leave::Selection},
                          {"no selection", Leave::Close},
                          {"another tab", Leave::OtherTab}});
    }
    void commitsWhenTheFieldIsLeft()
    {
        const auto [name, leave] = currentRow<Leaving>();
        Panel f({photo("-IPTC:City=Rome", "a.jpg"), photo("-IPTC:City=Bonn", "b.jpg")});
        f.set.selection().selectIndexes({0});
        f.showTab("IPTC");
        f.type(f.line("iptcCity"), u"Oslo"_qs);
        QCOMPARE(f.values(MetadataProperty::iptcCity), words("Rome Bonn"));
        if (leave == Leave::Return)
            QTest::keyClick(&f.line("iptcCity"), Qt::Key_Return);
        else if (leave == Leave::Tab)
            QTest::keyClick(&f.line("iptcCity"), Qt::Key_Tab);
        else if (leave == Leave::Selection)
            f.set.selection().selectIndexes({1});
        else if (leave == Leave::Close)
            f.set.selection().selectNone();
        else
            f.showTab("Contact");
        QCOMPARE(f.values(MetadataProperty::iptcCity), words("Oslo Bonn"));
        QCOMPARE(f.panel->isVisible(), leave != Leave::Close);
        if (leave == Leave::Selection)
            QCOMPARE(f.line("iptcCity").text(), u"Bonn"_qs);
    }

    void picksTheDay()
    {
        Panel f({photo("-EXIF:DateTimeOriginal='2001:02:03 04:05:06'", "a.jpg"),
                 photo("-EXIF:ISO=100", "b.jpg")});
        f.files.defaults.setObject(settings::enableExifDataEditing, true);
        f.panel = std::make_unique<ImageMetadataPanel>(
            ImageMetadataPanel::Services{f.controller, f.files.defaults, f.window.actions(), {}});
        f.panel->toggle();
        f.showTab("EXIF");
        QTimer::singleShot(0, f.panel.get(), [] {
            QTRY_VERIFY(QApplication::activePopupWidget());
            auto &calendar = *QApplication::activePopupWidget()->findChild<QCalendarWidget *>();
            QTest::keyClick(calendar.focusWidget(), Qt::Key_Return);
        });
        QTest::keyClick(&f.part<QWidget>(u"exifDateTimeOriginalStrTextFieldCalendarButton"_qs),
                        Qt::Key_Space);
        const QString today = QDate::currentDate().toString(u"yyyy:MM:dd"_qs);
        QTRY_COMPARE(f.values(MetadataProperty::exifDateTimeOriginalStr),
                     QStringList({today + u" 04:05:06"_qs, today + u" 00:00:00"_qs}));
    }

    /// Also from inside of a field, and Escape discards what is being typed there.
    void undoes()
    {
        Panel f({photo("-IPTC:City=Rome")});
        f.showTab("IPTC");
        const ImageMetadata before = f.metadata(0);
        for (const char *name : {"iptcCityTextField", "iptcDescriptionTextField", "keywordsTextField"}) {
            QWidget &field = f.part<QWidget>(QLatin1StringView(name));
            f.enter(field, u"Oslo"_qs);
            QVERIFY2(f.metadata(0) != before, name);
            f.settle();
            QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
            QVERIFY2(f.metadata(0) == before, name);
            f.settle();
            f.type(field, u"Oslo"_qs);
            QTest::keyClick(&field, Qt::Key_Escape);
            f.panel->commitEditing();
            QVERIFY2(f.metadata(0) == before, name);
        }
    }

    /// Also where a control cannot show every character of a text.
    void leavesTextsAlone()
    {
        Panel f({photo("-IPTC:City=Rome")});
        ImageMetadata metadata = f.metadata(0);
        metadata.setIptcDescription(u"one\u00A0two\r\nthree"_qs);
        metadata.setIptcHeadline(u"one\ntwo\tthree"_qs);
        (*f.set.images())[0]->setMetadata(metadata);
        for (const MetadataPage &page : metadataPages())
            f.showTab(page.id);
        f.panel->commitEditing();
        QVERIFY(f.metadata(0) == metadata);
        f.showTab("IPTC");
        f.type(f.line("iptcCity"), u"Os"_qs);
        metadata.setIptcState(u"Lazio"_qs);
        (*f.set.images())[0]->setMetadata(metadata);
        f.settle(); // what the user types stays
        QCOMPARE(f.line("iptcCity").text(), u"Os"_qs);
    }

    void closesInLargeBatchMode()
    {
        Panel f({photo("-IPTC:City=Rome")});
        f.showTab("IPTC");
        f.type(f.line("iptcCity"), u"Oslo"_qs);
        f.set.setImageListModeToBrowser(false);
        QVERIFY(!f.panel->isVisible());
        QCOMPARE(f.values(MetadataProperty::iptcCity), words("Oslo"));
        f.set.setImageListModeToBrowser(true);
        f.set.selection().selectAll();
        f.panel->toggle();
        QVERIFY(QTest::qWaitForWindowActive(f.panel.get()));
        QTest::keyClick(f.panel.get(), Qt::Key_W, Qt::ControlModifier);
        QVERIFY(!f.panel->isVisible());
    }

    /// Watermarks of the edited photo have the new text at once: in the preview and on its thumbnail alone.
    void watermarksFollow()
    {
        Panel f({photo("-IPTC:City=I", "a.jpg"), photo("-IPTC:City=I", "b.jpg")});
        WPresetValues values = WPresetValues::forNewPreset(f.files.fonts);
        values.textTokens = {u"city"_qs};
        values.fillColor = Qt::red;
        values.stroke = false;
        values.fontSize = 40;
        f.controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Single);
        f.controller.appliedPresets().setQuickWPreset(std::make_shared<WPreset>(values));
        f.set.selection().selectIndexes({0});
        QWidget &preview = f.find<QWidget>("imageView");
        const auto cell = [&](int i) { return f.grid.viewportRect(*f.grid.cellForIndex(i)).toRect(); };
        const auto reds = [&] {
            const QWidget &cells = *f.grid.viewport();
            return std::array{redPixels(preview, preview.rect()), redPixels(cells, cell(0)),
                              redPixels(cells, cell(1))};
        };
        std::array<int, 3> before{};
        QTRY_VERIFY((before = reds(), std::ranges::min(before) > 0 && before[1] == before[2]));
        f.showTab("IPTC");
        f.enter(f.line("iptcCity"), u"MMM"_qs);
        std::array<int, 3> after{};
        QTRY_VERIFY((after = reds(), after[0] > 2 * before[0] && after[1] > 2 * before[1]));
        QCOMPARE(after[2], before[2]);
        f.controller.undoHistory().undo();
        QTRY_COMPARE(reds(), before);
    }

    /// Names of copies have the new value at once.
    void tokensFollow()
    {
        Panel f({photo("-IPTC:City=Rome")});
        SavingPreset &saving = *f.files.store.quickSavingPreset();
        const QStringList tokens = saving.values().filenameTokens;
        saving.setFilenameTokens({u"city"_qs});
        f.controller.saveImages(AppController::Photos::All);
        QLabel &names = f.find<QLabel>("exampleNames");
        QVERIFY(withoutLineBreaks(names.text()).contains(u"Rome.jpg"));
        f.showTab("IPTC");
        QSignalSpy changes((*f.set.images())[0].get(), &ImageObject::metadataChanged);
        f.enter(f.line("iptcCity"), u"Oslo"_qs);
        QTRY_VERIFY(withoutLineBreaks(names.text()).contains(u"Oslo.jpg"));
        QCOMPARE(changes.size(), 1);
        saving.setFilenameTokens(tokens);
    }

    void copiesCarryEdits()
    {
        Panel f({photo("-EXIF:Artist=Bob -EXIF:DateTimeOriginal='2001:02:03 04:05:06'")});
        f.showTab("Contact");
        f.enter(f.line("iptcCreator"), u"Ada"_qs);
        f.showTab("IPTC");
        auto &description = f.part<QPlainTextEdit>(u"iptcDescriptionTextField"_qs);
        f.type(description, u"One"_qs);
        QTest::keyClick(&description, Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClicks(&description, u"Two"_qs);
        QTest::keyClick(&description, Qt::Key_Return);
        f.showTab("EXIF");
        QVERIFY(!f.line("exifDateTimeOriginalStr").isEnabled());
        QTest::mouseClick(&f.part<QCheckBox>(u"enableExifEditingCheckbox"_qs), Qt::LeftButton, {}, {8, 8});
        f.enter(f.line("exifDateTimeOriginalStr"), u"2024-12-31 23:59"_qs);
        f.enter(f.line("exifExposureTime"), u"1/125 s"_qs);
        QCOMPARE(f.line("exifExposureTime").text(), u"0.008 sec"_qs);
        f.enter(f.line("exifISOSpeed"), u"fast"_qs);
        QCOMPARE(f.line("exifISOSpeed").text(), QString());
        QVERIFY(f.part<QLabel>(u"messageLabel"_qs).text().startsWith(u"ISO speed"));
        auto &program = f.part<QComboBox>(u"exifExposureProgramPopUp"_qs);
        program.setFocus();
        QTest::keyClicks(&program, u"man"_qs);
        QTest::keyClick(&program, Qt::Key_Return);
        QCOMPARE(f.metadata(0).exifExposureProgram().toInt(), 1);
        auto &flash = f.part<QComboBox>(u"exifFlashPopUp"_qs);
        QCOMPARE(flash.currentIndex(), -1); // no value in the file
        flash.setFocus();
        QTest::keyClicks(&flash, u"did not"_qs);
        QTest::keyClick(&flash, Qt::Key_Return);

        const QJsonObject copy = f.copied(0);
        for (const auto &[tag, value] : {std::pair("IFD0:Artist", "Ada"),
                                         {"IPTC:By-line", "Ada"},
                                         {"XMP-dc:Creator", "Ada"},
                                         {"IFD0:ImageDescription", "One\nTwo"},
                                         {"IPTC:Caption-Abstract", "One\nTwo"},
                                         {"XMP-dc:Description", "One\nTwo"},
                                         {"ExifIFD:Flash", "0"},
                                         {"ExifIFD:DateTimeOriginal", "2024:12:31 23:59:00"},
                                         {"ExifIFD:ExposureTime", "0.008"},
                                         {"ExifIFD:ExposureProgram", "1"}})
            QCOMPARE(comparable(copy[QLatin1StringView(tag)]), QString::fromUtf8(value));
    }

    void clears_data()
    {
        const char *const places = "GPS IPTC ExifIFD XMP-dc XMP-iptcCore XMP-exif";
        addRows<Cleared>({
            {"all", "clear-all", places, "IFD0:Software"},
            {"all but copyright", "clear-all-but-copyright", "GPS ExifIFD XMP-dc XMP-iptcCore XMP-exif",
             "IFD0:Copyright IPTC:CopyrightNotice"},
            {"all but copyright and contact", "clear-all-but-copyright-and-contact", "GPS ExifIFD XMP-exif",
             "IFD0:Copyright IFD0:Artist IPTC:CopyrightNotice IPTC:By-line IPTC:By-lineTitle "
             "XMP-iptcCore:CreatorCity XMP-dc:Creator"},
            {"GPS", "clear-gps", "GPS", "IFD0:Make IPTC:Headline XMP-exif:FNumber"},
            {"IPTC", "clear-iptc", "IPTC XMP-iptcCore XMP-dc", "GPS:GPSLatitude IFD0:Artist"},
            {"EXIF", "clear-exif", "ExifIFD XMP-exif", "GPS:GPSLatitude IPTC:By-line"},
        });
    }
    void clears()
    {
        const Cleared row = currentRow<Cleared>();
        const QString path = photo(kAllGroups);
        const QJsonObject before = exiftoolRecords({path}).value(path);
        Panel f({path});
        QAction &action = f.part<QAction>(row.action);
        QVERIFY(action.text().endsWith(u"1 Photo"));
        action.trigger();
        const QJsonObject copy = f.copied(0);
        QVERIFY(!copy.isEmpty());
        QStringList left = tagsOf(copy, words(row.gone.toUtf8().constData()));
        // The encoder describes the picture.
        left.removeIf([](const QString &tag) {
            static const QStringList structure =
                words("ExifIFD:ExifVersion ExifIFD:ComponentsConfiguration ExifIFD:FlashpixVersion "
                      "ExifIFD:ColorSpace "
                      "ExifIFD:ExifImageWidth ExifIFD:ExifImageHeight GPS:GPSVersionID");
            return structure.contains(tag);
        });
        QCOMPARE(left, QStringList());
        for (const QString &tag : words(row.kept.toUtf8().constData())) {
            QVERIFY2(copy.contains(tag), qPrintable(tag));
            if (before.contains(tag))
                QCOMPARE(comparable(copy[tag]), comparable(before[tag]));
        }
        QVERIFY(!copy.contains(u"IPTC:Headline"_qs) || !row.gone.contains(u"XMP-dc"));
        const ImageMetadata cleared = f.metadata(0);
        f.controller.undoHistory().undo();
        QVERIFY(f.metadata(0) != cleared);
        QCOMPARE(f.metadata(0).clearedGroups(), ClearedGroups());
    }

    /// South of the equator the link has the positive number of the file.
    void map()
    {
        Panel f({photo(kAllGroups, "a.jpg"), photo("-GPS:GPSLatitude=1 -GPS:GPSLongitude=2", "b.jpg")});
        f.showTab("GPS");
        auto &button = f.part<QPushButton>(u"showInMapsButton"_qs);
        QVERIFY(!button.isEnabled());
        f.set.selection().selectIndexes({0});
        QVERIFY(button.isEnabled());
        QTest::mouseClick(&button, Qt::LeftButton);
        QCOMPARE(f.opened.query(), u"ll=33.5,18.25"_qs);
        QCOMPARE(f.part<QLabel>(u"mapDescriptionLabel"_qs).text(),
                 u"33\u00B0 30' 0.000\" S, 18\u00B0 15' 0.000\" E\n10.00 m (32.81 ft) below sea level"_qs);
        QAction &clear = f.part<QAction>(u"clear-gps"_qs);
        clear.trigger();
        f.settle();
        QVERIFY(!button.isEnabled());
        QVERIFY(!f.metadata(1).gpsData().isEmpty());
    }

    void remembersTabAndSwitch()
    {
        Panel f({photo("-IPTC:City=Rome")});
        QCOMPARE(f.part<QTabWidget>(u"tabView"_qs).currentIndex(), 0);
        f.showTab("GPS");
        QCOMPARE(f.files.defaults.stringForKey(settings::lastMetadataPanelTabID), u"GPS"_qs);
        f.files.defaults.setObject(settings::enableExifDataEditing, true);
        f.panel->close();
        f.panel = std::make_unique<ImageMetadataPanel>(
            ImageMetadataPanel::Services{f.controller, f.files.defaults, f.window.actions(), {}});
        QCOMPARE(f.part<QTabWidget>(u"tabView"_qs).currentIndex(), 4);
        QVERIFY(f.line("exifLens").isEnabled());
        QVERIFY(f.line("iptcCity").isEnabled());
    }

    /// The command of the main window.
    void command()
    {
        ShownWindow f;
        f.addPhotos({u"a.jpg"_qs});
        f.set.selection().selectNone();
        QVERIFY(f.active);
        QTest::keyClick(&f.window, Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(!f.window.actions().action(ActionId::ToggleMetadata)->isChecked());
        f.set.selection().selectAll();
        f.window.actions().update();
        QTest::keyClick(&f.window, Qt::Key_I, Qt::ControlModifier | Qt::ShiftModifier);
        QVERIFY(f.window.actions().action(ActionId::ToggleMetadata)->isChecked());
        f.window.close();
        QVERIFY(!f.window.actions().action(ActionId::ToggleMetadata)->isChecked());
    }

    /// The texts that the window shows of each real photo mean what exiftool reads.
    void agreesWithExiftool()
    {
        PLEXA_NEEDS_PHOTOS();
        const QMap<QString, QJsonObject> records = exiftoolRecords(photoPaths());
        Panel f({photo("-IPTC:City=Rome")});
        QStringList faults;
        int compared = 0;
        for (const QString &path : photoPaths()) {
            const auto image = std::make_shared<ImageObject>(path, f.files.photos);
            if (!image->loadImageFromDisk())
                continue;
            f.controller.metadataEditing().setImages({image});
            for (int tab = 0; tab < int(metadataPages().size()); ++tab) {
                f.part<QTabWidget>(u"tabView"_qs).setCurrentIndex(tab);
                for (const MetadataPageRow &row : metadataPages()[std::size_t(tab)].rows)
                    compare(f, row, records.value(path), faults, compared);
            }
            image->releasePictures();
        }
        QVERIFY2(faults.isEmpty(), qPrintable(faults.join(u'\n')));
        QVERIFY2(compared > 600, qPrintable(QString::number(compared)));
    }

private:
    static QString shownText(const Panel &f, const MetadataPageRow &row)
    {
        const QString name = row.name();
        switch (row.control) {
        case MetadataControl::Readout:
            return f.part<QLabel>(name + u"Label"_qs).text().remove(u" (UTC)"_qs);
        case MetadataControl::Text:
            return f.part<QPlainTextEdit>(name + u"TextField"_qs).toPlainText();
        case MetadataControl::PopUp:
            return f.part<QComboBox>(name + u"PopUp"_qs).currentData().toString();
        case MetadataControl::Keywords:
            return f.part<KeywordsField>(name + u"Field"_qs).keywords().join(u' ');
        default:
            return f.line(qPrintable(name)).text();
        }
    }

    static int redPixels(const QWidget &widget, const QRect &area)
    {
        const QImage shown = const_cast<QWidget &>(widget).grab(area).toImage();
        int count = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                count += qRed(shown.pixel(x, y)) > 150 && qGreen(shown.pixel(x, y)) < 60;
        return count;
    }

    /// The values of exiftool for the fact of a row; none for facts of the codec, which the tests of the
    /// reading compare.
    static QStringList wantedTexts(const MetadataPageRow &row, const QJsonObject &record)
    {
        static const QMap<QString, QString> kTagsOfGps{{u"gpsLatitude"_qs, u"Composite:GPSLatitude"_qs},
                                                       {u"gpsLongitude"_qs, u"Composite:GPSLongitude"_qs},
                                                       {u"gpsAltitude"_qs, u"Composite:GPSAltitude"_qs},
                                                       {u"gpsDateStamp"_qs, u"GPS:GPSDateStamp"_qs},
                                                       {u"gpsImageDirection"_qs, u"GPS:GPSImgDirection"_qs},
                                                       {u"gpsTimeStamp"_qs, u"GPS:GPSTimeStamp"_qs}};
        QStringList tags{kTagsOfGps.value(row.name())};
        for (const FactPlaces &fact : kFactPlaces) {
            if (fact.property() == row.property)
                tags += fact.places();
        }
        QStringList texts;
        for (const QString &tag : std::as_const(tags)) {
            if (record.contains(tag))
                texts.append(comparable(record[tag]));
        }
        return texts;
    }

    /// The number that a text begins with, or the degrees of a position; never negative for a place.
    static double numberOf(const MetadataPageRow &row, const QString &shown)
    {
        static const QRegularExpression separators(u"[^-0-9.]+"_qs);
        const QStringList parts = shown.split(separators, Qt::SkipEmptyParts);
        const double first = parts.value(0).toDouble();
        if (row.property == MetadataProperty::gpsLatitude || row.property == MetadataProperty::gpsLongitude)
            return first + parts.value(1).toDouble() / 60 + parts.value(2).toDouble() / 3600;
        return first;
    }

    static void compare(const Panel &f, const MetadataPageRow &row, const QJsonObject &record,
                        QStringList &faults, int &compared)
    {
        const QStringList wanted = wantedTexts(row, record);
        if (wanted.isEmpty())
            return;
        ++compared;
        const QString shown = shownText(f, row);
        const bool isPlace = metadataProperty(row.property).group == MetadataGroup::Gps;
        const bool isDate = metadataProperty(row.property).kind == MetadataKind::DateTime;
        const auto agrees = [&](const QString &text) {
            bool isNumber = false;
            double number = text.section(u' ', 0, 0).toDouble(&isNumber);
            if (isPlace)
                number = std::abs(number);
            else if (row.property == MetadataProperty::exifFlash)
                number = int(number) & 1;
            const QString plain = isDate ? QString(shown).replace(u'-', u':') : shown;
            return (isDate && !plain.isEmpty() ? text.startsWith(plain)
                                               : text.trimmed() == plain.trimmed()) ||
                   (isNumber && !shown.isEmpty() &&
                    std::abs(numberOf(row, shown) - number) < (isPlace ? 5e-3 : 1e-6 * (1 + number)));
        };
        if (std::none_of(wanted.begin(), wanted.end(), agrees))
            faults.append(u"%1 %2: \"%3\", exiftool: %4"_qs.arg(
                record[u"SourceFile"_qs].toString(), row.shownLabel(), shown, wanted.join(u" | "_qs)));
    }
};

QTEST_MAIN(ImageMetadataPanelTest)
#include "imagemetadatapanel_test.moc"
