// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/identity.h"
#include "platform/workspace.h"
#include "ui/widgets/lightappearance.h"
#include "ui/widgets/translations.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"
#include "ui/window/terminationsignals.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>
#include <QLocale>

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

struct Arguments {
    QStringList paths; ///< absolute
    bool addsPhotos = false;
};

/// Ends the program if the command line asks for help.
Arguments argumentsOf(const QCoreApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QCoreApplication::translate("main", "Watermarks photographs in batches."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption addPhotos(
        QString::fromLatin1(plexa::kAddPhotosAction),
        QCoreApplication::translate("main",
                                    "Ask for photos to add, in the window that is open or a new one."));
    parser.addOption(addPhotos);
    parser.addPositionalArgument(QStringLiteral("files"),
                                 QCoreApplication::translate("main", "Photos and folders of photos to open."),
                                 QStringLiteral("[files...]"));
    parser.process(application);
    Arguments arguments;
    arguments.addsPhotos = parser.isSet(addPhotos);
    for (const QString &file : parser.positionalArguments()) {
        const QString path = QUrl(file).scheme().isEmpty() ? QString() : plexa::localPathOf(QUrl(file));
        arguments.paths.append(path.isEmpty() ? QFileInfo(file).absoluteFilePath() : path);
    }
    return arguments;
}

/// Sends the files and the action to the process that has the name. @return false if it does not answer
bool handOver(const Arguments &arguments)
{
    using plexa::ApplicationService;
    return ApplicationService::handOver(arguments.paths) &&
           (!arguments.addsPhotos ||
            ApplicationService::handOverAction(QString::fromLatin1(plexa::kAddPhotosAction)));
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
        plexa::installTranslations(QLocale::system().uiLanguages());
        argumentsOf(application); // ends the program
    }
    QApplication application(argc, argv);
    plexa::installTranslations(QLocale::system().uiLanguages());
    plexa::setLightAppearance(application);
    QGuiApplication::setWindowIcon(
        QIcon(QStringLiteral(":/icons/%1.svg").arg(QGuiApplication::desktopFileName())));
    const Arguments arguments = argumentsOf(application);

    plexa::ApplicationService service;
    if (!service.registerOnBus()) {
        if (handOver(arguments))
            return 0;
        service.registerOnBus(); // the other process may have ended meanwhile
    }
    plexa::DesktopApplication program(service);
    const plexa::TerminationSignals terminations;
    QObject::connect(&terminations, &plexa::TerminationSignals::received, &program,
                     &plexa::DesktopApplication::terminate);
    // In the event loop: a signal must be able to end the program during their questions.
    const auto begin = [&program, &arguments] {
        if (!program.hasAgreement()) {
            QCoreApplication::quit();
            return;
        }
        program.launch(arguments.paths);
        if (arguments.addsPhotos)
            QMetaObject::invokeMethod(
                &program, [&program] { program.runAction(QString::fromLatin1(plexa::kAddPhotosAction)); },
                Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(&program, begin, Qt::QueuedConnection);
    return QApplication::exec();
}
