// SPDX-License-Identifier: GPL-3.0-or-later

#include "raster/resampling.h"
#include "support/picturedifference.h"
#include "ui/preview/imageviewcontroller.h"
#include "ui/preview/previewpane.h"
#include "ui/shownwindow.h"
#include "ui/widgets/elidedlabel.h"
#include "watermark/watermarkpicture.h"

#include <QApplication>
#include <QCursor>
#include <QLineF>
#include <QSlider>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr QSize kPhoto(3000, 2000);

/// The window with photos a (large) and b (small), a selected, and a watermark in the middle of them.
struct Preview : ShownWindow {
    Preview()
    {
        WPresetValues values = WPresetValues::forNewPreset(files.fonts);
        values.textTokens = {u"mark"_qs};
        values.width = 30;
        values.anchorPoint = 4;
        presets.modeDidChange(AppliedPresets::Mode::Single);
        presets.setQuickWPreset(std::make_shared<WPreset>(values));
        set.addImage(files.photo("a.png", kPhoto), {});
        set.addImage(files.photo("b.png"), {});
        view.setFixedHeight(354); // whatever the other parts of the window need
        select(0);
    }

    /// The visible part of the photo as the screen shows it.
    QImage shown() const
    {
        const QRectF part = view.geometry().layerRectInView().intersected(view.rect());
        const double ratio = view.devicePixelRatioF();
        const QRect pixels(qRound(part.x() * ratio), qRound(part.y() * ratio), int(part.width() * ratio),
                           int(part.height() * ratio));
        QImage image = view.grab().toImage().copy(pixels);
        image.setDevicePixelRatio(1);
        return pixelsOf(image);
    }
    /// The same part of a copy in a file.
    QImage expected(const QImage &copy) const
    {
        const QRectF layer = view.geometry().layerRectInView();
        const double ratio = view.devicePixelRatioF();
        const QPointF corner = (layer.intersected(view.rect()).topLeft() - layer.topLeft()) * ratio;
        return resampled(copy, (layer.size() * ratio).toSize(), Quality::High)
            .copy({corner.toPoint(), shown().size()});
    }

    void select(int index)
    {
        set.selection().selectIndexes({index});
        settle();
    }
    void settle()
    {
        isSettled = QTest::qWaitFor([this] { return !controller.isBusy(); });
    }

    /// Is there a line of black and white dashes along the upper side of the watermark's rectangle?
    bool hasOutline() const
    {
        const double ratio = view.devicePixelRatioF();
        const QRectF rect = view.geometry().imageToView(view.watermarkRect());
        const QRect side = QRectF(rect.topLeft() * ratio, QSizeF(rect.width() * ratio, 1)).toRect();
        const QImage line = pixelsOf(view.grab().toImage()).copy(side.adjusted(0, -2, 0, 2));
        int black = 0;
        int white = 0;
        for (int y = 0; y < line.height(); ++y) {
            for (int x = 0; x < line.width(); ++x) {
                black += line.pixel(x, y) == qRgb(0, 0, 0);
                white += line.pixel(x, y) == qRgb(255, 255, 255);
            }
        }
        return black * 4 > side.width() && white * 4 > side.width();
    }

    QPoint middle() const { return view.rect().center(); }
    QPoint onMark() const { return view.geometry().imageToView(view.watermarkRect()).center().toPoint(); }
    std::optional<QPointF> origin() const
    {
        return set.shownImage()->customWatermarkRectOriginForWPreset(presets.currentWPreset().get());
    }
    void move(QPoint to) const { QTest::mouseMove(&view, to); }
    void press(QPoint at, Qt::KeyboardModifiers keys = {}) const
    {
        move(at);
        QTest::mousePress(&view, Qt::LeftButton, keys, at);
    }
    void release(QPoint at) const { QTest::mouseRelease(&view, Qt::LeftButton, {}, at); }

