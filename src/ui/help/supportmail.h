// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QUrl>

#include <functional>

namespace plexa
{

class Alerts;

/// A message to the makers of the program, for the user to complete: an address of the scheme "mailto". It
/// states the versions of program, system and Qt, and nothing about the user or the photos.
QUrl supportMail();

/// Shows the message in the user's mail program. If that fails, reports it with the address, which the user
/// can copy. Main thread.
/// @param open  returns false if there is no mail program
void contactSupport(Alerts &alerts, const std::function<bool(const QUrl &)> &open);

} // namespace plexa
