// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/identity.h"
#include "ui/widgets/lightappearance.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"
#include "ui/window/terminationsignals.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>

#include <algorithm>
#include <set>
#include <string_view>

namespace
{

void nameApplication()
{
    QCoreApplication::setOrganizationName(plexa::companyName());
    QCoreApplication::setApplicationName(plexa::applicationName());
    QCoreApplication::setApplicationVersion(plexa::applicationVersion());
    QGuiApplication::setDesktopFileName(QString::fromLatin1(plexa::identity::kApplicationId));
}

/// The absolute paths of the files on the command line. Ends the program if it asks for help.
QStringList filesToOpen(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Watermarks photographs in batches."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QCoreApplication::translate("main", "Photos and folders of photos to open."),
                                 QStringLiteral("[files...]"));
    parser.process(application);
    QStringList paths;
    for (const QString &file : parser.positionalArguments()) {
        const QUrl url(file);
        paths.append(url.isLocalFile() ? url.toLocalFile() : QFileInfo(file).absoluteFilePath());
    }
    return paths;
}

/// Whether the program only prints its help or version, which needs no display.
bool isQuestion(int argc, char **argv)
{
    const std::set<std::string_view> questions{"-h", "--help", "--help-all", "-v", "--version"};
    return std::any_of(argv + 1, argv + argc, [&](const char *word) { return questions.contains(word); });
}

} // namespace

int main(int argc, char **argv)
{
    nameApplication();
    if (isQuestion(argc, argv)) {
        const QCoreApplication application(argc, argv);
        filesToOpen(application); // ends the program
    }
    QApplication application(argc, argv);
    plexa::setLightAppearance(application);
    QGuiApplication::setWindowIcon(
        QIcon(QStringLiteral(":/icons/%1.svg").arg(QGuiApplication::desktopFileName())));
    const QStringList paths = filesToOpen(application);

    plexa::ApplicationService service;
    if (!service.registerOnBus()) {
        if (plexa::ApplicationService::handOver(paths))
            return 0;
        service.registerOnBus(); // the other process may have ended meanwhile
    }
    plexa::DesktopApplication program(service);
    const plexa::TerminationSignals terminations;
    QObject::connect(&terminations, &plexa::TerminationSignals::received, &program,
                     &plexa::DesktopApplication::terminate);
    program.launch(paths);
    return QApplication::exec();
}
