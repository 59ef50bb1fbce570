// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/widgets/helpbutton.h"

#include "ui/widgets/look.h"

#include <QDesktopServices>
#include <QShortcut>
#include <QUrl>

namespace plexa
{

void showHelp(const QString &place)
{
    QDesktopServices::openUrl(QUrl(kHelpScheme + u':' + place));
}

HelpButton::HelpButton(const QString &place, const QString &name, const QString &toolTip, QWidget *parent)
    : QToolButton(parent)
    , m_place(place)
{
    setIcon(QIcon(QStringLiteral(":/icons/help.svg")));
    setIconSize(QSize(look::kButtonIcon, look::kButtonIcon));
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setAccessibleName(name);
    setToolTip(toolTip);
    connect(this, &QToolButton::clicked, this, [this] { showHelp(m_place); });
}

HelpButton *HelpButton::withKey()
{
    connect(new QShortcut(Qt::Key_F1, this), &QShortcut::activated, this, &QAbstractButton::click);
    return this;
}

} // namespace plexa
