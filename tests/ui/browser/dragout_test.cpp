// SPDX-License-Identifier: GPL-3.0-or-later

// Drags by a real pointer on an X server of their own, within the grid and to another X client.

#include "support/testenvironment.h"
#include "ui/browser/droptarget.h"
#include "ui/browser/imagebrowserdelegate.h"
#include "ui/browser/imagebrowserview.h"

#include <QApplication>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <cstdio>

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
    std::atomic<bool> mayGoOn = false; ///< set by the main thread while files are made
    std::atomic<bool> wasUnwanted = false;
    QString folder; ///< files were made there
    QString savedInto;
    QStringList failures;
    QList<int> moved;
    int movedTo = -1;
};

/// Two files, which are made as soon as the main thread says so.
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
        for (int i = 0; i < 500 && !m_log.mayGoOn && !isUnwanted(); ++i)
            QThread::msleep(10);
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

/// Drags from the grid's first image to a point of the screen, and lets go after resting there.
void drag(const ImageBrowserView &view, QPoint to, double rest = 0.4)
{
    const QPoint from = view.viewport()->mapToGlobal(view.cellForIndex(0)->center().toPoint());
    QStringList steps;
    const auto move = [&](QPoint point) {
        steps << QStringLiteral("mousemove") << QString::number(point.x()) << QString::number(point.y())
              << QStringLiteral("sleep") << QStringLiteral("0.1");
    };
    move(from);
    steps << QStringLiteral("mousedown") << QStringLiteral("1");
    move(from + QPoint(15, 5));
    move((from + to) / 2);
    move(to - QPoint(2, 2));
    move(to);
    steps << QStringLiteral("sleep") << QString::number(rest) << QStringLiteral("mouseup")
          << QStringLiteral("1");
    QProcess pointer;
    pointer.start(QStringLiteral("xdotool"), steps);
    QTRY_VERIFY_WITH_TIMEOUT(pointer.state() == QProcess::NotRunning, 10'000);
    QCOMPARE(pointer.exitCode(), 0);
}

} // namespace

class DragOutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_view.reset(); }
    void files();
    void directSave();
    void impatientTarget();
    void withinTheGrid();
    void scrolledPicture();

private:
    static constexpr QPoint kTarget{900, 100};

    test::TestFolder m_folder;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<Delegate> m_delegate;
    std::unique_ptr<ImageBrowserView> m_view;
};

void DragOutTest::init()
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

void DragOutTest::files()
{
    const DropTarget target(DropTarget::Manner::TakesFiles, {}, kTarget.x(), kTarget.y());
    // The event loop goes on while the target waits for the files.
    QTimer timer;
    connect(&timer, &QTimer::timeout, this,
            [&] { m_log->mayGoOn = m_log->made == 1 && !target.seen().isFinished; });
    timer.start(20);
    drag(*m_view, kTarget + QPoint(100, 100));
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

void DragOutTest::directSave()
{
    const QByteArray url = QUrl::fromLocalFile(m_folder.path(QStringLiteral("image0"))).toEncoded();
    const DropTarget target(DropTarget::Manner::SavesDirectly, url, kTarget.x(), kTarget.y());
    drag(*m_view, kTarget + QPoint(100, 100));
    QTRY_VERIFY(target.seen().isFinished);
    QVERIFY(target.seen().offers.contains("XdndDirectSave0"));
    QCOMPARE(target.seen().proposedName, QByteArray("image0"));
    QCOMPARE(target.seen().data, QByteArray("S"));
    QCOMPARE(m_log->savedInto, m_folder.path());
    QCOMPARE(m_log->made.load(), 0);

    // A place that is none, or of another machine.
    for (const char *place :
         {"file:///there/is/none/image0", "file://elsewhere/tmp/image0", "http://host/x"}) {
        m_log->savedInto.clear();
        const DropTarget other(DropTarget::Manner::SavesDirectly, place, kTarget.x(), kTarget.y());
        drag(*m_view, kTarget + QPoint(100, 100), 0.1);
        QTRY_COMPARE(other.seen().data, QByteArray("F"));
        QCOMPARE(m_log->savedInto, QString());
    }
}

void DragOutTest::impatientTarget()
{
    const DropTarget target(DropTarget::Manner::Impatient, {}, kTarget.x(), kTarget.y());
    drag(*m_view, kTarget + QPoint(100, 100));
    // The drag ends while its data are asked: no files are made any more, and the user is told.
    QTRY_COMPARE(m_log->failures.size(), 1); // one line for both
    QVERIFY(m_log->wasUnwanted);
    QVERIFY(!QFileInfo::exists(m_log->folder));
}

void DragOutTest::withinTheGrid()
{
    // Resting near the lower edge it scrolls; what is dropped there is moved behind what is seen then.
    QWidget *viewport = m_view->viewport();
    drag(*m_view, viewport->mapToGlobal(QPoint(300, viewport->height() - 5)), 1);
    QVERIFY(m_view->verticalScrollBar()->value() > 50);
    QCOMPARE(m_log->moved, QList<int>{0});
    QVERIFY(m_log->movedTo > 20);
    QCOMPARE(m_log->made.load(), 0);
    // A drag to somewhere where nobody takes it.
    m_log->moved.clear();
    drag(*m_view, QPoint(1200, 700), 0.1);
    QVERIFY(m_log->moved.isEmpty());
    QCOMPARE(m_log->made.load(), 0);
}

void DragOutTest::scrolledPicture()
{
    // What was moved on the screen is what would be drawn anew.
    m_view->takeSelection({30, 31, 45}, 31);
    const auto isAsDrawn = [&] {
        QTest::qWait(100);
        const QImage seen = m_view->screen()->grabWindow(m_view->winId()).toImage();
        return seen.convertToFormat(QImage::Format_RGB32) ==
               m_view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    };
    for (const int value : {37, 250, 251, 180, 3000, 0}) {
        m_view->verticalScrollBar()->setValue(value);
        QVERIFY2(isAsDrawn(), qPrintable(QString::number(value)));
    }
    m_view->setZoomFactor(0.63F);
    m_view->verticalScrollBar()->setValue(111);
    QVERIFY(isAsDrawn());
}

int main(int argc, char **argv)
{
#ifdef __SANITIZE_THREAD__
    std::puts("SKIP: the threads that Qt and D-Bus have on X11 look like races to the thread sanitizer");
    return 0;
#endif
    // On an X server where nothing else is going on.
    QProcess server;
    server.setProcessChannelMode(QProcess::SeparateChannels);
    server.start(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                  QStringLiteral("0"), QStringLiteral("1280x800x24"), QStringLiteral("-nolisten"),
                  QStringLiteral("tcp")});
    if (!server.waitForReadyRead(20'000))
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
