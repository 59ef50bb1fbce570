// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/presetfiles.h"

#include "cli/messages.h"
#include "platform/applicationname.h"

namespace plexa
{

Result<SavingPresetList> savingPresetsIn(const QString &path)
{
    QByteArray errors;
    ReadCode code{};
    auto presets = SavingPreset::readObjectsFromFile(path, applicationNameWithCompany(true, false, true),
                                                     code, [&](const QByteArray &line) { errors += line; });
    if (!presets)
        return fail(QStringLiteral("it is no file of saving presets: %1")
                        .arg(onOneLine(QString::fromUtf8(errors.trimmed()))));
    return std::move(*presets);
}

QString storedPresetsFile(PresetsStore::Kind kind)
{
    return PresetsStore::listOrExamplesFile(kind, PresetsStore::Places::own());
}

} // namespace plexa
