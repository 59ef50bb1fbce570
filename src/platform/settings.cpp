// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"

#include "platform/applicationname.h"
#include "platform/userdefaults.h"

#include <QDir>
#include <QStandardPaths>

namespace plexa
{
namespace
{

/// A folder of the program's name in the user's pictures. A system without a folder for pictures reports
/// none, or the home folder in its place.
QString defaultSavingDirectory()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (pictures.isEmpty() || QDir(pictures) == QDir::home())
        return QDir::homePath() + QStringLiteral("/Pictures");
    return pictures + QLatin1Char('/') + applicationName();
}

} // namespace

void registerDefaults(UserDefaults &defaults)
{
    QHash<QString, QVariant> registered;
#define TEXT(text) QVariant(QStringLiteral(text))
#define NONE QVariant()
#define PICTURES QVariant(defaultSavingDirectory())
#define PLEXA_SETTING_ROW(name, value) registered.insert(settings::name, value);
    PLEXA_SETTINGS(PLEXA_SETTING_ROW)
#undef PLEXA_SETTING_ROW
#undef PICTURES
#undef NONE
#undef TEXT
    defaults.registerDefaults(registered);
}

} // namespace plexa
