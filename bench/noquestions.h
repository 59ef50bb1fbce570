// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace plexa
{

/// Prints a question and ends the program: waiting for an answer would change the measurement.
class NoQuestions final : public Alerts
{
public:
    AlertAnswer run(const Alert &alert) override
    {
        std::fprintf(stderr, "%s\n%s\n", qPrintable(alert.title), qPrintable(alert.text));
        std::exit(EXIT_FAILURE);
    }
};

} // namespace plexa
