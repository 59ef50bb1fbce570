// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

namespace plexa::test
{

/// The root folder of the source tree.
QString sourceFolder();

/// The path of a program of this build, such as "plexa-cli".
QString builtProgram(const QString &name);

/// A private folder for one test, with a blank and a non-ASCII letter in its name, and the home and XDG
/// folders inside it. Create it before anything reads a setting.
class TestFolder
{
public:
    TestFolder()
        : m_folder(QDir::tempPath() + QStringLiteral("/plexa test \u00e4 XXXXXX"))
    {
        for (const char *name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(name, path(QLatin1String(name)).toUtf8());
        // Qt reads the variable once only: settings of a second folder would go to the first one.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("XDG_CONFIG_HOME"));
    }

    bool isValid() const { return m_folder.isValid(); }
    QString path(const QString &name = {}) const { return m_folder.filePath(name); }
    QString path(const char *name) const { return path(QString::fromUtf8(name)); }

private:
    QTemporaryDir m_folder;
};

} // namespace plexa::test
