// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/presetscommand.h"

#include "cli/messages.h"
#include "cli/photopaths.h"
#include "cli/presetfiles.h"
#include "presets/presetsfilereading.h"
#include "watermark/texttokens.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <CLI/CLI.hpp>

namespace plexa
{
namespace
{

/// An assigned saving preset that is stored in another file.
class SavingPresetNumber final : public SavingPresetReference
{
public:
    explicit SavingPresetNumber(qint64 presetID)
        : m_presetID(presetID)
    {
    }
    qint64 presetID() const override { return m_presetID; }

private:
    qint64 m_presetID;
};

QJsonObject asJson(const SavingPreset &preset)
{
    QJsonObject object{{QStringLiteral("presetID"), preset.presetID()}};
    for (const SavingPresetField &field : savingPresetFields())
        object.insert(field.name, valueAsJson(field.value(preset.values())));
    return object;
}

/// Tokens in brackets between the literal texts.
QString textOf(const QStringList &pieces)
{
    QString text;
    for (const QString &piece : pieces)
        text += tokenNames().contains(piece) ? u'[' + piece + u']' : piece;
    return text.replace(u'\n', QLatin1String(" / "));
}

QString lineFor(const WPreset &preset)
{
    if (preset.type() != QLatin1String("Image"))
        return QStringLiteral("%1: text, %2").arg(preset.name(), textOf(preset.textTokens()));
    if (!preset.validPreset())
        return QStringLiteral("%1: image, cannot be read").arg(preset.name());
    const QSizeF size = preset.image().size();
    return preset.image().isNull()
               ? QStringLiteral("%1: image, none").arg(preset.name())
               : QStringLiteral("%1: image, %2 x %3").arg(preset.name()).arg(size.width()).arg(size.height());
}

QString lineFor(const SavingPreset &preset)
{
    return QStringLiteral("%1: %2, \"%3\"")
        .arg(preset.name(), preset.imageFormat(), preset.filenameTokens().join(QLatin1String("\" \"")));
}

QJsonObject asJson(const WPreset &preset)
{
    return asJson(preset.values());
}

void appendTo(QJsonArray &objects, const PresetsFile &file)
{
    for (const auto &preset : file.wPresets)
        objects.append(asJson(*preset));
    for (const auto &preset : file.savingPresets)
        objects.append(asJson(*preset));
}

void printLines(const PresetsFile &file)
{
    for (const auto &preset : file.wPresets)
        printLine(stdout, onOneLine(lineFor(*preset)));
    for (const auto &preset : file.savingPresets)
        printLine(stdout, onOneLine(lineFor(*preset)));
}

/// Copies the standard input to a file: the readers need one.
Result<void> storeStandardInput(const QString &path)
{
    constexpr qint64 kMaxBytes = 1 << 28; // more than any presets; a device may never end
    QFile input;
    QFile file(path);
    if (!input.open(stdin, QIODevice::ReadOnly))
        return fail(input.errorString());
    const QByteArray contents = input.read(kMaxBytes + 1);
    if (input.error() != QFileDevice::NoError || contents.size() > kMaxBytes)
        return fail(contents.size() > kMaxBytes ? QStringLiteral("it is too large") : input.errorString());
    if (!file.open(QIODevice::WriteOnly) || file.write(contents) != contents.size() || !file.flush())
        return fail(file.errorString());
    return {};
}

/// @param path  "-" is the standard input
Result<PresetsFile> read(const QString &path)
{
    const auto number = [](qint64 presetID) { return std::make_shared<SavingPresetNumber>(presetID); };
    if (path != QLatin1StringView("-"))
        return presetsIn(path, std::nullopt, number);
    const QTemporaryDir folder;
    const QString stored = folder.filePath(QStringLiteral("presets"));
    return storeStandardInput(stored).and_then([&] { return presetsIn(stored, std::nullopt, number); });
}

/// Reports the parts of the file that are not printed or written, and pictures that cannot be drawn.
void printFaults(const PresetsFile &file, const QString &path)
{
    for (const QString &fault : file.leftOut)
        printAbout(path, fault);
    for (const auto &preset : file.wPresets) {
        if (const QString fault = preset->values().pictureFault(); !fault.isEmpty())
            printAbout(path, fault);
    }
}

Result<void> write(const PresetsFile &file, const QString &target)
{
    return file.areWatermarks
               ? writeWPresets(file.wPresets, target)
               : SavingPreset::writeObjects(file.savingPresets, target, presetsApplicationID());
}

Result<void> writeToStandardOutput(const PresetsFile &file)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("presets"));
    return write(file, path).and_then([&]() -> Result<void> {
        QFile written(path);
        if (!written.open(QIODevice::ReadOnly))
            return fail(written.errorString());
        const QByteArray contents = written.readAll();
        std::fwrite(contents.constData(), 1, static_cast<std::size_t>(contents.size()), stdout);
        return {};
    });
}

