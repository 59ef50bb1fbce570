// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

namespace plexa
{

/// Lets Qt decode pictures of so many bytes. Qt has one bound for all pictures of the process (128 MB at
/// first), which this only raises: every caller checks its own bound before it decodes. Any thread.
void allowQtPictures(qint64 bytes);

} // namespace plexa
