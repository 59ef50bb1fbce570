// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

#include <functional>

class QWidget;

namespace plexa
{

enum class ChooserKind {
    Files,   ///< photos
    Folder,  ///< of photos
    Picture, ///< one file for a watermark
};

/// Opens a dialog for choosing files or a folder and returns at once. `chosen` gets their paths if the user
/// accepts.
void chooseImages(ChooserKind kind, QWidget *window, std::function<void(const QStringList &)> chosen);

} // namespace plexa
