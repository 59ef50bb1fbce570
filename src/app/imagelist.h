// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"

#include <memory>
#include <vector>

namespace plexa
{

/// Photos in the user's order. A photo is known by its identity: the same path added twice is two photos.
using ImageList = std::vector<std::shared_ptr<ImageObject>>;

} // namespace plexa
