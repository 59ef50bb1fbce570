// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/savecommand.h"

#include "cli/fieldarguments.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/photochoice.h"
#include "cli/photopaths.h"
#include "cli/presetselection.h"
#include "cli/savereport.h"
#include "images/imageobject.h"
#include "platform/alerts.h"
#include "platform/applicationname.h"
#include "platform/bytebudget.h"
#include "platform/fontcatalog.h"
#include "platform/localeformat.h"
#include "presets/savingpreset.h"
#include "saving/saving.h"
#include "saving/savingsettings.h"
#include "watermark/texttokens.h"
#include "watermark/watermarkpicture.h"

#include <QFileInfo>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <thread>

namespace plexa
{
namespace
{

constexpr int kQuality = 95;
const QString kQuickPresetName = QStringLiteral("Quick Preset");

/// Options answer all questions in advance.
class NoQuestions final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override { return {std::max(alert.escapeButton, 0), false}; }
};

/// Prints warnings.
class Notices final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override
    {
        printLine(stderr, onOneLine(QStringLiteral("plexa-cli: %1 %2").arg(alert.title, alert.text)));
        return {};
    }
};

int refuse(const QString &text)
{
    printLine(stderr, onOneLine(QStringLiteral("plexa-cli: ") + text));
    return kWrongUsage;
}

/// A text as literal pieces. A token's name is split, so that it does not become the token.
QStringList literalText(const QString &text)
{
    if (!tokenNames().contains(text))
        return {text};
    return {text.left(1), text.mid(1)};
}

Result<WPresetValues> quickPreset(const SaveOptions &options, const FontCatalog &fonts)
{
    WPresetValues values = WPresetValues::forNewPreset(fonts);
    values.name = kQuickPresetName;
    if (options.text) {
        values.type = QStringLiteral("Text");
        values.textTokens = literalText(QString::fromStdString(*options.text));
    }
    if (!options.image.empty()) {
        Result<WatermarkPicture> picture = WatermarkPicture::load(QString::fromStdString(options.image));
        if (!picture)
            return tl::unexpected(picture.error());
        values.type = QStringLiteral("Image");
        values.image = std::move(*picture);
    }
    const QString typeBefore = values.type;
    for (const std::string &field : options.fields) {
        if (Result<void> applied = applyField(values, field, fonts); !applied)
            return tl::unexpected(applied.error());
    }
    const bool isImageWanted = !options.text && values.type == typeBefore && !values.image.isNull();
    if (isImageWanted)
        values.type = QStringLiteral("Image");
    if (values.type == QLatin1String("Image") && values.image.isNull())
        return fail(QStringLiteral("an image watermark needs a picture: give --image"));
    return values;
}

Result<std::vector<AppliedPreset>> effectivePresets(const SaveOptions &options, const FontCatalog &fonts)
{
    if (isPresetsMode(options))
        return appliedPresets(options);
    return quickPreset(options, fonts).map([](WPresetValues &&values) {
        return std::vector<AppliedPreset>{{nullptr, std::move(values)}};
    });
}

Result<SavingPresetValues> runSavingPreset(const SaveOptions &options)
{
    SavingPresetValues preset;
    preset.imageFormat = QStringLiteral("Original");
    preset.jpegQuality = kQuality;
    preset.filenameTokens = {QStringLiteral("filename")};
    // The copies of a photo differ in this part of their names.
    if (isPresetsMode(options) && !options.combine)
        preset.filenameTokens += {QStringLiteral("-"), QStringLiteral("watermark preset name")};
    Result<std::optional<SavingPresetValues>> chosen = chosenSavingPreset(options);
    if (!chosen)
        return tl::unexpected(chosen.error());
    if (*chosen)
        preset = std::move(**chosen);
    for (const std::string &field : options.savingFields) {
        if (Result<void> applied = applySavingField(preset, field); !applied)
            return tl::unexpected(applied.error());
    }
    Notices notices;
    completeFilenameTokens(preset, notices);
    return checkSavingPreset(preset).map([&] { return preset; });
}

Result<OutputFolders> outputFolders(const SaveOptions &options)
{
    OutputFolders folders;
    folders.destDirectory = QString::fromStdString(options.output);
    folders.hasPortableNames = options.portableNames;
    if (QFileInfo(folders.destDirectory).exists() && !QFileInfo(folders.destDirectory).isDir())
        return fail(QStringLiteral("\"%1\" is not a folder").arg(folders.destDirectory));
    if (!options.replicateFrom.empty()) {
        folders.replicationStartDirectory = QString::fromStdString(options.replicateFrom);
        folders.replicateOrigDirStructure = true;
        if (!QFileInfo(folders.replicationStartDirectory).isDir())
            return fail(QStringLiteral("\"%1\" is not a folder").arg(folders.replicationStartDirectory));
    }
    return folders;
}

