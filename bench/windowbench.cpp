// SPDX-License-Identifier: GPL-3.0-or-later

// How long the main window does not respond. scripts/bench runs it and compares with its limits.
//
//   plexa-bench-window table COUNT   scrolls and filters a table of COUNT photos
//   plexa-bench-window import FOLDER drops a folder on the window and waits until all thumbnails are there
//   plexa-bench-window preview FOLDER
//                                    selects its photos, and changes three watermarks on the first by the
//                                    controls of the editor, and drags them; alone, then above two others
//
// Prints a line for each action: the longest pause in milliseconds, and its name. Pauses are processor time
// of the main thread. For the import, where the thread may also wait for another one, they are the elapsed
// time without the time that it waited for a core, and a second line has that time included. "first screen"
// and "all thumbnails" are elapsed times since the drop. For the preview, "frame" is the elapsed time from a
// change to its picture, and "main" the main thread's part of it.

#include "app/appcontroller.h"
#include "noquestions.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "threadtime.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/preview/imageviewcontroller.h"
#include "ui/preview/previewpane.h"
#include "ui/window/mainwindow.h"
#include "watermark/watermarkpicture.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <thread>

using namespace plexa;

namespace
{

void print(const char *what, double milliseconds)
{
    std::printf("%.1f\t%s\n", milliseconds, what);
}

double milliseconds(const QElapsedTimer &timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double threadMilliseconds()
{
    return threadNanoseconds() / 1e6;
}

/// Returns when all its effects are drawn.
double pause(const std::function<void()> &action)
{
    const double before = threadMilliseconds();
    action();
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    return threadMilliseconds() - before;
}

void benchTable(MainWindow &window, ImageSet &set, int count)
{
    const QTemporaryDir folder; // of the one file that all photos are read from
    const QString file = folder.filePath(QStringLiteral("photo.png"));
    QImage(8, 8, QImage::Format_RGB32).save(file);
    set.setImageListModeToBrowser(false);
    for (int i = 0; i < count; ++i) {
        const QString path =
            QStringLiteral("/photos/trip %1/IMG_%2.JPG").arg(i / 500).arg(i, 6, 10, QLatin1Char('0'));
        set.addImage(path, file);
    }
    auto *const table = window.findChild<QTableView *>(QStringLiteral("imageListTable"));
    auto *const search = window.findChild<QLineEdit *>(QStringLiteral("searchField"));
    pause([&] { table->setFocus(); });

    double longest = 0;
    QScrollBar *const bar = table->verticalScrollBar();
    for (int step = 0; step <= 200; ++step)
        longest = std::max(longest, pause([&] { bar->setValue(bar->maximum() / 200 * step); }));
    print("scroll", longest);

    longest = 0;
    for (const char *text : {"4", "42", "421", "42", "4", "", "img", "nothing", ""})
        longest = std::max(longest, pause([&] { search->setText(QString::fromLatin1(text)); }));
    print("filter", longest);

    print("select all", pause([&] { table->selectAll(); }));
    print("select none", pause([&] { set.selection().selectNone(); }));
}

/// Whether the grid is full of photos, or shows all, and each of them has a thumbnail.
bool isFirstScreenShown(const ImageBrowserView &grid, const ImageGathering &gathering)
{
    const GridGeometry &geometry = grid.geometry();
    if (grid.numberImages() == 0 || (!geometry.needsScrollBar() && gathering.isScanning()))
        return false;
    const GridGeometry::Range range = geometry.cellsInRows(grid.visibleRect());
    for (int i = range.first; i < range.end; ++i) {
        if (grid.images()->thumbnail(i, ImageBrowserSource::ThumbnailKind::Watermarked).isNull())
            return false;
    }
    return true;
}

void drop(MainWindow &window, const QString &folder)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile(QFileInfo(folder).absoluteFilePath())});
    const QPoint at = window.rect().center();
    QDragEnterEvent enter(at, Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &enter);
    QDropEvent event(at, Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&window, &event);
}

