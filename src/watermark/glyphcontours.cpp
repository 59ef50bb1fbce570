// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/glyphcontours.h"

#include <QHash>
#include <QLineF>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>

namespace plexa
{
namespace
{

/// The furthest that a side of a polygon may be from its curve, in pixels.
constexpr double kFlatness = 0.03;
constexpr int kMaxSidesOfCurve = 64;

/// The most comparisons of sides, points and boxes for one text.
constexpr qint64 kMaxComparisons = 20'000'000;
constexpr qint64 kComparisonsPerCheck = 50'000;

/// The most pairs of neighbors that are remembered, 16 bytes each.
constexpr int kMaxPairs = 500'000;

/// The comparisons that are left for one text. Cancellation ends them, too.
class Budget
{
public:
    explicit Budget(const CancelCheck &isCanceled)
        : m_isCanceled(isCanceled)
    {
    }

    void spend(std::size_t comparisons)
    {
        m_left -= static_cast<qint64>(comparisons);
        if (m_left >= m_nextCheck)
            return;
        m_nextCheck = m_left - kComparisonsPerCheck;
        if (canceled(m_isCanceled))
            end();
    }

    void end()
    {
        m_left = -1;
        m_nextCheck = m_left - kComparisonsPerCheck;
    }
    bool isSpent() const { return m_left < 0; }

private:
    const CancelCheck &m_isCanceled;
    qint64 m_left = kMaxComparisons;
    qint64 m_nextCheck = kMaxComparisons;
};

double cross(QPointF a, QPointF b)
{
    return a.x() * b.y() - a.y() * b.x();
}

/// Empty rectangles count, too: a horizontal line has no height.
bool meet(const QRectF &a, const QRectF &b)
{
    return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() && b.top() <= a.bottom();
}

QRectF boxOf(const QLineF &line)
{
    return QRectF(line.p1(), line.p2()).normalized();
}

QRectF grown(const QRectF &box, double by)
{
    return box.adjusted(-by, -by, by, by);
}

/// A shape as a polygon.
struct Polygon {
    explicit Polygon(const QPainterPath &path);

    /// Is the point inside, by non-zero winding?
    bool contains(QPointF point) const
    {
        if (!box.contains(point))
            return false;
        int winding = 0;
        for (const QLineF &side : sides) {
            const bool isAbove = side.y1() <= point.y();
            if (isAbove == (side.y2() <= point.y()))
                continue;
            if ((cross(side.p2() - side.p1(), point - side.p1()) > 0) == isAbove)
                winding += isAbove ? 1 : -1;
        }
        return winding != 0;
    }

    /// A line or a curve of the path, and its sides.
    struct Element {
        std::size_t firstSide;
        std::size_t endSide;
        std::optional<std::array<QPointF, 2>> controls; ///< of a curve
    };
    struct Contour {
        std::size_t endElement; ///< begins where the one before ends
        QRectF box;
        bool isClockwise;
    };

