// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/presets/presetsmanagerwindow.h"

#include <array>

namespace plexa
{

/// The managers of presets, one window for each kind, made when it is needed first. Main thread.
class PresetsManagers final : public QObject
{
    Q_OBJECT

public:
    using Kind = PresetsStore::Kind;

    /// @param services  outlive this object
    explicit PresetsManagers(const PresetsManagerWindow::Services &services, QObject *parent = nullptr);

    /// Shows the window in front, also if it is shown already.
    /// @param row  of the list, is selected; -1: the selection stays
    void show(Kind kind, int row = -1);
    /// The next key goes to the name of the selected preset, and replaces it.
    void editName(Kind kind) { window(kind).editName(); }
    /// Shows the window, or closes it if it is shown.
    void toggle(Kind kind);
    bool isShown(Kind kind) const;
    void closeAll();

Q_SIGNALS:
    void shownChanged();

private:
    PresetsManagerWindow &window(Kind kind);

    const PresetsManagerWindow::Services m_services;
    std::array<std::unique_ptr<PresetsManagerWindow>, 2> m_windows; ///< by kind
};

} // namespace plexa
