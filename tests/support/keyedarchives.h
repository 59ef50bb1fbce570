// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/programs.h"
#include "support/testfolder.h"

#include <QFileInfo>

namespace plexa::test
{

/// The independent writer and reader of keyed archives: keyedarchives.py says what it writes.
inline QString keyedArchivesScript()
{
    return sourceFolder() + QStringLiteral("/tests/support/keyedarchives.py");
}

/// Writes the archives of keyedarchives.py into a folder. @return false when that fails
inline bool writeKeyedArchives(const QString &folder)
{
    return runProgram(QStringLiteral("python3"), {keyedArchivesScript(), folder}).status == 0;
}

/// What an archive contains, as JSON. Empty when it cannot be read.
inline QByteArray keyedArchiveAsJson(const QString &path)
{
    return outputOf("python3 %1 %2", keyedArchivesScript(), path);
}

} // namespace plexa::test
