// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/bulletinselection.h"

#include <QObject>

class QProcess;
class QWidget;

namespace plexa
{

class BulletinFeed;

/// Shows the bulletins that a feed chooses, each in a process of its own: a browser engine in this one would
/// cost memory until the program ends, and it ends its process where its sandbox does not work.
class BulletinPresenter final : public QObject
{
    Q_OBJECT

public:
    /// @param feed, mainWindow  outlive this object
    BulletinPresenter(BulletinFeed &feed, const QWidget &mainWindow);
    /// @param program  shows the window instead of plexa-bulletin
    BulletinPresenter(BulletinFeed &feed, const QWidget &mainWindow, const QString &program);
    /// Closes the window of the bulletin.
    ~BulletinPresenter() override;

    /// Closes the window of an earlier bulletin.
    void showBulletin(const Bulletin &bulletin);
    void closeBulletin();

private:
    void readReports(const Bulletin &bulletin);

    BulletinFeed &m_feed;
    const QWidget &m_mainWindow;
    const QString m_program;
    QProcess *m_process = nullptr; // while a bulletin is shown; owned by this object
};

} // namespace plexa
