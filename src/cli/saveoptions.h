// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
}

namespace plexa
{

/// The command line of "plexa-cli save".
struct SaveOptions {
    std::optional<std::string> text; ///< with tokens in braces
    std::string image;
    std::vector<std::string> fields;       ///< "FIELD=VALUE" of the watermarks
    std::vector<std::string> savingFields; ///< "FIELD=VALUE" of the run's saving preset
    std::vector<std::string> metadata;     ///< "FIELD=VALUE" of the photos' metadata
    std::vector<std::string> cleared;      ///< groups of the photos' metadata
    std::string wPresetsFile;              ///< watermark presets; empty: the user's own list
    std::vector<std::string> applied;      ///< names of watermark presets, in the order of drawing
    std::string savingPresetsFile;         ///< empty: the user's own list
    std::string savingPreset;              ///< the name of one in it
    std::string name;                      ///< of the copies, with tokens in braces; empty: by the preset
    std::string format;                    ///< empty: by the preset
    int quality = 0;                       ///< 0: by the preset
    std::optional<int> start;              ///< the first sequence number
    std::string output;                    ///< empty: beside each original
    std::string replicateFrom;
    std::string conflict = "unique";
    std::vector<std::string> paths;
    std::string filesFrom;             ///< a list of further paths; empty: none
    bool areFilesNulSeparated = false; ///< each path in it ends with a null byte, else with its line
    bool noRecurse = false;
    int jobs = 0; ///< 0: as many as there are cores
    bool combine = false;
    bool ignoreAssigned = false;
    bool requireWatermark = false;
    bool render = false;
    bool portableNames = false;
    bool json = false;
    bool quiet = false;
    bool dryRun = false;
    bool noCreationDate = false;
};

/// The values of --conflict.
const std::vector<std::string> &conflictChoices();

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addSaveCommand(CLI::App &program, SaveOptions &options);

/// Refuses options that contradict each other, have no effect, or leave out what a run needs.
[[nodiscard]] Result<void> checkSaveOptions(const SaveOptions &options);

/// Do the options choose or change the saving preset of the run?
bool setsSavingPreset(const SaveOptions &options);

/// Do the options set the quality of JPEG and HEIC?
bool setsQuality(const SaveOptions &options);

/// Do the options ask for stored watermark presets?
bool isPresetsMode(const SaveOptions &options);

} // namespace plexa
