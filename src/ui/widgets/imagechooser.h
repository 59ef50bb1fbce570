// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace plexa
{

enum class ChooserKind { Files, Folder };

/// Opens a dialog for choosing photos or a folder of photos and returns at once. `chosen` gets their paths if
/// the user accepts.
void chooseImages(ChooserKind kind, QWidget *window, std::function<void(const QStringList &)> chosen);

} // namespace plexa
