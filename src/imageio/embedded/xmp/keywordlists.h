// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// Brings the further keyword lists of photo managers in line with edited keywords. Of the trees
/// ("Places|Berlin", "Places/Berlin") the entries stay whose last name is still a keyword and that name none
/// of the removed ones; lists that cannot be looked into go.
void updateKeywordLists(Exiv2::XmpData &xmp, const QStringList &before, const QStringList &after);

} // namespace plexa