/// Is the target free, or a file of the same kind of presets?
Result<void> checkTarget(const PresetsFile &file, const QString &target)
{
    if (!QFileInfo::exists(target))
        return {};
    const auto kind = file.areWatermarks ? PresetsStore::Kind::Watermark : PresetsStore::Kind::Saving;
    const Result<PresetsFile> existing = presetsIn(target, kind);
    if (!existing)
        return fail(
            QStringLiteral("\"%1\" exists and is not replaced: %2").arg(target, existing.error().text));
    return {};
}

/// @param path  of the file that was read
Result<void> convert(const PresetsFile &file, const QString &path, const QString &target)
{
    if (!file.leftOut.isEmpty() &&
        QFileInfo(target).canonicalFilePath() == QFileInfo(path).canonicalFilePath())
        return fail(QStringLiteral("the unreadable parts would be lost; write the presets to another file"));
    if (!file.notice.isEmpty())
        return fail(
            QStringLiteral("a part would be left out: %1. Read: %2")
                .arg(file.notice, file.areWatermarks ? namesOf(file.wPresets) : namesOf(file.savingPresets)));
    const QStringList kinds{QStringLiteral("watermark presets"), QStringLiteral("saving presets")};
    if (target.endsWith(QLatin1StringView(file.areWatermarks ? ".pxspr" : ".pxwpr"), Qt::CaseInsensitive))
        return fail(QStringLiteral("it contains %1; \"%2\" is a name for %3")
                        .arg(kinds[file.areWatermarks ? 0 : 1], target, kinds[file.areWatermarks ? 1 : 0]));
    if (target == QLatin1StringView("-"))
        return writeToStandardOutput(file);
    return checkTarget(file, target).and_then([&] { return write(file, target); });
}

int runConversion(const QString &path, const QString &target)
{
    const Result<PresetsFile> file = read(path);
    const Result<void> converted = file.and_then([&](const PresetsFile &presets) {
        printFaults(presets, path);
        return convert(presets, path, target);
    });
    if (!converted)
        printAbout(path, QStringLiteral("nothing is written: ") + converted.error().text);
    else if (file->isIncomplete)
        printAbout(path, QStringLiteral("the rest is written to \"%1\"").arg(target));
    return converted && !file->isIncomplete ? kAllDone : kSomethingFailed;
}

/// The file of the command line, or both of the user's own, or the examples.
QStringList filesOf(const PresetsOptions &options)
{
    if (!options.file.empty())
        return {QFile::decodeName(options.file.c_str())};
    const PresetsStore::Places places = PresetsStore::Places::own();
    return {PresetsStore::listOrExamplesFile(PresetsStore::Kind::Watermark, places),
            PresetsStore::listOrExamplesFile(PresetsStore::Kind::Saving, places)};
}

/// The title of a list of the user.
QString titleOf(const PresetsFile &file, const QString &path)
{
    const QString kind =
        file.areWatermarks ? QStringLiteral("Watermark presets") : QStringLiteral("Saving presets");
    const bool isExample = path.startsWith(u':');
    return QStringLiteral("%1 (%2):").arg(kind, isExample ? QStringLiteral("the examples") : path);
}

} // namespace

CLI::App *addPresetsCommand(CLI::App &program, PresetsOptions &options)
{
    CLI::App *command = program.add_subcommand(
        "presets", "Print watermark presets and saving presets: your own, or those of a file");
    auto *json = command->add_flag("--json", options.json, "Print an array with an object for each preset");
    auto *file = command->add_option("FILE", options.file,
                                     "A .pxwpr or .pxspr file, - for the standard input (default: your own "
                                     "presets of both kinds, or the examples)");
    file->check(somePath());
    command
        ->add_option(
            "--convert", options.convertTo,
            "Print nothing; write the presets of FILE to OUT in the current format. OUT is new, or a "
            "file of presets of that kind; - is the standard output")
        ->check(somePath())
        ->type_name("OUT")
        ->needs(file)
        ->excludes(json);
    return command;
}

int runPresets(const PresetsOptions &options)
{
    const QStringList paths = filesOf(options);
    if (!options.convertTo.empty())
        return runConversion(paths.front(), QFile::decodeName(options.convertTo.c_str()));
    int status = kAllDone;
    QJsonArray objects;
    for (const QString &path : paths) {
        const Result<PresetsFile> file = read(path);
        if (!file || file->isIncomplete)
            status = kSomethingFailed;
        if (!file) {
            printAbout(path, file.error().text);
            continue;
        }
        printFaults(*file, path);
        if (!file->notice.isEmpty())
            printAbout(path, file->notice);
        appendTo(objects, *file);
        if (!options.json && paths.size() > 1)
            printLine(stdout, onOneLine(titleOf(*file, path)));
        if (!options.json)
            printLines(*file);
    }
    if (options.json && (options.file.empty() || status == kAllDone || !objects.isEmpty()))
        printJson(objects);
    return status;
}

} // namespace plexa
