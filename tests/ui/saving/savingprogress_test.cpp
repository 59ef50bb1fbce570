// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/datarows.h"
#include "ui/saving/remainingtime.h"
#include "ui/saving/savingreportpanel.h"
#include "ui/shownwindow.h"
#include "ui/widgets/elidedlabel.h"
#include "ui/window/messageboxalerts.h"

#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>

#include <sys/resource.h>

#include <csignal>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The window with photos and a folder for their copies, which are named as the photos. Questions are real
/// message boxes.
struct SavingWindow {
    explicit SavingWindow(const QStringList &photos, QSize size = {64, 48})
    {
        files.defaults.setObject(settings::savingDirectory, out);
        files.defaults.setObject(settings::saveAllToOneDirectory, true);
        files.store.quickSavingPreset()->setFilenameTokens({u"filename"_qs});
        WPresetValues mark = WPresetValues::forNewPreset(files.fonts);
        mark.name = u"mark"_qs;
        controller.appliedPresets().modeDidChange(AppliedPresets::Mode::Presets);
        controller.appliedPresets().addWPresetsToApplied({std::make_shared<WPreset>(mark)});
        for (const QString &name : photos)
            set.addImage(files.photo(name, size), {});
        alerts.setWindow(&window);
        window.show();
        window.activateWindow();
        active = QTest::qWaitForWindowActive(&window);
    }
    ~SavingWindow()
    {
        alerts.setWindow(nullptr);
        for (const auto key : {settings::savingDirectory, settings::saveAllToOneDirectory})
            files.defaults.setObject(key, {});
    }

    /// Copies of rotated photos wait for memory. Holds all of it.
    bool blockCopies()
    {
        set.selection().selectAll();
        controller.startBatchOperation(ImageTransform::RotateClockwise);
        if (!QTest::qWaitFor([this] { return !controller.commandState().hasCurrentBatchOperation; }))
            return false;
        memory = files.photos.budget.reserve(files.photos.budget.total());
        return memory && controller.startSaving(*set.images()) &&
               QTest::qWaitFor([this] { return save.progress().value == 2; });
    }
    /// Waits for the end. @return the report, which is shown
    SavingReportPanel *end()
    {
        if (memory)
            memory->release();
        if (!QTest::qWaitFor([this] { return !save.isSavingInProgress() && find<SavingReportPanel>(); },
                             30'000))
            return nullptr;
        return find<SavingReportPanel>();
    }
    QStringList copies() const { return QDir(out).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    template<class Widget>
    Widget *find(const char *name = "") const
    {
        return *name ? window.findChild<Widget *>(QLatin1String(name)) : window.findChild<Widget *>();
    }

    WorkingSet files;
    const QString out = files.folder.path("copies/new");
    MessageBoxAlerts alerts;
    AppController controller{{files.photos, files.defaults, alerts, files.store, 2}};
    ImageSet &set = controller.imageSet();
    BatchSave &save = controller.batchSave();
    Result<ByteBudget::Reservation> memory{tl::unexpect, Error{}};
    bool active = false;
    MainWindow window{{controller, files.defaults, alerts, 2}};
};

/// Answers all message boxes while it exists.
class BoxAnswers
{
public:
    BoxAnswers(qsizetype button, bool isRemembered)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, button, isRemembered] {
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            titles.append(box->text());
            if (isRemembered)
                QTest::mouseClick(box->checkBox(), Qt::LeftButton);
            if (button < 0)
                QTest::keyClick(box, Qt::Key_Escape);
            else
                QTest::mouseClick(box->buttons().at(button), Qt::LeftButton);
        });
        m_timer.start(2);
    }
    QStringList titles;

private:
    QTimer m_timer;
};

QString textOf(const SavingReportPanel &panel, const char *label)
{
    return panel.findChild<QLabel *>(QLatin1String(label))->text();
}

/// Whether a file was there before, the button (-1: Escape), whether the answer is for the whole run; the
/// number of questions, copies, title, and a line of the report, in which %1 and %2 are the photos and %3 is
/// the folder of the copies.
using Conflict = Row<bool, int, bool, int, Text, Text, Text>;

} // namespace

class SavingProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void remainingTime()
    {
        RemainingTime time;
        time.add(0, 0);
        QVERIFY(!time.seconds(0, 100));
        for (int i = 1; i <= 10; ++i)
            time.add(i * 1000, i);
        QCOMPARE(time.seconds(10'000, 100), std::optional<qint64>(90));
        QCOMPARE(time.seconds(12'500, 100), std::optional<qint64>(87));
        QCOMPARE(time.seconds(500'000, 100), std::optional<qint64>(0)); // overdue
        // A question waited for its answer; then the copies go on.
        for (int i = 11; i <= 70; ++i)
            time.add(600'000 + i * 1000, i);
        QCOMPARE(time.seconds(670'000, 100), std::optional<qint64>(30));
    }

    /// The page refuses what would change the set. Escape lets the copies under way end.
    void stopsInTheMiddle()
    {
        SavingWindow f(words("a.png b.png c.png d.png e.png"));
        QVERIFY(f.active && f.blockCopies());
        const QWidget &page = *f.find<QWidget>("savingProgressView");
        QVERIFY(page.isVisible() && !f.find<QWidget>("panelSplitView")->isVisible() && page.hasFocus());
        QTRY_COMPARE(f.find<QLabel>("savingMessage")->text(), u"Saving image 2 out of 5:"_qs);
        QCOMPARE(f.find<QProgressBar>("savingProgressBar")->maximum(), 5);
        QCOMPARE(f.find<QProgressBar>("savingProgressBar")->value(), 2);
        QVERIFY(!f.find<QLabel>("savingPicture")->pixmap().isNull());
        for (const char *name : {"saveAllButton", "saveSelectedButton"}) {
            const auto &button = *f.find<QAbstractButton>(name);
            QTRY_VERIFY(!button.isEnabled() && button.toolTip().endsWith(reasonFor(Need::NoSave)));
        }

        QMimeData data;
        const QString another = f.files.photo("another/z.png");
        data.setUrls({QUrl::fromLocalFile(another)});
        QDragEnterEvent enter(QPoint(20, 20), Qt::CopyAction, &data, Qt::LeftButton, {});
        enter.ignore();
        QCoreApplication::sendEvent(&f.window, &enter);
        QDropEvent drop(QPoint(20, 20), Qt::CopyAction, &data, Qt::NoButton, {});
        QCoreApplication::sendEvent(&f.window, &drop);
        QVERIFY(!enter.isAccepted() && !f.find<QWidget>("dropFrame")->isVisible());
        QCOMPARE(f.find<ElidedLabel>("statusHint")->text(), reasonFor(Need::NoSave));
        // Files from another start of the program are added at the end.
        f.controller.addFiles({another});
        QTest::keyClick(&f.window, Qt::Key_Delete);
        QTest::keyClick(&f.window, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.set.images()->size(), 5);

        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(f.find<QLabel>("savingMessage")->text().startsWith(u"Completing"_qs));
        QVERIFY(f.save.isSavingInProgress() && !f.find<QPushButton>("stopSavingButton")->isEnabled());
        const SavingReportPanel *const report = f.end();
        QVERIFY(report && report->isVisible());
        QCOMPARE(f.copies(), words("a.jpg b.jpg"));
        QCOMPARE(textOf(*report, "savingReportTitle"), u"2 copies saved, 3 not begun"_qs);
        QVERIFY(textOf(*report, "savingReportExplanation").startsWith(u"You stopped"_qs));
        QVERIFY(!report->findChild<QPlainTextEdit *>());
        QVERIFY(f.find<QWidget>("panelSplitView")->isVisible());
        QTRY_COMPARE(shownNames(f.set), u"a b c d e z"_qs);
    }

    void conflicts_data()
    {
        const char *const kReplaced = "%3/a.jpg: copy of \"%2\"; it replaced the copy of \"%1\"";
        const char *const kHasItsName = "%3/a-%4.jpg: copy of \"%2\"; its name belongs to the copy of \"%1\"";
        const char *const kExists = "%2: not saved; \"%3/a.jpg\" exists";
        const char *const kSkipped = "%2: not saved; the name \"%3/a.jpg\" belongs to the copy of \"%1\"";
        addRows<Conflict>({
            {"unique", true, 0, false, 2, "a-1.jpg a-2.jpg a.jpg", "2 copies saved", ""},
            {"unique, remembered", true, 0, true, 1, "a-1.jpg a-2.jpg a.jpg", "2 copies saved", ""},
            {"unique in the run", false, 0, false, 1, "a-1.jpg a.jpg", "2 copies saved", kHasItsName},
            {"overwrite", true, 1, false, 2, "a.jpg", "1 copy saved", kReplaced},
            {"overwrite, remembered", true, 1, true, 1, "a.jpg", "1 copy saved", kReplaced},
            {"skip", true, 2, false, 2, "a.jpg", "0 copies saved, 2 skipped", kExists},
            {"skip, remembered", true, 2, true, 1, "a.jpg", "0 copies saved, 2 skipped", kExists},
            {"skip by Escape", true, -1, false, 2, "a.jpg", "0 copies saved, 2 skipped", kExists},
            {"skip in the run", false, 2, true, 1, "a.jpg", "1 copy saved, 1 skipped", kSkipped},
        });
    }

    void conflicts()
    {
        const auto [row, hadFile, button, isRemembered, questions, copies, summary, remark] =
            currentRow<Conflict>();
        SavingWindow f(words("x/a.png y/a.png"));
        QVERIFY(f.active);
        const QString copy = f.out + u"/a.jpg"_qs;
        if (hadFile)
            QVERIFY(QDir().mkpath(f.out) && writeFile(copy, "from before"));
        for (const int run : {1, 2}) { // the next run asks again
            BoxAnswers answers(button, isRemembered);
            QVERIFY(f.controller.startSaving(*f.set.images()));
            SavingReportPanel *const report = f.end();
            QVERIFY(report);
            if (run == 2) {
                QVERIFY(!answers.titles.isEmpty());
                break;
            }
            QCOMPARE(answers.titles, QStringList(questions, u"The file exists:\n  a.jpg"_qs));
            QCOMPARE(f.copies(), copies.split(u' '));
            QCOMPARE(contentsOf(copy) == "from before", hadFile && button != 1);
            QCOMPARE(textOf(*report, "savingReportTitle"), summary);
            const auto *const list = report->findChild<QPlainTextEdit *>();
            const QString expected = QString(remark)
                                         .replace(u"%1"_qs, f.files.folder.path("in/x/a.png"))
                                         .replace(u"%2"_qs, f.files.folder.path("in/y/a.png"))
                                         .replace(u"%3"_qs, f.out)
                                         .replace(u"%4"_qs, u"1"_qs);
            QCOMPARE(list != nullptr, !expected.isEmpty());
            if (list)
                QVERIFY2(list->toPlainText().contains(expected), qPrintable(list->toPlainText()));
            QTest::keyClick(report, Qt::Key_Escape);
            QTRY_VERIFY(!f.find<SavingReportPanel>());
        }
    }

    /// A copy that failed owned no file that a later one could replace.
    void replacedAfterAFailure()
    {
        SavingReport report(3);
        SavingOutput output;
        output.path = output.wantedPath = u"/out/same.jpg"_qs;
        for (const char *const name : {"a", "b", "c"}) {
            output.sourcePath = QLatin1String(name);
            output.status = *name == 'b' ? SavingOutput::Status::Failed : SavingOutput::Status::Written;
            output.conflict = *name == 'a' ? SavingOutput::Conflict::None : SavingOutput::Conflict::Overwrite;
            report.add(output);
        }
        QVERIFY2(report.text(false).contains(u"copy of \"c\"; it replaced the copy of \"a\""_qs),
                 qPrintable(report.text(false)));
    }

    /// Some copies fit, others do not; the report names the reason, and can be stored.
    void fullDisk()
    {
        SavingWindow f(words("a.png c.png"), {8, 8});
        QVERIFY(f.active && randomPicture({700, 500}).save(f.files.folder.path("in/b.png")));
        f.set.addImage(f.files.folder.path("in/b.png"), {});
        ::signal(SIGXFSZ, SIG_IGN);
        rlimit former{};
        ::getrlimit(RLIMIT_FSIZE, &former);
        const rlimit small{40'000, former.rlim_max};
        QVERIFY(::setrlimit(RLIMIT_FSIZE, &small) == 0);
        const bool hasStarted = f.controller.startSaving(*f.set.images());
        SavingReportPanel *const report = f.end();
        ::setrlimit(RLIMIT_FSIZE, &former);
        QVERIFY(hasStarted && report);
        QCOMPARE(f.copies(), words("a.jpg c.jpg"));
        QCOMPARE(textOf(*report, "savingReportTitle"), u"Failed to save 1 image(s)!"_qs);
        QVERIFY(textOf(*report, "savingReportExplanation").startsWith(u"Sorry, could not save"_qs));
        QVERIFY(textOf(*report, "savingReportExplanation").endsWith(u"\nb.png"_qs));
        const auto &list = *report->findChild<QPlainTextEdit *>();
        QVERIFY(list.isReadOnly() && list.textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
        QVERIFY2(list.toPlainText().contains(f.files.folder.path("in/b.png") +
                                             u": it cannot be written: file too large"_qs),
                 qPrintable(list.toPlainText()));

        QTest::mouseClick(report->findChild<QPushButton *>(u"saveReportButton"_qs), Qt::LeftButton);
        auto *const dialog = report->findChild<QFileDialog *>();
        QVERIFY(dialog);
        const QString path = f.files.folder.path("report");
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_qs)->setText(path);
        QTest::keyClick(dialog->findChild<QLineEdit *>(u"fileNameEdit"_qs), Qt::Key_Return);
        QTRY_VERIFY(QFile::exists(path + u".txt"_qs));
        const QString stored = QString::fromUtf8(contentsOf(path + u".txt"_qs));
        QVERIFY(stored.startsWith(u"2 copies saved, 1 failed\n"_qs));
        QVERIFY(stored.contains(f.out + u"/c.jpg\n"_qs) && stored.contains(list.toPlainText()));
    }

    /// The folder is not created again: whoever removed it does not want the copies.
    void folderIsRemoved()
    {
        for (const bool isReplaced : {true, false}) {
            SavingWindow f(words("a.png b.png c.png"));
            QVERIFY(f.active && f.blockCopies());
            const QString folder = f.files.folder.path("copies");
            QVERIFY(QDir(folder).removeRecursively());
            if (isReplaced)
                QVERIFY(writeFile(folder, "in its place"));
            const SavingReportPanel *const report = f.end();
            QVERIFY(report);
            QCOMPARE(textOf(*report, "savingReportTitle"), u"Failed to save 3 image(s)!"_qs);
            const QString list = report->findChild<QPlainTextEdit *>()->toPlainText();
            QVERIFY2(list.count(f.files.folder.path("in/")) == 3, qPrintable(list));
            QCOMPARE(QFile::exists(folder), isReplaced);
            QVERIFY(!report->findChild<QAbstractButton *>(u"openFolderButton"_qs)->isEnabled());
        }
    }

    /// Without a visible watermark a copy is written, and the report names it.
    void unmarkedCopies()
    {
        SavingWindow f(words("a.png b.png"));
        f.controller.appliedPresets().wPresetsApplied().front()->setTextTokens({u"city"_qs});
        QVERIFY(f.controller.startSaving(*f.set.images()));
        const SavingReportPanel *const report = f.end();
        QVERIFY(report);
        QCOMPARE(textOf(*report, "savingReportTitle"), u"2 copies saved"_qs);
        QVERIFY(report->findChild<QPlainTextEdit *>()->toPlainText().contains(
            u"No watermark is visible on:\n"_qs + f.out + u"/a.jpg\n"_qs));
    }

    /// Short, and one key away. Missing tokens become the quick preset's.
    void cleanRun()
    {
        SavingWindow f(words("a.png b.png"));
        QVERIFY(f.active);
        f.files.store.quickSavingPreset()->setFilenameTokens({});
        BoxAnswers answers(0, false);
        f.controller.didEndSaveMultiplePanel(*f.set.images());
        SavingReportPanel *report = f.end();
        QCOMPARE(answers.titles, QStringList(u"Missing the filename specification!"_qs));
        QCOMPARE(f.files.store.quickSavingPreset()->filenameTokens(), QStringList(u"filename"_qs));
        QVERIFY(report && !report->findChild<QPlainTextEdit *>());
        QCOMPARE(textOf(*report, "savingReportTitle"), u"2 copies saved"_qs);
        QCOMPARE(textOf(*report, "savingReportExplanation"), f.out);
        QDesktopServices::setUrlHandler(u"file"_qs, this, "open");
        QTest::mouseClick(report->findChild<QPushButton *>(u"openFolderButton"_qs), Qt::LeftButton);
        QTRY_COMPARE(m_opened, QUrl::fromLocalFile(f.out));
        QDesktopServices::unsetUrlHandler(u"file"_qs);
        QTest::keyClick(report, Qt::Key_Return);
        QTRY_VERIFY(!f.find<SavingReportPanel>());

        // The report of a run that ends while the window is closed waits for it.
        QVERIFY(f.controller.startSaving({f.set.images()->front()}));
        f.window.hide();
        BoxAnswers overwrite(1, false);
        QTRY_VERIFY(!f.save.isSavingInProgress());
        QVERIFY(!f.find<SavingReportPanel>());
        f.window.show();
        QTRY_VERIFY(f.find<SavingReportPanel>() && f.find<SavingReportPanel>()->isVisible());
    }

public Q_SLOTS:
    void open(const QUrl &url) { m_opened = url; }

private:
    QUrl m_opened;
};

QTEST_MAIN(SavingProgressTest)
#include "savingprogress_test.moc"
