// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// The lines that plexa-bulletin writes to its standard output.
namespace plexa::bulletinreports
{

inline constexpr char kShown[] = "shown";           ///< the window is on the screen
inline constexpr char kSuppressed[] = "suppressed"; ///< it was closed with the box checked

} // namespace plexa::bulletinreports
