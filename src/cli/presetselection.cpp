// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/presetselection.h"

#include "cli/messages.h"
#include "cli/presetfiles.h"
#include "cli/saveoptions.h"
#include "cli/suggestions.h"

#include <QFile>

#include <algorithm>

namespace plexa
{
namespace
{

/// The given file, else the user's own list, or the examples if that is absent.
QString fileOrStored(const std::string &file, PresetsStore::Kind kind)
{
    return file.empty() ? PresetsStore::listOrExamplesFile(kind, PresetsStore::Places::own())
                        : QFile::decodeName(file.c_str());
}

/// The name of the file in a message.
QString described(const QString &path)
{
    return path.startsWith(u':') ? QStringLiteral("the example presets") : QStringLiteral("\"%1\"").arg(path);
}

/// Reads a file of presets.
Result<PresetsFile> describedPresets(const QString &path, PresetsStore::Kind kind,
                                     const SavingPresetLookup &savingPresetWithID = {})
{
    Result<PresetsFile> file = presetsIn(path, kind, savingPresetWithID);
    if (!file)
        return fail(QStringLiteral("%1: %2").arg(described(path), file.error().text));
    return file;
}

/// Reads a file of presets. Reports its parts that were not read.
Result<PresetsFile> reportedPresets(const QString &path, PresetsStore::Kind kind,
                                    const SavingPresetLookup &savingPresetWithID = {})
{
    const Result<PresetsFile> file = describedPresets(path, kind, savingPresetWithID);
    if (file && !file->notice.isEmpty())
        printAbout(path, file->notice);
    if (file) {
        for (const QString &fault : file->leftOut)
            printAbout(path, fault);
    }
    return file;
}

/// Do the options name a saving preset for the run?
bool isSavingPresetChosen(const SaveOptions &options)
{
    return !options.savingPresetsFile.empty() || !options.savingPreset.empty();
}

/// Does the run use one saving preset for all copies?
bool isWithoutAssigned(const SaveOptions &options)
{
    return options.ignoreAssigned || options.combine;
}

/// The saving presets that watermark presets may refer to; none if the run ignores assigned ones.
Result<SavingPresetList> assignableSavingPresets(const SaveOptions &options)
{
    const bool belongsToOthers = options.savingPresetsFile.empty() && !options.wPresetsFile.empty();
    if (belongsToOthers || isWithoutAssigned(options))
        return SavingPresetList();
    const QString path = fileOrStored(options.savingPresetsFile, PresetsStore::Kind::Saving);
    // If chosenSavingPreset() reads the same file, it reports its faults.
    const auto read = isSavingPresetChosen(options) ? describedPresets(path, PresetsStore::Kind::Saving)
                                                    : reportedPresets(path, PresetsStore::Kind::Saving);
    return read.map([](const PresetsFile &file) { return file.savingPresets; });
}

SavingPresetPtr withID(const SavingPresetList &presets, qint64 presetID)
{
    const auto found = std::find_if(presets.begin(), presets.end(), [presetID](const auto &preset) {
        return preset->presetID() == presetID;
    });
    return found == presets.end() ? nullptr : *found;
}

/// The presets of these names, in the order of the names; all presets without a name. Each occurs once.
Result<std::vector<AppliedPreset>> namedPresets(const std::vector<std::string> &names,
                                                const WPresetList &presets, const QString &path)
{
    std::vector<AppliedPreset> applied;
    const auto apply = [&applied](const std::shared_ptr<WPreset> &preset) {
        const bool isApplied = std::any_of(applied.begin(), applied.end(), [&](const AppliedPreset &other) {
            return other.preset == preset;
        });
        if (!isApplied)
            applied.push_back({preset, preset->values()});
    };
    if (names.empty())
        std::for_each(presets.begin(), presets.end(), apply);
    for (const std::string &name : names) {
        const QString wanted = QString::fromStdString(name);
        bool isFound = false;
        for (const auto &preset : presets) {
            if (preset->name() != wanted)
                continue;
            apply(preset);
            isFound = true;
        }
        if (!isFound)
            return fail(QStringLiteral("there is no watermark preset \"%1\"").arg(wanted) +
                        didYouMean(wanted, plainNamesOf(presets),
                                   QStringLiteral(" among %1 of %2").arg(namesOf(presets), described(path))));
    }
    return applied;
}

/// Reports assigned saving presets that are not there, and uses the run's one in their place.
/// @param missing  the placeholder for each of them
void dropMissing(std::vector<AppliedPreset> &applied, const SavingPresetPtr &missing)
{
    for (AppliedPreset &mark : applied) {
        if (mark.values.assignedSavingPreset != missing)
            continue;
        mark.values.assignedSavingPreset = nullptr;
        printMessage(QStringLiteral("the saving preset that is assigned to \"%1\" is not there; the one of "
                                    "the run is used. Give its file with --saving-presets, or "
                                    "--ignore-assigned")
                         .arg(mark.values.name));
    }
}

} // namespace

Result<std::vector<AppliedPreset>> appliedPresets(const SaveOptions &options)
{
    const Result<SavingPresetList> assignable = assignableSavingPresets(options);
    const QString path = fileOrStored(options.wPresetsFile, PresetsStore::Kind::Watermark);
    // One placeholder shows whether any of the saving presets is needed that cannot be read or are not there.
    const auto unknown = std::make_shared<SavingPreset>();
    const auto savingPreset = [&](qint64 presetID) -> SavingPresetPtr {
        const SavingPresetPtr found = assignable ? withID(*assignable, presetID) : nullptr;
        return found || isWithoutAssigned(options) ? found : unknown;
    };
    const Result<PresetsFile> presets = reportedPresets(path, PresetsStore::Kind::Watermark, savingPreset);
    if (!presets)
        return tl::unexpected(presets.error());
    Result<std::vector<AppliedPreset>> applied = namedPresets(options.applied, presets->wPresets, path);
    if (!applied)
        return applied;
    if (!assignable) {
        const bool isNeeded = isSavingPresetChosen(options) ||
                              std::any_of(applied->begin(), applied->end(), [&](const AppliedPreset &mark) {
                                  return mark.values.assignedSavingPreset == unknown;
                              });
        if (isNeeded)
            return tl::unexpected(assignable.error());
        printMessage(assignable.error().text);
    }
    dropMissing(*applied, unknown);
    for (const AppliedPreset &mark : *applied) {
        if (!mark.values.validPreset())
            return fail(QStringLiteral("%1: %2").arg(described(path), mark.values.pictureFault()));
    }
    if (applied->empty())
        return fail(QStringLiteral("there are no watermark presets in %1").arg(described(path)));
    return applied;
}

Result<std::optional<SavingPresetValues>> chosenSavingPreset(const SaveOptions &options)
{
    if (!isSavingPresetChosen(options))
        return std::optional<SavingPresetValues>();
    const QString path = fileOrStored(options.savingPresetsFile, PresetsStore::Kind::Saving);
    const auto file = reportedPresets(path, PresetsStore::Kind::Saving);
    if (!file)
        return tl::unexpected(file.error());
    const SavingPresetList &presets = file->savingPresets;
    const QString name = QString::fromStdString(options.savingPreset);
    for (const auto &preset : presets) {
        if (preset->name() == name || (options.savingPreset.empty() && presets.size() == 1))
            return std::optional(preset->values());
    }
    // The file may be given for the assigned saving presets only.
    if (options.savingPreset.empty() && isPresetsMode(options))
        return std::optional<SavingPresetValues>();
    if (presets.empty())
        return fail(QStringLiteral("there are no saving presets in %1").arg(described(path)));
    return fail(QStringLiteral("--saving-preset has to name one of the presets in %1").arg(described(path)) +
                didYouMean(name, plainNamesOf(presets), QStringLiteral(": ") + namesOf(presets)));
}

} // namespace plexa
