// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/files.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"
#include "support/words.h"

#include <QProcess>
#include <QTest>

#include <memory>

namespace plexa::test
{

/// The result of a run of the program.
struct Outcome {
    int status = -1; ///< -1: it could not start, crashed or took longer than allowed
    QByteArray out;
    QByteArray err;
};

inline QString program()
{
    return qEnvironmentVariable("PLEXA_BINARY_DIR") + QStringLiteral("/bin/plexa-cli");
}

inline Outcome run(const QStringList &arguments, const QString &outputFile = {})
{
    QProcess process;
    process.setStandardOutputFile(outputFile);
    process.start(program(), arguments);
    if (!process.waitForFinished(300'000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

/// The arguments as one text, see words(): run("save --text x %1", folder).
template<class... Values>
Outcome run(const char *arguments, const Values &...values)
{
    return run(words(arguments, values...));
}

/// A folder with two photos, "in/a.png" (120 x 200) and "in/b.jpg" (320 x 200), to run the program on.
class ProgramRuns
{
protected:
    void startAnew()
    {
        m_folder = std::make_unique<TestFolder>();
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("in")));
        QVERIFY(smoothPicture({320, 200}).save(path("in/b.jpg")));
        QVERIFY(smoothPicture({120, 200}).save(path("in/a.png")));
    }

    QString path(const char *name) const { return m_folder->path(QString::fromUtf8(name)); }

    void write(const char *name, const QByteArray &contents) const
    {
        QVERIFY(writeFile(path(name), contents));
    }

    std::unique_ptr<TestFolder> m_folder;
};

} // namespace plexa::test
