// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QApplication;

namespace plexa
{

/// Gives the application its light look, whatever the desktop's theme is: photos are judged on it.
void setLightAppearance(QApplication &application);

} // namespace plexa
