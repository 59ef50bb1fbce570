// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/feedvalues.h"
#include "platform/result.h"

#include <QMetaType>
#include <QUrl>
#include <QVersionNumber>

namespace plexa
{

/// A version of this program that the maker has released.
struct Release {
    QVersionNumber version;
    QUrl page;     ///< https; where the user downloads it
    QString notes; ///< what is new, as plain text; may be empty
};

/// The program and the system that releases are compared with.
struct ReleaseAudience {
    QVersionNumber currentVersion;
    SystemVersion systemVersion{};
    QStringList preferredLanguages; ///< "de-AT", the most preferred first
};

/// The releases that are newer than the program and run on the system, the newest first. Entries without a
/// version or a page are passed over. Any thread.
/// @param feed  JSON from the net, of any content
/// @return the reason if the feed is unreadable
Result<QList<Release>> newerReleases(const QByteArray &feed, const ReleaseAudience &audience);

} // namespace plexa
