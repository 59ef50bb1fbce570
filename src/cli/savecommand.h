// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace plexa
{

struct SaveOptions;

/// Watermarks the photos. @return the exit status
int runSave(const SaveOptions &options);

} // namespace plexa
