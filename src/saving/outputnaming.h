// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetvalues.h"

#include <QHash>
#include <QString>

#include <functional>
#include <mutex>
#include <optional>

namespace plexa
{

class Alerts;
class PhotoFacts;

/// Where the copies of a run go.
struct OutputFolders {
    QString destDirectory;                  ///< empty: each copy beside its original
    bool replicateOrigDirStructure = false; ///< in destDirectory, with the folders of the originals
    QString replicationStartDirectory;      ///< the folder whose subfolders these are; empty: the root
    bool makesFolders = true;               ///< makes replicated folders that are not there
};

/// Makes the names of the copies of one run. Copies are under way at the same time: a path that was given for
/// one is taken until finished() is called for it. Names are asked for on one thread, which waits for the
/// answers to questions, and where it can, for copies that have the name; anotherUniquePath() and finished()
/// may be called on any.
class OutputNaming final
{
public:
    /// What to do with a copy whose name is taken: the last choice, and in the topmost bit whether it was
    /// made for the rest of the run. Belongs to the caller; a run begins with 0.
    using ConflictCode = qint32;
    enum Choice : ConflictCode { kNoChoice, kUniqueName, kOverwrite, kSkip };
    static constexpr quint32 kRemembered = 0x8000'0000U;

    /// The choice for all conflicts of a run, so that nobody is asked.
    static ConflictCode always(Choice choice);

    struct Destination {
        QString path;
        bool overwrites = false; ///< there is a file, and it is to be lost; else it must not be
    };

    /// Returns when no copy is being written to the path any more.
    using Wait = std::function<void(const QString &path)>;

    /// @param alerts         is asked about names that are taken; outlives the object
    /// @param waitForOutcome is called before it is decided whether the file of a copy under way exists;
    /// empty,
    ///                       or where unique names are the choice for all conflicts: it counts as existing,
    ///                       so that copies of one name do not wait for each other
    OutputNaming(OutputFolders folders, Alerts &alerts, Wait waitForOutcome = {});

    /// A copy's file name, without its folder. Put together from the preset's tokens and finished by
    /// filenameWithExtensionForFilename().
    /// @param imagePath  the photo, as people know it
    static QString filenameForImage(const PhotoFacts &image, const QString &imagePath,
                                    const QString &wPresetName, const SavingPresetValues &savingPreset,
                                    qint64 sequenceNumber);

    /// The name with the extension of the format that is written (none where the format cannot be), in the
    /// preset's letter cases. It names a file in a folder, whatever was in `filename`, and has at most
    /// kMaxFileNameBytes; where nothing is left of `filename`, it is the photo's.
    static QString filenameWithExtensionForFilename(const QString &filename, const QString &originalPath,
                                                    const SavingPresetValues &savingPreset);

    /// The folder for the copy of a photo. Makes the folders that are replicated, unless it shall not; when
    /// that fails, so does the writing.
    QString targetDirectoryForFile(const QString &path) const;

    /// Decides where a copy is written when there may be a file already, and takes the path until finished().
    /// @param path  folder and name
    /// @return none: the photo is skipped, by choice or because "NAME-1.jpg" to "NAME-9999.jpg" are taken
    std::optional<Destination> finalDestinationForPath(const QString &path, ConflictCode &code);

    /// For a copy whose path somebody else has taken meanwhile: the next one of "NAME-1.jpg" to
    /// "NAME-9999.jpg" that is free, taken until finished().
    /// @param path    what the copy should have been called
    /// @param number  the last one that was tried, at first 0; is raised
    std::optional<QString> anotherUniquePath(const QString &path, int &number);

    /// Is a copy still being written there? One that overwrites it has to wait.
    bool isBeingWritten(const QString &path) const;

    /// The copy is written, or never will be. Once for each destination.
    void finished(const QString &path);

private:
    bool isTaken(const QString &path) const;
    bool existsFor(const QString &path, bool waits) const;
    Choice choiceFor(const QString &path, ConflictCode &code) const;
    std::optional<QString> uniquePath(const QString &path, bool waits);
    Destination take(const QString &path, bool overwrites);

    OutputFolders m_folders;
    Alerts &m_alerts;
    Wait m_waitForOutcome;
    QHash<QString, int> m_lastNumbers; // of each path that was taken; on the thread that asks for names
    mutable std::mutex m_mutex;
    QHash<QString, int> m_beingWritten; // guarded
};

} // namespace plexa
