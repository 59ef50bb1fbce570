// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/colorwell.h"

#include "platform/userdefaults.h"
#include "ui/widgets/checkedground.h"

#include <QColorDialog>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace plexa
{
namespace
{

constexpr int kRecentCount = 12;
constexpr int kCheck = 5;
constexpr int kSwatch = 16;

// No other class reads this setting.
const QString kRecentColorsKey = QStringLiteral("recentColors");

/// Translucent colors lie on squares.
void drawColor(QPainter &painter, const QRect &rect, const QColor &color)
{
    if (color.alpha() < 255)
        drawCheckedGround(painter, rect, kCheck);
    painter.fillRect(rect, color);
}

QString nameOf(const QColor &color)
{
    return color.alpha() == 255
               ? color.name()
               : ColorWell::tr("%1, %2 % opaque").arg(color.name()).arg(qRound(color.alphaF() * 100));
}

} // namespace

ColorWell::ColorWell(const QString &purpose, Alpha alpha, UserDefaults &defaults, QWidget *parent)
    : QToolButton(parent)
    , m_alpha(alpha)
    , m_defaults(defaults)
{
    setAccessibleName(purpose);
    setToolTip(purpose);
    setFocusPolicy(Qt::StrongFocus);
    setPopupMode(QToolButton::MenuButtonPopup);
    auto *const menu = new QMenu(this);
    setMenu(menu);
    connect(menu, &QMenu::aboutToShow, this, &ColorWell::fillMenu);
    connect(this, &QAbstractButton::clicked, this, &ColorWell::openDialog);
}

QSize ColorWell::sizeHint() const
{
    return {64, 26};
}

void ColorWell::setColor(const QColor &color)
{
    // Another color may be that of another preset, which the dialog must not change.
    if (m_dialog && (color.rgb() != m_dialog->currentColor().rgb() ||
                     (m_alpha == Alpha::Chosen && color.alpha() != m_dialog->currentColor().alpha()))) {
        m_dialog->disconnect(this);
        m_dialog->close();
    }
    showColor(color);
}

void ColorWell::showColor(const QColor &color)
{
    m_color = color;
    setAccessibleDescription(color.isValid() ? nameOf(color) : QString());
    update();
}

void ColorWell::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.icon = {};
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    const QRect room = style()
                           ->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButton, this)
                           .adjusted(4, 4, -4, -4);
    if (!m_color.isValid())
        return;
    drawColor(painter, room, m_color);
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(room.adjusted(0, 0, -1, -1));
}

void ColorWell::openDialog()
{
    if (m_dialog) {
        m_dialog->raise();
        m_dialog->activateWindow();
        return;
    }
    m_dialog = new QColorDialog(m_color, this);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setWindowTitle(toolTip());
    m_dialog->setOption(QColorDialog::ShowAlphaChannel, m_alpha == Alpha::Chosen);
    connect(m_dialog, &QColorDialog::currentColorChanged, this, &ColorWell::choose);
    connect(m_dialog, &QDialog::rejected, this, [this, former = m_color] { choose(former); });
    connect(m_dialog, &QColorDialog::colorSelected, this, [this](const QColor &color) {
        choose(color);
        remember(color);
    });
    m_dialog->open();
}

void ColorWell::choose(const QColor &color)
{
    if (!color.isValid() || color == m_color)
        return;
    showColor(color);
    Q_EMIT colorChosen(color);
}

QList<QColor> ColorWell::recentColors() const
{
    QList<QColor> colors;
    for (const QString &name : m_defaults.stringForKey(kRecentColorsKey).split(u' ', Qt::SkipEmptyParts)) {
        const QColor color(name);
        if (color.isValid() && colors.size() < kRecentCount)
            colors.append(color);
    }
    return colors;
}

void ColorWell::remember(const QColor &color)
{
    QList<QColor> colors = recentColors();
    colors.removeAll(color);
    colors.prepend(color);
    QStringList names;
    for (const QColor &recent : colors.mid(0, kRecentCount))
        names.append(recent.name(QColor::HexArgb));
    m_defaults.setObject(kRecentColorsKey, names.join(u' '));
}

void ColorWell::fillMenu()
{
    menu()->clear();
    QList<QColor> colors = recentColors();
    for (const QColor &basic : {QColor(Qt::white), QColor(Qt::black)}) {
        if (!colors.contains(basic))
            colors.append(basic);
    }
    for (QColor color : colors) {
        if (m_alpha == Alpha::None)
            color.setAlpha(255);
        QPixmap swatch(QSize(kSwatch, kSwatch) * devicePixelRatio());
        swatch.setDevicePixelRatio(devicePixelRatio());
        QPainter painter(&swatch);
        drawColor(painter, {0, 0, kSwatch, kSwatch}, color);
        painter.setPen(palette().color(QPalette::Shadow));
        painter.drawRect(0, 0, kSwatch - 1, kSwatch - 1);
        painter.end();
        menu()->addAction(swatch, nameOf(color), this, [this, color] { choose(color); });
    }
    menu()->addSeparator();
    menu()->addAction(tr("Other Color…"), this, &ColorWell::openDialog);
}

} // namespace plexa
