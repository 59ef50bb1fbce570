// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>

namespace plexa
{

/// Has a pixel of this format more than 8 bits a component?
bool hasDeepComponents(QImage::Format format);

} // namespace plexa
