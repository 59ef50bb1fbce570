// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The source's side of the Direct Save protocol for X11 ("XDS", a part of the drag-and-drop protocol of
/// freedesktop.org): the source writes the name of a file on its window; a target that wants the file
/// replaces it by a URL and asks for the data "XdndDirectSave0"; the source then saves there and answers with
/// one letter. Works in the program's drags while they go on. Main thread.
namespace DirectSave
{

/// The type under which a drag offers it, and the window property.
inline constexpr char kType[] = "XdndDirectSave0";

enum class Answer : char { Saved = 'S', Failed = 'F', Error = 'E' };

/// Is this an X11 session?
bool isAvailable();

/// Proposes a file name for the drag that has just begun. Does nothing where there is none.
void offerName(const QString &filename);

/// Where the target wants the file; empty when it did not say, or when that is no place of this machine.
QString requestedPath();

} // namespace DirectSave

} // namespace plexa
