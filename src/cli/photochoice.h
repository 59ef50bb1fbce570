// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "cli/photopaths.h"

#include <QString>

namespace plexa
{

/// Photos that a run leaves out.
struct LeftOutPhotos {
    qint64 count = 0;
    QString first;
};

/// Keeps the first of several paths that lead to one file, so that a photo is saved once. A photo that is
/// also named as a file counts as named.
/// @return the further names of files, by links; not further paths of one name
LeftOutPhotos leaveOutRepetitions(PhotoSearch &search);

/// Removes the photos found in folders that are copies of earlier runs. Reads their headers on `threads`
/// threads.
LeftOutPhotos leaveOutCopies(PhotoSearch &search, int threads);

} // namespace plexa
