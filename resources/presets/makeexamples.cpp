// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/wpresetarchive.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

// Creates example_wpresets.pxwpr from watermarks.json: a list of presets, with the fields that differ from
// those of a new preset. The pictures are in the same folder. The folder of another language has texts.json,
// with that language's names and texts in place of those in English.

namespace
{

using namespace plexa;

int refuse(const QString &text)
{
    std::fprintf(stderr, "plexa-make-examples: %s\n", qUtf8Printable(text));
    return 1;
}

Result<QJsonDocument> jsonFrom(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("%1: %2").arg(path, file.errorString()));
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(file.readAll(), &error);
    if (json.isNull())
        return fail(QStringLiteral("%1: %2").arg(path, error.errorString()));
    return json;
}

/// @param texts  what stands in place of names and texts; if not empty, each preset has a name there
Result<WPresetList> presetsFrom(const QJsonArray &entries, const QDir &pictures, const QJsonObject &texts)
{
    WPresetList presets;
    for (const QJsonValue entry : entries) {
        WPresetValues values;
        // The values of a new preset depend on the machine, its user and the year.
        values.font = QStringLiteral("DejaVuSans");
        values.textTokens = {QStringLiteral("\u00a9 Your Name")};
        const QJsonObject fields = entry.toObject();
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            QJsonValue value = *field;
            if (field.key() == QLatin1StringView("image"))
                value = pictures.filePath(value.toString());
            if (const Result<void> set = setField(values, field.key(), value); !set)
                return fail(QStringLiteral("%1: %2").arg(values.name, set.error().text));
        }
        if (!texts.isEmpty() && !texts.contains(values.name))
            return fail(QStringLiteral("texts.json has no name for \"%1\"").arg(values.name));
        values.name = texts[values.name].toString(values.name);
        for (QString &token : values.textTokens)
            token = texts[token].toString(token);
        presets.push_back(std::make_shared<WPreset>(values));
    }
    return presets;
}

bool areEqual(WPresetValues a, WPresetValues b)
{
    const bool haveSamePicture = a.image.svg() == b.image.svg() && a.image.size() == b.image.size();
    a.image = b.image = {};
    return haveSamePicture && a == b;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const bool isCheck = arguments.value(1) == QLatin1StringView("--check");
    if (arguments.size() != (isCheck ? 4 : 3))
        return refuse(QStringLiteral("usage: plexa-make-examples [--check] SOURCES TARGET (two folders)"));
    const QDir sources(arguments[arguments.size() - 2]);
    const QDir folder(arguments.last());
    const QString target = folder.filePath(QStringLiteral("example_wpresets.pxwpr"));
    const auto entries = jsonFrom(sources.filePath(QStringLiteral("watermarks.json")));
    const QString textsFile = folder.filePath(QStringLiteral("texts.json"));
    const auto texts = QFile::exists(textsFile) ? jsonFrom(textsFile) : Result<QJsonDocument>();
    if (!entries || !texts)
        return refuse((entries ? texts : entries).error().text);
    const auto presets = presetsFrom(entries->array(), sources, texts->object());
    if (!presets)
        return refuse(presets.error().text);
    if (!isCheck) {
        const auto written = writeWPresets(*presets, target);
        return written ? 0 : refuse(target + QStringLiteral(": ") + written.error().text);
    }
    const auto present = readWPresetsFromFile(target);
    bool isCurrent = present && present->size() == presets->size();
    for (std::size_t i = 0; isCurrent && i < presets->size(); ++i)
        isCurrent = areEqual((*presets)[i]->values(), (*present)[i]->values());
    return isCurrent ? 0
                     : refuse(target + QStringLiteral(" is out of date; scripts/make-examples creates it"));
}
