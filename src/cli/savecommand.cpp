// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/savecommand.h"

#include "cli/fieldarguments.h"
#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/photopaths.h"
#include "cli/progressline.h"
#include "images/imageobject.h"
#include "platform/bytebudget.h"
#include "platform/fontcatalog.h"
#include "platform/localeformat.h"
#include "saving/copynames.h"
#include "saving/orderedwork.h"
#include "watermark/texttokens.h"
#include "watermark/watermarkpicture.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <thread>

namespace plexa
{

namespace
{

enum ExitStatus { kAllDone = 0, kSomethingFailed = 1, kWrongUsage = 2 };

constexpr int kQuality = 95;
const QString kQuickPresetName = QStringLiteral("Quick Preset");

/// One copy of the run.
struct Item {
    QString source;
    QString target;                           ///< empty: no path is free
    std::optional<Result<CopyReport>> result; ///< none before it is made
};

/// What all copies of the run share.
struct Run {
    AppliedPreset preset;
    SavingPresetValues savingPreset;
    std::vector<Item> items;
    int jobs = 1;
    bool keepsCreationDate = true;
};

int refuse(const QString &text)
{
    printLine(stderr, QStringLiteral("plexa-cli: ") + text);
    return kWrongUsage;
}

/// The pieces that stand for a text as it is: a text that is a token's name is taken apart, so that it is
/// none.
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
        if (Result<void> applied = applyField(values, field); !applied)
            return tl::unexpected(applied.error());
    }
    const bool isImageWanted = !options.text && values.type == typeBefore && !values.image.isNull();
    if (isImageWanted)
        values.type = QStringLiteral("Image");
    if (values.type == QLatin1String("Image") && values.image.isNull())
        return fail(QStringLiteral("an image watermark needs a picture: give --image"));
    return values;
}

Result<SavingPresetValues> runSavingPreset(const SaveOptions &options)
{
    SavingPresetValues preset;
    preset.imageFormat = QStringLiteral("Original");
    preset.jpegQuality = kQuality;
    for (const std::string &field : options.savingFields) {
        if (Result<void> applied = applySavingField(preset, field); !applied)
            return tl::unexpected(applied.error());
    }
    return preset;
}

/// Everything that can be wrong with the command line is found here, before any file is touched.
Result<Run> planRun(const SaveOptions &options, const FontCatalog &fonts)
{
    Result<WPresetValues> values = quickPreset(options, fonts);
    if (!values)
        return tl::unexpected(values.error());
    Run run;
    run.preset.values = std::move(*values);
    Result<SavingPresetValues> savingPreset = runSavingPreset(options);
    if (!savingPreset)
        return tl::unexpected(savingPreset.error());
    run.savingPreset = std::move(*savingPreset);

    const Result<std::vector<PhotoPath>> photos = photosAt(options.paths, options.output);
    if (!photos)
        return tl::unexpected(photos.error());
    const QString folder = QString::fromStdString(options.output);
    if (QFileInfo(folder).exists() && !QFileInfo(folder).isDir())
        return fail(QStringLiteral("\"%1\" is not a folder").arg(folder));

    CopyNames names(folder, run.savingPreset);
    for (const PhotoPath &photo : *photos) {
        if (photo.failure.isEmpty())
            run.items.push_back({photo.path, names.pathForCopyOf(photo.path), std::nullopt});
        else
            run.items.push_back({photo.path, {}, Result<CopyReport>(fail(photo.failure))});
    }
    run.jobs =
        options.jobs > 0 ? options.jobs : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    run.keepsCreationDate = !options.noCreationDate;
    return run;
}

QJsonValue jsonRect(const CopyReport &report)
{
    if (report.rects.size() != 1 || !report.rects.front())
        return QJsonValue::Null;
    const QRectF rect = *report.rects.front();
    return QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()};
}

