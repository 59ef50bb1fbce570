// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/appcontroller.h"
#include "app/appdelegate.h"
#include "app/sessionrecord.h"
#include "platform/userdefaults.h"
#include "presets/presetsstore.h"
#include "ui/bulletin/news.h"
#include "ui/window/logoutinhibitor.h"
#include "ui/window/mainwindow.h"
#include "ui/window/messageboxalerts.h"

#include <QObject>

class QSessionManager;

namespace plexa
{

class ApplicationService;

/// The action of the desktop file, and the option of the command line.
inline constexpr char kAddPhotosAction[] = "add-photos";

/// The program with its window: creates and connects the objects, launches and quits.
class DesktopApplication final : public QObject
{
    Q_OBJECT

public:
    /// @param service  outlives this object
    /// @param feeds  where news come from
    explicit DesktopApplication(ApplicationService &service,
                                const News::Addresses &feeds = News::Addresses::ofTheMaker());
    ~DesktopApplication() override;

    /// Asks for the agreement to the license at the first start. As for launch(), call it from the event
    /// loop. @return false if the user wants to quit
    bool hasAgreement();

    /// Shows the window and opens the files. Call it from the event loop: it may ask questions, and only in
    /// the loop can terminate() end the program meanwhile.
    void launch(const QStringList &paths);

    /// Carries out an action of the desktop file: shows the window and asks for photos. Ignores other names.
    void runAction(const QString &name);

    /// Quits without a question; copies that were begun are completed.
    void terminate();

    MainWindow &window() { return m_window; }
    AppController &controller() { return m_controller; }

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    bool mayClose();
    bool mayQuit();
    bool wantsToKeepRunning();
    void quit();
    void sessionEnds(QSessionManager &manager);
    void windowClosed();
    void reportRefused(const QStringList &addresses);

    ApplicationService &m_service;
    bool m_hasPresets = false; // they are read
    bool m_isQuitting = false;
    UserDefaults m_defaults;
    MessageBoxAlerts m_alerts;
    FontCatalog m_fonts;
    LocaleFormat m_locale;
    PixelCache m_cache;
    ByteBudget m_budget;
    PhotoServices m_photos;
    PresetsStore m_store;
    AppController m_controller;
    AppDelegate m_delegate;
    MainWindow m_window;
    SessionRecord m_session;
    News m_news;
    LogoutInhibitor m_logoutInhibitor;
};

} // namespace plexa
