// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// What a drag of ours needs of X11 beside what Qt offers: whether the button is still held, and the source's
/// side of the Direct Save protocol ("XDS", beside the drag-and-drop protocol of freedesktop.org). In that
/// the source writes the name of a file on its window; a target that wants the file replaces it by a URL and
/// asks for the data "XdndDirectSave0"; the source then saves there and answers with one letter. Main thread;
/// on other window systems nothing of it is available.
namespace X11Drag
{

/// The type under which a drag offers Direct Save, and the window property.
inline constexpr char kDirectSaveType[] = "XdndDirectSave0";

enum class Answer : char { Saved = 'S', Failed = 'F', Error = 'E' };

bool isAvailable();

/// Does the user hold a button of the pointer, wherever that is? Qt does not know while it drags.
bool isButtonHeld();

/// Proposes a file name for the drag that has just begun. Does nothing where there is none.
void offerName(const QString &filename);

/// Where the target wants the file; empty when it did not say, or when that is no place of this machine.
QString requestedPath();

} // namespace X11Drag

} // namespace plexa
