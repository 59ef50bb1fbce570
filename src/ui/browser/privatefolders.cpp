// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/privatefolders.h"

#include "platform/folderlock.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace plexa
{
namespace
{

constexpr int kAttempts = 3;
constexpr qint64 kKeptSeconds = 30 * 60;

/// Without the letters that QTemporaryDir appends.
QString namePrefix()
{
    return QCoreApplication::applicationName() + QStringLiteral("-copies-");
}

} // namespace

PrivateFolders::~PrivateFolders()
{
    m_root.reset();
    if (m_lock >= 0)
        close(m_lock);
}

QString PrivateFolders::make()
{
    // Another program that starts now may remove a folder that is not locked yet.
    for (int attempt = 0; !m_root && attempt < kAttempts; ++attempt) {
        auto root = std::make_unique<QTemporaryDir>(QDir::tempPath() + QLatin1Char('/') + namePrefix() +
                                                    QStringLiteral("XXXXXX"));
        m_lock = root->isValid() ? lockOwnFolder(root->path()) : -1;
        if (m_lock >= 0 || attempt + 1 == kAttempts)
            m_root = std::move(root);
    }
    const QString name = QString::number(++m_count);
    if (!m_root->isValid() || !QDir(m_root->path()).mkdir(name))
        return {};
    // The targets have read the files of old folders.
    const QDateTime now = QDateTime::currentDateTime();
    for (const QFileInfo &folder : QDir(m_root->path()).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (folder.lastModified().secsTo(now) > kKeptSeconds)
            QDir(folder.filePath()).removeRecursively();
    }
    return m_root->filePath(name);
}

int PrivateFolders::removeLeftovers()
{
    int removed = 0;
    const QDir temporary(QDir::tempPath());
    for (const QString &name : temporary.entryList({namePrefix() + QStringLiteral("??????")},
                                                   QDir::Dirs | QDir::Hidden | QDir::NoSymLinks)) {
        const int folder = lockOwnFolder(temporary.filePath(name));
        if (folder < 0)
            continue;
        removed += QDir(temporary.filePath(name)).removeRecursively() ? 1 : 0;
        close(folder);
    }
    return removed;
}

} // namespace plexa
