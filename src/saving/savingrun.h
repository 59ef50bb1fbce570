// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "saving/outputnaming.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

/// A photo of a run.
struct SavingPhoto {
    QString path;
    std::shared_ptr<ImageObject> image; ///< null only where there is a failure
    QString failure;                    ///< why it cannot be had, where that is known already; else empty
};

/// A watermark preset of a run, as it was when the run began.
struct PresetToSave {
    AppliedPreset applied;
    std::optional<SavingPresetValues> assignedSavingPreset;
};

/// Looks up the saving presets that are assigned to the watermark presets. On the thread of the presets.
std::vector<PresetToSave> presetsToSave(const std::vector<AppliedPreset> &presets);

/// Everything that a run is made of.
struct SavingRun {
    std::size_t photoCount = 0;
    /// Returns a photo shortly before it is needed; in order, each once, on the thread of the run. Released
    /// once its copies are written.
    std::function<SavingPhoto(std::size_t index)> photoAt;

    std::vector<PresetToSave> effectivePresets; ///< none: nothing is saved
    SavingPresetValues defaultSavingPreset;
    OutputFolders folders;
    qint64 firstSequenceNumber = 1;

    bool isInSingleMode = false;                  ///< nothing is combined then
    bool combineAllAppliedPresetsInImage = false; ///< a copy for each photo, else for each photo and preset
    bool ignoreAssignedSavingPresets = false;     ///< defaultSavingPreset is for all copies
    CopyRules copyRules;
    bool releasesImages = false;                 ///< a photo forgets its pixels when its copies are made
    bool collectsSavedImagesInfo = false;        ///< for the companion application
    bool isDryRun = false;                       ///< everything is decided, nothing is written
    OutputNaming::ConflictCode conflictCode = 0; ///< OutputNaming::always(): no questions
    OutputNaming::Scope conflictScope = OutputNaming::Scope::AllFiles;
    QStringList keptPhotos; ///< with Scope::FilesFromBefore: photos that only their own copies may replace
    int jobs = 1;           ///< how many copies are made at once

    /// Asked before a photo is begun; true: no further one is. May be empty. On the thread of the run.
    std::function<bool()> isStopped;
};

/// One copy of a run, written or not.
struct SavingOutput {
    enum class Status { Planned, Written, Skipped, Failed };
    /// The choice for a copy whose name was taken.
    enum class Conflict {
        None,
        UniqueName,
        UniqueNameInRun, ///< another photo or copy of the run has the name
        Overwrite,
        Skip,
        NoNameIsFree
    };

    QString sourcePath;
    QString path;       ///< where the copy is, or would be; empty where it has no place
    QString wantedPath; ///< the same without a conflict
    qint64 sequenceNumber = 0;
    QString wPresetName; ///< combined: the first one's
    bool isCombined = false;
    Status status = Status::Planned;
    Conflict conflict = Conflict::None;
    QString error;                ///< why it failed
    bool isKnownUnmarked = false; ///< dry run: no watermark would be visible
    CopyReport report;            ///< of a written copy
    QStringList emptyTokens; ///< dry run: tokens in the name and the watermarks that the photo leaves empty
};

/// Is notified of the progress of a run, on the thread of the run.
class SavingObserver
{
public:
    virtual ~SavingObserver() = default;

    /// @param maximum  how many copies there will be at most
    virtual void begun(qint64 maximum, const QString &message);

    /// A photo that is loaded is begun. @param picture  180 pixels on its longer side
    virtual void pictureBegun(const QImage &picture);

    /// A copy is begun. @param value  its number
    virtual void copyBegun(qint64 value, const QString &message);

    /// A copy is made, or not. In the order of their numbers.
    virtual void copyFinished(const SavingOutput &output);
};

} // namespace plexa
