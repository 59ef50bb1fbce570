// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/presets/presetsmanagers.h"

namespace plexa
{

PresetsManagers::PresetsManagers(const PresetsManagerWindow::Services &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
}

PresetsManagerWindow &PresetsManagers::window(Kind kind)
{
    std::unique_ptr<PresetsManagerWindow> &window = m_windows[static_cast<std::size_t>(kind)];
    if (!window) {
        window = std::make_unique<PresetsManagerWindow>(kind, m_services);
        connect(window.get(), &PresetsManagerWindow::shownChanged, this, &PresetsManagers::shownChanged);
    }
    return *window;
}

void PresetsManagers::show(Kind kind, int row)
{
    window(kind).present();
    if (row >= 0)
        window(kind).selectRow(row);
}

void PresetsManagers::toggle(Kind kind)
{
    if (isShown(kind))
        window(kind).close();
    else
        show(kind);
}

bool PresetsManagers::isShown(Kind kind) const
{
    const auto &window = m_windows[static_cast<std::size_t>(kind)];
    return window && window->isVisible();
}

void PresetsManagers::closeAll()
{
    for (const auto &window : m_windows) {
        if (window)
            window->close();
    }
}

} // namespace plexa