OutputNaming::ConflictCode conflictCode(const std::string &conflict)
{
    if (conflict == "overwrite")
        return OutputNaming::always(OutputNaming::kOverwrite);
    return OutputNaming::always(conflict == "skip" ? OutputNaming::kSkip : OutputNaming::kUniqueName);
}

/// Reports all errors of the command line, before any file is touched.
Result<SavingRun> planRun(const SaveOptions &options, const FontCatalog &fonts)
{
    Result<std::vector<AppliedPreset>> applied = effectivePresets(options, fonts);
    if (!applied)
        return tl::unexpected(applied.error());
    Result<SavingPresetValues> savingPreset = runSavingPreset(options);
    if (!savingPreset)
        return tl::unexpected(savingPreset.error());
    Result<OutputFolders> folders = outputFolders(options);
    if (!folders)
        return tl::unexpected(folders.error());

    SavingRun run;
    run.effectivePresets = presetsToSave(*applied);
    for (const PresetToSave &preset : run.effectivePresets) {
        if (!preset.assignedSavingPreset || options.ignoreAssigned || options.combine)
            continue;
        if (Result<void> checked = checkSavingPreset(*preset.assignedSavingPreset); !checked)
            return tl::unexpected(checked.error());
    }
    run.isInSingleMode = !isPresetsMode(options);
    run.defaultSavingPreset = std::move(*savingPreset);
    run.folders = std::move(*folders);
    run.combineAllAppliedPresetsInImage = options.combine;
    run.ignoreAssignedSavingPresets = options.ignoreAssigned;
    run.copyRules = {!options.noCreationDate, options.requireWatermark};
    run.isDryRun = options.dryRun;
    run.conflictCode = conflictCode(options.conflict);
    run.conflictScope = OutputNaming::Scope::FilesFromBefore;
    run.jobs =
        options.jobs > 0 ? options.jobs : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    run.isStopped = isInterrupted;
    return run;
}

/// @return the exit status
int saveAll(SavingRun &run, const PhotoSearch &search, qint64 leftOut, const SaveOptions &options,
            const FontCatalog &fonts)
{
    const std::vector<PhotoPath> &photos = search.photos;
    run.jobs = threadsToUse(run.jobs);
    if (run.jobs < 1)
        return kSomethingFailed;
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
        return {photo.path, std::make_shared<ImageObject>(photo.path, services), {}};
    };
    SaveReport report({options.json, options.quiet, run.effectivePresets.size() > 1},
                      {qint64(search.notRead.size()), leftOut});
    NoQuestions alerts;
    Saving saving(alerts);
    catchInterruptions();
    saving.saveImages(run, report);
    report.end();
    saving.finishedSavingImages(); // the result is printed already
    return report.isComplete() && search.notRead.empty() ? kAllDone : kSomethingFailed;
}

/// Declares an option that names a file or a folder.
CLI::Option *addPath(CLI::App &command, const char *name, std::string &path, const char *type,
                     const char *description)
{
    return command.add_option(name, path, description)->check(somePath())->type_name(type);
}

/// Declares an option that may be given several times, with one value each.
CLI::Option *addRepeatable(CLI::App &command, const char *name, std::vector<std::string> &values,
                           const char *type, const char *description)
{
    return command.add_option(name, values, description)
        ->type_name(type)
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
}

/// Declares the options for stored presets.
/// @param quickOptions  the options that define a watermark on the command line
void addPresetOptions(CLI::App &command, SaveOptions &options, const std::vector<CLI::Option *> &quickOptions)
{
    auto *wPresets = addPath(command, "--wpresets", options.wPresetsFile, "FILE",
                             "The watermarks: the presets in FILE; default for --apply: your own presets");
    auto *apply = addRepeatable(command, "--apply", options.applied, "NAME",
                                "Apply the watermark preset of this name only; may be given several times, "
                                "in the order of drawing")
                      ->check(someText());
    for (CLI::Option *quickOption : quickOptions) {
        wPresets->excludes(quickOption);
        apply->excludes(quickOption);
    }
    addPath(command, "--saving-presets", options.savingPresetsFile, "FILE",
            "A file of saving presets, which define the names and the format of copies; default: your own "
            "presets");
    command.add_option("--saving-preset", options.savingPreset, "The name of the saving preset for this run")
        ->check(someText())
        ->type_name("NAME");
}

