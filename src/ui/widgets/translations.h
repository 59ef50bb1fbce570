// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringList>

namespace plexa
{

/// The first of the user's languages that the program has a catalog for.
/// @param languages  as of QLocale::uiLanguages(), the preferred one first
/// @return the name of the catalog in the resources without its suffix, empty for the texts of the source:
/// if English comes first, or if there is no catalog for any language
QString catalogFor(const QStringList &languages);

/// Shows the texts of the program and those of Qt in the user's language from now on. To be called before the
/// first text is read. Texts stay in English if there is no catalog, those of Qt too, so that one window has
/// one language.
void installTranslations(const QStringList &languages);

} // namespace plexa