QByteArray jsonLine(const Item &item, std::size_t sequence)
{
    QJsonObject line{{QStringLiteral("source"), item.source},
                     {QStringLiteral("output"), item.target},
                     {QStringLiteral("sequence"), static_cast<qint64>(sequence)},
                     {QStringLiteral("wpreset"), kQuickPresetName},
                     {QStringLiteral("error"), QJsonValue::Null},
                     {QStringLiteral("rect"), QJsonValue::Null},
                     {QStringLiteral("size"), QJsonValue::Null},
                     {QStringLiteral("status"), QStringLiteral("planned")}};
    if (item.result && *item.result) {
        const CopyReport &report = **item.result;
        line[QStringLiteral("status")] = QStringLiteral("written");
        line[QStringLiteral("rect")] = jsonRect(report);
        line[QStringLiteral("size")] = QJsonArray{report.size.width(), report.size.height()};
        if (!report.dropped.isEmpty())
            line[QStringLiteral("dropped")] = QJsonArray::fromStringList(report.dropped);
    } else if (item.result) {
        line[QStringLiteral("status")] = QStringLiteral("failed");
        line[QStringLiteral("error")] = item.result->error().text;
    }
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

/// Results on standard output, messages on standard error.
void report(const Item &item, std::size_t sequence, const SaveOptions &options)
{
    if (item.result && !*item.result)
        printAbout(item.source, item.result->error().text);
    else if (item.result && !options.quiet && !(*item.result)->rects.empty() &&
             !(*item.result)->rects.front())
        printAbout(item.source, QStringLiteral("saved without a watermark, which is empty for this photo"));

    if (options.json)
        std::fprintf(stdout, "%s\n", jsonLine(item, sequence).constData());
    else if (!options.quiet && (!item.result || *item.result))
        printLine(stdout, onOneLine(QStringLiteral("%1 -> %2").arg(item.source, item.target)));
    std::fflush(stdout);
}

Result<CopyReport> makeCopy(const Item &item, const Run &run, const PhotoServices &services)
{
    if (item.result) // it failed when the run was planned
        return *item.result;
    if (item.target.isEmpty())
        return fail(QStringLiteral("no name is free for the copy"));
    ImageObject photo(item.source, services);
    return photo.saveImageAtPath(item.target, {run.preset}, run.savingPreset, AtomicFile::IfExists::Fail,
                                 run.keepsCreationDate, isInterrupted);
}

int printPlan(const Run &run, const SaveOptions &options)
{
    bool hasFailures = false;
    for (std::size_t i = 0; i < run.items.size(); ++i) {
        report(run.items[i], i + 1, options);
        hasFailures = hasFailures || run.items[i].result;
    }
    return hasFailures ? kSomethingFailed : kAllDone;
}

int makeCopies(Run &run, const SaveOptions &options, const FontCatalog &fonts)
{
    const LocaleFormat locale;
    PixelCache cache(0); // each photo is looked at once
    const qint64 memory = physicalMemoryBytes() / 2;
    ByteBudget budget(memory);
    const PhotoServices services{fonts, locale, cache, budget, ReadLimits{.maxBytes = memory}};

    ProgressLine progress(run.items.size(), !options.quiet);
    bool hasFailures = false;
    OrderedWork work;
    work.count = run.items.size();
    work.threads = run.jobs;
    work.work = [&](std::size_t i) { run.items[i].result = makeCopy(run.items[i], run, services); };
    work.deliver = [&](std::size_t i) {
        progress.clear();
        hasFailures = hasFailures || !*run.items[i].result;
        report(run.items[i], i + 1, options);
        progress.setDone(i + 1);
    };
    work.isStopped = isInterrupted;
    const std::size_t begun = runOrdered(work);
    progress.clear();
    if (begun < work.count)
        printLine(stderr, QStringLiteral("plexa-cli: stopped; %1 of %2 photos were not begun")
                              .arg(work.count - begun)
                              .arg(work.count));
    return hasFailures || begun < work.count ? kSomethingFailed : kAllDone;
}

} // namespace

CLI::App *addSaveCommand(CLI::App &program, SaveOptions &options)
{
    CLI::App *command = program.add_subcommand("save", "Watermark photos and folders of photos");
    auto *text = command->add_option("--text", options.text, "The watermark: a text")->type_name("TEXT");
    command->add_option("--image", options.image, "The watermark: a picture, SVG included")
        ->type_name("FILE")
        ->excludes(text);
    command->add_option("--set", options.fields, "Set a field of the watermark, as in --set anchorPoint=8")
        ->type_name("FIELD=VALUE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
    command
        ->add_option("--save-set", options.savingFields,
                     "Set how copies are saved, as in --save-set jpegQuality=90")
        ->type_name("FIELD=VALUE")
        ->expected(1)
        ->take_all()
        ->allow_extra_args(false);
    command->add_option("--output", options.output, "The folder for the copies; made when it is not there")
        ->type_name("DIR")
        ->required();
    command->add_flag("--no-creation-date", options.noCreationDate,
                      "Do not give copies the date of their originals");
    command->add_option("--jobs", options.jobs, "How many photos at once; default: one for each core")
        ->type_name("N")
        ->check(CLI::Range(1, 256));
    command->add_flag("--dry-run", options.dryRun, "Say what would be written, and write nothing");
    command->add_flag("--json", options.json, "Print an object for each copy, one a line");
    command->add_flag("--quiet", options.quiet, "Print failures only");
    command->add_option("PATH", options.paths, "Photos, and folders of them")->required();
    return command;
}

int runSave(const SaveOptions &options)
{
    if (options.text && options.text->empty())
        return refuse(QStringLiteral("--text is empty, so there is no watermark"));
    if (!options.text && options.image.empty() && options.fields.empty())
        return refuse(QStringLiteral("there is no watermark: give --text, --image or --set"));
    const FontCatalog fonts;
    Result<Run> run = planRun(options, fonts);
    if (!run)
        return refuse(run.error().text);
    if (run->items.empty())
        printLine(stderr, QStringLiteral("plexa-cli: no photos found"));
    if (options.dryRun)
        return printPlan(*run, options);
    const QString folder = QString::fromStdString(options.output);
    if (!QDir().mkpath(folder))
        return refuse(QStringLiteral("the folder \"%1\" cannot be made").arg(folder));
    return makeCopies(*run, options, fonts);
}

} // namespace plexa
