// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/copynames.h"

#include "imageio/imageformat.h"

#include <QDir>
#include <QFileInfo>

namespace plexa
{

namespace
{

constexpr int kHighestNumber = 9999;

} // namespace

CopyNames::CopyNames(const QString &folder, const SavingPresetValues &savingPreset)
    : m_folder(folder)
    , m_savingPreset(savingPreset)
{
}

QString CopyNames::pathForCopyOf(const QString &sourcePath)
{
    const QStringList suffixes = m_savingPreset.filenameExtensions(sourcePath);
    if (suffixes.isEmpty())
        return {};
    const QFileInfo source(sourcePath);
    const bool keepsSuffix = suffixes.contains(source.suffix().toLower());
    const QString suffix = keepsSuffix ? source.suffix() : suffixes.first();
    // "a.webp" becomes "a.jpg", but what follows the dot in "scan 12.03" is no suffix.
    const QString stem = imageFormatOfSuffix(source.suffix()) ? source.completeBaseName() : source.fileName();

    QString path = QDir(m_folder).filePath(stem + QLatin1Char('.') + suffix);
    for (int number = 1; !isFree(path); ++number) {
        if (number > kHighestNumber)
            return {};
        path = QDir(m_folder).filePath(QStringLiteral("%1-%2.%3").arg(stem).arg(number).arg(suffix));
    }
    m_given.insert(path);
    return path;
}

bool CopyNames::isFree(const QString &path) const
{
    const QFileInfo info(path);
    return !m_given.contains(path) && !info.exists() && !info.isSymLink();
}

} // namespace plexa
