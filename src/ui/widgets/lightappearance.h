// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QApplication;

namespace plexa
{

/// Sets a light style and palette, whatever the desktop's theme is: users judge photos on it.
void setLightAppearance(QApplication &application);

} // namespace plexa
