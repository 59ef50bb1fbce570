// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/savecommand.h"

#include "cli/fieldarguments.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/metadataarguments.h"
#include "cli/pathlist.h"
#include "cli/photochoice.h"
#include "cli/photopaths.h"
#include "cli/runpresets.h"
#include "cli/saveoptions.h"
#include "cli/savereport.h"
#include "images/imageobject.h"
#include "platform/alerts.h"
#include "platform/bytebudget.h"
#include "platform/fontcatalog.h"
#include "platform/localeformat.h"
#include "saving/namingtokens.h"
#include "saving/saving.h"
#include "saving/targetfolder.h"

#include <QFileInfo>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace plexa
{
namespace
{

/// Options answer all questions in advance.
class NoQuestions final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override { return {std::max(alert.escapeButton, 0), false}; }
};

int refuse(const QString &text)
{
    printMessage(text);
    return kWrongUsage;
}

Result<OutputFolders> outputFolders(const SaveOptions &options)
{
    OutputFolders folders;
    folders.destDirectory = QString::fromStdString(options.output);
    folders.hasPortableNames = options.portableNames;
    if (QFileInfo(folders.destDirectory).exists() && !QFileInfo(folders.destDirectory).isDir())
        return fail(QStringLiteral("\"%1\" is not a folder").arg(folders.destDirectory));
    if (!folders.destDirectory.isEmpty()) {
        if (const Result<void> possible = checkFolderCanBeMade(folders.destDirectory); !possible)
            return tl::unexpected(possible.error());
    }
    if (!options.replicateFrom.empty()) {
        folders.replicationStartDirectory = QString::fromStdString(options.replicateFrom);
        folders.replicateOrigDirStructure = true;
        if (!QFileInfo(folders.replicationStartDirectory).isDir())
            return fail(QStringLiteral("\"%1\" is not a folder").arg(folders.replicationStartDirectory));
    }
    return folders;
}

/// The given paths and those of the list.
Result<std::vector<std::string>> pathsOf(const SaveOptions &options)
{
    std::vector<std::string> paths = options.paths;
    if (options.filesFrom.empty())
        return paths;
    return pathsInList(options.filesFrom, options.areFilesNulSeparated)
        .map([&](const std::vector<std::string> &listed) {
            paths.insert(paths.end(), listed.begin(), listed.end());
            return paths;
        });
}

OutputNaming::ConflictCode conflictCode(const std::string &conflict)
{
    if (conflict == "overwrite")
        return OutputNaming::always(OutputNaming::kOverwrite);
    return OutputNaming::always(conflict == "skip" ? OutputNaming::kSkip : OutputNaming::kUniqueName);
}

/// Refuses assigned saving presets with which no copy can be written, and options that they leave without
/// effect.
Result<void> checkAssigned(const std::vector<PresetToSave> &presets, const SaveOptions &options)
{
    if (options.ignoreAssigned || options.combine)
        return {};
    bool isAnyCopyLeft = presets.empty();
    for (const PresetToSave &preset : presets) {
        isAnyCopyLeft = isAnyCopyLeft || !preset.assignedSavingPreset;
        if (!preset.assignedSavingPreset)
            continue;
        if (Result<void> checked = checkSavingPreset(*preset.assignedSavingPreset); !checked)
            return checked;
    }
    if (!isAnyCopyLeft && setsSavingPreset(options))
        return fail(QStringLiteral(
            "--saving-preset, --save-set, --format, --quality and --name have no effect, because "
            "each watermark has a saving preset of its own; give --ignore-assigned, too"));
    return {};
}

/// Refuses a first number that no name of a copy contains.
Result<void> checkStart(const SavingRun &run, const SaveOptions &options)
{
    const auto hasNumber = [](const SavingPresetValues &preset) {
        return std::any_of(preset.filenameTokens.begin(), preset.filenameTokens.end(), isSequenceToken);
    };
    const bool isUsed =
        hasNumber(run.defaultSavingPreset) ||
        std::any_of(run.effectivePresets.begin(), run.effectivePresets.end(),
                    [&](const PresetToSave &preset) {
                        return preset.assignedSavingPreset && hasNumber(*preset.assignedSavingPreset);
                    });
    if (options.start && !isUsed)
        return fail(
            QStringLiteral("--start has no effect, because the names of the copies contain no number; "
                           "give --name with {sequence #}"));
    return {};
}

/// Refuses a quality if all copies are of formats without one.
Result<void> checkQuality(const SavingRun &run, const std::vector<PhotoPath> &photos,
                          const SaveOptions &options)
{
    const auto hasQuality = [&](const PhotoPath &photo) {
        const QString type = run.defaultSavingPreset.imageFormatUTI(photo.path);
        return type == QLatin1String("image/jpeg") || type == QLatin1String("image/heic");
    };
    if (setsQuality(options) && !photos.empty() && std::none_of(photos.begin(), photos.end(), hasQuality))
        return fail(
            QStringLiteral("--quality has no effect, because no copy is a JPEG or HEIC; give --format"));
    return {};
}

/// Reports all errors of the command line, before any file is touched.
Result<SavingRun> planRun(const SaveOptions &options, const FontCatalog &fonts)
{
    Result<std::vector<AppliedPreset>> applied = watermarksOf(options, fonts);
    if (!applied)
        return tl::unexpected(applied.error());
    Result<SavingPresetValues> savingPreset = savingPresetOf(options);
    if (!savingPreset)
        return tl::unexpected(savingPreset.error());
    Result<OutputFolders> folders = outputFolders(options);
    if (!folders)
        return tl::unexpected(folders.error());

    SavingRun run;
    run.effectivePresets = presetsToSave(*applied);
    if (const Result<void> checked = checkAssigned(run.effectivePresets, options); !checked)
        return tl::unexpected(checked.error());
    run.firstSequenceNumber = options.start.value_or(1);
    run.isInSingleMode = !isPresetsMode(options);
    run.defaultSavingPreset = std::move(*savingPreset);
    run.folders = std::move(*folders);
    run.combineAllAppliedPresetsInImage = options.combine;
    run.ignoreAssignedSavingPresets = options.ignoreAssigned;
    if (const Result<void> checked = checkStart(run, options); !checked)
        return tl::unexpected(checked.error());
    run.copyRules = {!options.noCreationDate, options.requireWatermark, options.render};
    run.isDryRun = options.dryRun;
    run.conflictCode = conflictCode(options.conflict);
    run.conflictScope = OutputNaming::Scope::FilesFromBefore;
    run.isStopped = isInterrupted;
    return run;
}

void reportLeftOut(const LeftOutPhotos &photos, const QString &what, const QString &hint)
{
    if (photos.count > 0)
        printMessage(QStringLiteral("%1: %2, the first is \"%3\"; %4")
                         .arg(what, QString::number(photos.count), photos.first, hint));
}

/// @return the exit status
int saveAll(SavingRun &run, const PhotoSearch &search, const MetadataEdit &edit, SaveReport &report,
            const FontCatalog &fonts)
{
    const std::vector<PhotoPath> &photos = search.photos;
    const LocaleFormat locale;
    PixelCache cache(0); // each photo is used once
    const qint64 memory = physicalMemoryBytes() / 2;
    ByteBudget budget(memory);
    const PhotoServices services{fonts, locale, cache, budget, ReadLimits{.maxBytes = memory}};

    run.photoCount = photos.size();
    if (run.conflictCode == OutputNaming::always(OutputNaming::kOverwrite)) {
        for (const PhotoPath &photo : photos)
            run.keptPhotos.append(photo.path);
    }
    run.photoAt = [&](std::size_t index) -> SavingPhoto {
        const PhotoPath &photo = photos[index];
        if (!photo.failure.isEmpty())
            return {photo.path, nullptr, photo.failure};
        const auto image = std::make_shared<ImageObject>(photo.path, services);
        image->setMetadataEdit(edit);
        return {photo.path, image, {}};
    };
    NoQuestions alerts;
    Saving saving(alerts);
    catchInterruptions();
    saving.saveImages(run, report);
    report.end();
    saving.finishedSavingImages(); // the result is printed already
    return report.isComplete() && search.notRead.empty() ? kAllDone : kSomethingFailed;
}

} // namespace

