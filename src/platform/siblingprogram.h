// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The path of a program that belongs to this one and that the user does not start: beside this program in a
/// build, else in the folder where such programs are installed. The file may be missing.
QString siblingProgram(const QString &name);

} // namespace plexa
