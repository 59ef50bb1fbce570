// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/gridpainter.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QPainter>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace plexa
{
namespace
{

// Shares of a cell, and of its thumbnail's area.
constexpr double kCellPadding = 0.05;
constexpr double kBorder = 0.03;
constexpr double kShadowMargin = 0.06;
constexpr double kSelectionRadius = 0.1;
constexpr double kPlaceholderWidth = 0.8;
constexpr double kPlaceholderShape = 0.7; // its height by its width
// Points.
constexpr int kMinTextSize = 11; // pixel size of a name's font
constexpr double kMark = 2;      // line around a selected cell, an insertion bar, a rubber band
constexpr double kFocusRing = 4;

/// How much of a frame's time may go into scaling thumbnails and laying out names.
constexpr int kSharpMilliseconds = 5;

QColor translucent(Qt::GlobalColor color, double opacity)
{
    QColor result(color);
    result.setAlphaF(static_cast<float>(opacity));
    return result;
}

/// The rectangle of this size in the middle of another, in whole pixels.
QRect centered(QSize size, const QRect &in)
{
    return {QPoint(in.x() + (in.width() - size.width()) / 2, in.y() + (in.height() - size.height()) / 2),
            size};
}

constexpr int kWidthStep = 6; // device pixels

/// Shortened in the middle by three dots.
QString shortened(const QString &name, const QFont &font, int width)
{
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(name) <= width)
        return name;
    const QString dots = QStringLiteral("...");
    const QChar ellipsis(u'\u2026');
    const int longer = std::max(0, metrics.horizontalAdvance(dots) - metrics.horizontalAdvance(ellipsis));
    QString text = metrics.elidedText(name, Qt::ElideMiddle, width - longer);
    const auto differs = std::mismatch(text.begin(), text.end(), name.begin(), name.end());
    const auto at = text.indexOf(ellipsis, differs.first - text.begin());
    return at < 0 ? text : text.replace(at, 1, dots);
}

QString oneLine(QString name)
{
    for (QChar &letter : name)
        if (letter.category() == QChar::Other_Control || letter == QChar::LineSeparator ||
            letter == QChar::ParagraphSeparator)
            letter = QLatin1Char(' ');
    return name;
}

} // namespace

const QStaticText *NameLayouts::layout(const QString &name, const QFont &font, int width, bool makes)
{
    // In steps, so that not every zoom step lays out all names again.
    const Key key{name, std::max(0, width - width % kWidthStep), font.pixelSize()};
    if (const QStaticText *text = m_layouts.object(key); text || !makes)
        return text;
    auto *text = new QStaticText(shortened(oneLine(name), font, key.width));
    text->setTextFormat(Qt::PlainText);
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    text->setTextOption(option);
    text->prepare({}, font);
    m_layouts.insert(key, text);
    return text;
}

QFont NameLayouts::fontOf(const QFont &font, double scale)
{
    QFont result(font);
    result.setPixelSize(qRound(std::max(kMinTextSize, QFontInfo(font).pixelSize()) * scale));
    return result;
}

bool NameLayouts::isShortened(const QString &name, const QFont &font, int width)
{
    return QFontMetrics(font).horizontalAdvance(oneLine(name)) > width;
}

GridPainter::GridPainter(QPainter &painter, const GridGeometry &geometry, const GridStyle &style,
                         CellPictures &pictures, NameLayouts &names, const Place &place)
    : m_painter(painter)
    , m_geometry(geometry)
    , m_style(style)
    , m_pictures(pictures)
    , m_names(names)
    , m_place(place)
    , m_font(NameLayouts::fontOf(style.font, place.devicePixelRatio))
    , m_textHeight(QFontMetrics(m_font).height())
{
    m_clock.start();
    m_painter.save();
    m_painter.scale(1 / place.devicePixelRatio, 1 / place.devicePixelRatio);
    m_painter.setFont(m_font);
}

GridPainter::~GridPainter()
{
    m_painter.restore();
}

QRect GridPainter::toDevice(const QRectF &rect) const
{
    // Position and size are rounded separately, so that all cells have the same size. Rounding is the same on
    // both sides of 0, so that a partly hidden cell moves like all others.
    const double ratio = m_place.devicePixelRatio;
    const auto pixel = [ratio](double points) { return static_cast<int>(std::floor(points * ratio + 0.5)); };
    return {pixel(rect.x() - m_place.origin.x()), pixel(rect.y() - m_place.origin.y()),
            qRound(rect.width() * ratio), qRound(rect.height() * ratio)};
}

