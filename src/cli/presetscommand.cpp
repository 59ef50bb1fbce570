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

void print(const PresetsFile &file, bool json)
{
    QJsonArray objects;
    const auto printEach = [&](const auto &presets) {
        for (const auto &preset : presets) {
            if (json)
                objects.append(asJson(*preset));
            else
                printLine(stdout, onOneLine(lineFor(*preset)));
        }
    };
    printEach(file.wPresets);
    printEach(file.savingPresets);
    if (json)
        printLine(stdout,
                  QString::fromUtf8(jsonText(QJsonDocument(objects), QJsonDocument::Indented).trimmed()));
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

/// @param path  of the file that was read
/// @return a failure as text that follows that path
Result<void> convert(const PresetsFile &file, const QString &path, const QString &target)
{
    if (!file.leftOut.isEmpty() &&
        QFileInfo(target).canonicalFilePath() == QFileInfo(path).canonicalFilePath())
        return fail(QStringLiteral("the unreadable parts would be lost; write the presets to another file"));
    if (!file.notice.isEmpty())
        return fail(
            QStringLiteral("nothing is written, because a part would be left out: %1. Read: %2")
                .arg(file.notice, file.areWatermarks ? namesOf(file.wPresets) : namesOf(file.savingPresets)));
    const QStringList kinds{QStringLiteral("watermark presets"), QStringLiteral("saving presets")};
    if (target.endsWith(QLatin1StringView(file.areWatermarks ? ".pxspr" : ".pxwpr"), Qt::CaseInsensitive))
        return fail(QStringLiteral("it contains %1; \"%2\" is a name for %3")
                        .arg(kinds[file.areWatermarks ? 0 : 1], target, kinds[file.areWatermarks ? 1 : 0]));
    return file.areWatermarks
               ? writeWPresets(file.wPresets, target)
               : SavingPreset::writeObjects(file.savingPresets, target, presetsApplicationID());
}

} // namespace

CLI::App *addPresetsCommand(CLI::App &program, PresetsOptions &options)
{
    CLI::App *command = program.add_subcommand(
        "presets", "Print the contents of a file of watermark presets or saving presets");
    auto *json = command->add_flag("--json", options.json, "Print an array with an object for each preset");
    command
        ->add_option("--convert", options.convertTo,
                     "Print nothing; write the presets to OUT in the current format")
        ->check(somePath())
        ->type_name("OUT")
        ->excludes(json);
    command->add_option("FILE", options.file, "A .pxwpr or .pxspr file")->check(somePath())->required();
    return command;
}

int runPresets(const PresetsOptions &options)
{
    const QString path = QFile::decodeName(options.file.c_str());
    const auto number = [](qint64 presetID) { return std::make_shared<SavingPresetNumber>(presetID); };
    const Result<PresetsFile> file = presetsIn(path, std::nullopt, number);
    if (!file) {
        printAbout(path, file.error().text);
        return kSomethingFailed;
    }
    printFaults(*file, path);
    const int status = file->leftOut.isEmpty() ? kAllDone : kSomethingFailed;
    if (options.convertTo.empty()) {
        if (!file->notice.isEmpty())
            printAbout(path, file->notice);
        print(*file, options.json);
        return status;
    }
    if (const Result<void> converted = convert(*file, path, QFile::decodeName(options.convertTo.c_str()));
        !converted) {
        printAbout(path, converted.error().text);
        return kSomethingFailed;
    }
    return status;
}

} // namespace plexa