    std::vector<QLineF> sides;
    std::vector<Element> elements;
    std::vector<Contour> contours;
    QRectF box;
    bool mayOverlapItself = false;

private:
    void addLine(QPointF from, QPointF to);
    void addCurve(QPointF from, QPointF c1, QPointF c2, QPointF to);
    void endContour(std::size_t first);
};

Polygon::Polygon(const QPainterPath &path)
    : box(path.controlPointRect())
{
    std::size_t first = 0;
    QPointF at;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF to = path.elementAt(i);
        if (path.elementAt(i).isMoveTo()) {
            endContour(first);
            first = sides.size();
            at = to;
        } else if (path.elementAt(i).isLineTo()) {
            addLine(at, to);
            at = to;
        } else {
            const QPointF end = path.elementAt(i + 2);
            addCurve(at, to, path.elementAt(i + 1), end);
            at = end;
            i += 2;
        }
    }
    endContour(first);
    // Contours around holes have the other direction.
    for (std::size_t i = 1; i < contours.size(); ++i) {
        mayOverlapItself =
            mayOverlapItself ||
            std::any_of(contours.begin(), contours.begin() + std::ptrdiff_t(i), [&](const Contour &other) {
                return other.isClockwise == contours[i].isClockwise && meet(other.box, contours[i].box);
            });
    }
}

void Polygon::addLine(QPointF from, QPointF to)
{
    elements.push_back({sides.size(), sides.size() + 1, {}});
    sides.emplace_back(from, to);
}

void Polygon::addCurve(QPointF from, QPointF c1, QPointF c2, QPointF to)
{
    const QPointF bend1 = from - 2 * c1 + c2;
    const QPointF bend2 = c1 - 2 * c2 + to;
    const double bend = std::max(std::hypot(bend1.x(), bend1.y()), std::hypot(bend2.x(), bend2.y()));
    const double wanted = std::ceil(std::sqrt(0.75 * bend / kFlatness));
    const int count = static_cast<int>(std::clamp(wanted, 1.0, double(kMaxSidesOfCurve)));
    const auto first = sides.size();
    elements.push_back({first, first + static_cast<std::size_t>(count), std::array{c1, c2}});
    QPointF last = from;
    for (int i = 1; i <= count; ++i) {
        const double t = double(i) / count;
        const double s = 1 - t;
        const QPointF point =
            i == count ? to : s * s * s * from + 3 * s * s * t * c1 + 3 * s * t * t * c2 + t * t * t * to;
        sides.emplace_back(last, point);
        last = point;
    }
}

void Polygon::endContour(std::size_t first)
{
    if (first == sides.size())
        return;
    if (sides.back().p2() != sides[first].p1())
        addLine(sides.back().p2(), sides[first].p1());
    Contour contour{elements.size(), boxOf(sides[first]), false};
    double area = 0;
    for (std::size_t i = first; i < sides.size(); ++i) {
        contour.box |= boxOf(sides[i]);
        area += cross(sides[i].p1(), sides[i].p2());
    }
    contour.isClockwise = area > 0;
    contours.push_back(contour);
}

/// A polygon as another shape sees it.
struct Neighbor {
    const Polygon *polygon;
    QPointF at; ///< relative to the other shape
};

/// Writes the sides of a shape that bound the union with its neighbors.
class Trimmer
{
public:
    /// @param budget  is reduced by the comparisons of this shape
    Trimmer(const Polygon &shape, std::vector<Neighbor> neighbors, double touching, Budget &budget)
        : m_shape(shape)
        , m_neighbors(std::move(neighbors))
        , m_touching(touching)
        , m_budget(budget)
    {
    }

    /// @return none if all of the contour bounds the union, or if the budget is spent
    std::optional<QPainterPath> trimmed()
    {
        bool isWhole = true;
        std::size_t element = 0;
        for (const Polygon::Contour &contour : m_shape.contours) {
            m_pieces.clear();
            for (; element < contour.endElement; ++element) {
                isWhole = addElement(m_shape.elements[element]) && isWhole;
                if (m_budget.isSpent())
                    return std::nullopt;
            }
            writeContour();
        }
        return isWhole ? std::nullopt : std::optional(m_rest);
    }

private:
    /// A line or a curve of the contour's rest.
    struct Piece {
        QLineF line;
        std::optional<std::array<QPointF, 2>> controls = {};
    };

    /// @return whether all of the element bounds the union
    bool addElement(const Polygon::Element &element)
    {
        const std::size_t before = m_pieces.size();
        bool isWhole = true;
        for (std::size_t i = element.firstSide; i < element.endSide; ++i)
            isWhole = addSide(m_shape.sides[i]) && isWhole;
        if (isWhole) {
            const QLineF ends(m_shape.sides[element.firstSide].p1(), m_shape.sides[element.endSide - 1].p2());
            m_pieces.resize(before);
            m_pieces.push_back({ends, element.controls});
        }
        return isWhole;
    }

