// SPDX-License-Identifier: GPL-3.0-or-later

// Drags by a real pointer on an X server of their own, within the grid and to another X client.

#include "support/realpointer.h"
#include "support/testenvironment.h"
#include "ui/browser/droptarget.h"
#include "ui/browser/gridfakes.h"
#include "ui/browser/imagebrowserview.h"

#include <QScreen>
#include <QScrollBar>
#include <QUrl>

using namespace plexa;
using namespace plexa::test;

class ImageBrowserDragsTest : public QObject
{
    Q_OBJECT

private:
    static constexpr QPoint kTarget{900, 100};

    /// Drags the grid's first image to a point of the screen, and drops it there once `isReady`.
    bool drag(QPoint to, const std::function<bool()> &isReady)
    {
        const QPoint from = m_view->viewport()->mapToGlobal(m_view->cellForIndex(0)->center().toPoint());
        m_delegate->take();
        RealPointer pointer;
        pointer.moveTo(from);
        pointer.press();
        pointer.moveTo(from + QPoint(15, 5));
        pointer.waitFor([this] { return m_delegate->log.contains(u"promised 0"_qs); });
        pointer.moveTo((from + to) / 2);
        pointer.moveTo(to - QPoint(2, 2));
        pointer.moveTo(to);
        pointer.waitFor(isReady);
        pointer.release();
        return pointer.play();
    }
    bool dragOnto(const DropTarget &target)
    {
        return drag(kTarget + QPoint(100, 100), [&] { return target.isAccepted; });
    }

    TestFolder m_folder;
    std::unique_ptr<Recorder> m_delegate;
    FakePromise::Log *m_files = nullptr;
    std::unique_ptr<ImageBrowserView> m_view;

private Q_SLOTS:
    void init()
    {
        m_delegate = std::make_unique<Recorder>();
        m_files = &m_delegate->files;
        m_view = std::make_unique<ImageBrowserView>();
        m_view->setDelegate(m_delegate.get());
        m_view->setImages(std::make_shared<Colors>(200));
        m_view->setGeometry(50, 50, 600, 400);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }
    void cleanup() { m_view.reset(); }

    void files()
    {
        DropTarget target(DropTarget::Manner::TakesFiles, {}, kTarget);
        m_files->mayGoOn = false;
        // The event loop runs while the target waits for the files.
        QTimer timer;
        connect(&timer, &QTimer::timeout, this,
                [&] { m_files->mayGoOn = m_files->made == 1 && !target.isFinished; });
        timer.start(20);
        QVERIFY(dragOnto(target));
        QTRY_VERIFY(target.isFinished);

        QVERIFY(target.isOffered("text/uri-list") && target.isOffered("image/png"));
        const QByteArray names = QUrl::fromLocalFile(m_files->folder).toEncoded();
        QCOMPARE(target.data, names + "/image0\r\n" + names + "/image1\r\n");
        QCOMPARE(target.whileHovering, target.data); // though there were no files yet
        for (const char *name : {"/image0", "/image1"})
            QCOMPARE(QFileInfo(m_files->folder + QLatin1String(name)).size(), 5);
        QCOMPARE(m_files->made.load(), 1);
        QVERIFY(m_files->failures.isEmpty());
    }

    void directSave()
    {
        const QByteArray url = QUrl::fromLocalFile(m_folder.path("image0")).toEncoded();
        // Its own place; one that does not exist; one of another machine; one that is no file.
        for (const QByteArray &place :
             {url, QByteArray("file:///does/not/exist/image0"), QByteArray("file://elsewhere/tmp/image0"),
              QByteArray("http://host/x")}) {
            m_files->savedInto.clear();
            DropTarget target(DropTarget::Manner::SavesDirectly, place, kTarget);
            QVERIFY(dragOnto(target));
            QTRY_VERIFY(target.isFinished);
            QVERIFY(target.isOffered("XdndDirectSave0"));
            QCOMPARE(target.proposedName, QByteArray("image0"));
            QCOMPARE(target.data, QByteArray(place == url ? "S" : "F"));
            QCOMPARE(m_files->savedInto, place == url ? m_folder.path() : QString());
            QCOMPARE(m_files->made.load(), 0);
        }
    }

    void impatientTarget()
    {
        DropTarget target(DropTarget::Manner::Impatient, {}, kTarget);
        m_files->mayGoOn = false;
        QVERIFY(dragOnto(target));
        // The drag ends while its data are requested: no further file is written, and the user is informed.
        QTRY_COMPARE(m_files->failures.size(), 1); // one line for both
        QVERIFY(m_files->wasUnwanted);
        QVERIFY(!QFileInfo::exists(m_files->folder));
    }

    void withinTheGrid()
    {
        // Held near the lower edge it scrolls; the drop is in the visible area of that moment.
        const QWidget *viewport = m_view->viewport();
        QVERIFY(drag(viewport->mapToGlobal(QPoint(300, viewport->height() - 5)),
                     [&] { return m_view->verticalScrollBar()->value() > 50; }));
        QTRY_VERIFY(m_delegate->log.last().startsWith(u"moved 0>"));
        QVERIFY(m_delegate->log.last().mid(8).toInt() > 20);
        QCOMPARE(m_files->made.load(), 0);
        // A drag to a place that accepts nothing.
        m_view->verticalScrollBar()->setValue(0);
        QVERIFY(drag(QPoint(1200, 700), [] { return true; }));
        QCOMPARE(m_delegate->log.last(), u"promised 0"_qs);
        QCOMPARE(m_files->made.load(), 0);
    }

    void scrolledPicture()
    {
        // What was moved on the screen equals a complete drawing.
        m_view->takeSelection({30, 31, 45}, 31);
        const auto isAsDrawn = [&] {
            const QImage seen = m_view->screen()->grabWindow(m_view->winId()).toImage();
            return seen.convertToFormat(QImage::Format_RGB32) ==
                   m_view->grab().toImage().convertToFormat(QImage::Format_RGB32);
        };
        for (const int value : {37, 250, 251, 180, 3000, 0}) {
            m_view->verticalScrollBar()->setValue(value);
            QTRY_VERIFY2(isAsDrawn(), qPrintable(QString::number(value)));
        }
        m_view->setZoomFactor(0.63F);
        m_view->verticalScrollBar()->setValue(111);
        QTRY_VERIFY(isAsDrawn());
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<ImageBrowserDragsTest>(argc, argv);
}

#include "imagebrowserdrags_test.moc"
