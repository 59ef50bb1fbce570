// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/promisedfiles.h"

#include "app/backgroundjob.h"
#include "app/indexlist.h"
#include "ui/browser/x11drag.h"
#include "ui/widgets/filedrops.h"

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

PromisedFiles::PromisedFiles(std::unique_ptr<FilePromise> promise, std::shared_ptr<PrivateFolders> folders,
                             Use use, const QList<int> &indexes)
    : m_promise(std::move(promise))
    , m_folders(std::move(folders))
    , m_use(use)
    , m_indexes(indexes)
{
}

PromisedFiles::~PromisedFiles()
{
    // The target has stopped waiting. One that has the names may still read the files.
    if (m_making && !m_areNamesGiven) {
        m_making->isGivenUp = true;
        m_making->isAbandoned = m_use == Use::Drag;
    }
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
        formats << kPhotoSelectionType;
    return formats;
}

QList<int> PromisedFiles::indexes(const QMimeData &data)
{
    return indexesFromDrag(data.data(kPhotoSelectionType));
}

QString PromisedFiles::firstName() const
{
    return m_promise ? m_promise->names().value(0) : QString();
}

void PromisedFiles::dropped()
{
    m_isDropped = true;
    if (m_making && m_areNamesGiven && !m_isSavedDirectly)
        makeFiles(std::shared_ptr(m_making));
}

QVariant PromisedFiles::retrieveData(const QString &mimeType, QMetaType type) const
{
    if (mimeType == kPhotoSelectionType && !m_indexes.isEmpty())
        return draggedBytesOf(m_indexes);
    if (m_promise) {
        if (mimeType == kUriList)
            return fileUrls();
        if (mimeType == QLatin1String(X11Drag::kDirectSaveType))
            return saveDirectly();
        if (m_promise->imageTypes().contains(mimeType))
            return m_use == Use::Clipboard ? image(mimeType) : QByteArray();
    }
    return QMimeData::retrieveData(mimeType, type);
}

QByteArray PromisedFiles::fileUrls() const
{
    if (!m_making) {
        const QString folder = m_folders->make();
        if (folder.isEmpty())
            return {};
        m_making = std::make_shared<Making>();
        m_making->folder = folder;
        m_making->promise = m_promise;
        m_making->folders = m_folders;
    }
    const bool isHovering = m_use == Use::Drag && !m_isDropped && X11Drag::isButtonHeld();
    m_areNamesGiven = m_areNamesGiven || isHovering;
    const std::shared_ptr<Making> making = m_making;
    if (!isHovering) {
        makeFiles(making); // may destroy this object
        if (making->isGivenUp || making->outcome.isStopped)
            return {};
    }
    QByteArray urls;
    for (const QString &name : making->promise->names()) {
        const QString path = making->folder + QLatin1Char('/') + name;
        // A missing file would cause a second message, from the target.
        if (isHovering || QFileInfo::exists(path))
            urls += QUrl::fromLocalFile(path).toEncoded() + "\r\n";
    }
    return urls;
}

void PromisedFiles::makeFiles(const std::shared_ptr<Making> &making)
{
    if (!making->work) {
        making->work = std::make_shared<BackgroundJob>();
        making->work->start([making = making.get()] {
            making->outcome =
                making->promise->makeFiles(making->folder, [making] { return making->isGivenUp.load(); });
            return true;
        });
    }
    const std::shared_ptr<BackgroundJob> work = making->work;
    if (!work->wait()) {
        making->isGivenUp = true; // the program is to quit
        work->finish();
    }
    if (std::exchange(making->isReported, true))
        return;
    if (making->isGivenUp || making->outcome.isStopped)
        QDir(making->folder).removeRecursively(); // no target knows them
    QStringList failures = making->outcome.failures;
    if (making->isAbandoned) {
        failures = {tr("%1: the program that received the drop did not wait for the files")
                        .arg(making->promise->names().join(QLatin1String(", ")))};
    }
    making->promise->report(failures);
}

QByteArray PromisedFiles::image(const QString &mimeType) const
{
    QByteArray bytes;
    QStringList failures;
    const std::shared_ptr<FilePromise> promise = m_promise; // this object may be destroyed meanwhile
    const auto work = std::make_shared<BackgroundJob>();
    work->start([&] {
        bytes = promise->image(mimeType, failures);
        return true;
    });
    if (!work->wait())
        work->finish();
    promise->report(failures);
    return bytes;
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
    m_isSavedDirectly = m_promise->saveInto(folder);
    return answer(m_isSavedDirectly ? X11Drag::Answer::Saved : X11Drag::Answer::Error);
}

} // namespace plexa
