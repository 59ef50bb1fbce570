// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

class QMimeData;

namespace plexa
{

/// The paths of the files of this computer among what is dragged or pasted; other addresses are left out.
QStringList localFiles(const QMimeData &data);

} // namespace plexa
