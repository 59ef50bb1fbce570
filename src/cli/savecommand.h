// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

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
    std::optional<std::string> text;
    std::string image;
    std::vector<std::string> fields;       ///< "FIELD=VALUE" of the quick preset
    std::vector<std::string> savingFields; ///< "FIELD=VALUE" of the run's saving preset
    std::string wPresetsFile;              ///< watermark presets; empty: the user's own list
    std::vector<std::string> applied;      ///< names of watermark presets, in the order of drawing
    std::string savingPresetsFile;         ///< empty: the user's own list
    std::string savingPreset;              ///< the name of one in it
    std::string output;                    ///< empty: beside each original
    std::string replicateFrom;
    std::string conflict = "unique";
    std::vector<std::string> paths;
    int jobs = 0; ///< 0: as many as there are cores
    bool combine = false;
    bool ignoreAssigned = false;
    bool json = false;
    bool quiet = false;
    bool dryRun = false;
    bool noCreationDate = false;
    bool requireWatermark = false;
    bool portableNames = false;
};

/// Declares the sub-command; `options` outlives the parsing.
CLI::App *addSaveCommand(CLI::App &program, SaveOptions &options);

/// Watermarks the photos. @return the exit status
int runSave(const SaveOptions &options);

} // namespace plexa
