// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/metadataarguments.h"

#include "cli/saveoptions.h"
#include "cli/suggestions.h"
#include "metadata/metadataclearings.h"
#include "metadata/metadatainput.h"

#include <algorithm>
#include <vector>

namespace plexa
{
namespace
{

struct Setting {
    MetadataProperty property;
    QVariant value;
};

Result<Setting> settingOf(const std::string &argument)
{
    const QString text = QString::fromStdString(argument);
    const qsizetype equals = text.indexOf(u'=');
    if (equals < 1)
        return fail(QStringLiteral("\"%1\" is not of the form FIELD=VALUE").arg(text));
    const QString name = text.left(equals);
    const auto rows = metadataProperties();
    const auto row = std::find_if(rows.begin(), rows.end(), [&name](const MetadataPropertyRow &candidate) {
        return candidate.isEditable && name == QLatin1StringView(candidate.name);
    });
    if (row == rows.end()) {
        QStringList names;
        for (const MetadataPropertyRow &known : rows) {
            if (known.isEditable)
                names.append(QLatin1StringView(known.name));
        }
        return fail(QStringLiteral("there is no field \"%1\" of the metadata").arg(name) +
                    didYouMean(name, names, QStringLiteral("; \"plexa-cli fields\" lists the fields")));
    }
    const auto property = static_cast<MetadataProperty>(row - rows.begin());
    const Result<QVariant> value = metadataOfText(property, text.mid(equals + 1), QLocale::c());
    if (!value)
        return fail(QStringLiteral("%1: %2").arg(name, value.error().text));
    return Setting{property, *value};
}

Result<MetadataClearing> clearingOf(const std::string &argument)
{
    const QString name = QString::fromStdString(argument);
    QStringList names;
    for (const MetadataClearingRow &row : metadataClearings()) {
        if (name == row.name)
            return row.clearing;
        names.append(row.name);
    }
    return fail(
        QStringLiteral("there is no group \"%1\" to clear").arg(name) +
        didYouMean(name, names, QStringLiteral("; the groups are ") + names.join(QLatin1String(", "))));
}

} // namespace

Result<MetadataEdit> metadataEditOf(const SaveOptions &options)
{
    std::vector<MetadataClearing> clearings;
    for (const std::string &argument : options.cleared) {
        const Result<MetadataClearing> clearing = clearingOf(argument);
        if (!clearing)
            return tl::unexpected(clearing.error());
        clearings.push_back(*clearing);
    }
    std::vector<Setting> settings;
    for (const std::string &argument : options.metadata) {
        const Result<Setting> setting = settingOf(argument);
        if (!setting)
            return tl::unexpected(setting.error());
        settings.push_back(*setting);
    }
    if (clearings.empty() && settings.empty())
        return MetadataEdit();
    return [clearings, settings](ImageMetadata &metadata) {
        for (const MetadataClearing clearing : clearings)
            clearMetadata(metadata, clearing);
        for (const Setting &setting : settings)
            metadata.setValue(setting.property, setting.value);
    };
}

} // namespace plexa
