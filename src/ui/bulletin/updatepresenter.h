// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/releaseselection.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QProgressDialog;

namespace plexa
{

class Alerts;
class ReleaseFeed;
class UpdateWindow;

/// Shows the results of checks for updates: the window of a newer version; that there is none, or a failure,
/// if the user asked.
class UpdatePresenter final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        ReleaseFeed &feed;
        Alerts &alerts;
        QWidget &mainWindow;
        std::function<void(const QUrl &)> openUrl; ///< in the browser
    };

    /// @param services  outlive this object
    explicit UpdatePresenter(const Services &services);
    ~UpdatePresenter() override;

    /// Checks for an update, with a dialog that cancels.
    void check();

private:
    void show(const QList<Release> &releases);
    void showFailure();

    const Services m_services;
    QPointer<QProgressDialog> m_progress;
    QPointer<UpdateWindow> m_window;
};

} // namespace plexa
