// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/feedvalues.h"
#include "platform/result.h"

#include <QDate>
#include <QHash>
#include <QStringList>
#include <QUrl>

#include <optional>

namespace plexa
{

/// A news page that the maker publishes for some users.
struct Bulletin {
    QString bulletinID;
    QUrl page; ///< http or https; empty if the bulletin has no page for this user
    bool allowSuppress = false;
};

/// The user, the program and the system, which the conditions of a bulletin are compared with.
struct BulletinAudience {
    qint64 runNumber = 0;
    QString bundleID;
    SystemVersion systemVersion{};
    QDate today;
    QHash<QString, qint64> timesShown; ///< by bulletin ID
    QStringList suppressed;            ///< bulletin IDs
    QStringList preferredLanguages;    ///< "de-AT", the most preferred first
};

/// The bulletin to show now: of those whose conditions hold, the first one of the lowest priority value. A
/// bulletin without a priority comes after all others. A condition with a value of the wrong type or form
/// holds. Any thread.
/// @param feed  JSON from the net, of any content
/// @return no bulletin if none is eligible; if the feed is unreadable, the line for the log
Result<std::optional<Bulletin>> bulletinToShowFromJSONData(const QByteArray &feed,
                                                           const BulletinAudience &audience);

} // namespace plexa
