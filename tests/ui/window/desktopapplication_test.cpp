// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/sessionrecord.h"
#include "app/workingset.h"
#include "platform/applicationname.h"
#include "support/files.h"
#include "support/webserver.h"
#include "ui/messageboxes.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"

#include <QAbstractButton>
#include <QApplication>
#include <QTimer>

#include <utility>

using namespace plexa;
using namespace plexa::test;

class DesktopApplicationTest : public QObject
{
    Q_OBJECT

    static void endDuringAQuestion()
    {
        ApplicationService service;
        DesktopApplication program(service, {});
        withNextBox([&](QMessageBox &) { program.terminate(); });
        QTimer::singleShot(0, &program, [&] { program.launch({}); });
        QCOMPARE(QApplication::exec(), 0);
    }

private Q_SLOTS:
    /// A save of a rotated photo waits for memory. The test holds all of it until the user has answered.
    void asksBeforeItQuitsDuringASave()
    {
        WorkingSet files;
        const QString copies = files.folder.path("copies");
        files.defaults.setObject(settings::savingDirectory, copies);
        files.defaults.setObject(settings::saveAllToOneDirectory, true);
        const auto photo = std::make_shared<ImageObject>(files.photo("a.png", {640, 480}), files.photos);
        QVERIFY(photo->loadImageFromDisk());
        photo->transformOriginalImageWithOperation(ImageTransform::RotateClockwise);
        ApplicationService service;
        {
            DesktopApplication program(service, {});
            MainWindow &window = program.window();
            program.launch({});
            QVERIFY(QTest::qWaitForWindowActive(&window));
            auto memory = files.photos.budget.reserve(files.photos.budget.total());
            QVERIFY(memory && program.controller().startSaving({photo}));

            QString question;
            const auto press = [&](Qt::Key key, qsizetype button) {
                withNextBox([&question, button](QMessageBox &box) {
                    question = box.text();
                    box.buttons().at(button)->click();
                });
                QTest::keyClick(&window, key, Qt::ControlModifier);
            };
            for (const Qt::Key key : {Qt::Key_Q, Qt::Key_W}) { // without a session bus, both quit
                press(key, 0);
                QCOMPARE(std::exchange(question, {}), u"Photos are being saved"_qs);
                QVERIFY(window.isVisible() && !program.controller().batchSave().isTerminating());
                window.activateWindow();
                QVERIFY(QTest::qWaitForWindowActive(&window));
            }
            QTimer::singleShot(0, this, [&] { press(Qt::Key_Q, 1); });
            QCOMPARE(QApplication::exec(), 0);
            QCOMPARE(question, u"Photos are being saved"_qs);
            QVERIFY(!window.isVisible() && namesIn(copies).isEmpty());
            memory->release();
        }
        QCOMPARE(namesIn(copies).size(), 1); // the photo in work was completed
    }

    /// The session manager tells the program to end. The next start has nothing to restore.
    void endsWithTheDesktopSession()
    {
        WorkingSet files;
        ApplicationService service;
        DesktopApplication program(service, {});
        program.launch({files.photo("a.png")});
        QTRY_VERIFY(QFile::exists(SessionRecord::path()));
        QTimer::singleShot(0, &program, [] {
            QEvent quit(QEvent::Quit);
            QCoreApplication::sendEvent(qApp, &quit);
        });
        QCOMPARE(QApplication::exec(), 0);
        QVERIFY(!QFile::exists(SessionRecord::path()) && !program.window().isVisible());
    }

    void signalDuringAQuestionAtTheStart()
    {
        WorkingSet files;
        const QString quick = applicationSupportSubdirectory() + u"/QuickWPreset.pxwpr"_qs;
        const QString list = applicationSupportSubdirectory() + u"/SPresets.pxspr"_qs;
        QVERIFY(writeFile(quick, "unread") && writeFile(list, "damaged")); // the list is read first
        endDuringAQuestion();
        QCOMPARE(contentsOf(quick), "unread");
        QVERIFY(QFile::remove(quick));

        const QByteArray session = R"({"photos": [{"path": "/x.png"}]})";
        QVERIFY(writeFile(SessionRecord::path(), session));
        endDuringAQuestion();
        QCOMPARE(contentsOf(SessionRecord::path()), session); // the next start asks again
    }

    void looksForNewsOnlyInFrontOfTheUser()
    {
        for (const bool isInFront : {true, false}) {
            WorkingSet files;
            WebServer server;
            server.answerWith("{\"bulletins\": []}");
            ApplicationService service;
            DesktopApplication program(service, {server.url(u"news.json"_qs), {}});
            program.launch({});
            QVERIFY(QTest::qWaitForWindowActive(&program.window()));
            if (!isInFront)
                program.window().hide();
            QCOMPARE(QTest::qWaitFor([&] { return !server.requests.isEmpty(); }, isInFront ? 30'000 : 1500),
                     isInFront);
            QVERIFY(!isInFront || server.requests.first().startsWith("GET /news.json?nocache="));
        }
    }
};

QTEST_MAIN(DesktopApplicationTest)
#include "desktopapplication_test.moc"
