// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/lightappearance.h"

#include "ui/widgets/look.h"

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
            return look::kGap;
        case PM_ButtonMargin:
            return 2 * look::kGap;
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
    QPalette palette;
    palette.setColor(QPalette::Window, look::kWindow);
    palette.setColor(QPalette::WindowText, look::kText);
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::AlternateBase, QColor(0xf7, 0xf8, 0xf9));
    palette.setColor(QPalette::Text, look::kText);
    palette.setColor(QPalette::PlaceholderText, look::kSecondaryText);
    palette.setColor(QPalette::Button, look::kButton);
    palette.setColor(QPalette::ButtonText, look::kText);
    palette.setColor(QPalette::BrightText, Qt::white);
    palette.setColor(QPalette::Light, Qt::white);
    palette.setColor(QPalette::Midlight, QColor(0xe4, 0xe6, 0xe9));
    palette.setColor(QPalette::Mid, look::kPhotoGround);
    palette.setColor(QPalette::Dark, look::kPreviewGround);
    palette.setColor(QPalette::Shadow, QColor(0x6c, 0x74, 0x7c));
    palette.setColor(QPalette::Highlight, look::kAccent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, look::kAccent);
    palette.setColor(QPalette::ToolTipBase, QColor(0xff, 0xff, 0xf2));
    palette.setColor(QPalette::ToolTipText, look::kText);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, look::kDisabledText);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, QColor(0xc9, 0xce, 0xd4));
    palette.setColor(QPalette::Inactive, QPalette::Highlight, QColor(0xcf, 0xdb, 0xe8));
    palette.setColor(QPalette::Inactive, QPalette::HighlightedText, look::kText);
    return palette;
}

/// For lists and menus: icons and texts keep their colors on selected items.
QPalette lightListPalette()
{
    QPalette palette = lightPalette();
    palette.setColor(QPalette::Active, QPalette::Highlight, look::kLightAccent);
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
