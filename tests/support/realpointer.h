// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QApplication>
#include <QProcess>
#include <QTest>
#include <QTimer>

#include <functional>

namespace plexa::test
{

/// The pointer of the X server. Each step waits until the step before has had its effect; the steps go on in
/// the event loops that a drag and its data run.
class RealPointer
{
public:
    void moveTo(QPoint screenPoint)
    {
        add({QStringLiteral("mousemove"), QString::number(screenPoint.x()),
             QString::number(screenPoint.y())});
    }
    /// Of the left button. Continues when this program has received it.
    void press()
    {
        add({QStringLiteral("mousedown"), QStringLiteral("1")});
        waitFor([] { return QApplication::mouseButtons() == Qt::LeftButton; });
    }
    void release() { add({QStringLiteral("mouseup"), QStringLiteral("1")}); }
    void waitFor(const std::function<bool()> &condition) { m_steps.append({{}, condition}); }

    /// @return false: a step has had no effect within a minute
    bool play()
    {
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &timer, [this] { goOn(); });
        timer.start(10);
        return QTest::qWaitFor([this] { return m_steps.isEmpty() && !isMoving(); }, 60'000);
    }

private:
    struct Step {
        QStringList arguments;
        std::function<bool()> condition;
    };

    void add(const QStringList &arguments) { m_steps.append({arguments, {}}); }
    bool isMoving() const { return m_program.state() != QProcess::NotRunning; }
    void goOn()
    {
        if (m_steps.isEmpty() || isMoving() || (m_steps.first().condition && !m_steps.first().condition()))
            return;
        const Step step = m_steps.takeFirst();
        if (!step.condition)
            m_program.start(QStringLiteral("xdotool"), step.arguments);
    }

    QList<Step> m_steps;
    QProcess m_program;
};

/// Runs the slots of a test on an X server of its own, where nothing else happens. For main().
template<class Test>
int runOnXServer(int argc, char **argv)
{
    QProcess server;
    server.start(QStringLiteral("Xvfb"),
                 QStringLiteral("-displayfd 1 -screen 0 1280x800x24 -nolisten tcp").split(QLatin1Char(' ')));
    if (!server.waitForReadyRead(60'000))
        qFatal("Xvfb does not start");
    qputenv("DISPLAY", ":" + server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    int result = 0;
    {
        QApplication application(argc, argv);
        Test test;
        result = QTest::qExec(&test, argc, argv);
    }
    server.terminate();
    server.waitForFinished();
    return result;
}

} // namespace plexa::test
