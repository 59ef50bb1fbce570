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
// those of a new preset. The pictures are in the same folder.

namespace
{

using namespace plexa;

int refuse(const QString &text)
{
    std::fprintf(stderr, "plexa-make-examples: %s\n", qUtf8Printable(text));
    return 1;
}

Result<WPresetList> presetsFrom(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("%1: %2").arg(path, file.errorString()));
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(file.readAll(), &error);
    if (!json.isArray())
        return fail(QStringLiteral("%1: %2").arg(path, error.errorString()));
    WPresetList presets;
    for (const QJsonValue entry : json.array()) {
        WPresetValues values;
        // The values of a new preset depend on the machine, its user and the year.
        values.font = QStringLiteral("DejaVuSans");
        values.textTokens = {QStringLiteral("\u00a9 Your Name")};
        const QJsonObject fields = entry.toObject();
        for (auto field = fields.begin(); field != fields.end(); ++field) {
            QJsonValue value = *field;
            if (field.key() == QLatin1StringView("image"))
                value = QFileInfo(path).dir().filePath(value.toString());
            if (const Result<void> set = setField(values, field.key(), value); !set)
                return fail(QStringLiteral("%1: %2").arg(values.name, set.error().text));
        }
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
    if (arguments.size() != (isCheck ? 3 : 2))
        return refuse(QStringLiteral("usage: plexa-make-examples [--check] FOLDER (resources/presets)"));
    const QDir folder(arguments.last());
    const QString target = folder.filePath(QStringLiteral("example_wpresets.pxwpr"));
    const auto presets = presetsFrom(folder.filePath(QStringLiteral("watermarks.json")));
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
