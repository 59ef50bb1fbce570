// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QToolButton>

namespace plexa
{

/// The scheme of addresses in the user guide: "plexa-help:saving.html#names". QDesktopServices hands them to
/// the window that shows the guide.
inline constexpr QLatin1StringView kHelpScheme("plexa-help");

/// Shows a page of the user guide. Any widget may use it; the window of the guide need not exist yet.
/// @param place  "page.html" or "page.html#section"
void showHelp(const QString &place);

/// A button that shows the place of the user guide about what is beside it.
class HelpButton final : public QToolButton
{
    Q_OBJECT

public:
    /// @param place  see showHelp()
    /// @param name  for assistive technology
    HelpButton(const QString &place, const QString &name, const QString &toolTip, QWidget *parent = nullptr);

    /// Makes F1 press this button in its window, for windows other than the main one.
    HelpButton *withKey();

    const QString &place() const { return m_place; }

private:
    QString m_place;
};

} // namespace plexa
