// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

/// Is there a session bus? Asking Qt for one that is not there could start one.
bool hasSessionBus();

} // namespace plexa
