// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/filesunderway.h"

#include <QDir>
#include <QFileInfo>

namespace plexa
{

namespace
{

constexpr int kMaxLinks = 40; // the kernel's own limit

} // namespace

QString FilesUnderWay::keyOf(const QString &path)
{
    // By hand, because the file that a copy will create through a link does not exist yet.
    QFileInfo info(path);
    for (int i = 0; i < kMaxLinks && info.isSymLink(); ++i)
        info.setFile(info.symLinkTarget());
    return nameKeyOf(info.filePath());
}

QString FilesUnderWay::nameKeyOf(const QString &path)
{
    const QFileInfo info(path);
    const QString folder = QFileInfo(info.absolutePath()).canonicalFilePath();
    return folder.isEmpty() ? QDir::cleanPath(info.absoluteFilePath()) : folder + u'/' + info.fileName();
}

void FilesUnderWay::begin(const QString &key, Use use)
{
    const std::lock_guard lock(m_mutex);
    ++m_counts[key][static_cast<std::size_t>(use)];
}

void FilesUnderWay::end(const QString &key, Use use)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_counts.find(key);
    if (found == m_counts.end())
        return;
    int &count = (*found)[static_cast<std::size_t>(use)];
    count = std::max(count - 1, 0);
    if (*found == Counts())
        m_counts.erase(found);
}

bool FilesUnderWay::isUsed(const QString &key, Use use) const
{
    const std::lock_guard lock(m_mutex);
    return m_counts.value(key)[static_cast<std::size_t>(use)] > 0;
}

} // namespace plexa
