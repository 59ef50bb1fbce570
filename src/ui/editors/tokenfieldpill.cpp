// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/editors/tokenfieldpill.h"

#include "ui/editors/tokenfieldtext.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextEdit>

#include <cmath>

namespace plexa
{
namespace
{

constexpr qreal kPadding = 7; // left and right of the name
constexpr qreal kGap = 1;     // left and right of the pill
constexpr double kLeastContrast = 4.5;

double linear(float sample)
{
    return sample <= 0.04045F ? sample / 12.92 : std::pow((sample + 0.055) / 1.055, 2.4);
}

/// As WCAG 2.1 defines relative luminance.
double luminance(const QColor &color)
{
    return 0.2126 * linear(static_cast<float>(color.redF())) +
           0.7152 * linear(static_cast<float>(color.greenF())) +
           0.0722 * linear(static_cast<float>(color.blueF()));
}

double contrast(const QColor &a, const QColor &b)
{
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

/// @param share  of `over`, 0 to 1
QColor mixed(const QColor &over, const QColor &under, float share)
{
    const auto mix = [share](float a, float b) { return a * share + b * (1 - share); };
    return QColor::fromRgbF(mix(over.redF(), under.redF()), mix(over.greenF(), under.greenF()),
                            mix(over.blueF(), under.blueF()));
}

/// The color, or black or white if its contrast is too low.
QColor readable(const QColor &text, const QColor &fill)
{
    if (contrast(text, fill) >= kLeastContrast)
        return text;
    return contrast(Qt::black, fill) > contrast(Qt::white, fill) ? QColor(Qt::black) : QColor(Qt::white);
}

/// The fill of a selected pill: the color of the selection, darker or lighter, away from that of the text.
QColor distinct(const QColor &selection, const QColor &text)
{
    const QColor away = luminance(text) > luminance(selection) ? Qt::black : Qt::white;
    float share = 0.2F;
    while (contrast(text, mixed(away, selection, share)) < kLeastContrast && share < 0.8F)
        share += 0.1F;
    return mixed(away, selection, share);
}

} // namespace

PillColors pillColors(const QPalette &palette, QPalette::ColorGroup group, bool isSelected)
{
    const QColor base = palette.color(group, QPalette::Base);
    const QColor text = palette.color(group, QPalette::Text);
    if (group == QPalette::Disabled)
        return {mixed(text, base, 0.1F), mixed(text, base, 0.4F), text};
    // The highlight of a field without the focus is pale; pills keep their color.
    const QColor accent = palette.color(QPalette::Active, QPalette::Highlight);
    if (isSelected) {
        const QColor name = palette.color(group, QPalette::HighlightedText);
        const QColor fill = distinct(palette.color(group, QPalette::Highlight), name);
        return {fill, name, readable(name, fill)};
    }
    const QColor fill = mixed(accent, base, 0.18F);
    return {fill, mixed(accent, base, 0.6F), readable(text, fill)};
}

TokenFieldPill::TokenFieldPill(QTextEdit &field)
    : QObject(&field)
    , m_field(field)
{
    field.document()->documentLayout()->registerHandler(kPillObject, this);
}

QSizeF TokenFieldPill::intrinsicSize(QTextDocument *document, int, const QTextFormat &format)
{
    const QFontMetricsF metrics(document->defaultFont());
    // The bottom of an object is on the baseline; drawObject() draws down to the descent of the text.
    return {std::ceil(metrics.horizontalAdvance(pillName(format))) + 2 * (kPadding + kGap), metrics.ascent()};
}

void TokenFieldPill::drawObject(QPainter *painter, const QRectF &area, QTextDocument *document, int position,
                                const QTextFormat &format)
{
    const QTextCursor cursor = m_field.textCursor();
    const PillColors pill = colors(position >= cursor.selectionStart() && position < cursor.selectionEnd());
    const QRectF body = area.adjusted(kGap, 0, -kGap, QFontMetricsF(document->defaultFont()).descent());
    drawBody(*painter, body, pill);
    painter->setFont(document->defaultFont());
    painter->setPen(pill.text);
    painter->setLayoutDirection(Qt::LeftToRight); // the names are not translated
    painter->drawText(body, Qt::AlignCenter | Qt::TextSingleLine, pillName(format));
    // The caller restores the painter. Before, it covers selected objects with a color that would make the
    // name hard to read.
    painter->setClipRect(QRectF());
}

void TokenFieldPill::drawBody(QPainter &painter, const QRectF &area, const PillColors &colors) const
{
    const QRectF body = area.adjusted(0.5, 0.5, -0.5, -0.5);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors.outline);
    painter.setBrush(colors.fill);
    painter.drawRoundedRect(body, body.height() / 2, body.height() / 2);
    painter.restore();
}

PillColors TokenFieldPill::colors(bool isSelected) const
{
    const QPalette::ColorGroup group = !m_field.isEnabled() ? QPalette::Disabled
                                       : m_field.hasFocus() ? QPalette::Active
                                                            : QPalette::Inactive;
    return pillColors(m_field.palette(), group, isSelected);
}

} // namespace plexa
