// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/completion.h"
#include "cli/helpformat.h"
#include "cli/inspectcommand.h"
#include "cli/interruption.h"
#include "cli/listcommands.h"
#include "cli/manualpage.h"
#include "cli/messages.h"
#include "cli/presetscommand.h"
#include "cli/savecommand.h"
#include "cli/saveoptions.h"
#include "cli/usageerrors.h"
#include "platform/applicationname.h"
#include "platform/bytebudget.h"

#include <QFile>
#include <QGuiApplication>

#include <CLI/CLI.hpp>

#include <csignal>
#include <cstdio>
#include <new>
#include <string_view>

namespace
{

/// Keeps messages of the libraries to developers out of the messages about photos.
void printFaultsOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        plexa::printMessage(text);
}

/// The first argument that is an option with "=" and nothing after it, to which the parser would assign the
/// next argument; null if there is none.
const char *emptyAssignment(int argc, char *const *argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument == "--")
            break;
        if (argument.starts_with("--") && argument.find('=') == argument.size() - 1)
            return argv[i];
    }
    return nullptr;
}

/// --version, and --manual for the build of the manual page.
void addProgramFlags(CLI::App &program)
{
    using namespace plexa;
    program.set_version_flag("--version",
                             "plexa-cli " + QCoreApplication::applicationVersion().toStdString());
    program
        .add_flag_callback(
            "--manual",
            [&program] {
                printLine(stdout, manualPage(program).chopped(1));
                throw CLI::Success();
            },
            "Print the manual page")
        ->group(""); // hidden
}

/// For the scripts of the shells. The parser would refuse words under way.
constexpr std::string_view kCompleteOption = "--complete";

void completeWords(const CLI::App &program, int argc, char **argv)
{
    QStringList words;
    for (int i = 2; i < argc; ++i)
        words.append(QFile::decodeName(argv[i]));
    plexa::printCompletions(plexa::completionsOf(program, words));
}

int run(int argc, char **argv)
{
    using namespace plexa;
    CLI::App program("Watermarks photographs in batches.", "plexa-cli");
    program.require_subcommand(1);
    program.formatter(helpFormat());

    SaveOptions save;
    CLI::App *saveCommand = addSaveCommand(program, save);
    InspectOptions inspect;
    CLI::App *inspectCommand = addInspectCommand(program, inspect);
    PresetsOptions presets;
    CLI::App *presetsCommand = addPresetsCommand(program, presets);
    ListOptions fields;
    CLI::App *fieldsCommand = addFieldsCommand(program, fields);
    ListOptions tokens;
    CLI::App *tokensCommand = addTokensCommand(program, tokens);
    addProgramFlags(program);
    if (argc > 1 && argv[1] == kCompleteOption) {
        completeWords(program, argc, argv);
        return kAllDone;
    }
    if (const char *const empty = emptyAssignment(argc, argv)) {
        printMessage(
            QStringLiteral("%1 there is nothing after the equal sign").arg(QFile::decodeName(empty)));
        return kWrongUsage;
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        if (error.get_exit_code() != 0) {
            printMessage(usageErrorText(program, error));
            return kWrongUsage;
        }
        program.exit(error); // prints help or the version
        return kAllDone;
    }
    if (*saveCommand)
        return runSave(save);
    if (*inspectCommand)
        return runInspect(inspect);
    if (*presetsCommand)
        return runPresets(presets);
    if (*fieldsCommand)
        return runFields(fields);
    if (*tokensCommand)
        return runTokens(tokens);
    return kWrongUsage;
}

} // namespace

int main(int argc, char **argv)
{
    // Everything works without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(printFaultsOnly);
    plexa::saveAddressSpace();
    QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(plexa::companyName());
    QCoreApplication::setApplicationName(plexa::applicationName());
    QCoreApplication::setApplicationVersion(plexa::applicationVersion());
    std::signal(SIGXFSZ, SIG_IGN); // writing beyond the file-size limit then fails as on a full disk
    int status = plexa::kSomethingFailed;
    try {
        status = run(argc, argv);
    } catch (const std::bad_alloc &) {
        std::fputs("plexa-cli: there is not enough memory\n", stderr);
    }
    if (plexa::isInterrupted())
        status = plexa::kInterrupted;
    // Lost results are a failure, too.
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fputs("plexa-cli: the results could not be written to the standard output\n", stderr);
        return status == plexa::kAllDone ? plexa::kSomethingFailed : status;
    }
    return status;
}
