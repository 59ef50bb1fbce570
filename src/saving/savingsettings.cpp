// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/savingsettings.h"

#include "platform/alerts.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "saving/savingrun.h"

#include <QCoreApplication>

namespace plexa
{

namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::Saving)
};

void followCommonSettings(SavingRun &run, const UserDefaults &defaults)
{
    run.combineAllAppliedPresetsInImage = defaults.boolForKey(settings::combineAllAppliedPresetsInImage);
    run.copyRules.preservesCreationDate =
        defaults.boolForKey(settings::exportPreserveOriginalFileCreationDate);
    run.releasesImages = !defaults.boolForKey(settings::imageListIsInBrowserMode);
}

} // namespace

void followSettings(SavingRun &run, const UserDefaults &defaults)
{
    followCommonSettings(run, defaults);
    run.folders = {};
    if (defaults.boolForKey(settings::saveAllToOneDirectory))
        run.folders.destDirectory = defaults.stringForKey(settings::savingDirectory);
    run.folders.replicateOrigDirStructure = defaults.boolForKey(settings::replicateOrigDirStructure);
    run.folders.replicationStartDirectory = defaults.stringForKey(settings::replicationStartDirectory);
    // Settings in use depend on this key, although another one is registered.
    run.ignoreAssignedSavingPresets = defaults.boolForKey(settings::ignoreSavingPresetsInSizePresets);
}

void followSettingsForCompanion(SavingRun &run, const UserDefaults &defaults, const QString &exchangeFolder)
{
    followCommonSettings(run, defaults);
    run.folders = {};
    run.folders.destDirectory = exchangeFolder;
    run.ignoreAssignedSavingPresets = true;
    run.defaultSavingPreset = {};
    run.defaultSavingPreset.imageFormat = QStringLiteral("TIFF");
    run.defaultSavingPreset.filenameTokens = {QStringLiteral("img"), QStringLiteral("sequence ####")};
    run.collectsSavedImagesInfo = true;
}

void completeFilenameTokens(SavingPresetValues &preset, Alerts &alerts)
{
    if (!preset.filenameTokens.isEmpty())
        return;
    preset.filenameTokens = {QStringLiteral("filename")};
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = Texts::tr("Missing the filename specification!");
    alert.text = Texts::tr("Will use the original filename.");
    alerts.run(alert);
}

} // namespace plexa
