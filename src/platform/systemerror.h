// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Why writing a file failed, for people ("no space left on the disk"); no capital, no full stop.
/// @param error  an errno value; those without a text of our own get the system's
QString writeErrorText(int error);

} // namespace plexa
