// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/saveoptions.h"

#include "cli/fieldarguments.h"
#include "cli/photopaths.h"
#include "cli/usageerrors.h"
#include "presets/savingpresetvalues.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>

namespace plexa
{
namespace
{

const char *const kFooter = R"(TEXT contains tokens in braces and {{ for a brace; "plexa-cli tokens" lists the
tokens. "plexa-cli fields" lists the fields; VALUE is JSON where it is JSON.

Examples:
  plexa-cli save --text '© {creator}' -o marked ~/Pictures/wedding
  plexa-cli save --image logo.svg --set width=20 --set anchorPoint=8 \
      --set opacity=50 -o marked *.jpg
  plexa-cli save --apply 'Caption bar' --set fontSize=4 --format PNG \
      --name '{sequence ###} {filename}' -o web ~/Pictures/wedding
  find . -name '*.jpg' -print0 | plexa-cli save --text PROOF -o marked \
      --files-from - -0

Exit status: 0 all done, 1 something failed, 2 wrong usage, 130 interrupted.)";

/// Declares the options of a command, in the groups of its help.
class OptionGroups
{
public:
    explicit OptionGroups(CLI::App &command)
        : m_command(command)
    {
    }

    void begin(const char *group) { m_group = group; }

    template<class Value>
    CLI::Option *add(const char *name, Value &value, const char *type, const char *description)
    {
        return m_command.add_option(name, value, description)->type_name(type)->group(m_group);
    }

    /// An option that names a file or a folder.
    CLI::Option *addPath(const char *name, std::string &path, const char *type, const char *description)
    {
        return add(name, path, type, description)->check(somePath());
    }

    /// An option that may be given several times, with one value each.
    CLI::Option *addRepeatable(const char *name, std::vector<std::string> &values, const char *type,
                               const char *description)
    {
        return add(name, values, type, description)->expected(1)->take_all()->allow_extra_args(false);
    }

