// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/bulletinfeed.h"
#include "bulletin/releasefeed.h"
#include "ui/bulletin/bulletinpresenter.h"
#include "ui/bulletin/updatepresenter.h"

#include <QTimer>

#include <chrono>
#include <functional>

namespace plexa
{

class Alerts;

/// Looks for news of the maker while the user works with the program: for a bulletin shortly after the start,
/// for updates once a day. Main thread.
class News final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        UserDefaults &defaults;
        Alerts &alerts;
        QWidget &mainWindow;
        std::function<void(const QUrl &)> openUrl; ///< in the browser
    };

    /// Of the feeds; nothing is fetched from an empty address.
    struct Addresses {
        QUrl bulletins;
        QUrl releases;

        static Addresses ofTheMaker() { return {BulletinFeed::feedAddress(), ReleaseFeed::feedAddress()}; }
    };

    /// @param services  outlive this object
    News(const Services &services, const Addresses &addresses);

    /// Called once, after the launch. Nothing is fetched before the time has passed, and only while the main
    /// window is in front of the user.
    /// @param untilUpdates  time until the first check for updates
    void begin(std::chrono::milliseconds untilUpdates = std::chrono::seconds(10));

    void checkForUpdates() { m_updatePresenter.check(); }

private:
    void lookForBulletin();
    void lookForUpdates();

    const QWidget &m_mainWindow;
    BulletinFeed m_bulletins;
    BulletinPresenter m_bulletinPresenter;
    ReleaseFeed m_releases;
    UpdatePresenter m_updatePresenter;
    QTimer m_updateTimer;
};

} // namespace plexa
