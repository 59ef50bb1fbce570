// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/testfolder.h"

#include <cstdlib>

// This file is part of every test program. It fixes the environment before main() starts, so that a program
// gives the same results under CTest and when started by hand from any folder.

#define PLEXA_TSAN_OPTIONS                                                                                   \
    "suppressions=" PLEXA_SOURCE_DIR "/tests/support/tsan.supp:halt_on_error=1:die_after_fork=0"
#define PLEXA_LSAN_OPTIONS "suppressions=" PLEXA_SOURCE_DIR "/tests/support/lsan.supp"

namespace
{

__attribute__((constructor)) void fixEnvironment()
{
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("TZ", "Europe/Berlin", 1);
    setenv("LC_ALL", "C.UTF-8", 1);
    setenv("LANGUAGE", "en_US", 1);
    // For the programs that a test starts.
    setenv("TSAN_OPTIONS", PLEXA_TSAN_OPTIONS, 0);
    setenv("LSAN_OPTIONS", PLEXA_LSAN_OPTIONS, 0);
}

} // namespace

// The sanitizers start before any constructor of this program runs and ask these functions.
extern "C" {
__attribute__((used, visibility("default"))) const char *__tsan_default_options()
{
    return PLEXA_TSAN_OPTIONS;
}
__attribute__((used, visibility("default"))) const char *__lsan_default_options()
{
    return PLEXA_LSAN_OPTIONS;
}
}

namespace plexa::test
{

QString sourceFolder()
{
    return QStringLiteral(PLEXA_SOURCE_DIR);
}

QString builtProgram(const QString &name)
{
    return QStringLiteral(PLEXA_BINARY_DIR "/bin/") + name;
}

} // namespace plexa::test