    /// @return whether all of the side bounds the union; false if the budget is spent
    bool addSide(const QLineF &side)
    {
        const QRectF reach = grown(boxOf(side), m_touching);
        std::vector<double> cuts;
        bool isNear = false;
        for (const Neighbor &neighbor : m_neighbors) {
            m_budget.spend(1);
            if (m_budget.isSpent())
                return false;
            if (!meet(neighbor.polygon->box.translated(neighbor.at), reach))
                continue;
            isNear = true;
            m_budget.spend(neighbor.polygon->sides.size());
            for (const QLineF &other : neighbor.polygon->sides) {
                const QLineF placed = other.translated(neighbor.at);
                if (meet(boxOf(placed), reach))
                    addCuts(side, placed, cuts);
            }
        }
        if (!isNear) {
            m_pieces.push_back({side});
            return true;
        }
        cuts.push_back(1);
        std::sort(cuts.begin(), cuts.end());
        bool isWhole = true;
        double from = 0;
        for (const double to : cuts) {
            // Pieces that meet have the same point.
            const QLineF piece(from > 0 ? side.pointAt(from) : side.p1(),
                               to < 1 ? side.pointAt(to) : side.p2());
            const double length = piece.length();
            if (to < 1 ? length < m_touching / 8 : !(length > 0))
                continue;
            const bool isBoundary = isOnBoundary(piece);
            if (m_budget.isSpent())
                return false;
            if (isBoundary)
                m_pieces.push_back({piece});
            else
                isWhole = false;
            from = to;
        }
        return isWhole;
    }

    /// Where the other line crosses the side or begins beside it.
    void addCuts(const QLineF &side, const QLineF &other, std::vector<double> &cuts) const
    {
        const QPointF along = side.p2() - side.p1();
        const double length = std::hypot(along.x(), along.y());
        if (!(length > 0))
            return;
        const auto add = [&cuts](double t) {
            if (t > 0 && t < 1)
                cuts.push_back(t);
        };
        const double d1 = cross(along, other.p1() - side.p1()) / length;
        const double d2 = cross(along, other.p2() - side.p1()) / length;
        const auto shareOf = [&](QPointF point) {
            return QPointF::dotProduct(point - side.p1(), along) / (length * length);
        };
        if ((d1 < 0) != (d2 < 0))
            add(shareOf(other.pointAt(d1 / (d1 - d2))));
        if (std::abs(d1) <= m_touching)
            add(shareOf(other.p1()));
        if (std::abs(d2) <= m_touching)
            add(shareOf(other.p2()));
    }

    /// Is there nothing of the union at one side of the line?
    bool isOnBoundary(const QLineF &line) const
    {
        const QPointF aside = QPointF(-line.dy(), line.dx()) * (m_touching / line.length());
        return !isInside(line.center() + aside) || !isInside(line.center() - aside);
    }

    bool isInside(QPointF point) const
    {
        return contains(m_shape, point) ||
               std::any_of(m_neighbors.begin(), m_neighbors.end(), [&](const Neighbor &neighbor) {
                   return m_budget.isSpent() || contains(*neighbor.polygon, point - neighbor.at);
               });
    }

    bool contains(const Polygon &polygon, QPointF point) const
    {
        m_budget.spend(polygon.box.contains(point) ? polygon.sides.size() : 1);
        return polygon.contains(point);
    }

    /// Writes the pieces of a contour, from a gap on: a place that is no end gets no round one.
    void writeContour()
    {
        if (m_pieces.empty())
            return;
        const auto gap = std::adjacent_find(m_pieces.begin(), m_pieces.end(),
                                            [](const Piece &a, const Piece &b) { return !follows(a, b); });
        if (gap != m_pieces.end() && follows(m_pieces.back(), m_pieces.front()))
            std::rotate(m_pieces.begin(), std::next(gap), m_pieces.end());
        for (std::size_t i = 0; i < m_pieces.size(); ++i) {
            const Piece &piece = m_pieces[i];
            if (i == 0 || !follows(m_pieces[i - 1], piece))
                m_rest.moveTo(piece.line.p1());
            if (piece.controls)
                m_rest.cubicTo(piece.controls->front(), piece.controls->back(), piece.line.p2());
            else
                m_rest.lineTo(piece.line.p2());
        }
    }

