// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/feeddownload.h"
#include "bulletin/releaseselection.h"

#include <QObject>

#include <memory>

namespace plexa
{

class UserDefaults;

/// Finds out whether the maker has released a newer version. The server learns nothing about the user. Main
/// thread.
class ReleaseFeed final : public QObject
{
    Q_OBJECT

public:
    /// The feed on the maker's web server.
    static QUrl feedAddress();

    /// @param defaults  outlive this object
    /// @param address  of the feed; nothing is fetched from an empty one
    explicit ReleaseFeed(UserDefaults &defaults, const QUrl &address = feedAddress(),
                         const DownloadLimits &limits = {});
    ~ReleaseFeed() override;

    /// Fetches the feed if the user allows automatic checks and the last answer is at least a day old. Does
    /// not report failures, except to the log, nor a version that the user has skipped.
    void checkIfRequired();

    /// Fetches the feed now and reports in any case.
    void check();

    /// Ends a check without a report.
    void cancel();

    /// From now on checkIfRequired() reports only later versions.
    void skip(const QVersionNumber &version);

Q_SIGNALS:
    /// @param releases  newer than the program, the newest first; none only after check()
    void checked(const QList<plexa::Release> &releases);
    /// Only after check().
    void failed(const QString &reason);

private:
    void fetch(bool isAsked);
    void choose(const QByteArray &feed, bool isAsked);
    void report(const Result<QList<Release>> &releases, bool isAsked);

    UserDefaults &m_defaults;
    const QUrl m_address;
    const DownloadLimits m_limits;
    std::unique_ptr<QObject> m_check; // owns the one that is under way
};

} // namespace plexa
