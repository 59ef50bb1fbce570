// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/lightappearance.h"

#include <QApplication>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QToolTip>

namespace plexa
{

namespace
{

/// The Fusion style with thinner dividers, smaller icons and earlier tool tips.
class LightStyle final : public QProxyStyle
{
public:
    LightStyle()
        : QProxyStyle(QStyleFactory::create(QStringLiteral("fusion")))
    {
    }

    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override
    {
        switch (metric) {
        case PM_SplitterWidth:
            return 7;
        case PM_SmallIconSize:
        case PM_ButtonIconSize:
            return 18;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returnData) const override
    {
        switch (hint) {
        case SH_ToolTip_WakeUpDelay:
            return 500;
        case SH_EtchDisabledText:
        case SH_DialogButtonBox_ButtonsHaveIcons:
            return 0;
        default:
            return QProxyStyle::styleHint(hint, option, widget, returnData);
        }
    }
};

QPalette lightPalette()
{
    const QColor text(0x24, 0x2a, 0x30);
    const QColor disabled(0xa4, 0xaa, 0xb0);
    const QColor accent(0x3b, 0x78, 0xb4);
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xf1, 0xf2, 0xf4));
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf8, 0xf9));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, QColor(0x83, 0x8a, 0x92));
    palette.setColor(QPalette::Button, QColor(0xf8, 0xf9, 0xfa));
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Light, Qt::white);
    palette.setColor(QPalette::Midlight, QColor(0xe4, 0xe6, 0xe9));
    palette.setColor(QPalette::Mid, QColor(0x94, 0x9a, 0xa1));  // background of the grid and the list
    palette.setColor(QPalette::Dark, QColor(0xaa, 0xaa, 0xaa)); // background of the preview
    palette.setColor(QPalette::Shadow, QColor(0x6c, 0x74, 0x7c));
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(0x1a, 0x48, 0x77)); // also marks on that background, 3.3:1
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf2));
    palette.setColor(QPalette::ToolTipText, text);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0xc9, 0xce, 0xd4));
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xcf, 0xdb, 0xe8));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, text);
    return palette;
}

/// For lists and menus: icons and texts keep their colors on selected items.
QPalette lightListPalette()
{
    QPalette palette = lightPalette();
    palette.setColor(QPalette::Active, QPalette::Highlight, QColor(0xb9, 0xd4, 0xef));
    palette.setColor(QPalette::Active, QPalette::HighlightedText, palette.color(QPalette::Text));
    return palette;
}

} // namespace

void setLightAppearance(QApplication &application)
{
    QApplication::setStyle(new LightStyle);
    QApplication::setPalette(lightPalette());
    // Desktop themes have palettes of their own for these.
    for (const char *widgets : {"QToolTip", "QHeaderView"})
        QApplication::setPalette(lightPalette(), widgets);
    for (const char *widgets : {"QMenu", "QMenuBar", "QAbstractItemView"})
        QApplication::setPalette(lightListPalette(), widgets);
    QToolTip::setPalette(lightPalette());
    application.setStyleSheet({}); // overrides one from the command line
}

} // namespace plexa
