// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/inspectcommand.h"

#include "cli/interruption.h"
#include "cli/messages.h"
#include "cli/photopaths.h"
#include "cli/plainnumbers.h"
#include "imageio/imagesource.h"
#include "images/strips.h"
#include "images/uprighting.h"
#include "platform/localeformat.h"
#include "platform/orderedwork.h"
#include "watermark/texttokens.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <new>
#include <thread>

namespace plexa
{
namespace
{

/// The facts about one file.
struct Inspection {
    QString path;
    QString type;
    QSize size; ///< of the upright photo
    int orientation = 1;
    QVariantMap properties;
    std::vector<std::pair<QString, std::optional<QString>>> tokens; ///< in the vocabulary's order
};

Result<Inspection> inspect(const PhotoPath &photo, const LocaleFormat &locale)
{
    const QString &path = photo.path;
    if (!photo.failure.isEmpty())
        return fail(photo.failure);
    const Result<ImageSource> source = ImageSource::open(path);
    if (!source)
        return tl::unexpected(source.error());
    Inspection result;
    result.path = path;
    result.type = source->type();
    const Result<QVariantMap> properties = source->properties();
    if (!properties)
        return tl::unexpected(properties.error());
    result.properties = *properties;
    const ImageMetadata metadata(result.properties);
    const Uprighting uprighting = uprightingOf(source->info().rows.size, metadata, 1, ReadLimits());
    result.size = uprighting.size();
    result.orientation = metadata.orientationCorrected();
    const PhotoFacts facts(path, metadata, uprighting.size(), uprighting.unscaledSize(), locale);
    for (const QString &token : tokenNames())
        result.tokens.emplace_back(token, facts.stringForInfoToken(token));
    return result;
}

QJsonObject jsonOf(const Inspection &photo)
{
    QJsonObject tokens;
    for (const auto &[name, text] : photo.tokens)
        tokens[name] = text ? QJsonValue(*text) : QJsonValue(QJsonValue::Null);
    return {{QStringLiteral("path"), photo.path},
            {QStringLiteral("type"), photo.type},
            {QStringLiteral("width"), photo.size.width()},
            {QStringLiteral("height"), photo.size.height()},
            {QStringLiteral("orientation"), photo.orientation},
            {QStringLiteral("properties"), QJsonObject::fromVariantMap(photo.properties)},
            {QStringLiteral("tokens"), tokens}};
}

/// A value on one line, as in JSON, strings without quotation marks.
QString plainText(const QVariant &value)
{
    const QJsonValue json = QJsonValue::fromVariant(value);
    return onOneLine(json.isString() ? json.toString() : QString::fromUtf8(jsonText(json)));
}

using Lines = std::vector<std::pair<QString, QString>>;

/// Adds "name  value" lines with aligned values.
void appendLines(QString &text, const Lines &lines, const QString &indent)
{
    qsizetype width = 0;
    for (const auto &[name, value] : lines)
        width = std::max(width, name.size());
    for (const auto &[name, value] : lines)
        text += indent + name.leftJustified(width) + QLatin1String("  ") + value + u'\n';
}

/// The plain values first, the dictionaries below them.
void appendProperties(QString &text, const QVariantMap &properties, const QString &indent)
{
    Lines lines;
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (property->typeId() != QMetaType::QVariantMap)
            lines.emplace_back(onOneLine(property.key()), plainText(*property));
    }
    appendLines(text, lines, indent);
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (property->typeId() == QMetaType::QVariantMap) {
            text += indent + onOneLine(property.key()) + u'\n';
            appendProperties(text, property->toMap(), indent + QLatin1String("  "));
        }
    }
}

QString textOf(const Inspection &photo)
{
    QString text = onOneLine(photo.path) + u'\n';
    appendLines(
        text,
        {{QStringLiteral("type"), photo.type},
         {QStringLiteral("size"), QStringLiteral("%1 x %2").arg(photo.size.width()).arg(photo.size.height())},
         {QStringLiteral("orientation"), QString::number(photo.orientation)}},
        QStringLiteral("  "));
    text += QLatin1String("  properties\n");
    appendProperties(text, photo.properties, QStringLiteral("    "));
    text += QLatin1String("  tokens\n");
    Lines tokens;
    for (const auto &[name, value] : photo.tokens) {
        if (value)
            tokens.emplace_back(name, onOneLine(*value));
    }
    appendLines(text, tokens, QStringLiteral("    "));
    return text;
}

} // namespace

CLI::App *addInspectCommand(CLI::App &program, InspectOptions &options)
{
    CLI::App *command = program.add_subcommand(
        "inspect", "Print the facts about photos: upright size, properties, texts of the tokens");
    command->add_flag("--json", options.json, "Print an array with an object for each file");
    addPaths(*command, "FILE", options.paths, "The photos");
    return command;
}

int runInspect(const InspectOptions &options)
{
    if (options.paths.empty()) {
        printMessage(QStringLiteral("there is no photo: name files"));
        return kWrongUsage;
    }
    const LocaleFormat locale;
    std::vector<std::optional<Result<Inspection>>> results(options.paths.size());
    bool hasFailures = false;
    bool isFirst = true;
    OrderedWork work;
    work.count = options.paths.size();
    work.threads = threadsToUse(0);
    if (work.threads < 1)
        return kSomethingFailed;
    work.work = [&](std::size_t i) {
        try {
            results[i] = inspect(decodedPath(options.paths[i]), locale);
        } catch (const std::bad_alloc &) {
            results[i] = fail(outOfMemoryText());
        }
    };
    work.deliver = [&](std::size_t i) {
        const Result<Inspection> result = *std::exchange(results[i], std::nullopt);
        if (!result) {
            hasFailures = true;
            printAbout(decodedPath(options.paths[i]).path, result.error().text);
        } else if (options.json) {
            const QByteArray object = jsonText(jsonOf(*result));
            std::fprintf(stdout, "%s%s", isFirst ? "[" : ",\n", object.constData());
            isFirst = false;
        } else {
            std::fputs(qUtf8Printable(textOf(*result)), stdout);
        }
    };
    catchInterruptions();
    work.isStopped = isInterrupted;
    const std::size_t begun = runOrdered(work);
    if (options.json)
        std::fputs(isFirst ? "[]\n" : "]\n", stdout);
    return hasFailures || begun < work.count ? kSomethingFailed : kAllDone;
}

} // namespace plexa
