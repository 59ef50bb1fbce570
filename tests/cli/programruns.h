// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/files.h"
#include "support/programs.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <memory>

namespace plexa::test
{

inline QString program()
{
    return builtProgram(QStringLiteral("plexa-cli"));
}

/// Runs plexa-cli with the arguments as one text, see words(): run("save --text x %1", folder).
template<class... Values>
ProgramRun run(const char *arguments, const Values &...values)
{
    return runProgram(program(), words(arguments, values...));
}

inline ProgramRun run(const QStringList &arguments)
{
    return runProgram(program(), arguments);
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
