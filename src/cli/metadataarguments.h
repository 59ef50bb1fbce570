// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "platform/result.h"

namespace plexa
{

struct SaveOptions;

/// What --clear and --meta do to the metadata of a photo, the clearings first; empty without these options.
/// A failure states what is wrong with one of them.
[[nodiscard]] Result<MetadataEdit> metadataEditOf(const SaveOptions &options);

} // namespace plexa
