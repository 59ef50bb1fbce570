// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace plexa
{

/// Removes from a folder the unfinished files that programs of ours left behind when they were killed: those
/// that AtomicFile named, that belong to this user, and that no running program holds the lock of. Files that
/// are being written stay, also those of other processes. Failures are passed over. Any thread.
/// @return how many were removed
int removeLeftovers(const QString &folder);

} // namespace plexa
