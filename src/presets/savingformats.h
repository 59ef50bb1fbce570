// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace plexa
{

// The formats in which saving presets can write a copy. Those that this build cannot write do not exist here.
// Types are MIME names ("image/jpeg").

/// The name that stands for the format of the source.
QString originalFormatName();

/// The names that a preset's format may have, "Original" the last; their order is the order of menus and of
/// the numbers in old preset files.
QStringList savingFormatNames();

/// The type of a file-name suffix or of a format's name, in any letter case; empty when it is none of these
/// formats.
QString savingTypeForExtension(const QString &extension);

/// Is this the type of one of these formats?
bool isSavingType(const QString &type);

/// The suffixes that name files of that type, the one to be written first; empty when it is none of these
/// formats.
QStringList savingExtensionsOfType(const QString &type);

} // namespace plexa