int runSave(const SaveOptions &options)
{
    if (const Result<void> checked = checkSaveOptions(options); !checked)
        return refuse(checked.error().text);
    const Result<std::vector<std::string>> paths = pathsOf(options);
    if (!paths)
        return refuse(paths.error().text);
    const FontCatalog fonts;
    Result<SavingRun> run = planRun(options, fonts);
    if (!run)
        return refuse(run.error().text);
    const Result<MetadataEdit> edit = metadataEditOf(options);
    if (!edit)
        return refuse(edit.error().text);
    SaveReport report({options.json, options.quiet, run->effectivePresets.size() > 1});
    PhotoSearch search = photosAt(*paths, !options.noRecurse);
    report.pathsNotRead(search.notRead);
    run->jobs = threadsToUse(options.jobs);
    if (run->jobs < 1)
        return kSomethingFailed;
    const LeftOutPhotos links = leaveOutRepetitions(search);
    reportLeftOut(links, QStringLiteral("further names of photos, by links, are left out"),
                  QStringLiteral("each photo is saved once"));
    const LeftOutPhotos copies = leaveOutCopies(search, run->jobs);
    reportLeftOut(copies, QStringLiteral("copies of earlier runs in folders are left out"),
                  QStringLiteral("to watermark a copy again, name its file"));
    if (search.photos.empty())
        printMessage(QStringLiteral("no photos found"));
    if (const Result<void> checked = checkQuality(*run, search.photos, options); !checked)
        return refuse(checked.error().text);
    report.photosLeftOut(copies.count, links.count);
    return saveAll(*run, search, *edit, report, fonts);
}

} // namespace plexa