    static bool follows(const Piece &a, const Piece &b) { return a.line.p2() == b.line.p1(); }

    const Polygon &m_shape;
    const std::vector<Neighbor> m_neighbors;
    const double m_touching;
    Budget &m_budget;
    std::vector<Piece> m_pieces; // of one contour
    QPainterPath m_rest;
};

/// Finds the pairs of shapes whose boxes meet. Too many pairs end the budget.
class NeighborSearch
{
public:
    NeighborSearch(const std::vector<PlacedShape> &shapes, double touching, Budget &budget)
        : m_neighbors(shapes.size())
    {
        QHash<const QPainterPath *, QRectF> boxes;
        QRectF all;
        for (const PlacedShape &shape : shapes) {
            auto box = boxes.find(shape.path);
            if (box == boxes.end())
                box = boxes.insert(shape.path, grown(shape.path->controlPointRect(), touching / 2));
            m_boxes.push_back(box->translated(shape.at));
            all |= m_boxes.back();
        }
        findPairs(all.width() < all.height(), budget);
    }

    const std::vector<std::size_t> &neighborsOf(std::size_t index) const { return m_neighbors[index]; }

private:
    /// Sorted along the text's longer side, a shape meets few of those that follow it.
    void findPairs(bool byHeight, Budget &budget)
    {
        const auto startOf = [&](std::size_t i) { return byHeight ? m_boxes[i].top() : m_boxes[i].left(); };
        const auto endOf = [&](std::size_t i) { return byHeight ? m_boxes[i].bottom() : m_boxes[i].right(); };
        std::vector<std::size_t> order(m_boxes.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::sort(order.begin(), order.end(),
                  [&](std::size_t a, std::size_t b) { return startOf(a) < startOf(b); });
        int pairs = 0;
        for (auto a = order.begin(); a != order.end(); ++a) {
            for (auto b = std::next(a); b != order.end() && startOf(*b) <= endOf(*a); ++b) {
                budget.spend(1);
                if (budget.isSpent())
                    return;
                if (!meet(m_boxes[*a], m_boxes[*b]))
                    continue;
                if (++pairs > kMaxPairs)
                    return budget.end();
                m_neighbors[*a].push_back(*b);
                m_neighbors[*b].push_back(*a);
            }
        }
    }

    std::vector<QRectF> m_boxes;
    std::vector<std::vector<std::size_t>> m_neighbors;
};

} // namespace

std::vector<std::optional<QPainterPath>> contoursOfUnion(const std::vector<PlacedShape> &shapes,
                                                         double touching, const CancelCheck &isCanceled)
{
    Budget budget(isCanceled);
    const NeighborSearch search(shapes, touching, budget);
    QHash<const QPainterPath *, std::shared_ptr<const Polygon>> polygons;
    const auto polygonOf = [&](const PlacedShape &shape) {
        std::shared_ptr<const Polygon> &polygon = polygons[shape.path];
        if (!polygon)
            polygon = std::make_shared<const Polygon>(*shape.path);
        return polygon.get();
    };
    std::vector<std::optional<QPainterPath>> contours(shapes.size());
    for (std::size_t i = 0; i < shapes.size() && !budget.isSpent(); ++i) {
        const Polygon &polygon = *polygonOf(shapes[i]);
        std::vector<Neighbor> neighbors;
        if (polygon.mayOverlapItself)
            neighbors.push_back({&polygon, QPointF()});
        for (const std::size_t other : search.neighborsOf(i))
            neighbors.push_back({polygonOf(shapes[other]), shapes[other].at - shapes[i].at});
        if (!neighbors.empty())
            contours[i] = Trimmer(polygon, std::move(neighbors), touching, budget).trimmed();
    }
    return contours;
}

} // namespace plexa
