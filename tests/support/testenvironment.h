// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace plexa::test
{

/// A private folder for one test, with a blank and a non-ASCII letter in its name, and the XDG folders
/// inside of it. Make it before anything reads a setting.
class TestFolder
{
public:
    TestFolder()
        : m_folder(QDir::tempPath() + QStringLiteral("/plexa test \u00e4 XXXXXX"))
    {
        for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
            qputenv(name, path(QLatin1String(name)).toUtf8());
    }

    bool isValid() const { return m_folder.isValid(); }
    QString path(const QString &name = {}) const { return m_folder.filePath(name); }

private:
    QTemporaryDir m_folder;
};

/// The folder of real photos, or an empty string where there is none: the caller then skips and says so.
inline QString photosFolder()
{
    QString folder = qEnvironmentVariable("PLEXA_PHOTOS");
    if (folder.isEmpty())
        folder = qEnvironmentVariable("PLEXA_SOURCE_DIR") + QStringLiteral("/../shared/photos");
    return QFileInfo(folder).isDir() ? QDir(folder).canonicalPath() : QString();
}

/// Runs a program and waits for it. @return its standard output; empty when it failed
inline QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return {};
    return process.readAllStandardOutput();
}

/// The first of these programs that is installed, else an empty string.
inline QString firstProgram(const QStringList &names)
{
    for (const QString &name : names) {
        const QString path = QStandardPaths::findExecutable(name);
        if (!path.isEmpty())
            return path;
    }
    return {};
}

/// ImageMagick's converter.
inline QString magickConvert()
{
    return firstProgram({QStringLiteral("convert-im6.q16"), QStringLiteral("magick")});
}

} // namespace plexa::test
