// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/windowcommands.h"

#include "app/appcontroller.h"
#include "platform/applicationname.h"
#include "platform/settings.h"
#include "ui/browser/imagebrowserviewcontroller.h"
#include "ui/browser/imagelistpane.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/imagechooser.h"
#include "ui/window/mainwindow.h"
#include "ui/window/preferencesdialog.h"

#include <QMessageBox>
#include <QWhatsThis>

namespace plexa
{

WindowCommands::WindowCommands(MainWindow &window, ImageListPane &imageListPane, CommandActions &actions,
                               AppController &controller, UserDefaults &defaults)
    : QObject(&window)
    , m_window(window)
    , m_imageListPane(imageListPane)
    , m_controller(controller)
    , m_defaults(defaults)
{
    const auto add = [this, &actions](ActionId id, ChooserKind kind) {
        actions.setHandler(id, [this, kind] {
            chooseImages(kind, &m_window, [this](const QStringList &paths) {
                m_controller.gathering().scanImagesAtPaths(paths);
            });
        });
    };
    add(ActionId::AddImages, ChooserKind::Files);
    add(ActionId::AddFolder, ChooserKind::Folder);
    actions.setHandler(ActionId::Find, [this] { m_imageListPane.startSearch(); });
    setWindowHandlers(actions);
}

void WindowCommands::setWindowHandlers(CommandActions &actions)
{
    actions.setHandler(ActionId::CloseWindow, [this] { m_window.close(); });
    actions.setHandler(ActionId::Quit, [this] { Q_EMIT m_window.quitWanted(); });
    actions.setHandler(ActionId::Minimize, [this] { m_window.showMinimized(); });
    actions.setHandler(ActionId::ToggleFullScreen,
                       [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen); });
    actions.setHandler(ActionId::ShowMainWindow, [this] { m_window.present(); });
    actions.setHandler(ActionId::Preferences, [this] { showPreferences(); });
    actions.setHandler(ActionId::ContextHelp, [] { QWhatsThis::enterWhatsThisMode(); });
    actions.setHandler(ActionId::About, [this] { showAbout(); });
}

void WindowCommands::showPreferences()
{
    auto *const dialog = new PreferencesDialog(m_defaults, &m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &PreferencesDialog::settingChanged, this, [this](QLatin1String key) {
        if (key == settings::combineAllAppliedPresetsInImage)
            Q_EMIT m_controller.previewOutdated();
        else if (key == settings::browserShowOriginalOnMouseOver)
            m_imageListPane.browserController().followShowOriginalOnMouseOver();
    });
    dialog->open();
}

void WindowCommands::showAbout()
{
    QMessageBox box(&m_window);
    box.setWindowTitle(tr("About %1").arg(applicationName()));
    box.setIconPixmap(m_window.windowIcon().pixmap(64));
    box.setText(QStringLiteral("%1 %2").arg(applicationName(), applicationVersion()));
    box.setInformativeText(tr("Puts watermarks on photographs in batches.\n\n"
                              "Copyright: the %1 authors. Free software under the GNU General Public "
                              "License, version 3 or later; it comes without any warranty.")
                               .arg(applicationName()));
    box.exec();
}

} // namespace plexa
