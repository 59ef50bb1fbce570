// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/preview/previewgeometry.h"

#include <QLineF>
#include <QTest>

using namespace plexa;

class PreviewGeometryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void layer()
    {
        struct Row {
            const char *name;
            QSizeF image, view;
            double padding, zoom;
            QRectF layer; // in the view
        };
        const Row rows[] = {
            {"fits", {800, 600}, {1000, 800}, 0, 0, {100, 100, 800, 600}},
            {"fits: nothing to zoom", {800, 600}, {1000, 800}, 20, 0.5, {100, 100, 800, 600}},
            {"fits exactly", {800, 600}, {800, 600}, 20, 0, {0, 0, 800, 600}},
            {"width limits", {4000, 1000}, {1000, 800}, 0, 0, {0, 275, 1000, 250}},
            {"height limits", {1000, 4000}, {800, 1000}, 0, 0, {275, 0, 250, 1000}},
            {"padding", {4000, 1000}, {1000, 800}, 20, 0, {20, 280, 960, 240}},
            {"half way", {4000, 1000}, {1000, 800}, 0, 0.5, {-750, 87.5, 2500, 625}},
            {"full size", {4000, 1000}, {1000, 800}, 0, 1, {-1500, -100, 4000, 1000}},
        };
        for (const Row &row : rows) {
            PreviewGeometry geometry;
            geometry.setImagePadding(row.padding);
            geometry.setViewSize(row.view);
            geometry.setImageSize(row.image);
            geometry.setZoomFactor(row.zoom);
            QVERIFY2(geometry.layerRectInView() == row.layer, row.name);
            const QRectF mark(10, 20, 30, 40);
            const QRectF back = geometry.viewToImage(geometry.imageToView(mark));
            QVERIFY2(QLineF(back.topLeft(), mark.topLeft()).length() < 1e-9, row.name);
            QVERIFY2(QLineF(back.bottomRight(), mark.bottomRight()).length() < 1e-9, row.name);
            // The image's origin is at its bottom left.
            QCOMPARE(geometry.imageToView(QPointF(0, 0)), row.layer.bottomLeft());
        }
    }

    /// A large layer leaves at most the padding free; the point in the middle stays under a zoom.
    void center()
    {
        PreviewGeometry geometry;
        geometry.setImagePadding(20);
        geometry.setViewSize({1000, 800});
        geometry.setImageSize({4000, 3000});
        QCOMPARE(geometry.centeredImagePoint(), QPointF(2000, 1500));
        geometry.setZoomFactor(1);
        geometry.setCenteredImagePoint({1200, 900});
        geometry.setZoomFactor(0.8);
        geometry.setZoomFactor(1);
        QCOMPARE(geometry.centeredImagePoint(), QPointF(1200, 900));
        geometry.setCenteredImagePoint({-5000, -5000});
        QCOMPARE(geometry.layerRectInView().bottomLeft(), QPointF(20, 780));
        geometry.setCenteredImagePoint({9000, 9000});
        QCOMPARE(geometry.layerRectInView().topRight(), QPointF(980, 20));
        geometry.setCenteredImagePoint({2000, 1500});
        const QPointF corner(100, 700);
        const QPointF under = geometry.viewToImage(corner);
        geometry.setZoomFactor(0.7);
        geometry.show(under, corner);
        QVERIFY(QLineF(geometry.viewToImage(corner), under).length() < 1e-6);
        geometry.setZoomFactor(0);
        QCOMPARE(geometry.centeredImagePoint(), QPointF(2000, 1500));
    }

    void quarterOnImage()
    {
        const QRectF image(100, 100, 400, 300);
        const QSizeF size(80, 40);
        for (const auto &[corner, isAllowed] : {std::pair(QPointF(40, 200), true),
                                                {QPointF(39, 200), false},
                                                {QPointF(480, 200), true},
                                                {QPointF(481, 200), false},
                                                {QPointF(200, 70), true},
                                                {QPointF(200, 69), false},
                                                {QPointF(200, 390), true},
                                                {QPointF(200, 391), false}})
            QCOMPARE(isQuarterOnImage(QRectF(corner, size), image), isAllowed);
    }
};

QTEST_GUILESS_MAIN(PreviewGeometryTest)
#include "previewgeometry_test.moc"
