// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "presets/savingpresetvalues.h"
#include "saving/filesunderway.h"

#include <QHash>
#include <QString>

#include <functional>
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
    bool makesFolders = true;               ///< creates missing replicated folders
    bool hasPortableNames = false; ///< copies and replicated folders get names for file systems of all kinds
};

/// Chooses the names of the copies of one run. Copies are written at the same time: the path of one is taken
/// until finished() is called for it. One thread asks for names; it waits for answers to questions and, where
/// it can, for copies that have the name. Any thread may call anotherUniquePath() and finished().
class OutputNaming final
{
public:
    /// What to do with a copy whose name is taken: the last choice, and in the topmost bit whether it applies
    /// to the rest of the run. Belongs to the caller; a run begins with 0.
    using ConflictCode = qint32;
    enum Choice : ConflictCode { kNoChoice, kUniqueName, kOverwrite, kSkip };
    static constexpr quint32 kRemembered = 0x8000'0000U;

    /// The choice for all conflicts of a run, without a question.
    static ConflictCode always(Choice choice);

    struct Destination {
        QString path;
        bool overwrites = false;    ///< replaces a file; else a file that appears there must stay
        bool avoidsOwnFile = false; ///< a unique name, because a file of the run has the wanted one
    };

    /// The files that the choice for conflicts is about.
    enum class Scope {
        AllFiles,
        FilesFromBefore, ///< photos and copies of the run stay, the copy gets a unique name
    };

    /// Returns when no copy is being written to the path any more.
    using Wait = std::function<void(const QString &path)>;

    /// @param alerts  is asked about names that are taken; outlives the object
    /// @param waitForOutcome  called before a name is compared with that of a copy under way, which may still
    ///                fail. Where it is empty, or unique names are the choice for all conflicts, the file of
    ///                such a copy counts as existing, so that copies of one name do not wait for each other
    OutputNaming(OutputFolders folders, Alerts &alerts, Wait waitForOutcome = {},
                 Scope scope = Scope::AllFiles);

    /// A copy's file name without its folder: the expanded tokens of the preset, completed by
    /// filenameWithExtensionForFilename().
    /// @param imagePath  the photo, as the user knows it
    static QString filenameForImage(const PhotoFacts &image, const QString &imagePath,
                                    const QString &wPresetName, const SavingPresetValues &savingPreset,
                                    qint64 sequenceNumber);

    /// The name with the extension of the format that is written (none where the format cannot be written),
    /// in the preset's letter cases. A valid name of a file in one folder, whatever `filename` contains, of
    /// at most kMaxFileNameBytes; where nothing is left of `filename`, that of the photo.
    static QString filenameWithExtensionForFilename(const QString &filename, const QString &originalPath,
                                                    const SavingPresetValues &savingPreset);

    /// A copy's path in the folder for the copy of this photo. With portable names, it is spelled as that of
    /// an earlier copy which differs from it in the case of letters only.
    QString pathForCopy(const QString &imagePath, const QString &filename);

    /// The folder for the copy of a photo. Creates replicated folders where `makesFolders` is set; writing
    /// the copy fails where that fails.
    QString targetDirectoryForFile(const QString &path) const;

    /// Decides where a copy is written when a file may exist there, and reserves that path until finished().
    /// @param path      folder and name
    /// @param photoKey  of the photo that the copy is made of, which the copy may replace
    /// @return none when the photo is skipped, by choice or because "NAME-1.jpg" to "NAME-9999.jpg" are taken
    std::optional<Destination> finalDestinationForPath(const QString &path, ConflictCode &code,
                                                       const QString &photoKey = {});

    /// The key of the file that a copy at the path replaces: a symbolic link is followed to the copy's own
    /// photo only, any other one is replaced itself.
    static QString targetKey(const QString &path, const QString &photoKey);

    /// For a copy whose path another program has taken meanwhile: the next one of "NAME-1.jpg" to
    /// "NAME-9999.jpg" that is free, reserved until finished().
    /// @param path    the path that the copy should have had
    /// @param number  the last one that was tried, at first 0; is raised
    std::optional<QString> anotherUniquePath(const QString &path, int &number);

    /// Whether a copy that is not finished has this path.
    bool isBeingWritten(const QString &path) const;

    /// The copy is written, or never will be. Once for each destination.
    void finished(const QString &path);

    /// All files that the copies of the run use; names are in there already.
    FilesUnderWay &files() { return m_files; }

private:
    bool isTaken(const QString &path) const;
    bool isKept(const QString &path, const QString &photoKey) const;
    bool existsFor(const QString &path, bool waits) const;
    Choice choiceFor(const QString &path, ConflictCode &code) const;
    std::optional<QString> uniquePath(const QString &path, bool waits);
    Destination take(const Destination &destination);

    OutputFolders m_folders;
    Alerts &m_alerts;
    Wait m_waitForOutcome;
    const Scope m_scope;
    QHash<QString, QString> m_spellings; // of each path with portable names, by its case folding
    QHash<QString, int> m_lastNumbers;   // of each path that was taken; on the thread that asks for names
    FilesUnderWay m_files;
};

} // namespace plexa
