// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace plexa
{

enum class ChooserKind { Files, Folder };

/// Lets the user choose photos, or a folder of photos, in a dialog in front of the window, and returns at
/// once. `chosen` is called with their paths when the user has said yes.
void chooseImages(ChooserKind kind, QWidget *window, std::function<void(const QStringList &)> chosen);

} // namespace plexa