    CLI::Option *addFlag(const char *name, bool &flag, const char *description)
    {
        return m_command.add_flag(name, flag, description)->group(m_group);
    }

private:
    CLI::App &m_command;
    const char *m_group = "Options";
};

void addWatermarkOptions(OptionGroups &groups, SaveOptions &options)
{
    groups.begin("Watermark");
    auto *text = groups.add("--text", options.text, "TEXT", "A text with tokens, as in '© {creator}'");
    auto *image = groups.addPath("--image", options.image, "FILE", "A picture; SVG, too")->excludes(text);
    auto *wPresets = groups.addPath("--wpresets", options.wPresetsFile, "FILE",
                                    "The watermark presets in FILE (default for --apply: your own "
                                    "presets, or the examples)");
    auto *apply = groups
                      .addRepeatable("--apply", options.applied, "NAME",
                                     "The watermark preset of this name only; may be given several times, "
                                     "in the order of drawing")
                      ->check(someText());
    for (CLI::Option *quick : {text, image}) {
        wPresets->excludes(quick);
        apply->excludes(quick);
    }
    groups.addRepeatable("--set", options.fields, "FIELD=VALUE",
                         "Set a field of the watermark, as in --set anchorPoint=8; with --apply or "
                         "--wpresets for this run, in all of them");
    groups.addFlag("--combine", options.combine,
                   "Draw all watermarks on one copy (default: a copy for each)");
    groups.addFlag("--require-watermark", options.requireWatermark,
                   "A photo on which no watermark is visible is a failure and gets no copy");
}

void addCopyOptions(OptionGroups &groups, SaveOptions &options)
{
    groups.begin("Copies");
    auto *output = groups.addPath("-o,--output", options.output, "DIR",
                                  "The folder for the copies, created if missing (default: beside each "
                                  "original)");
    groups
        .addPath("--replicate-from", options.replicateFrom, "DIR",
                 "Recreate the folders below DIR in the folder for the copies")
        ->needs(output);
    groups
        .add("--conflict", options.conflict, "CHOICE",
             "If a file with the name of the copy exists: unique (default; another name), overwrite, skip")
        ->check(oneOf(conflictChoices()));
    groups
        .add("--name", options.name, "TEXT",
             "The names of the copies, as in '{filename}-{sequence ###}' (default: those of the "
             "originals)")
        ->check(someText());
    groups.addFlag("--portable-names", options.portableNames,
                   "Replace what exFAT and SMB do not accept in names: \\ * ? \" < > | and reserved names");
    groups
        .add("--format", options.format, "NAME",
             "JPEG, HEIC, TIFF, PNG, GIF, BMP or Original (default: Original)")
        ->check(someText());
    groups.add("--quality", options.quality, "N", "The quality of JPEG and HEIC: 40 to 100 (default: 95)")
        ->check(wholeNumber(SavingPresetValues::kLowestQuality, SavingPresetValues::kHighestQuality));
    groups.add("--start", options.start, "N", "The first number of {sequence #} (default: 1)")
        ->check(wholeNumber(0, std::numeric_limits<int>::max()));
    groups.addPath("--saving-presets", options.savingPresetsFile, "FILE",
                   "A file of saving presets, which define the names and the format of copies (default: "
                   "your own presets, or the examples)");
    groups.add("--saving-preset", options.savingPreset, "NAME", "The name of the saving preset for this run")
        ->check(someText());
    groups.addRepeatable("--save-set", options.savingFields, "FIELD=VALUE",
                         "Set a field of the saving preset, as in --save-set tiffCompressionLZW=false");
    groups.addFlag("--ignore-assigned", options.ignoreAssigned,
                   "Ignore the saving presets that are assigned to watermarks");
    groups.addFlag(
        "--render", options.render,
        "Decode and encode all of a JPEG; otherwise a JPEG copy of a JPEG keeps the blocks that no "
        "watermark covers, where that gives the same picture");
    groups.addFlag("--no-creation-date", options.noCreationDate, "Do not copy the dates of the originals");
}

void addMetadataOptions(OptionGroups &groups, SaveOptions &options)
{
    groups.begin("Metadata of the copies");
    groups.addRepeatable("--clear", options.cleared, "GROUP",
                         "Leave out metadata: all, all-but-copyright, all-but-copyright-and-contact, gps, "
                         "iptc or exif");
    groups.addRepeatable(
        "--meta", options.metadata, "FIELD=VALUE",
        "Set a field of the metadata, as in --meta iptcCity=Rome; an empty VALUE removes it. "
        "Tokens have the new value, too");
}

void addRunOptions(CLI::App &command, OptionGroups &groups, SaveOptions &options)
{
    groups.begin("Photos");
    auto *filesFrom = groups.addPath("--files-from", options.filesFrom, "FILE",
                                     "Read further paths from FILE, one a line; - is the standard input");
    groups.addFlag("-0", options.areFilesNulSeparated, "Each path in that file ends with a null byte")
        ->needs(filesFrom);
    groups.addFlag("--no-recurse", options.noRecurse, "Do not enter the folders in folders");
    addPaths(command, "PATH", options.paths,
             "Photos, and folders, which are searched with all folders below");

    groups.begin("Run");
    groups.add("-j,--jobs", options.jobs, "N", "Number of photos at a time (default: one for each core)")
        ->check(wholeNumber(1, 256));
    groups.addFlag("-n,--dry-run", options.dryRun,
                   "Print the planned copies and write nothing; reads only the headers of the photos, so a "
                   "photo that is damaged after its header is not reported");
    groups.addFlag(
        "--json", options.json,
        "Print a JSON object for each copy and unread path, one a line; with --quiet for those with an "
        "error or a notice only");
    groups.addFlag("-q,--quiet", options.quiet, "Print failures and notices only");
}

bool hasField(const std::vector<std::string> &fields, const char *name)
{
    return std::any_of(fields.begin(), fields.end(),
                       [name](const std::string &argument) { return isForField(argument, name); });
}

/// @return the reason why the options for the watermark contradict each other; empty if they do not
QString contradiction(const SaveOptions &options)
{
    if (options.text && hasField(options.fields, "textTokens"))
        return QStringLiteral("--text and --set textTokens cannot be given together");
    if ((options.text || !options.image.empty()) && hasField(options.fields, "image"))
        return QStringLiteral("--set image has no effect beside --text and --image");
    if ((options.text || !options.image.empty()) && hasField(options.fields, "type"))
        return QStringLiteral("--set type has no effect beside --text and --image");
    const QString givenTwice = QStringLiteral("%1 and --save-set %2 cannot be given together");
    if (!options.format.empty() && hasField(options.savingFields, "imageFormat"))
        return givenTwice.arg(QLatin1StringView("--format"), QLatin1StringView("imageFormat"));
    if (options.quality != 0 && hasField(options.savingFields, "jpegQuality"))
        return givenTwice.arg(QLatin1StringView("--quality"), QLatin1StringView("jpegQuality"));
    if (!options.name.empty() && hasField(options.savingFields, "filenameTokens"))
        return givenTwice.arg(QLatin1StringView("--name"), QLatin1StringView("filenameTokens"));
    if (isPresetsMode(options))
        return {};
    const QString needsPresets = QStringLiteral("%1 has no effect without --apply or --wpresets");
    if (options.combine)
        return needsPresets.arg(QLatin1StringView("--combine"));
    if (options.ignoreAssigned)
        return needsPresets.arg(QLatin1StringView("--ignore-assigned"));
    return {};
}

} // namespace

const std::vector<std::string> &conflictChoices()
{
    static const std::vector<std::string> choices{"unique", "overwrite", "skip"};
    return choices;
}

CLI::App *addSaveCommand(CLI::App &program, SaveOptions &options)
{
    CLI::App *command = program.add_subcommand("save", "Watermark photos and folders of photos");
    command->footer(kFooter);
    command->set_help_flag(); // to be the last in its group
    OptionGroups groups(*command);
    addWatermarkOptions(groups, options);
    addCopyOptions(groups, options);
    addMetadataOptions(groups, options);
    addRunOptions(*command, groups, options);
    command->set_help_flag("-h,--help", "Print this help")->group("Run");
    return command;
}

Result<void> checkSaveOptions(const SaveOptions &options)
{
    if (options.text && options.text->empty())
        return fail(QStringLiteral("--text is empty, so there is no watermark"));
    if (!options.text && options.image.empty() && options.fields.empty() && !isPresetsMode(options))
        return fail(
            QStringLiteral("there is no watermark: give --text, --image, --set, --wpresets or --apply"));
    if (options.paths.empty() && options.filesFrom.empty())
        return fail(QStringLiteral("there is no photo: name files or folders"));
    if (const QString reason = contradiction(options); !reason.isEmpty())
        return fail(reason);
    return {};
}

bool setsSavingPreset(const SaveOptions &options)
{
    return !options.savingPreset.empty() || !options.savingFields.empty() || !options.format.empty() ||
           !options.name.empty() || options.quality != 0;
}

bool setsQuality(const SaveOptions &options)
{
    return options.quality != 0 || hasField(options.savingFields, "jpegQuality");
}

bool isPresetsMode(const SaveOptions &options)
{
    return !options.wPresetsFile.empty() || !options.applied.empty();
}

} // namespace plexa
