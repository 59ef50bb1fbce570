// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

namespace plexa
{

class UserDefaults;

/// The preferences: check boxes that are bound to settings. A change holds at once.
class PreferencesDialog final : public QDialog
{
    Q_OBJECT

public:
    /// @param defaults  outlives the dialog
    PreferencesDialog(UserDefaults &defaults, QWidget *parent);

Q_SIGNALS:
    /// A setting has another value.
    void settingChanged(QLatin1String key);
};

} // namespace plexa
