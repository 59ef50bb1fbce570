// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/alerts.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

namespace plexa
{

/// A question would change what is measured.
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
