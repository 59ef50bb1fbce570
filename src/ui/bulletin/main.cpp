// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "platform/identity.h"
#include "ui/bulletin/bulletinreports.h"
#include "ui/bulletin/bulletinwindow.h"
#include "ui/widgets/lightappearance.h"
#include "ui/widgets/translations.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QIcon>
#include <QLocale>

#include <sys/prctl.h>

#include <csignal>
#include <cstdio>

namespace
{

struct Arguments {
    QUrl page;
    QPoint center;
    bool allowSuppress = false;
};

Arguments readArguments(const QCoreApplication &application)
{
    const QCommandLineOption center(QStringLiteral("center"), QStringLiteral("Center of the window."),
                                    QStringLiteral("x,y"));
    const QCommandLineOption allowSuppress(QStringLiteral("allow-suppress"),
                                           QStringLiteral("Offer not to show the bulletin again."));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows a page of news. Plexa starts this program; it is not for use by hand."));
    parser.addHelpOption();
    parser.addOptions({center, allowSuppress});
    parser.addPositionalArgument(QStringLiteral("page"), QStringLiteral("Address of the page."));
    parser.process(application);
    const QStringList point = parser.value(center).split(u',');
    return {QUrl(parser.positionalArguments().value(0)),
            {point.value(0).toInt(), point.value(1).toInt()},
            parser.isSet(allowSuppress)};
}

void report(const char *line)
{
    std::puts(line);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    prctl(PR_SET_PDEATHSIG, SIGTERM); // the window must not outlive a program that crashed
    QCoreApplication::setOrganizationName(plexa::companyName());
    QCoreApplication::setApplicationName(plexa::applicationName());
    QGuiApplication::setDesktopFileName(QString::fromLatin1(plexa::identity::kApplicationId));
    QApplication application(argc, argv);
    plexa::installTranslations(QLocale::system().uiLanguages());
    plexa::setLightAppearance(application);
    QGuiApplication::setWindowIcon(
        QIcon(QStringLiteral(":/icons/%1.svg").arg(QGuiApplication::desktopFileName())));
    const Arguments arguments = readArguments(application);
    plexa::BulletinWindow window(arguments.page, arguments.allowSuppress);
    QObject::connect(&window, &plexa::BulletinWindow::closed, &application, [](bool isSuppressed) {
        if (isSuppressed)
            report(plexa::bulletinreports::kSuppressed);
    });
    window.move(arguments.center - QRect(QPoint(), plexa::BulletinWindow::kSize).center());
    window.show();
    window.raise();
    window.activateWindow();
    report(plexa::bulletinreports::kShown);
    return QApplication::exec();
}
