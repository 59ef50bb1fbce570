// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

namespace plexa
{

class UserDefaults;

/// The license of the program. Main thread.
class LicenseDialog final : public QDialog
{
    Q_OBJECT

public:
    enum class Purpose {
        Agreement, ///< with the buttons "Agree" and "Quit"; accepted by the former alone
        Reading,
    };

    explicit LicenseDialog(Purpose purpose, QWidget *parent = nullptr);

    /// Asks at the first start, and stores an agreement. Does not ask where there is no screen.
    /// @return false if the user wants to quit
    static bool hasAgreement(UserDefaults &defaults);
};

} // namespace plexa
