// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/browser/filepromise.h"
#include "ui/browser/privatefolders.h"

#include <QList>
#include <QMimeData>

#include <atomic>
#include <memory>

namespace plexa
{

class BackgroundJob;

/// The data of a selection in a drag or on the clipboard: files ("text/uri-list"), the first image in several
/// formats, and, in a drag, the selected indexes. Files and images are written at the first request; the
/// requester waits while the event loop runs. A drag offers the image formats without data, so that no target
/// gets the picture of one photo instead of all files.
///
/// On X11, targets request the list of files while the pointer rests on them. They get it, but the files are
/// written only after the button is released. A target that stops waiting ends the drag, which destroys these
/// data even during a request; then no further file is written, and the promise reports it.
class PromisedFiles final : public QMimeData
{
    Q_OBJECT

public:
    enum class Use { Clipboard, Drag };

    /// @param promise  may be null; then there are only indexes
    PromisedFiles(std::unique_ptr<FilePromise> promise, std::shared_ptr<PrivateFolders> folders, Use use,
                  const QList<int> &indexes = {});
    ~PromisedFiles() override;

    QStringList formats() const override;

    /// The dragged indexes; empty for other data.
    static QList<int> indexes(const QMimeData &data);

    /// The name proposed to targets that save a file themselves; empty: none.
    QString firstName() const;

    /// Reports a drop outside the grid: from now on files are written when requested. Writes those whose
    /// names were requested before at once, in case the target does not request them again. Returns when they
    /// are written; these data may be destroyed then.
    void dropped();

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override;

private:
    QByteArray fileUrls() const;
    QByteArray image(const QString &mimeType) const;
    QByteArray saveDirectly() const;

    const std::shared_ptr<FilePromise> m_promise;
    const std::shared_ptr<PrivateFolders> m_folders;
    const Use m_use;
    const QList<int> m_indexes;

    /// The files being written, which may outlive the data.
    struct Making {
        QString folder;
        std::shared_ptr<FilePromise> promise;
        std::shared_ptr<PrivateFolders> folders;
        std::atomic<bool> isGivenUp = false;
        bool isAbandoned = false; ///< the target stopped waiting
        bool isReported = false;
        FilePromise::Outcome outcome;        ///< belongs to the working thread until it ends
        std::shared_ptr<BackgroundJob> work; ///< null: not started; destroyed first, since it uses the others
    };
    static void makeFiles(const std::shared_ptr<Making> &making);

    // Created by the first request.
    mutable std::shared_ptr<Making> m_making;
    bool m_isDropped = false;
    mutable bool m_areNamesGiven = false; // before the files were written
    mutable bool m_isSavedDirectly = false;
};

} // namespace plexa
