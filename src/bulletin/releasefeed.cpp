// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/releasefeed.h"

#include "platform/applicationname.h"
#include "platform/identity.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"

#include <QDateTime>
#include <QDebug>
#include <QFutureWatcher>
#include <QLocale>
#include <QtConcurrentRun>

namespace plexa
{

QUrl ReleaseFeed::feedAddress()
{
    return QUrl(QString::fromUtf8(identity::kWebSite) + QStringLiteral("/feeds/plexa/releases.json"));
}

ReleaseFeed::ReleaseFeed(UserDefaults &defaults, const QUrl &address, const DownloadLimits &limits)
    : m_defaults(defaults)
    , m_address(address)
    , m_limits(limits)
{
}

ReleaseFeed::~ReleaseFeed() = default;

void ReleaseFeed::checkIfRequired()
{
    const bool isRequired = m_defaults.boolForKey(settings::checksForUpdates) &&
                            !isWithinADay(m_defaults.stringForKey(settings::lastUpdateCheckDate));
    if (isRequired && !m_check && !m_address.isEmpty())
        fetch(false);
}

void ReleaseFeed::check()
{
    fetch(true);
}

void ReleaseFeed::cancel()
{
    m_check.reset();
}

void ReleaseFeed::skip(const QVersionNumber &version)
{
    m_defaults.setObject(settings::skippedVersion, version.toString());
}

void ReleaseFeed::fetch(bool isAsked)
{
    m_check = std::make_unique<QObject>();
    downloadFeed(m_address, m_limits, m_check.get(), [this, isAsked](const Result<QByteArray> &feed) {
        if (feed)
            choose(*feed, isAsked);
        else
            report(tl::unexpected(feed.error()), isAsked);
    });
}

void ReleaseFeed::choose(const QByteArray &feed, bool isAsked)
{
    m_defaults.setObject(settings::lastUpdateCheckDate,
                         QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    const ReleaseAudience audience{QVersionNumber::fromString(applicationVersion()), currentSystemVersion(),
                                   QLocale::system().uiLanguages()};
    using Choice = Result<QList<Release>>;
    auto *const choice = new QFutureWatcher<Choice>(m_check.get());
    connect(choice, &QFutureWatcher<Choice>::finished, this,
            [this, choice, isAsked] { report(choice->result(), isAsked); });
    choice->setFuture(QtConcurrent::run(newerReleases, feed, audience));
}

void ReleaseFeed::report(const Result<QList<Release>> &releases, bool isAsked)
{
    m_check.release()->deleteLater(); // it is the context of this call
    if (!releases) {
        qCritical().noquote() << "ERROR: Failed to check for updates:" << releases.error().text;
        if (isAsked)
            Q_EMIT failed(releases.error().text);
        return;
    }
    const auto skipped = QVersionNumber::fromString(m_defaults.stringForKey(settings::skippedVersion));
    if (isAsked || (!releases->isEmpty() && releases->first().version > skipped))
        Q_EMIT checked(*releases);
}

} // namespace plexa
