// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "ui/messageboxes.h"
#include "ui/widgets/commandactions.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QTimer>

using namespace plexa;
using namespace plexa::test;

class DesktopApplicationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void asksBeforeItQuitsDuringASave()
    {
        WorkingSet files;
        const QString copies = files.folder.path("copies");
        files.defaults.setObject(settings::savingDirectory, copies);
        ApplicationService service;
        std::shared_ptr<ImageObject> image;
        {
            DesktopApplication program(service);
            MainWindow &window = program.window();
            AppController &controller = program.controller();
            program.launch({files.photo("a.png")});
            QVERIFY(QTest::qWaitForWindowActive(&window));
            QTRY_VERIFY(isIdle(controller.gathering()) && controller.imageSet().images()->size() == 1);
            image = controller.imageSet().images()->front();
            image->lock(); // the save waits for it
            QVERIFY(controller.startSaving({image}));
            QTRY_VERIFY(!window.actions().action(ActionId::AddImages)->isEnabled());

            QString question;
            const auto quit = [&](qsizetype button) {
                withNextBox([&question, button](QMessageBox &box) {
                    question = box.text();
                    box.buttons().at(button)->click();
                });
                QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
            };
            quit(0);
            QCOMPARE(question, u"Photos are being saved"_qs);
            QVERIFY(window.isVisible() && controller.batchSave().isSavingInProgress());
            QVERIFY(QTest::qWaitForWindowActive(&window));
            QTimer::singleShot(0, this, [&] { quit(1); });
            QCOMPARE(QApplication::exec(), 0);
            QVERIFY(!window.isVisible());
            image->unlock();
        }
        // The photo in work was completed.
        QCOMPARE(QDir(copies).entryList(QDir::Files | QDir::Hidden).size(), 1);
    }
};

QTEST_MAIN(DesktopApplicationTest)
#include "desktopapplication_test.moc"
