// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/words.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

namespace plexa::test
{

/// The result of a program run.
struct ProgramRun {
    int status =
        -1; ///< exit status; -1 when the program could not start, crashed or took longer than allowed
    QByteArray out;
    QByteArray err;
};

/// Runs a program and waits for its end, at most five minutes.
inline ProgramRun runProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    const bool hasEnded = process.waitForFinished(300'000) && process.exitStatus() == QProcess::NormalExit;
    return {hasEnded ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

/// Runs a program. @return its standard output; empty when it failed
inline QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    const ProgramRun run = runProgram(program, arguments);
    return run.status == 0 ? run.out : QByteArray();
}

/// The same with the command as one text: outputOf("exiftool -s3 -b %1", path). See words().
template<class... Values>
QByteArray outputOf(const char *command, const Values &...values)
{
    const QStringList all = words(command, values...);
    return outputOf(all.first(), all.mid(1));
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

/// Runs ImageMagick's converter: magick("-size 90x60 plasma:red-blue %1", path).
template<class... Values>
QByteArray magick(const char *arguments, const Values &...values)
{
    return outputOf(magickConvert(), words(arguments, values...));
}

} // namespace plexa::test

/// Skips the test function where one of these programs ("avifenc heif-enc") is not installed.
#define PLEXA_NEEDS_PROGRAMS(names)                                                                          \
    for (const QString &program : plexa::test::words(names)) {                                               \
        if (plexa::test::firstProgram({program}).isEmpty())                                                  \
            QSKIP(qPrintable(program + QStringLiteral(" is not installed")));                                \
    }

/// Skips the test function where ImageMagick is not installed.
#define PLEXA_NEEDS_MAGICK()                                                                                 \
    do {                                                                                                     \
        if (plexa::test::magickConvert().isEmpty())                                                          \
            QSKIP("ImageMagick is not installed");                                                           \
    } while (false)
