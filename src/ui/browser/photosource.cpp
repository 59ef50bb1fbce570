// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/photosource.h"

#include <algorithm>

namespace plexa
{

int PhotoSource::indexOf(const void *image) const
{
    const auto found = std::find_if(m_photos->begin(), m_photos->end(),
                                    [image](const auto &photo) { return photo.get() == image; });
    return found == m_photos->end() ? -1 : static_cast<int>(found - m_photos->begin());
}

} // namespace plexa
