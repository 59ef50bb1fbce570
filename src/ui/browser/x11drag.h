// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// The parts of a drag on X11 that Qt does not offer: the state of the button, and the source's side of the
/// Direct Save protocol ("XDS", an addition to the drag-and-drop protocol of freedesktop.org). The source
/// sets the name of a file as a property of its window. A target replaces it by a URL and requests the data
/// "XdndDirectSave0"; the source saves there and answers with one letter. Main thread; not available on other
/// window systems.
namespace X11Drag
{

/// The MIME type of Direct Save, also the name of the window property.
inline constexpr char kDirectSaveType[] = "XdndDirectSave0";

enum class Answer : char { Saved = 'S', Failed = 'F', Error = 'E' };

bool isAvailable();

/// Whether a button of the pointer is held. Qt does not know this during a drag.
bool isButtonHeld();

/// Proposes a file name for the drag under way. Does nothing without a drag.
void offerName(const QString &filename);

/// The path that the target requests; empty if it is missing or not on this computer.
QString requestedPath();

} // namespace X11Drag

} // namespace plexa
