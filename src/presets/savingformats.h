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

/// The names that a preset's format may have, "Original" the last; their order is the order of menus and of
/// the numbers in old preset files.
QStringList savingFormatNames();

/// The names that a preset's alternative format may have.
QStringList savingFormatNamesWithoutOriginal();

/// The type of a file-name suffix or of a format's name, in any letter case; empty for other texts.
QString savingTypeForExtension(const QString &extension);

/// Is this the type of one of these formats?
bool isSavingType(const QString &type);

/// The suffixes of files of that type, the written one first; empty for other types.
QStringList savingExtensionsOfType(const QString &type);

} // namespace plexa
