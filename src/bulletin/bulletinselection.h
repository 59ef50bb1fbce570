// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QDate>
#include <QHash>
#include <QStringList>
#include <QUrl>

#include <array>
#include <optional>

namespace plexa
{

/// A news page that the maker publishes for some users.
struct Bulletin {
    QString bulletinID;
    QUrl page; ///< http or https; empty if the bulletin has no page for this user
    bool allowSuppress = false;
};

/// Major, minor, patch.
using SystemVersion = std::array<int, 3>;

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

/// The version that a text begins with: "22.04" is 22, 4, 0. A part without digits is 0.
SystemVersion systemVersionOf(const QString &text);

/// The bulletin to show now: of those whose conditions hold, the first one of the lowest priority value. A
/// bulletin without a priority comes after all others. A condition with a value of the wrong type or form
/// holds. Any thread.
/// @param feed  JSON from the net, of any content
/// @return no bulletin if none is eligible; if the feed is unreadable, the line for the log
Result<std::optional<Bulletin>> bulletinToShowFromJSONData(const QByteArray &feed,
                                                           const BulletinAudience &audience);

} // namespace plexa