void benchImport(MainWindow &window, ImageGathering &gathering, const QString &folder)
{
    QElapsedTimer sinceDrop;
    auto &grid = *window.findChild<ImageBrowserView *>();
    std::optional<double> firstScreen;
    QObject::connect(&gathering, &ImageGathering::imageLoaded, &gathering, [&] {
        if (!firstScreen && isFirstScreenShown(grid, gathering)) {
            grid.viewport()->repaint();
            firstScreen = milliseconds(sinceDrop);
        }
    });
    QElapsedTimer sinceLast;
    double lastDelay = threadDelayNanoseconds();
    double longest = 0;
    double longestOwn = 0;
    QTimer probe;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const double delay = threadDelayNanoseconds();
        const double passed = milliseconds(sinceLast);
        longest = std::max(longest, passed);
        longestOwn = std::max(longestOwn, passed - (delay - lastDelay) / 1e6);
        sinceLast.restart();
        lastDelay = delay;
    });
    QObject::connect(&gathering, &ImageGathering::importFinished, &gathering, &QCoreApplication::quit);
    sinceLast.start();
    probe.start(0);
    sinceDrop.start();
    drop(window, folder);
    QCoreApplication::exec();
    print("first screen", firstScreen.value_or(milliseconds(sinceDrop)));
    print("all thumbnails", milliseconds(sinceDrop));
    print("import", longestOwn);
    print("import by the clock", longest);
}

struct Frames {
    std::vector<double> all; ///< milliseconds from the action to its picture
    double main = 0;         ///< the longest processor time of the main thread
};

/// Does the action so many times, each after the picture of the one before.
Frames framesOf(const std::function<bool()> &isDrawn, int count, const std::function<void(int)> &action)
{
    Frames frames;
    for (int i = 0; i < count; ++i) {
        QElapsedTimer timer;
        timer.start();
        const double before = threadMilliseconds();
        action(i);
        while (!isDrawn())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::processEvents(); // draws
        frames.all.push_back(milliseconds(timer));
        frames.main = std::max(frames.main, threadMilliseconds() - before);
    }
    std::sort(frames.all.begin(), frames.all.end());
    return frames;
}

void print(const QString &what, const Frames &frames)
{
    print(qPrintable(what + QStringLiteral(", median frame")), frames.all[frames.all.size() / 2]);
    print(qPrintable(what + QStringLiteral(", worst frame")), frames.all.back());
    print(qPrintable(what + QStringLiteral(", main")), frames.main);
}

