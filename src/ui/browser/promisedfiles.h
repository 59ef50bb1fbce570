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

/// What a drag or the clipboard carries of a selection: files ("text/uri-list"), the first image in several
/// formats, and, in a drag, the selected indexes. Nothing is made before somebody asks for it, and then once;
/// who asks waits while the event loop goes on. A drag names the image formats, but what it gives away are
/// the files: a target that took the picture of one photo instead would lose the others.
///
/// On X11, targets ask for the list of files already while the pointer rests on them. They get it, but the
/// files are made only when the button has been let go. A target that loses its patience ends the drag, which
/// destroys these data even while they are asked: then no further file is made, and the promise reports it.
class PromisedFiles final : public QMimeData
{
    Q_OBJECT

public:
    enum class Use { Clipboard, Drag };

    /// @param promise  may be null; then there are indexes alone
    PromisedFiles(std::unique_ptr<FilePromise> promise, std::shared_ptr<PrivateFolders> folders, Use use,
                  const QList<int> &indexes = {});
    ~PromisedFiles() override;

    QStringList formats() const override;

    /// The dragged indexes; empty when these data are not of that kind.
    static QList<int> indexes(const QMimeData &data);

    /// The name that is proposed to targets that save a file by themselves; empty: none.
    QString firstName() const;

    /// There was a drop outside: from now on files are made when they are asked for. Those whose names were
    /// given away before are made now, should the target not ask again. Returns when they are there; these
    /// data may be gone then.
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

    /// The making of the files, which may outlive the data.
    struct Making {
        QString folder;
        std::shared_ptr<FilePromise> promise;
        std::shared_ptr<PrivateFolders> folders;
        std::atomic<bool> isGivenUp = false;
        bool isAbandoned = false; ///< given up because the target went away
        bool isReported = false;
        FilePromise::Outcome outcome;        ///< of the working thread, until that has ended
        std::shared_ptr<BackgroundJob> work; ///< null: not begun; goes first, since it uses the others
    };
    static void makeFiles(const std::shared_ptr<Making> &making);

    // What was made in answer to the first question.
    mutable std::shared_ptr<Making> m_making;
    bool m_isDropped = false;
    mutable bool m_areNamesGiven = false; // before the files were there
    mutable bool m_isSavedDirectly = false;
};

} // namespace plexa