/// Declares the options for the places of the copies and for the run.
void addCopyOptions(CLI::App &command, SaveOptions &options)
{
    auto *output = addPath(command, "--output", options.output, "DIR",
                           "The folder for the copies, created if missing; default: each copy beside its "
                           "original");
    addPath(command, "--replicate-from", options.replicateFrom, "DIR",
            "Recreate the folders below DIR in the folder for the copies")
        ->needs(output);
    command.add_flag("--combine", options.combine, "All watermarks on one copy, not a copy for each");
    command.add_flag("--ignore-assigned", options.ignoreAssigned,
                     "Ignore the saving presets that are assigned to watermarks");
    command
        .add_option(
            "--conflict", options.conflict,
            "The action if a file with the name of the copy exists: unique (default), overwrite, skip")
        ->check(CLI::IsMember({"unique", "overwrite", "skip"}))
        ->type_name("CHOICE");
    command.add_flag("--portable-names", options.portableNames,
                     "Replace what exFAT and SMB do not accept in names: \\ * ? \" < > | and reserved names");
    command.add_flag("--no-creation-date", options.noCreationDate, "Do not copy the date of the originals");
    command.add_option("--jobs", options.jobs, "Number of photos at a time; default: one for each core")
        ->type_name("N")
        ->check(CLI::Range(1, 256));
    command.add_flag(
        "--dry-run", options.dryRun,
        "Print the planned copies and write nothing; reads only the headers of the photos, so a photo that "
        "is damaged after its header is not reported");
    command.add_flag("--json", options.json,
                     "Print a JSON object for each copy, one a line; with --quiet for failed copies only");
    command.add_flag("--quiet", options.quiet, "Print failures and copies without a visible watermark only");
    command.add_flag("--require-watermark", options.requireWatermark,
                     "A photo on which no watermark is visible is a failure and gets no copy");
}

} // namespace

CLI::App *addSaveCommand(CLI::App &program, SaveOptions &options)
{
    CLI::App *command = program.add_subcommand("save", "Watermark photos and folders of photos");
    auto *text = command->add_option("--text", options.text, "The watermark: a text")->type_name("TEXT");
    auto *image =
        addPath(*command, "--image", options.image, "FILE", "The watermark: a picture, SVG included")
            ->excludes(text);
    auto *set = addRepeatable(*command, "--set", options.fields, "FIELD=VALUE",
                              "Set a field of the watermark, as in --set anchorPoint=8");
    addPresetOptions(*command, options, {text, image, set});
    addRepeatable(*command, "--save-set", options.savingFields, "FIELD=VALUE",
                  "Set a field of the saving preset, as in --save-set jpegQuality=90");
    addCopyOptions(*command, options);
    addPaths(*command, "PATH", options.paths, "Photos, and folders of them");
    return command;
}

int runSave(const SaveOptions &options)
{
    if (options.text && options.text->empty())
        return refuse(QStringLiteral("--text is empty, so there is no watermark"));
    if (!options.text && options.image.empty() && options.fields.empty() && !isPresetsMode(options))
        return refuse(
            QStringLiteral("there is no watermark: give --text, --image, --set, --wpresets or --apply"));
    if (options.paths.empty())
        return refuse(QStringLiteral("there is no photo: name files or folders"));
    const FontCatalog fonts;
    Result<SavingRun> run = planRun(options, fonts);
    if (!run)
        return refuse(run.error().text);
    PhotoSearch search = photosAt(options.paths, options.output);
    for (const PhotoPath &path : search.notRead)
        printAbout(path.path, path.failure);
    leaveOutRepetitions(search);
    const LeftOutCopies leftOut = leaveOutCopies(search);
    if (leftOut.count > 0 && !options.quiet)
        printLine(stderr,
                  onOneLine(QStringLiteral("plexa-cli: copies of earlier runs in folders are left out: "
                                           "%1, the first is \"%2\"; to watermark a copy again, name "
                                           "its file")
                                .arg(leftOut.count)
                                .arg(leftOut.first)));
    if (search.photos.empty())
        printLine(stderr, QStringLiteral("plexa-cli: no photos found"));
    return saveAll(*run, search, leftOut.count, options, fonts);
}

} // namespace plexa
