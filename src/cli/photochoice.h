// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "cli/photopaths.h"

#include <QString>

namespace plexa
{

/// Keeps the first of several paths that lead to one entry of a folder, so that a photo is saved once. A
/// photo that is also named as a file counts as named.
void leaveOutRepetitions(PhotoSearch &search);

/// What leaveOutCopies() removed.
struct LeftOutCopies {
    qint64 count = 0;
    QString first;
};

/// Removes the photos found in folders that are copies of earlier runs. Reads their headers on `threads`
/// threads.
LeftOutCopies leaveOutCopies(PhotoSearch &search, int threads);

} // namespace plexa
