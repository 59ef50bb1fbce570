// SPDX-License-Identifier: GPL-3.0-or-later

// Real events to a real grid.

#include "support/datarows.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "ui/browser/cellpictures.h"
#include "ui/browser/gridfakes.h"
#include "ui/browser/gridpainter.h"
#include "ui/browser/imagebrowserview.h"
#include "ui/browser/promisedfiles.h"
#include "ui/widgets/filedrops.h"
#include "ui/widgets/lightappearance.h"

#include <QAccessible>
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QProcess>
#include <QScrollBar>
#include <QTest>
#include <QUrl>
#include <QWheelEvent>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// The ratio of two colors by the formula of the Web Content Accessibility Guidelines.
double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &color) {
        const auto linear = [](double v) {
            return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const double a = luminance(one) + 0.05;
    const double b = luminance(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

struct Steps {
    Text name; ///< keys, and digits for clicks on these cells, all with modifiers
    QList<int> indexes;
    int focus;
};

struct Gesture {
    Text name;
    Qt::NativeGestureType type;
    QList<double> values;
    QPointF delta;
    QByteArray log;
};

/// A shown grid of 20 images: 7 columns.
struct Grid {
    explicit Grid(int count = 20)
        : images(std::make_shared<Colors>(count))
    {
        view.setDelegate(&delegate);
        view.setImages(images);
        view.resize(800, 500);
        view.show();
        (void)QTest::qWaitForWindowExposed(&view);
        delegate.take();
    }

    QPoint middle(int index) const { return view.viewportRect(*view.cellForIndex(index)).center().toPoint(); }
    void click(int index, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, middle(index));
    }
    void gesture(Qt::NativeGestureType type, double value, QPointF delta = {}, int fingers = 2)
    {
        const QPointF at = middle(0);
        QNativeGestureEvent event(type, QPointingDevice::primaryPointingDevice(), fingers, at, at,
                                  view.viewport()->mapToGlobal(at), value, delta);
        QApplication::sendEvent(view.viewport(), &event);
    }

    std::shared_ptr<Colors> images;
    Recorder delegate;
    ImageBrowserView view;
};

/// Drags data over a widget. @return the action of an accepted event
template<class Event = QDragEnterEvent>
Qt::DropAction entered(QWidget *where, const QMimeData *data, QPoint at, Qt::DropActions actions)
{
    Event event(at, actions, data, Qt::LeftButton, {});
    QApplication::sendEvent(where, &event);
    return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
}

/// The same, and drops them where they are accepted. @return the action of the drop
Qt::DropAction dropped(QWidget *where, const QMimeData *data, QPoint at, Qt::DropActions actions)
{
    return entered(where, data, at, actions) == Qt::IgnoreAction
               ? Qt::IgnoreAction
               : entered<QDropEvent>(where, data, at, actions);
}

} // namespace

class ImageBrowserViewTest : public QObject
{
    Q_OBJECT

private:
    TestFolder m_folder;

private Q_SLOTS:
    void mouse()
    {
        Grid grid;
        grid.click(2);
        QCOMPARE(grid.delegate.take(), QByteArray("selected 2; focus 2<-1"));
        grid.click(4, Qt::ShiftModifier);
        QCOMPARE(grid.delegate.take(), QByteArray("selected 2,3,4; focus 4<2"));

        // A right click leaves what is selected, and opens the menu.
        grid.click(2);
        grid.click(5, Qt::ControlModifier);
        grid.delegate.take();
        QMenu menu;
        menu.addAction(u"Remove"_qs);
        grid.view.setContextMenu(&menu);
        const auto rightClick = [&](QPoint at) {
            QTest::mouseClick(grid.view.viewport(), Qt::RightButton, {}, at);
            QContextMenuEvent event(QContextMenuEvent::Mouse, at, grid.view.viewport()->mapToGlobal(at));
            QApplication::sendEvent(grid.view.viewport(), &event);
            const bool isOpen = menu.isVisible();
            menu.hide();
            return isOpen;
        };
        QVERIFY(rightClick(grid.middle(2)));
        QCOMPARE(grid.delegate.take(), QByteArray("focus 2<5"));
        // The key for it opens it on the focus image.
        QContextMenuEvent byKey(QContextMenuEvent::Keyboard, {1, 1}, {1, 1});
        QApplication::sendEvent(grid.view.viewport(), &byKey);
        QCOMPARE(menu.pos(), grid.view.viewport()->mapToGlobal(grid.middle(2)));
        menu.hide();
        QVERIFY(rightClick({1, 1}));
        QCOMPARE(grid.delegate.take(), QByteArray());
        QVERIFY(rightClick(grid.middle(6)));
        QCOMPARE(grid.delegate.take(), QByteArray("selected 6; focus 6<2"));

        const auto doubleClick = [&](QPoint at) {
            QTest::mouseDClick(grid.view.viewport(), Qt::LeftButton, {}, at);
            QTest::mouseRelease(grid.view.viewport(), Qt::LeftButton, {}, at);
        };
        doubleClick(grid.middle(6));
        QCOMPARE(grid.delegate.take(), QByteArray("double"));
        doubleClick({1, 1});
        QCOMPARE(grid.delegate.take(), QByteArray("selected; focus -1<6"));

        grid.view.setShowsOriginalOnMouseOver(true);
        QTest::mouseMove(grid.view.viewport(), grid.middle(3));
        grid.view.viewport()->repaint();
        QCOMPARE(grid.images->askedForOriginal, 3);
        grid.view.setShowsOriginalOnMouseOver(false);
        grid.images->askedForOriginal = -1;
        grid.view.viewport()->repaint();
        QCOMPARE(grid.images->askedForOriginal, -1);
    }

    void rubberBand()
    {
        Grid grid(500);
        grid.click(0);
        grid.delegate.take();
        QWidget *viewport = grid.view.viewport();
        const auto cell = [&](int i) { return grid.view.viewportRect(*grid.view.cellForIndex(i)); };
        const QPoint from = QPointF((cell(1).right() + cell(2).left()) / 2, cell(0).bottom() + 2).toPoint();
        const QPoint to = QPointF(cell(3).left() + 1, cell(7).top() + 5).toPoint();

        // From a gap to the upper left: the band is drawn at its place and selects the cells that it meets.
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        QCOMPARE(grid.delegate.take(), QByteArray("selected; focus -1<0"));
        QTest::mouseMove(viewport, to);
        const QColor inBand = viewport->grab().toImage().pixelColor(from + QPoint(2, 1));
        QVERIFY(inBand.blue() > inBand.red() + 40);
        QCOMPARE(grid.delegate.take(), QByteArray());
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
        QCOMPARE(grid.delegate.take(), QByteArray("selected 9,10; focus 9<-1"));
        QCOMPARE(viewport->grab().toImage().pixelColor(from + QPoint(2, 1)).saturation(), 0);

        // Held below the view it scrolls, and selects further images.
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        QTest::mouseMove(viewport, QPoint(from.x() + 5, viewport->height() + 40));
        QTRY_VERIFY(grid.view.verticalScrollBar()->value() > 300);
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, QPoint(from.x() + 5, viewport->height() + 40));
        QVERIFY(grid.view.isIndexSelected(9) && grid.view.isIndexSelected(37));

        // Escape cancels it.
        grid.view.verticalScrollBar()->setValue(0);
        QTest::mousePress(viewport, Qt::LeftButton, {}, from);
        QTest::mouseMove(viewport, to);
        QTest::keyClick(&grid.view, Qt::Key_Escape);
        QTest::mouseMove(viewport, to + QPoint(1, 0));
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
        QCOMPARE(grid.view.selectionIndexes(), QList<int>());
    }

    void selection_data()
    {
        // Seven columns, 60 images, four rows in a page.
        addRows<Steps>({
            {"3 Ctrl+5 3", {3, 5}, 3},
            {"3 Ctrl+5 Ctrl+3", {5}, 3},
            {"1 Ctrl+5 Shift+7", {1, 5, 6, 7}, 7},
            {"Shift+4", {4}, 4},
            {"1 Shift+5 Shift+3", {1, 2, 3, 4, 5}, 3},
            {"1 Shift+3 Ctrl+Shift+2", {1, 3}, 2},

            {"Left", {59}, 59},
            {"End Right", {59}, 59},
            {"3 Ctrl+Right", {3, 4}, 4},
            {"2 Shift+5 Shift+Right", {2, 3, 4, 5, 6}, 6},
            {"2 Shift+5 Shift+Left", {2, 3, 4}, 4},
            {"End Left Shift+Right Shift+Right", {58, 59}, 59},

            {"Up", {59}, 59},
            {"2 Up", {0}, 0},
            {"End Left Down", {59}, 59},
            {"1 Shift+Down", {1, 2, 3, 4, 5, 6, 7, 8}, 8},
            {"1 Shift+Down Shift+Up", {1}, 1},
            {"8 Shift+Up Shift+Down", {8}, 8},
            {"PgDown PgDown", {28}, 28},
            {"End PgUp", {31}, 31},
            {"1 Ctrl+Right Ctrl+Space", {1}, 2},
        });
    }
    void selection()
    {
        const auto [steps, indexes, focus] = currentRow<Steps>();
        Grid grid(60);
        for (const QString &step : steps.split(u' ')) {
            const QKeyCombination key = QKeySequence(step, QKeySequence::PortableText)[0];
            if (key.key() >= Qt::Key_0 && key.key() <= Qt::Key_9)
                grid.click(key.key() - Qt::Key_0, key.keyboardModifiers());
            else
                QTest::keyClick(&grid.view, key.key(), key.keyboardModifiers());
        }
        QCOMPARE(grid.view.selectionIndexes(), indexes);
        QCOMPARE(grid.view.focusImageIndex(), focus);
        QVERIFY(grid.view.cellIsVisible(focus));
    }

    void commandKeys()
    {
        Grid grid;
        grid.click(8);
        grid.delegate.take();
        QTest::keyClick(&grid.view, Qt::Key_Return);
        QTest::keyClick(&grid.view, Qt::Key_Delete);
        QTest::keyClick(&grid.view, Qt::Key_Backspace, Qt::ControlModifier); // a shortcut of the window
        QTest::keyClick(&grid.view, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(grid.delegate.take(), QByteArray("return; delete; copy"));
        QTest::keyClick(&grid.view, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(grid.view.selectionIndexes().size(), 20);
    }

    void gestures_data()
    {
        addRows<Gesture>({
            {"pinch", Qt::ZoomNativeGesture, {0.125}, {}, "zoom 0.625"},
            {"rotated clockwise", Qt::RotateNativeGesture, {30, 16, 44}, {}, "rotated cw"},
            {"rotated counter-clockwise", Qt::RotateNativeGesture, {-30, -20}, {}, "rotated ccw"},
            {"swipe to the left", Qt::SwipeNativeGesture, {0}, {1, 0}, "selected 8; focus 8<9"},
            {"half a swipe", Qt::SwipeNativeGesture, {0}, {0.5, 0}, ""},
            {"swipe by its angle, left", Qt::SwipeNativeGesture, {180}, {}, "selected 8; focus 8<9"},
            {"pan to the right", Qt::PanNativeGesture, {0, 0, 0}, {30, 5}, "selected 10; focus 10<9"},
            {"pan downwards", Qt::PanNativeGesture, {0, 0, 0}, {30, 25}, ""},
        });
    }
    void gestures()
    {
        const auto [name, type, values, delta, log] = currentRow<Gesture>();
        Grid grid;
        grid.view.takeSelection({8, 9}, 9);
        grid.gesture(Qt::BeginNativeGesture, 0);
        for (const double value : values)
            grid.gesture(type, value, delta, 3);
        grid.gesture(Qt::EndNativeGesture, 0);
        QCOMPARE(grid.delegate.take(), log);
    }

    void wheel()
    {
        Grid grid(500);
        const auto turn = [&](Qt::KeyboardModifiers modifiers) {
            const QPointF at(100, 100);
            QWheelEvent event(at, grid.view.viewport()->mapToGlobal(at), {}, {0, -120}, Qt::NoButton,
                              modifiers, Qt::NoScrollPhase, false);
            QApplication::sendEvent(grid.view.viewport(), &event);
        };
        turn(Qt::ControlModifier);
        QCOMPARE(grid.delegate.take(), QByteArray("zoom 0.45"));
        QCOMPARE(grid.view.verticalScrollBar()->value(), 0);
        turn({});
        QVERIFY(grid.view.verticalScrollBar()->value() > 0);
    }

    void zoomKeepsPlace()
    {
        Grid grid(500);
        // The middle of what is seen stays there,
        grid.view.verticalScrollBar()->setValue(grid.view.verticalScrollBar()->maximum() / 3);
        const auto share = [&] {
            return grid.view.visibleRect().center().y() / grid.view.geometry().height();
        };
        const double before = share();
        grid.view.setZoomFactor(0.8F);
        QVERIFY(std::abs(share() - before) < 0.002);
        // or else the focus image, where it was seen.
        grid.view.takeSelection({200}, 200);
        grid.view.scrollFocusImageToVisible();
        for (const float zoom : {0.0F, 1.0F, 0.3F, 5.0F}) {
            grid.view.setZoomFactor(zoom);
            QVERIFY(grid.view.visibleRect().contains(*grid.view.cellForIndex(200)));
        }
        QCOMPARE(grid.view.zoomFactor(), 1.0F);
        QCOMPARE(grid.view.geometry().cellSize(), 500.0 - 28);
        // A photo of the last row is reached at every size.
        for (const QSize size : {QSize(40, 40), QSize(60, 400), QSize(79, 79), QSize(1500, 60)}) {
            grid.view.resize(size);
            QCoreApplication::processEvents();
            grid.view.scrollCellToVisible(499);
            QVERIFY(grid.view.cellIsVisible(499));
        }
    }

    void thumbnailsAreSeen()
    {
        Grid grid(500);
        grid.images->images[1] = QImage();
        const auto pixel = [&](int index, double x, double y) {
            const QRectF cell = grid.view.viewportRect(*grid.view.cellForIndex(index));
            return grid.view.viewport()->grab().toImage().pixelColor(
                QPointF(cell.left() + x * cell.width(), cell.top() + y * cell.height()).toPoint());
        };
        // Upright, sharp or not yet.
        for (int round = 0; round < 2; ++round) {
            QCOMPARE(pixel(0, 0.5, 0.6), grid.images->images[0].pixelColor(0, 0));
            QCOMPARE(pixel(0, 0.5, 0.25), QColor(Qt::white));
            QTest::qWait(50);
        }
        // A new thumbnail is shown at the next refresh.
        const QColor ground = pixel(1, 0.02, 0.02);
        QVERIFY(pixel(1, 0.5, 0.5).lightness() > ground.lightness());
        grid.images->images[1] = Colors::thumbnail(Qt::red);
        grid.view.refreshImage(&grid.images->images[1]);
        QCOMPARE(pixel(1, 0.5, 0.6), QColor(Qt::red));
        // The background of a selected one is lighter.
        grid.view.takeSelection({1}, 1);
        QVERIFY(pixel(1, 0.5, 0.04).lightness() > ground.lightness() + 20);

        CellPictures pictures(1 << 20);
        // The cache is bounded by bytes.
        for (int i = 10; i < 400; ++i)
            QCOMPARE(pictures.makeScaled(grid.images->images[0], {i, i}).size(), QSize(i, i));
        QVERIFY(pictures.bytes() <= 1 << 20);
    }

    /// The marks of state differ from what is beside them by 3:1, texts by 4.5:1.
    void marksCanBeSeen()
    {
        setLightAppearance(*qApp);
        QFont large = QApplication::font();
        large.setPixelSize(19);
        Grid grid;
        QVERIFY(NameLayouts::fontOf(large, 1).pixelSize() == 19 &&
                NameLayouts::fontOf(large, 2).pixelSize() == 38);
        large.setPixelSize(9);
        QCOMPARE(NameLayouts::fontOf(large, 1).pixelSize(), 11);
        QLineEdit other;
        other.show();
        grid.view.takeSelection({1, 2}, 2);
        const auto edge = [&](int index, double inset) {
            const QRectF cell = grid.view.viewportRect(*grid.view.cellForIndex(index));
            return grid.view.viewport()->grab().toImage().pixelColor(
                QPointF(cell.left() + inset, cell.center().y()).toPoint());
        };
        const QColor ground = edge(0, 1);
        const QColor text = grid.view.palette().color(QPalette::WindowText);
        QVERIFY(contrast(text, ground) >= 4.5 && contrast(text, edge(1, 4)) >= 4.5);
        for (const bool hasKeyboard : {true, false}) {
            static_cast<QWidget *>(hasKeyboard ? static_cast<QWidget *>(&grid.view) : &other)
                ->activateWindow();
            QTRY_COMPARE(grid.view.hasFocus(), hasKeyboard);
            for (const int index : {1, 2}) {
                QVERIFY(contrast(edge(index, 1), ground) >= 3);
                QVERIFY(contrast(edge(index, 1), edge(index, 5)) >= 3);
            }
            QVERIFY(contrast(edge(2, 3), edge(1, 3)) >= 3); // the focus image has a thicker line
            grid.view.takeSelection({1}, 2);
            QVERIFY(contrast(edge(2, 1), ground) >= 3);
            QVERIFY(edge(2, 5).lightness() + 20 < edge(1, 5).lightness()); // not selected
            grid.view.takeSelection({1, 2}, 2);
        }
    }

    /// A picture is drawn in the pixels of the device, at every scale of the screen.
    void drawsDevicePixels()
    {
        if (qEnvironmentVariableIsEmpty("QT_SCALE_FACTOR")) {
            for (const char *factor : {"2", "1.5"}) {
                qputenv("QT_SCALE_FACTOR", factor);
                const int failures =
                    QProcess::execute(QCoreApplication::applicationFilePath(), {u"drawsDevicePixels"_qs});
                qunsetenv("QT_SCALE_FACTOR");
                QCOMPARE(failures, 0);
            }
        }
        Grid grid;
        const double ratio = grid.view.devicePixelRatioF();
        QCOMPARE(ratio, std::max(1.0, qEnvironmentVariable("QT_SCALE_FACTOR").toDouble()));
        const QImage square = flatPicture({500, 500}, Qt::magenta);
        grid.images->images[8] = square;
        grid.view.viewport()->repaint();
        const QImage drawn = grid.view.viewport()->grab().toImage();
        QRect place; // in pixels of the device
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < drawn.width(); ++x)
                if (drawn.pixel(x, y) == square.pixel(0, 0))
                    place |= QRect(x, y, 1, 1);
        // Beside the picture are padding, shadow and border, below it the name.
        const double name = QFontMetrics(NameLayouts::fontOf(grid.view.font(), ratio)).height() / ratio;
        const QRectF cell = grid.view.viewportRect(*grid.view.cellForIndex(8));
        const double size = ratio * (0.9 * (1 - 2 * (0.03 + 0.06)) * cell.width() - name);
        QVERIFY(std::abs(place.width() - size) <= 3 && place.width() == place.height());
        QVERIFY(
            (QPointF(place.center()) - ratio * (cell.center() - QPointF(0, name / 2))).manhattanLength() <=
            3);

        // A picture of this size is not scaled, so not one of its pixels is lost.
        const QImage noise = randomPicture(place.size());
        grid.images->images[8] = noise.mirrored();
        const auto isShown = [&] {
            QImage now = grid.view.viewport()->grab().toImage().copy(place);
            now.setDevicePixelRatio(1);
            return now == noise;
        };
        QTRY_VERIFY(isShown());
    }

    void listChanges()
    {
        Grid grid;
        grid.click(3);
        grid.delegate.take();
        grid.view.setImages(grid.images);
        QCOMPARE(grid.delegate.take(), QByteArray());
        // A shorter list shortens the selection, even if it is drawn before the view is notified.
        grid.images->images.resize(3);
        grid.view.viewport()->repaint();
        QCOMPARE(grid.delegate.take(), QByteArray("selected; focus -1<3"));
        grid.view.takeSelection({1, 7}, 7);
        QCOMPARE(grid.view.selectionIndexes(), QList<int>{1});
        QCOMPARE(grid.view.focusImageIndex(), -1);
        grid.view.setImages(std::make_shared<Colors>(0));
        QCOMPARE(grid.delegate.take(), QByteArray("selected"));
        QTest::keyClick(&grid.view, Qt::Key_Down);
        QTest::keyClick(&grid.view, Qt::Key_C, Qt::ControlModifier);
        QTest::mouseClick(grid.view.viewport(), Qt::LeftButton, {}, QPoint(100, 100));
        QCOMPARE(grid.delegate.take(), QByteArray());
        QVERIFY(!grid.view.viewport()->grab().isNull());
    }

    void dragsWithinTheGrid()
    {
        // The offscreen platform cancels a drag at once; the test sends its further events.
        Grid other;
        Grid grid;
        QWidget *viewport = grid.view.viewport();
        const auto begin = [&](int from) {
            qDeleteAll(viewport->findChildren<QDrag *>());
            QTest::mousePress(viewport, Qt::LeftButton, {}, grid.middle(from));
            QTest::mouseMove(viewport, grid.middle(from) + QPoint(2, 2));
            QTest::mouseMove(viewport, grid.middle(from) + QPoint(20, 20));
            QTest::mouseRelease(viewport, Qt::LeftButton, {}, grid.middle(from) + QPoint(20, 20));
            return viewport->findChild<QDrag *>();
        };
        const Qt::DropActions both = Qt::CopyAction | Qt::MoveAction;
        const QPoint before10 = grid.middle(10) - QPoint(30, 0);
        const auto barLightness = [&] {
            const QRectF place = grid.view.viewportRect(grid.view.geometry().insertionBar(10));
            return viewport->grab().toImage().pixelColor(place.center().toPoint()).lightness();
        };

        grid.view.takeSelection({3, 4}, 4);
        const QDrag *drag = begin(3);
        QVERIFY(drag);
        QVERIFY(drag->pixmap().width() > 100);
        QVERIFY(drag->hotSpot().x() < 0 && drag->hotSpot().y() < 0); // beside the pointer
        QVERIFY(std::abs(drag->pixmap().toImage().pixelColor(100, 50).alpha() - 153) <= 1); // 60 %
        QCOMPARE(grid.delegate.take(), QByteArray("focus 3<4; promised 3,4"));
        const int gap = barLightness();
        QCOMPARE(entered(viewport, drag->mimeData(), before10, both), Qt::MoveAction);
        QVERIFY(barLightness() > gap + 20);
        QCOMPARE(dropped(viewport, drag->mimeData(), before10, both), Qt::MoveAction);
        QCOMPARE(barLightness(), gap);
        QCOMPARE(grid.delegate.take(), QByteArray("moved 3,4>10"));
        QCOMPARE(dropped(viewport, drag->mimeData(), before10, Qt::CopyAction), Qt::CopyAction);
        QCOMPARE(grid.delegate.take(), QByteArray("copied 3,4>10"));
        grid.view.setAllowCopying(false);
        QCOMPARE(dropped(viewport, drag->mimeData(), before10, Qt::CopyAction), Qt::IgnoreAction);

        // Another grid does not know what the indexes mean, nor does this one when the list has changed.
        QCOMPARE(entered(other.view.viewport(), drag->mimeData(), before10, both), Qt::IgnoreAction);
        grid.images->images.append(Colors::thumbnail(Qt::red));
        grid.view.fullRefresh();
        QCOMPARE(dropped(viewport, drag->mimeData(), before10, both), Qt::IgnoreAction);
        QCOMPARE(grid.delegate.take(), QByteArray());

        QMimeData foreign;
        foreign.setUrls({QUrl(u"file:///photos/a.jpg"_qs)});
        foreign.setData(kPhotoSelectionType, "\xff\xff\xff\xff nonsense");
        QCOMPARE(dropped(viewport, &foreign, before10, both), Qt::IgnoreAction);
        QCOMPARE(PromisedFiles::indexes(foreign), QList<int>());

        grid.delegate.allowsDrags = false;
        QVERIFY(!begin(3));
    }

    void filesPromised()
    {
        qputenv("TMPDIR", m_folder.path().toUtf8());
        FakePromise::Log log;
        QString folder;
        {
            PromisedFiles files(std::make_unique<FakePromise>(6, log), std::make_shared<PrivateFolders>(),
                                PromisedFiles::Use::Drag, {1, 5, 6});
            QVERIFY(files.hasUrls() && files.formats().contains(u"image/png"_qs));
            QCOMPARE(PromisedFiles::indexes(files), (QList<int>{1, 5, 6}));
            QCOMPARE(files.data(u"text/html"_qs), QByteArray());
            QCOMPARE(log.made.load(), 0);

            // Written once for all requests; the drag contains files, and no picture.
            const QList<QUrl> urls = files.urls();
            QCOMPARE(urls.size(), 6);
            folder = QFileInfo(urls.first().toLocalFile()).path();
            QCOMPARE(QFileInfo(folder + u"/.."_qs).permissions() & 0x77, QFile::Permissions());
            QCOMPARE(files.urls(), urls);
            files.dropped();
            QCOMPARE(files.data(u"image/png"_qs), QByteArray());
            QCOMPARE(log.made.load(), 1);

            // Folders of a killed program are removed, but neither ours nor the target of a link.
            const QString prefix = m_folder.path(QCoreApplication::applicationName() + u"-copies-"_qs);
            QVERIFY(QDir().mkpath(prefix + u"abcdef/1/image0"_qs));
            QVERIFY(QDir().mkpath(m_folder.path("private/photos")));
            QVERIFY(QFile::link(m_folder.path("private"), prefix + u"ghijkl"_qs));
            QCOMPARE(PrivateFolders::removeLeftovers(), 1);
            QVERIFY(!QFileInfo::exists(prefix + u"abcdef"_qs));
            QVERIFY(QFileInfo::exists(m_folder.path("private/photos")));
            QVERIFY(QFileInfo::exists(urls.last().toLocalFile()));
        }
        QVERIFY(!QFileInfo::exists(folder));
        qunsetenv("TMPDIR");
    }

    void screenReaders()
    {
        Grid grid;
        QAccessibleInterface *list = QAccessible::queryAccessibleInterface(&grid.view);
        QVERIFY(list && list->role() == QAccessible::List && !list->text(QAccessible::Name).isEmpty());
        QVERIFY(list->childCount() == 20 && !list->child(20));
        QAccessibleInterface *cell = list->child(4);
        QCOMPARE(cell->text(QAccessible::Name), u"photo4"_qs);
        QCOMPARE(cell->parent(), list);
        QCOMPARE(list->indexOfChild(cell), 4);
        const QPoint middle = grid.view.viewport()->mapToGlobal(grid.middle(4));
        QVERIFY(cell->rect().contains(middle));
        QCOMPARE(list->childAt(middle.x(), middle.y()), cell);
        QVERIFY(!cell->state().selected);
        cell->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(grid.delegate.take(), QByteArray("selected 4; focus 4<-1"));
        QVERIFY(cell->state().selected);
        cell->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
        QCOMPARE(grid.delegate.take(), QByteArray("selected"));
        grid.view.setFocus();
        QTRY_COMPARE(list->focusChild(), cell);

        grid.view.setImages(std::make_shared<Colors>(2));
        QVERIFY(!cell->isValid() && cell->rect().isEmpty() && cell->text(QAccessible::Name).isEmpty());
    }
};

QTEST_MAIN(ImageBrowserViewTest)
#include "imagebrowserview_test.moc"
