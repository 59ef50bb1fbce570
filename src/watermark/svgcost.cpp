// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/svgcost.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace plexa
{
namespace
{

constexpr int kSide = 6000;
constexpr int kBands = 120;
constexpr double kRowsInBand = double{kSide} / kBands;

// What things take, in nanoseconds, as measured with the raster paint engine.
constexpr double kPerElement = 300;
constexpr double kPerCell = 10;
constexpr double kPerCellPassed = 2; // a row's cells are a list that is searched from its start
constexpr double kPerPixel = 1;
constexpr double kPerBlendedPixel = 2;
constexpr double kPerStrokedElement = 30'000;
constexpr double kPerDash = 3000;
constexpr double kPerCharacter = 20'000;

/// Counts what is drawn on it, in pixels of a canvas of kSide x kSide.
class CostEngine final : public QPaintEngine
{
public:
    CostEngine()
        : QPaintEngine(AllFeatures)
    {
    }

    double nanoseconds() const { return m_nanoseconds; }

    bool begin(QPaintDevice *) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState &) override {}
    Type type() const override { return User; }

    void drawPath(const QPainterPath &path) override
    {
        const QPainterPath onCanvas = painter()->combinedTransform().map(path);
        if (painter()->brush().style() != Qt::NoBrush)
            addFill(onCanvas, painter()->brush());
        if (painter()->pen().style() != Qt::NoPen)
            addStroke(onCanvas);
    }

    void drawPolygon(const QPointF *points, int count, PolygonDrawMode mode) override
    {
        QPainterPath path;
        path.addPolygon(QPolygonF(QList<QPointF>(points, points + count)));
        const QPainterPath onCanvas = painter()->combinedTransform().map(path);
        if (mode != PolylineMode && painter()->brush().style() != Qt::NoBrush)
            addFill(onCanvas, painter()->brush());
        if (painter()->pen().style() != Qt::NoPen)
            addStroke(onCanvas);
    }

    void drawPixmap(const QRectF &rect, const QPixmap &, const QRectF &) override { addPicture(rect); }
    void drawImage(const QRectF &rect, const QImage &, const QRectF &, Qt::ImageConversionFlags) override
    {
        addPicture(rect);
    }

    void drawTextItem(const QPointF &at, const QTextItem &item) override
    {
        addPicture(QRectF(at.x(), at.y() - item.ascent(), item.width(), item.ascent() + item.descent()));
        m_nanoseconds += kPerCharacter * static_cast<double>(item.text().size());
    }

private:
    static double areaOnCanvas(const QRectF &rect)
    {
        const QRectF seen = rect.intersected(QRectF(0, 0, kSide, kSide));
        return std::max(0.0, seen.width()) * std::max(0.0, seen.height());
    }

    void addPicture(const QRectF &rect)
    {
        m_nanoseconds +=
            kPerElement + areaOnCanvas(painter()->combinedTransform().mapRect(rect)) * kPerBlendedPixel;
    }

    bool isOpaque(const QBrush &brush) const { return brush.isOpaque() && painter()->opacity() >= 1; }

    void addFill(const QPainterPath &path, const QBrush &brush)
    {
        const bool isPlain = brush.style() == Qt::SolidPattern && isOpaque(brush);
        m_nanoseconds += areaOnCanvas(path.controlPointRect()) * (isPlain ? kPerPixel : kPerBlendedPixel);
        m_nanoseconds += kPerElement * (1 + path.elementCount());
        m_nanoseconds += edgesOf(path, 1);
    }

    void addStroke(const QPainterPath &path)
    {
        const QPen pen = painter()->pen();
        const QTransform transform = painter()->combinedTransform();
        const double scale = pen.isCosmetic() ? 1 : std::sqrt(std::abs(transform.determinant()));
        const double width = std::max(1.0, pen.widthF() * scale);
        const double length = lengthOf(path);
        const QRectF reach = path.controlPointRect().adjusted(-width, -width, width, width);
        const double area = std::min(areaOnCanvas(reach), (length + width) * width);
        const bool isPlain = pen.brush().style() == Qt::SolidPattern && isOpaque(pen.brush());
        m_nanoseconds += area * (isPlain ? kPerPixel : kPerBlendedPixel);
        m_nanoseconds += kPerStrokedElement * (1 + path.elementCount());
        // There and back.
        m_nanoseconds += edgesOf(path, 2);
        const QList<double> pattern = pen.style() == Qt::SolidLine ? QList<double>() : pen.dashPattern();
        const double period = std::accumulate(pattern.begin(), pattern.end(), 0.0) * pen.widthF() * scale;
        if (!pattern.isEmpty() && period > 0)
            m_nanoseconds += length / period * static_cast<double>(pattern.size()) * kPerDash;
    }

    /// The control points' polygon, which is no shorter than the path.
    static double lengthOf(const QPainterPath &path)
    {
        double length = 0;
        for (int i = 1; i < path.elementCount(); ++i) {
            const QPointF step = QPointF(path.elementAt(i)) - QPointF(path.elementAt(i - 1));
            if (!path.elementAt(i).isMoveTo())
                length += std::hypot(step.x(), step.y());
        }
        return length;
    }

    /// What it takes to note the edges' cells. An edge crosses pixels in proportion to its extents.
    static double edgesOf(const QPainterPath &path, double times)
    {
        std::array<double, kBands> cells{};
        const auto clamped = [](double v) {
            return std::isfinite(v) ? std::clamp(v, 0.0, double{kSide}) : 0;
        };
        for (int i = 1; i < path.elementCount(); ++i) {
            const QPainterPath::Element from = path.elementAt(i - 1);
            const QPainterPath::Element to = path.elementAt(i);
            if (to.isMoveTo())
                continue;
            const double top = clamped(std::min(from.y, to.y));
            const double bottom = clamped(std::max(from.y, to.y));
            const int first = std::min(kBands - 1, static_cast<int>(top / kRowsInBand));
            const int last = std::min(kBands - 1, static_cast<int>(bottom / kRowsInBand));
            const double all = bottom - top + std::abs(clamped(to.x) - clamped(from.x)) + 1;
            for (int band = first; band <= last; ++band)
                cells[static_cast<std::size_t>(band)] += times * all / (last - first + 1);
        }
        double nanoseconds = 0;
        const double width = std::clamp(path.controlPointRect().width(), 1.0, double{kSide});
        for (const double inBand : cells) {
            const double inRow = std::min(width, inBand / kRowsInBand);
            nanoseconds += inBand * (kPerCell + kPerCellPassed * inRow / 2);
        }
        return nanoseconds;
    }

    double m_nanoseconds = 0;
};

class CostDevice final : public QPaintDevice
{
public:
    QPaintEngine *paintEngine() const override { return &m_engine; }
    double seconds() const { return m_engine.nanoseconds() * 1e-9; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return kSide;
        case PdmWidthMM:
        case PdmHeightMM:
            return kSide / 4;
        case PdmNumColors:
            return 0x7fffffff;
        case PdmDepth:
            return 32;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        default:
            return 96;
        }
    }

private:
    mutable CostEngine m_engine;
};

} // namespace

double secondsToDrawSvg(QSvgRenderer &renderer)
{
    QSizeF size = renderer.viewBoxF().size();
    if (size.isEmpty())
        size = renderer.defaultSize();
    size.scale(kSide, kSide, Qt::KeepAspectRatio);
    CostDevice device;
    QPainter painter(&device);
    renderer.render(&painter, QRectF(QPointF(), size));
    painter.end();
    return device.seconds();
}

} // namespace plexa