void sendMouse(QWidget &widget, QEvent::Type type, QPointF at)
{
    QMouseEvent event(type, at, widget.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(&widget, &event);
}

/// Moves a control of the editor: a slider by its handle, a wheel by its hand, a number by its stepper.
Frames slideFrames(QWidget &control, const std::function<bool()> &isDrawn)
{
    constexpr int kSteps = 60;
    for (QWidget *parent = control.parentWidget(); parent; parent = parent->parentWidget()) {
        if (auto *const editor = qobject_cast<QScrollArea *>(parent))
            editor->ensureWidgetVisible(&control);
    }
    QCoreApplication::processEvents();
    if (auto *const box = qobject_cast<QSpinBox *>(&control))
        return framesOf(isDrawn, kSteps, [box](int i) {
            QKeyEvent key(QEvent::KeyPress, i % 20 < 10 ? Qt::Key_Up : Qt::Key_Down, {});
            QCoreApplication::sendEvent(box, &key);
        });
    const QRectF area = control.rect();
    const bool isWheel = !qobject_cast<QSlider *>(&control);
    const auto place = [&](int i) {
        const double share = double(i + 1) / (kSteps + 1);
        const QPointF around(std::cos(6 * share), std::sin(6 * share));
        return area.center() +
               (isWheel ? 0.4 * area.height() * around : QPointF((share - 0.5) * area.width(), 0));
    };
    const auto &slider = static_cast<const QAbstractSlider &>(control);
    const double share = double(slider.value() - slider.minimum()) / (slider.maximum() - slider.minimum());
    const QPointF handle(area.left() + share * (area.width() - 1), area.center().y());
    sendMouse(control, QEvent::MouseButtonPress, isWheel ? place(0) : handle);
    const Frames frames =
        framesOf(isDrawn, kSteps, [&](int i) { sendMouse(control, QEvent::MouseMove, place(i)); });
    sendMouse(control, QEvent::MouseButtonRelease, place(kSteps - 1));
    return frames;
}

/// A preset of three marks: an outlined text, tiles of it, a tilted logo with a shadow.
struct Mark {
    QString name;
    const char *control;
    std::function<void(WPreset &)> prepare;
};

std::vector<Mark> marksOfBench()
{
    QImage logo(1200, 800, QImage::Format_ARGB32_Premultiplied);
    logo.fill(QColor(200, 40, 40, 160));
    return {{QStringLiteral("outlined text"), "fontSizeTextField", [](WPreset &) {}},
            {QStringLiteral("tiles"), "opacitySlider",
             [](WPreset &preset) {
                 preset.setReplicateHorizontal(true);
                 preset.setReplicateVertical(true);
                 preset.setWidth(20);
             }},
            {QStringLiteral("tilted logo with shadow"), "angleSlider", [logo](WPreset &preset) {
                 preset.setReplicateHorizontal(false);
                 preset.setReplicateVertical(false);
                 preset.setImage(WatermarkPicture::fromImage(logo));
                 preset.setType(QStringLiteral("Image"));
                 preset.setWidth(40);
                 preset.setShadow(true);
             }}};
}

void benchPreview(MainWindow &window, AppController &controller, const QString &folder)
{
    ImageGathering &gathering = controller.gathering();
    QObject::connect(&gathering, &ImageGathering::importFinished, &gathering, &QCoreApplication::quit);
    gathering.scanImagesAtPaths({folder});
    QCoreApplication::exec();
    auto &preview = window.findChild<PreviewPane *>()->imageViewController();
    auto &view = *window.findChild<ImageViewWithWatermarkControl *>();
    ImageSelection &selection = controller.imageSet().selection();
    const auto count = static_cast<int>(controller.imageSet().images()->size());
    const auto isDrawn = [&preview] { return !preview.isBusy(); };
    print(QStringLiteral("select"), framesOf([&view] { return view.hasPicture(); }, std::min(count, 20),
                                             [&](int i) { selection.selectIndexes({i}); }));

    selection.selectIndexes({0});
    const auto measure = [&](const QString &name, QWidget &control) {
        print(name + QStringLiteral(" slider"), slideFrames(control, isDrawn));
        const QPointF center = view.geometry().imageToView(view.watermarkRect()).center();
        sendMouse(view, QEvent::MouseButtonPress, center);
        print(name + QStringLiteral(" drag"), framesOf(isDrawn, 60, [&](int i) {
                  sendMouse(view, QEvent::MouseMove, center - QPointF(0, 2.0 * i));
              }));
        sendMouse(view, QEvent::MouseButtonRelease, center);
        controller.resetManualPositioning(AppController::Presets::All);
    };
    AppliedPresets &applied = controller.appliedPresets();
    const auto measureAll = [&](const QString &where, const char *editorName, WPreset &preset) {
        const auto *const editor = window.findChild<QScrollArea *>(QLatin1String(editorName));
        for (const Mark &mark : marksOfBench()) {
            mark.prepare(preset);
            measure(mark.name + where, *editor->findChild<QWidget *>(QLatin1String(mark.control)));
        }
    };
    const std::shared_ptr<WPreset> stored = applied.quickWPreset()->copy();
    measureAll({}, "quickWPresetEditor", *applied.quickWPreset());
    // Two more are drawn below it, and the list shows the pictures of all.
    PresetList<WPreset> &list = controller.presetsStore().wPresetList();
    list.append({stored->copy(), stored->copy(), stored});
    applied.addWPresetsToApplied(list.presets());
    applied.modeDidChange(AppliedPresets::Mode::Presets);
    applied.selectRows({static_cast<int>(list.presets().size()) - 1});
    measureAll(QStringLiteral(" of presets"), "wPresetEditor", *stored);
}

} // namespace

int main(int argc, char **argv)
{
    const QByteArray what(argc == 3 ? argv[1] : "");
    if (what != "table" && what != "import" && what != "preview") {
        std::fprintf(stderr, "Usage: plexa-bench-window table COUNT | import FOLDER | preview FOLDER\n");
        return 2;
    }
    const QTemporaryDir home; // the user's settings and presets are not changed
    for (const char *folder : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(folder, home.path().toUtf8());
    const QApplication application(argc, argv);

    const FontCatalog fonts;
    const LocaleFormat locale(QStringLiteral("en_US"));
    PixelCache cache(physicalMemoryBytes() / 8);
    ByteBudget budget(physicalMemoryBytes() / 2);
    const PhotoServices photos{fonts, locale, cache, budget, {}};
    UserDefaults defaults(QStringLiteral("Quorvel"), QStringLiteral("Plexa"));
    registerDefaults(defaults);
    NoQuestions alerts;
    const int threads = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    PresetsStore store(alerts, fonts);
    AppController controller({photos, defaults, alerts, store, threads});
    MainWindow window({controller, defaults, alerts, threads});
    window.show();
    QCoreApplication::processEvents();

    if (what == "table")
        benchTable(window, controller.imageSet(), std::atoi(argv[2]));
    else if (what == "preview")
        benchPreview(window, controller, QString::fromLocal8Bit(argv[2]));
    else
        benchImport(window, controller.gathering(), QString::fromLocal8Bit(argv[2]));
    return 0;
}
