// SPDX-License-Identifier: GPL-3.0-or-later

#include "views/promisedfiles.h"

#include "views/x11drag.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <utility>

namespace plexa
{
namespace
{

const QString kUriList = QStringLiteral("text/uri-list");

} // namespace

QString PrivateFolders::make()
{
    if (!m_root) {
        m_root =
            std::make_unique<QTemporaryDir>(QDir::tempPath() + QLatin1Char('/') +
                                            QCoreApplication::applicationName() + QStringLiteral("-XXXXXX"));
    }
    const QString name = QString::number(++m_count);
    if (!m_root->isValid() || !QDir(m_root->path()).mkdir(name))
        return {};
    return m_root->filePath(name);
}

const QString PromisedFiles::kSelectionType = QStringLiteral("com.quorvel.ImageBrowserSelections");

PromisedFiles::PromisedFiles(std::unique_ptr<FilePromise> promise, std::shared_ptr<PrivateFolders> folders,
                             Use use, const QList<int> &indexes)
    : m_promise(std::move(promise))
    , m_folders(std::move(folders))
    , m_use(use)
    , m_indexes(indexes)
{
}

QStringList PromisedFiles::formats() const
{
    QStringList formats;
    if (m_promise) {
        formats << kUriList << m_promise->imageTypes();
        if (m_use == Use::Drag && X11Drag::isAvailable())
            formats << QLatin1String(X11Drag::kDirectSaveType);
    }
    if (!m_indexes.isEmpty())
        formats << kSelectionType;
    return formats;
}

QList<int> PromisedFiles::indexes(const QMimeData &data)
{
    QList<int> indexes;
    QDataStream stream(data.data(kSelectionType));
    stream.setVersion(QDataStream::Qt_6_0);
    stream >> indexes;
    return stream.status() == QDataStream::Ok ? indexes : QList<int>();
}

QString PromisedFiles::firstName() const
{
    return m_promise ? m_promise->names().value(0) : QString();
}

void PromisedFiles::dropped()
{
    if (!m_folder.isEmpty() && !m_isSavedDirectly)
        makeFiles();
}

QVariant PromisedFiles::retrieveData(const QString &mimeType, QMetaType type) const
{
    if (mimeType == kSelectionType && !m_indexes.isEmpty()) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(QDataStream::Qt_6_0);
        stream << m_indexes;
        return bytes;
    }
    if (m_promise) {
        if (mimeType == kUriList)
            return fileUrls();
        if (mimeType == QLatin1String(X11Drag::kDirectSaveType))
            return saveDirectly();
        if (m_promise->imageTypes().contains(mimeType))
            return m_promise->image(mimeType);
    }
    return QMimeData::retrieveData(mimeType, type);
}

QByteArray PromisedFiles::fileUrls() const
{
    if (m_folder.isEmpty())
        m_folder = m_folders->make();
    if (m_folder.isEmpty())
        return {};
    const bool isHovering = m_use == Use::Drag && X11Drag::isButtonHeld();
    if (!isHovering)
        makeFiles();
    QByteArray urls;
    for (const QString &name : m_promise->names()) {
        const QString path = m_folder + QLatin1Char('/') + name;
        // One that could not be made would only be a second message, from the target.
        if (isHovering || QFileInfo::exists(path))
            urls += QUrl::fromLocalFile(path).toEncoded() + "\r\n";
    }
    return urls;
}

void PromisedFiles::makeFiles() const
{
    if (!std::exchange(m_areFilesMade, true))
        m_promise->writeFiles(m_folder, FilePromise::Destination::PrivateFolder);
}

QByteArray PromisedFiles::saveDirectly() const
{
    const auto answer = [](X11Drag::Answer letter) { return QByteArray(1, static_cast<char>(letter)); };
    if (m_isSavedDirectly)
        return answer(X11Drag::Answer::Saved);
    const QString path = X11Drag::requestedPath();
    const QString folder = path.isEmpty() ? QString() : QFileInfo(path).path();
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        return answer(X11Drag::Answer::Failed);
    m_isSavedDirectly = m_promise->writeFiles(folder, FilePromise::Destination::TargetFolder);
    return answer(m_isSavedDirectly ? X11Drag::Answer::Saved : X11Drag::Answer::Error);
}

} // namespace plexa
