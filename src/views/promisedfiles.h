// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "views/filepromise.h"

#include <QList>
#include <QMimeData>
#include <QTemporaryDir>

#include <memory>

namespace plexa
{

/// Folders of ours for files that other programs take over: only the user may look into them, and they go
/// with this object.
class PrivateFolders
{
public:
    /// A new empty folder; empty when there is none to be had.
    QString make();

private:
    std::unique_ptr<QTemporaryDir> m_root;
    int m_count = 0;
};

/// What a drag or the clipboard carries of a selection: files ("text/uri-list"), the first image in several
/// formats, and, in a drag, the selected indexes. Nothing is made before somebody asks for it, and then once.
///
/// On X11, targets ask for the list of files already while the pointer rests on them. They get it, but the
/// files are made only when the button has been let go.
class PromisedFiles final : public QMimeData
{
    Q_OBJECT

public:
    /// What a drag within a grid carries: the selected indexes, good in the grid that the drag comes from.
    static const QString kSelectionType;

    enum class Use { Clipboard, Drag };

    /// @param promise  may be null; then there are indexes alone
    PromisedFiles(std::unique_ptr<FilePromise> promise, std::shared_ptr<PrivateFolders> folders, Use use,
                  const QList<int> &indexes = {});

    QStringList formats() const override;

    /// The dragged indexes; empty when these data are not of that kind.
    static QList<int> indexes(const QMimeData &data);

    /// The name that is proposed to targets that save a file by themselves; empty: none.
    QString firstName() const;

    /// After a drop outside: makes the files whose names were given away while the button was held, should
    /// the target not have asked again.
    void dropped();

protected:
    QVariant retrieveData(const QString &mimeType, QMetaType type) const override;

private:
    QByteArray fileUrls() const;
    void makeFiles() const;
    QByteArray saveDirectly() const;

    const std::unique_ptr<FilePromise> m_promise;
    const std::shared_ptr<PrivateFolders> m_folders;
    const Use m_use;
    const QList<int> m_indexes;

    // What was made in answer to the first question.
    mutable QString m_folder;
    mutable bool m_areFilesMade = false;
    mutable bool m_isSavedDirectly = false;
};

} // namespace plexa
