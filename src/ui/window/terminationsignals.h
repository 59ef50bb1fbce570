// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace plexa
{

/// Reports the first SIGTERM, SIGINT or SIGHUP to the event loop; the second one of a kind ends the program
/// at once. One object in a program, created on the main thread.
class TerminationSignals final : public QObject
{
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();

private:
    int m_readEnd = -1;
};

} // namespace plexa