void GridPainter::drawInsertionBar(const QRectF &bar)
{
    const QRect place = toDevice(bar);
    const int line = qRound(kMark * m_place.devicePixelRatio);
    m_painter.fillRect(place, translucent(Qt::white, 0.5));
    m_painter.fillRect(QRect(place.topLeft() - QPoint(line, 0), QSize(line, place.height())),
                       m_style.markColor);
    m_painter.fillRect(QRect(place.topRight() + QPoint(1, 0), QSize(line, place.height())),
                       m_style.markColor);
}

void GridPainter::drawRubberBand(const QRectF &band)
{
    const QRect place = toDevice(band);
    const double line = m_place.devicePixelRatio;
    m_painter.fillRect(place, translucent(Qt::blue, 0.3));
    m_painter.setPen(QPen(m_style.markColor, line));
    m_painter.setBrush(Qt::NoBrush);
    m_painter.drawRect(QRectF(place).adjusted(line / 2, line / 2, -line / 2, -line / 2));
}

bool GridPainter::drawCell(const QRectF &cell, const CellContents &contents)
{
    const QRect cellPixels = toDevice(cell);
    const double ratio = m_place.devicePixelRatio;
    const double size = m_geometry.cellSize() * ratio;
    const int padding = qRound(kCellPadding * size);
    const QRect area = cellPixels.adjusted(padding, padding, -padding, -padding);

    if (contents.isSelected || contents.hasFocus)
        drawOutline(cellPixels, contents);

    QRect pictureArea = area;
    bool isSharp = true;
    if (m_style.showFilenames) {
        isSharp = drawName(
            QRect(cellPixels.x(), area.bottom() + 1 - m_textHeight, cellPixels.width(), m_textHeight),
            contents.filename);
        pictureArea.setBottom(area.bottom() - m_textHeight);
    }
    return drawThumbnail(pictureArea, contents.thumbnail) && isSharp;
}

void GridPainter::drawOutline(const QRect &cell, const CellContents &contents)
{
    const double ratio = m_place.devicePixelRatio;
    CellPictures::Outline outline;
    outline.radius = kSelectionRadius * (1 - 2 * kCellPadding) * cell.width();
    outline.color = contents.hasFocus ? m_style.focusColor : m_style.markColor;
    outline.width = (contents.hasFocus ? kFocusRing : kMark) * ratio;
    outline.isSelection = contents.isSelected;
    m_painter.drawImage(cell.topLeft(), m_pictures.outline(cell.size(), outline));
}

bool GridPainter::drawThumbnail(const QRect &area, const QImage &thumbnail)
{
    const double ratio = m_place.devicePixelRatio;
    if (thumbnail.isNull()) {
        const int width = qRound(kPlaceholderWidth * area.width());
        const QSize size(std::max(1, width), std::max(1, qRound(kPlaceholderShape * width)));
        m_painter.drawImage(centered(size, area).topLeft(), m_pictures.placeholder(size, ratio));
        return true;
    }

    const int border = std::max(1, qRound(kBorder * area.width()));
    const int inset = border + qRound(kShadowMargin * area.width());
    const QRect inner = area.adjusted(inset, inset, -inset, -inset);
    const QSize size =
        thumbnail.size().scaled(inner.size().expandedTo({1, 1}), Qt::KeepAspectRatio).expandedTo({1, 1});
    const QRect place = centered(size, inner);

    const int margin = CellPictures::matMargin(border, ratio);
    m_painter.drawImage(place.topLeft() - QPoint(margin, margin), m_pictures.mat(size, border, ratio));
    QImage picture = m_pictures.scaled(thumbnail, size);
    if (picture.isNull() && hasTime())
        picture = m_pictures.makeScaled(thumbnail, size);
    if (!picture.isNull()) {
        m_painter.drawImage(place.topLeft(), picture);
        return true;
    }
    m_painter.save();
    m_painter.translate(place.x(), place.y() + place.height());
    m_painter.scale(1, -1);
    m_painter.drawImage(QRect(QPoint(), size), m_pictures.nearest(thumbnail, size));
    m_painter.restore();
    return false;
}

bool GridPainter::hasTime() const
{
    return m_clock.elapsed() < kSharpMilliseconds;
}

bool GridPainter::drawName(const QRect &area, const QString &name)
{
    const QStaticText *text = m_names.layout(name, m_font, area.width(), hasTime());
    if (!text)
        return false;
    m_painter.setPen(m_style.textColor);
    const QSizeF size = text->size();
    m_painter.drawStaticText(QPoint(area.x() + qRound((area.width() - size.width()) / 2),
                                    area.y() + qRound((area.height() - size.height()) / 2)),
                             *text);
    return true;
}

} // namespace plexa
