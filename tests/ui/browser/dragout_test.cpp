// SPDX-License-Identifier: GPL-3.0-or-later

// Drags by a real pointer on an X server of their own, within the grid and to another X client.

#include "support/testenvironment.h"
#include "ui/browser/droptarget.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserview.h"

#include <QApplication>
#include <QProcess>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QUrl>

using namespace plexa;
using test::DropTarget;

namespace
{

class Squares final : public ImageBrowserSource
{
public:
    int count() const override { return 200; }
    QString filename(int index) const override { return QString::number(index); }
    QImage thumbnail(int, ThumbnailKind) const override { return m_image; }
    int indexOf(const void *) const override { return -1; }

private:
    const QImage m_image = [] {
        QImage image(100, 100, QImage::Format_RGB32);
        image.fill(Qt::red);
        return image;
    }();
};

/// What the promise and the grid's delegate have seen.
struct Log {
    std::atomic<int> made = 0;
    std::atomic<bool> mayGoOn = false; ///< set by the main thread while files are written
    std::atomic<bool> wasUnwanted = false;
    QString folder; ///< of the written files
    QString savedInto;
    QStringList failures;
    int drags = 0;
    QList<int> moved;
    int movedTo = -1;
};

/// Two files, which are written as soon as the main thread allows it.
class Promise final : public FilePromise
{
public:
    explicit Promise(Log &log)
        : m_log(log)
    {
    }
    QStringList names() const override { return {QStringLiteral("image0"), QStringLiteral("image1")}; }
    Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) override
    {
        m_log.folder = folder;
        ++m_log.made;
        while (!m_log.mayGoOn && !isUnwanted())
            QThread::msleep(5);
        m_log.wasUnwanted = isUnwanted();
        for (const QString &name : names()) {
            QFile file(folder + QLatin1Char('/') + name);
            if (!m_log.mayGoOn || !file.open(QIODevice::WriteOnly) || file.write("photo") != 5)
                return {false, {name}};
        }
        return {};
    }
    void report(const QStringList &failures) override { m_log.failures = failures; }
    bool canSaveInto() const override { return true; }
    bool saveInto(const QString &folder) override
    {
        m_log.savedInto = folder;
        return true;
    }
    QStringList imageTypes() const override { return {QStringLiteral("image/png")}; }
    QByteArray image(const QString &, QStringList &) override { return "png"; }

private:
    Log &m_log;
};

class Delegate final : public ImageBrowserDelegate
{
public:
    explicit Delegate(Log &log)
        : m_log(log)
    {
    }
    bool shouldDragPromisedFiles() override { return true; }
    std::unique_ptr<FilePromise> promisedFiles(const QList<int> &) override
    {
        ++m_log.drags;
        return std::make_unique<Promise>(m_log);
    }
    void movedIndexes(const QList<int> &indexes, int toIndex) override
    {
        m_log.moved = indexes;
        m_log.movedTo = toIndex;
    }

private:
    Log &m_log;
};

/// The real pointer. Each step waits until the step before has had its effect. The steps go on in the event
/// loops that a drag and its data run.
class Pointer
{
public:
    void moveTo(QPoint at)
    {
        m_steps.append({{QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y())}, {}});
    }
    void press() { m_steps.append({{QStringLiteral("mousedown"), QStringLiteral("1")}, {}}); }
    void release() { m_steps.append({{QStringLiteral("mouseup"), QStringLiteral("1")}, {}}); }
    void waitFor(const std::function<bool()> &condition) { m_steps.append({{}, condition}); }

    bool play()
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { goOn(); });
        timer.start(10);
        return QTest::qWaitFor([this] { return m_steps.isEmpty() && !isMoving(); }, 60'000);
    }

private:
    struct Step {
        QStringList arguments;
        std::function<bool()> condition;
    };

    bool isMoving() const { return m_pointer.state() != QProcess::NotRunning; }
    void goOn()
    {
        if (m_steps.isEmpty() || isMoving() || (m_steps.first().condition && !m_steps.first().condition()))
            return;
        const Step step = m_steps.takeFirst();
        if (!step.condition)
            m_pointer.start(QStringLiteral("xdotool"), step.arguments);
    }

    QList<Step> m_steps;
    QProcess m_pointer;
};

} // namespace

class DragOutTest : public QObject
{
    Q_OBJECT

private:
    static constexpr QPoint kTarget{900, 100};

    /// Drags the grid's first image to a point of the screen, and drops it there once `isReady`.
    bool drag(QPoint to, const std::function<bool()> &isReady)
    {
        const QPoint from = m_view->viewport()->mapToGlobal(m_view->cellForIndex(0)->center().toPoint());
        const int drags = m_log->drags;
        Pointer pointer;
        pointer.moveTo(from);
        pointer.press();
        pointer.waitFor([] { return QApplication::mouseButtons() == Qt::LeftButton; });
        pointer.moveTo(from + QPoint(15, 5));
        pointer.waitFor([&] { return m_log->drags > drags; });
        pointer.moveTo((from + to) / 2);
        pointer.moveTo(to - QPoint(2, 2));
        pointer.moveTo(to);
        pointer.waitFor(isReady);
        pointer.release();
        return pointer.play();
    }
    bool dragOnto(const DropTarget &target)
    {
        return drag(kTarget + QPoint(100, 100), [&] { return target.seen().isAccepted; });
    }

