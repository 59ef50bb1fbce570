// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "support/testenvironment.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QTest>

#include <memory>

namespace plexa::test
{

/// What a run of the program left behind.
struct Outcome {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

inline QString program()
{
    return builtProgram(QStringLiteral("plexa-cli"));
}

inline Outcome run(const QStringList &arguments)
{
    QProcess process;
    process.start(program(), arguments);
    if (!process.waitForFinished(300'000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

inline QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

inline QImage gradient(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 200 / size.width(), y * 200 / size.height(), 90));
    }
    return image;
}

/// A folder with two photos to run the program on.
class ProgramRuns
{
protected:
    void startAnew()
    {
        m_folder = std::make_unique<TestFolder>();
        QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("in")));
        QVERIFY(gradient({320, 200}).save(m_folder->path(QStringLiteral("in/b.jpg"))));
        QVERIFY(gradient({120, 200}).save(m_folder->path(QStringLiteral("in/a.png"))));
    }

    void write(const QString &name, const QByteArray &contents) const
    {
        QFile file(m_folder->path(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }

    std::unique_ptr<TestFolder> m_folder;
};

} // namespace plexa::test
