// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

// The formats in which saving presets can write a copy. Formats that this build cannot write are absent.
// Types are MIME names ("image/jpeg").

/// The name that represents the format of the source.
QString originalFormatName();

/// The allowed names of a format, "Original" last, in the order of menus and of the numbers in old files.
QStringList savingFormatNames();

/// The allowed names of an alternative format.
QStringList savingFormatNamesWithoutOriginal();

/// The type of a suffix or of a format's name, in any letter case; empty for other texts.
QString savingTypeForExtension(const QString &extension);

bool isSavingType(const QString &type);

/// The suffixes of files of that type, the written one first; empty for other types.
QStringList savingExtensionsOfType(const QString &type);

} // namespace plexa