    test::TestFolder m_folder;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<Delegate> m_delegate;
    std::unique_ptr<ImageBrowserView> m_view;

private Q_SLOTS:
    void init()
    {
        m_log = std::make_unique<Log>();
        m_delegate = std::make_unique<Delegate>(*m_log);
        m_view = std::make_unique<ImageBrowserView>();
        m_view->setDelegate(m_delegate.get());
        m_view->setImages(std::make_shared<Squares>());
        m_view->setGeometry(50, 50, 600, 400);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
    }
    void cleanup() { m_view.reset(); }

    void files()
    {
        const DropTarget target(DropTarget::Manner::TakesFiles, {}, kTarget);
        // The event loop goes on while the target waits for the files.
        QTimer timer;
        connect(&timer, &QTimer::timeout, this,
                [&] { m_log->mayGoOn = m_log->made == 1 && !target.seen().isFinished; });
        timer.start(20);
        QVERIFY(dragOnto(target));
        QTRY_VERIFY(target.seen().isFinished);

        const DropTarget::Seen seen = target.seen();
        QVERIFY(seen.offers.contains("text/uri-list") && seen.offers.contains("image/png"));
        const QByteArray names = QUrl::fromLocalFile(m_log->folder).toEncoded();
        QCOMPARE(seen.data, names + "/image0\r\n" + names + "/image1\r\n");
        QCOMPARE(seen.whileHovering, seen.data); // though there were no files yet
        for (const char *name : {"/image0", "/image1"})
            QCOMPARE(QFileInfo(m_log->folder + QLatin1String(name)).size(), 5);
        QCOMPARE(m_log->made.load(), 1);
        QVERIFY(m_log->failures.isEmpty());
    }

    void directSave()
    {
        const QByteArray url = QUrl::fromLocalFile(m_folder.path(QStringLiteral("image0"))).toEncoded();
        // Its own place; one that does not exist; one of another machine; one that is no file.
        for (const QByteArray &place :
             {url, QByteArray("file:///does/not/exist/image0"), QByteArray("file://elsewhere/tmp/image0"),
              QByteArray("http://host/x")}) {
            m_log->savedInto.clear();
            const DropTarget target(DropTarget::Manner::SavesDirectly, place, kTarget);
            QVERIFY(dragOnto(target));
            QTRY_VERIFY(target.seen().isFinished);
            QVERIFY(target.seen().offers.contains("XdndDirectSave0"));
            QCOMPARE(target.seen().proposedName, QByteArray("image0"));
            QCOMPARE(target.seen().data, QByteArray(place == url ? "S" : "F"));
            QCOMPARE(m_log->savedInto, place == url ? m_folder.path() : QString());
            QCOMPARE(m_log->made.load(), 0);
        }
    }

    void impatientTarget()
    {
        const DropTarget target(DropTarget::Manner::Impatient, {}, kTarget);
        QVERIFY(dragOnto(target));
        // The drag ends while its data are requested: no further file is written, and the user is informed.
        QTRY_COMPARE(m_log->failures.size(), 1); // one line for both
        QVERIFY(m_log->wasUnwanted);
        QVERIFY(!QFileInfo::exists(m_log->folder));
    }

    void withinTheGrid()
    {
        // Held near the lower edge it scrolls; the drop is in the visible area of that moment.
        const QWidget *viewport = m_view->viewport();
        QVERIFY(drag(viewport->mapToGlobal(QPoint(300, viewport->height() - 5)),
                     [&] { return m_view->verticalScrollBar()->value() > 50; }));
        QTRY_COMPARE(m_log->moved, QList<int>{0});
        QVERIFY(m_log->movedTo > 20);
        QCOMPARE(m_log->made.load(), 0);
        // A drag to a place that accepts nothing.
        m_log->moved.clear();
        m_view->verticalScrollBar()->setValue(0);
        QVERIFY(drag(QPoint(1200, 700), [] { return true; }));
        QVERIFY(m_log->moved.isEmpty());
        QCOMPARE(m_log->made.load(), 0);
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
    // On an X server where nothing else happens.
    QProcess server;
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.start(QStringLiteral("Xvfb"),
                 QStringLiteral("-displayfd 1 -screen 0 1280x800x24 -nolisten tcp").split(QLatin1Char(' ')));
    if (!server.waitForReadyRead(60'000))
        qFatal("Xvfb does not start");
    qputenv("DISPLAY", ":" + server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    int result = 0;
    {
        QApplication application(argc, argv);
        DragOutTest test;
        result = QTest::qExec(&test, argc, argv);
    }
    server.terminate();
    server.waitForFinished();
    return result;
}

#include "dragout_test.moc"
