// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/exchangefolder.h"

#include "platform/folderlock.h"

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>

#include <unistd.h>

namespace plexa
{

namespace
{

constexpr qint64 kKeptDays = 7;

QString nameWith(const QString &end)
{
    return QStringLiteral("qpxtempexchangedir.") + end;
}

/// A file that marks a folder until it is handed over.
QString markOf(const QString &folder)
{
    return folder + QStringLiteral("/.unfinished");
}

void removeHandedOver(const QString &folder)
{
    const bool isOld = QFileInfo(folder).lastModified().daysTo(QDateTime::currentDateTime()) >= kKeptDays;
    if (isOld)
        QDir(folder).removeRecursively();
    else
        QDir().rmdir(folder); // only an empty one
}

} // namespace

ExchangeFolder::ExchangeFolder(QString path, int lock)
    : m_path(std::move(path))
    , m_lock(lock)
{
}

std::unique_ptr<ExchangeFolder> ExchangeFolder::make()
{
    // A program that starts now may take a new folder for a leftover and remove it before it is locked.
    for (int attempt = 0; attempt < 5; ++attempt) {
        QTemporaryDir folder(QDir::tempPath() + QLatin1Char('/') + nameWith(QStringLiteral("XXXXXX")));
        folder.setAutoRemove(false);
        if (!folder.isValid())
            return nullptr;
        const int lock = lockOwnFolder(folder.path());
        std::unique_ptr<ExchangeFolder> made(new ExchangeFolder(folder.path(), lock));
        if (lock >= 0 && QFile(markOf(folder.path())).open(QIODevice::WriteOnly))
            return made;
    }
    return nullptr;
}

ExchangeFolder::~ExchangeFolder()
{
    if (m_isHandedOver)
        removeHandedOver(m_path);
    else
        QDir(m_path).removeRecursively();
    if (m_lock >= 0)
        close(m_lock);
}

void ExchangeFolder::handOver()
{
    QFile::remove(markOf(m_path));
    m_isHandedOver = true;
}

void ExchangeFolder::removeLeftovers()
{
    const QDir temporary(QDir::tempPath());
    for (const QString &name : temporary.entryList({nameWith(QStringLiteral("??????"))},
                                                   QDir::Dirs | QDir::Hidden | QDir::NoSymLinks)) {
        const QString folder = temporary.filePath(name);
        const int lock = lockOwnFolder(folder);
        if (lock < 0)
            continue;
        if (QFileInfo::exists(markOf(folder)))
            QDir(folder).removeRecursively();
        else
            removeHandedOver(folder);
        close(lock);
    }
}

} // namespace plexa
