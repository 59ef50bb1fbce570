// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/bulletinselection.h"
#include "bulletin/feeddownload.h"

#include <QObject>

namespace plexa
{

class UserDefaults;

/// The news of the maker: fetches the feed, chooses a bulletin, and remembers which ones were shown and which
/// ones the user does not want to see again. A failure is only logged. Main thread.
class BulletinFeed final : public QObject
{
    Q_OBJECT

public:
    /// The feed on the maker's web server.
    static QUrl feedAddress();

    /// @param defaults  outlive this object
    /// @param address  of the feed; nothing is fetched from an empty one
    explicit BulletinFeed(UserDefaults &defaults, const QUrl &address = feedAddress(),
                          const DownloadLimits &limits = {});

    /// Fetches the feed, unless a bulletin was shown within the last day. Emits bulletinChosen() if there is
    /// a bulletin to show.
    void showBulletinIfRequired();

    /// Counts a showing of the bulletin.
    void bulletinWasShown(const Bulletin &bulletin);

    /// Never chooses the bulletin again, if it allows that.
    void suppress(const Bulletin &bulletin);

Q_SIGNALS:
    /// @param bulletin  has a page
    void bulletinChosen(const plexa::Bulletin &bulletin);

private:
    void choose(const QByteArray &feed);
    BulletinAudience audience() const;

    UserDefaults &m_defaults;
    const QUrl m_address;
    const DownloadLimits m_limits;
};

} // namespace plexa
