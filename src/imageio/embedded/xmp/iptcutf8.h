// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Makes all texts of the record UTF-8, also those that it only says are, and lets it say so.
void makeUtf8(Exiv2::IptcData &iptc);

} // namespace plexa