    ImageViewController &controller = find<PreviewPane>("previewPane").imageViewController();
    ImageViewWithWatermarkControl &view = find<ImageViewWithWatermarkControl>("imageView");
    AppliedPresets &presets = ShownWindow::controller.appliedPresets();
    bool isSettled = false;
};

using Change = std::function<void(WPresetValues &)>;

/// How much the pictures differ when one is moved by so many pixels.
double differenceAt(const QImage &a, const QImage &b, QPoint step)
{
    const QRect common = a.rect().intersected(a.rect().translated(step));
    return meanDifference(a.copy(common), b.copy(common.translated(-step)));
}

bool isNear(double a, double b)
{
    return std::abs(a - b) < 1e-9;
}

} // namespace

class ImageViewControllerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// At every zoom, the photo with its watermarks looks as the copy does, and each watermark is where the
    /// copy has it, within one pixel of the screen.
    void whatIsSeenIsSaved_data()
    {
        addRows<Row<bool, Change>>({
            {"outlined text", false, [](WPresetValues &v) { v.strokeWidth = -4; }},
            {"tiles, rotated photo", true,
             [](WPresetValues &v) { v.replicateHorizontal = v.replicateVertical = true; }},
            {"tilted logo with a shadow", false,
             [](WPresetValues &v) {
                 v.type = u"Image"_qs;
                 v.image = WatermarkPicture::fromImage(smoothPicture({300, 200}));
                 v.angle = 33.0F;
                 v.shadow = true;
             }},
            {"quarter, mirrored, rotated photo", true,
             [](WPresetValues &v) {
                 v.rotation = 1;
                 v.flip = 1;
             }},
            {"three quarters, tilted", false,
             [](WPresetValues &v) {
                 v.rotation = 3;
                 v.angle = -12.0F;
             }},
            {"shadow and box", false,
             [](WPresetValues &v) {
                 v.shadow = v.background = true;
                 v.opacity = 70;
             }},
            {"multiplied logo, rotated photo", true,
             [](WPresetValues &v) {
                 v.type = u"Image"_qs;
                 v.image = WatermarkPicture::fromImage(smoothPicture({300, 200}));
                 v.blendMode = u"Multiply"_qs;
             }},
        });
    }
    void whatIsSeenIsSaved()
    {
        const auto [name, isTurned, change] = currentRow<Row<bool, Change>>();
        Preview preview;
        preview.view.setFixedHeight(391); // many tiles fall between the pixels of the screen
        const QString path = preview.files.folder.path("in/smooth.png");
        QVERIFY(smoothPicture({2400, 1600}).save(path));
        preview.set.addImage(path, {});
        preview.select(2);
        const std::shared_ptr<ImageObject> photo = preview.set.shownImage();
        if (isTurned) {
            preview.ShownWindow::controller.startBatchOperation(ImageTransform::RotateClockwise);
            QTRY_COMPARE(preview.view.geometry().imageSize(), QSizeF(1600, 2400));
        }

        // A small one over the one of the row.
        WPresetValues values = preview.presets.quickWPreset()->values();
        const auto small = std::make_shared<WPreset>(values);
        small->setAnchorPoint(1);
        values.textTokens = {u"Proof 42"_qs};
        values.fontSize = 20;
        change(values);
        preview.presets.modeDidChange(AppliedPresets::Mode::Presets);
        preview.presets.addWPresetsToApplied({std::make_shared<WPreset>(values), small});
        preview.files.defaults.setObject(settings::combineAllAppliedPresetsInImage, true);
        const auto separate = qScopeGuard(
            [&] { preview.files.defaults.setObject(settings::combineAllAppliedPresetsInImage, false); });

        SavingPresetValues png;
        png.imageFormat = u"PNG"_qs;
        const QString copyPath = preview.files.folder.path("copy.png");
        QVERIFY(photo->saveImageAtPath({copyPath}, preview.presets.effectivePresetsNow(), png, {}));
        const QImage copy = pixelsOf(QImage(copyPath));
        for (const double zoom : {0.0, 0.35, 1.0}) {
            preview.controller.setZoomFactor(zoom);
            const QSizeF size = preview.view.geometry().imageSize();
            preview.view.setCenteredImagePoint({size.width() / 2 + 100, size.height() / 2 + 80});
            preview.controller.refresh();
            preview.settle();
            const QImage shown = preview.shown();
            const QImage expected = preview.expected(copy);
            const double mean = meanDifference(shown, expected);
            QVERIFY2(mean < 3, qPrintable(u"%1 at zoom %2"_qs.arg(mean).arg(zoom)));
            // Both round to pixels, so they may be one pixel apart, but not two.
            for (const QPoint step : {QPoint(3, 0), QPoint(-3, 0), QPoint(0, 3), QPoint(0, -3)})
                QVERIFY(differenceAt(shown, expected, step) > mean);
            const QImage bare = preview.expected(
                pixelsOf(isTurned ? QImage(path).transformed(QTransform().rotate(90)) : QImage(path)));
            QVERIFY(mean * 2 < meanDifference(shown, bare)); // else the watermark was not compared
        }
    }

    /// Without a selected preset, and unless all are combined, no preset is drawn.
    void showsTheSelectedPreset()
    {
        Preview preview;
        const auto bare = [&] {
            preview.settle();
            const QImage shown = preview.view.grab().toImage();
            return shown.pixelColor(preview.onMark() * shown.devicePixelRatio()) == QColor(Qt::darkGreen);
        };
        ElidedLabel &message = preview.find<ElidedLabel>("previewMessageLabel");
        WPresetValues values = preview.presets.quickWPreset()->values();
        values.background = true;
        values.backgroundColor = Qt::white;
        preview.presets.modeDidChange(AppliedPresets::Mode::Presets);
        QCOMPARE(message.text(), QString()); // nothing is applied
        preview.presets.addWPresetsToApplied({std::make_shared<WPreset>(values)});
        preview.presets.selectRows({});
        QVERIFY(message.text().contains(u"Select one applied preset"));
        preview.presets.selectRows({0});
        QTRY_VERIFY(!bare());
        QCOMPARE(message.text(), QString());
        preview.presets.selectRows({});
        QTRY_VERIFY(bare());
    }

    void follows()
    {
        Preview preview;
        QVERIFY(preview.isSettled);
        ElidedLabel &info = preview.find<ElidedLabel>("imageInfoLabel");
        QCOMPARE(info.text(), u"a.png, 3000x2000"_qs);
        QVERIFY(preview.controller.canZoomIn() && !preview.controller.canZoomOut());
        preview.controller.setZoomFactor(0.5);
        preview.select(1);
        QCOMPARE(info.text(), u"b.png, 64x48"_qs);
        // It is shown at 1:1, in the middle, and cannot be zoomed.
        QVERIFY(!preview.controller.canZoom());
        QCOMPARE(preview.view.geometry().layerSize(), QSizeF(64, 48));
        const QImage shown = preview.view.grab().toImage();
        const auto color = [&](QPoint fromMiddle) {
            return shown.pixelColor(
                (QPointF(preview.middle() + fromMiddle) * shown.devicePixelRatio()).toPoint());
        };
        QCOMPARE(color({-30, -22}), QColor(Qt::darkGreen));
        QCOMPARE(color({-35, 0}), QColor(170, 170, 170));

        // A rotated photo has other sides.
        preview.ShownWindow::controller.startBatchOperation(ImageTransform::RotateClockwise);
        QTRY_COMPARE(preview.view.geometry().imageSize(), QSizeF(48, 64));
        QTRY_COMPARE(info.text(), u"b.png, 48x64"_qs);

        // A photo that is still being loaded when it is no longer wanted leaves nothing behind.
        preview.set.addImage(preview.files.photo("c.png"), {});
        preview.set.selection().selectIndexes({2});
        QCOMPARE(info.text(), u"c.png"_qs);
        preview.set.selection().selectNone();
        QTRY_VERIFY(!preview.controller.isBusy());
        QVERIFY(info.text().isEmpty() && !preview.view.imageIsShown());
        QVERIFY(!preview.isEnabled(ActionId::PreviewZoomIn));
    }

    void zoomTool()
    {
        Preview preview;
        preview.presets.modeDidChange(AppliedPresets::Mode::Presets); // nothing is applied
        preview.settle();
        QApplication::setDoubleClickInterval(1);
        const auto click = [&](Qt::KeyboardModifiers keys = {}) {
            QTest::mouseClick(&preview.view, Qt::LeftButton, keys, preview.middle());
            QTest::qWait(20);
            return preview.controller.zoomFactor();
        };
        QVERIFY(isNear(click(), 0.2));
        QVERIFY(isNear(click(Qt::ShiftModifier), 0));
        QVERIFY(isNear(click(Qt::AltModifier), 0));
        preview.controller.setZoomFactor(0.9);
        QVERIFY(isNear(click(), 0.9));
        preview.controller.setZoomFactor(0.8);
        QVERIFY(isNear(click(), 1));
        QTest::mouseDClick(&preview.view, Qt::LeftButton, {}, preview.middle());
        QVERIFY(isNear(preview.controller.zoomFactor(), 0));

        preview.controller.setZoomFactor(0.95);
        preview.window.actions().update();
        preview.window.actions().run(ActionId::PreviewZoomIn);
        QVERIFY(isNear(preview.controller.zoomFactor(), 1));
        QSlider &slider = preview.find<QSlider>("zoomSlider");
        QCOMPARE(slider.value(), slider.maximum());
        slider.setValue(slider.maximum() / 2);
        QVERIFY(isNear(preview.controller.zoomFactor(), 0.5));

        // A change of the preset keeps the point in the middle.
        preview.view.setCenteredImagePoint({1300, 900});
        const QPointF center = preview.view.centeredImagePoint();
        preview.presets.modeDidChange(AppliedPresets::Mode::Single);
        preview.presets.quickWPreset()->setOpacity(50);
        preview.settle();
        QCOMPARE(preview.view.centeredImagePoint(), center);

        // The space bar moves the photo instead.
        QTest::keyPress(&preview.view, Qt::Key_Space);
        preview.press(preview.middle());
        preview.move(preview.middle() + QPoint(40, 30));
        preview.release(preview.middle() + QPoint(40, 30));
        QTest::keyRelease(&preview.view, Qt::Key_Space);
        const double ratio = preview.view.geometry().zoomedToOriginalRatio();
        QVERIFY(QLineF(preview.view.centeredImagePoint(), center + QPointF(-40, 30) / ratio).length() < 1e-6);
        QVERIFY(!preview.origin());
    }

    void placing()
    {
        Preview preview;
        // A click pins the watermark where it is.
        const QRectF before = preview.view.watermarkRect();
        QVERIFY(!preview.hasOutline());
        preview.move(preview.middle());
        QVERIFY(preview.hasOutline());
        QTest::mouseClick(&preview.view, Qt::LeftButton, {}, preview.onMark());
        QCOMPARE(preview.origin(), before.topLeft());
        QVERIFY(isNear(preview.controller.zoomFactor(), 0));
        QVERIFY(preview.isEnabled(ActionId::CopyPosition) ||
                QTest::qWaitFor([&] { return preview.isEnabled(ActionId::CopyPosition); }));

        // A drag moves it; beyond the photo it stops, and comes back with the pointer.
        const QPoint start = preview.onMark();
        preview.press(start);
        preview.move(start + QPoint(20, 10));
        preview.move(start + QPoint(5000, 0));
        preview.move(start + QPoint(4990, 0));
        preview.release(start + QPoint(4990, 0));
        const double ratio = preview.view.geometry().zoomedToOriginalRatio();
        const QPointF expected = before.topLeft() + QPointF(20 - 10, -10) / ratio;
        QVERIFY(QLineF(*preview.origin(), expected).length() < 1e-6);
        preview.settle();
        QVERIFY(QLineF(preview.view.watermarkRect().topLeft(), expected).length() < 1e-6);

        // Escape gives a drag up. Ctrl zooms in its place.
        preview.press(preview.onMark());
        preview.move(preview.onMark() + QPoint(50, 50));
        QTest::keyClick(&preview.view, Qt::Key_Escape);
        QCOMPARE(preview.view.watermarkRect().topLeft(), *preview.origin());
        preview.release(preview.middle());
        // So does a preset that goes away.
        preview.press(preview.onMark());
        preview.move(preview.onMark() + QPoint(50, 50));
        preview.presets.modeDidChange(AppliedPresets::Mode::Presets);
        preview.settle();
        preview.release(preview.middle());
        preview.presets.modeDidChange(AppliedPresets::Mode::Single);
        preview.settle();
        QVERIFY(QLineF(preview.view.watermarkRect().topLeft(), expected).length() < 1e-6);
        QTest::mouseClick(&preview.view, Qt::LeftButton, Qt::ControlModifier, preview.onMark());
        QVERIFY(isNear(preview.controller.zoomFactor(), 0.2));
        QVERIFY(QLineF(*preview.origin(), expected).length() < 1e-6);

        // A turned photo ends a drag: the pointer's way was over the photo as it lay before.
        preview.controller.setZoomFactor(0);
        preview.settle();
        preview.press(preview.onMark());
        preview.move(preview.onMark() + QPoint(-40, -30));
        const auto size = preview.view.geometry().imageSize();
        preview.ShownWindow::controller.startBatchOperation(ImageTransform::RotateClockwise);
        QTRY_COMPARE(preview.view.geometry().imageSize(), size.transposed());
        const std::optional<QPointF> turned = preview.origin();
        preview.release(preview.middle());
        QCOMPARE(preview.origin(), turned);
        preview.settle();

        preview.presets.modeDidChange(AppliedPresets::Mode::Presets);
        preview.presets.addWPresetsToApplied({preview.presets.quickWPreset()});
        preview.files.defaults.setObject(settings::combineAllAppliedPresetsInImage, true);
        preview.controller.refresh();
        preview.settle();
        QVERIFY(!preview.view.showWatermarkRect());
        preview.files.defaults.setObject(settings::combineAllAppliedPresetsInImage, false);
    }

    void keys()
    {
        Preview preview;
        preview.view.setFocus();
        const QPointF before = preview.view.watermarkRect().topLeft();
        QTest::keyClick(&preview.view, Qt::Key_Right); // goes to the list: the next photo
        QTRY_COMPARE(preview.set.selection().focusIndex(), 1);
        QTest::keyClick(&preview.view, Qt::Key_Left);
        QTRY_COMPARE(preview.set.selection().focusIndex(), 0);
        preview.settle();

        QTest::keyClick(&preview.view, Qt::Key_Return);
        QVERIFY(preview.view.isWatermarkSelected());
        QTest::keyClick(&preview.view, Qt::Key_Right);
        QTest::keyClick(&preview.view, Qt::Key_Up, Qt::ShiftModifier);
        const double pixel =
            1 / preview.view.geometry().zoomedToOriginalRatio() / preview.view.devicePixelRatioF();
        QVERIFY(QLineF(*preview.origin(), before + QPointF(1, 10) * pixel).length() < 1e-6);
        // Each key counts, although pictures of earlier places arrive meanwhile.
        for (int i = 0; i < 30; ++i) {
            QTest::keyClick(&preview.view, Qt::Key_Right);
            QTest::qWait(3);
        }
        QVERIFY(QLineF(*preview.origin(), before + QPointF(31, 10) * pixel).length() < 1e-6);
        QTest::keyClick(&preview.view, Qt::Key_Escape);
        QVERIFY(!preview.view.isWatermarkSelected());
    }
};

QTEST_MAIN(ImageViewControllerTest)
#include "imageviewcontroller_test.moc"
