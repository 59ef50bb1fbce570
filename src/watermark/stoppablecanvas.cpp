// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/stoppablecanvas.h"

#include <QPainter>
#include <QPainterPath>

namespace plexa
{

/// Forwards to a painter on the image.
class StoppableCanvas::Engine final : public QPaintEngine
{
public:
    Engine(QImage &image, const std::atomic_bool &isStopped)
        : QPaintEngine(AllFeatures)
        , m_image(image)
        , m_isStopped(isStopped)
    {
    }

    Type type() const override { return User; }
    bool begin(QPaintDevice *) override { return m_painter.begin(&m_image); }
    bool end() override { return m_painter.end(); }

    void updateState(const QPaintEngineState &state) override
    {
        const DirtyFlags dirty = state.state();
        if (dirty & DirtyHints) {
            m_painter.setRenderHints(m_painter.renderHints(), false);
            m_painter.setRenderHints(state.renderHints());
        }
        if (dirty & DirtyPen)
            m_painter.setPen(state.pen());
        if (dirty & DirtyBrush)
            m_painter.setBrush(state.brush());
        if (dirty & DirtyBrushOrigin)
            m_painter.setBrushOrigin(state.brushOrigin());
        if (dirty & DirtyFont)
            m_painter.setFont(state.font());
        if (dirty & DirtyTransform)
            m_painter.setTransform(state.transform());
        if (dirty & DirtyCompositionMode)
            m_painter.setCompositionMode(state.compositionMode());
        if (dirty & DirtyOpacity)
            m_painter.setOpacity(state.opacity());
        updateClip(state, dirty);
    }

    void drawPath(const QPainterPath &path) override
    {
        if (!m_isStopped)
            m_painter.drawPath(path);
    }

    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override
    {
        if (m_isStopped)
            return;
        if (mode == PolylineMode)
            m_painter.drawPolyline(points, count);
        else
            m_painter.drawPolygon(points, count, mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
    }

    void drawPixmap(const QRectF &target, const QPixmap &pixmap, const QRectF &source) override
    {
        if (!m_isStopped)
            m_painter.drawPixmap(target, pixmap, source);
    }

    void drawImage(const QRectF &target, const QImage &image, const QRectF &source,
                   Qt::ImageConversionFlags flags) override
    {
        if (!m_isStopped)
            m_painter.drawImage(target, image, source, flags);
    }

    void drawTextItem(const QPointF &at, const QTextItem &item) override
    {
        if (!m_isStopped)
            m_painter.drawTextItem(at, item);
    }

private:
    void updateClip(const QPaintEngineState &state, DirtyFlags dirty)
    {
        if (dirty & DirtyClipPath)
            m_painter.setClipPath(state.clipPath(), state.clipOperation());
        if (dirty & DirtyClipRegion)
            m_painter.setClipRegion(state.clipRegion(), state.clipOperation());
        if (dirty & DirtyClipEnabled)
            m_painter.setClipping(state.isClipEnabled());
    }

    QImage &m_image;
    const std::atomic_bool &m_isStopped;
    QPainter m_painter;
};

StoppableCanvas::StoppableCanvas(QImage &image, const std::atomic_bool &isStopped)
    : m_image(image)
    , m_engine(std::make_unique<Engine>(image, isStopped))
{
}

StoppableCanvas::~StoppableCanvas() = default;

QPaintEngine *StoppableCanvas::paintEngine() const
{
    return m_engine.get();
}

int StoppableCanvas::metric(PaintDeviceMetric metric) const
{
    switch (metric) {
    case PdmWidth:
        return m_image.width();
    case PdmHeight:
        return m_image.height();
    case PdmWidthMM:
        return m_image.widthMM();
    case PdmHeightMM:
        return m_image.heightMM();
    case PdmDepth:
        return m_image.depth();
    case PdmDpiX:
    case PdmPhysicalDpiX:
        return m_image.logicalDpiX();
    case PdmDpiY:
    case PdmPhysicalDpiY:
        return m_image.logicalDpiY();
    case PdmDevicePixelRatio:
        return 1;
    default:
        return QPaintDevice::metric(metric);
    }
}

} // namespace plexa
