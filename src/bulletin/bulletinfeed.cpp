// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/bulletinfeed.h"

#include "platform/identity.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"

#include <QDateTime>
#include <QDebug>
#include <QFutureWatcher>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QtConcurrentRun>

#include <algorithm>

namespace plexa
{

namespace
{

/// A settings file holds texts, so the counts are one: a JSON object.
QHash<QString, qint64> shownCounts(const UserDefaults &defaults)
{
    const QJsonObject stored =
        QJsonDocument::fromJson(defaults.stringForKey(settings::ShownBulletins).toUtf8()).object();
    QHash<QString, qint64> counts;
    for (auto i = stored.begin(); i != stored.end(); ++i)
        counts.insert(i.key(), std::max<qint64>(0, i.value().toInteger()));
    return counts;
}

} // namespace

QUrl BulletinFeed::feedAddress()
{
    return QUrl(QString::fromUtf8(identity::kWebSite) + QStringLiteral("/feeds/plexa/bulletins.json"));
}

BulletinFeed::BulletinFeed(UserDefaults &defaults, const QUrl &address, const DownloadLimits &limits)
    : m_defaults(defaults)
    , m_address(address)
    , m_limits(limits)
{
}

void BulletinFeed::showBulletinIfRequired()
{
    if (m_address.isEmpty() || isWithinADay(m_defaults.stringForKey(settings::lastShownBulletinDate)))
        return;
    downloadFeed(m_address, m_limits, this, [this](const Result<QByteArray> &feed) {
        if (feed)
            choose(*feed);
        else
            qCritical().noquote() << "ERROR: Failed to download the bulletin file with error:"
                                  << feed.error().text;
    });
}

void BulletinFeed::choose(const QByteArray &feed)
{
    using Choice = Result<std::optional<Bulletin>>;
    auto *const choice = new QFutureWatcher<Choice>(this);
    connect(choice, &QFutureWatcher<Choice>::finished, this, [this, choice] {
        choice->deleteLater();
        const Choice chosen = choice->result();
        if (!chosen)
            qCritical().noquote() << chosen.error().text;
        else if (*chosen && !(*chosen)->page.isEmpty())
            Q_EMIT bulletinChosen(**chosen);
    });
    choice->setFuture(QtConcurrent::run(bulletinToShowFromJSONData, feed, audience()));
}

BulletinAudience BulletinFeed::audience() const
{
    return {m_defaults.integerForKey(settings::runNumber),
            QString::fromLatin1(identity::kApplicationId),
            currentSystemVersion(),
            QDate::currentDate(),
            shownCounts(m_defaults),
            m_defaults.stringArrayForKey(settings::SuppressedBulletins),
            QLocale::system().uiLanguages()};
}

void BulletinFeed::bulletinWasShown(const Bulletin &bulletin)
{
    auto counts = shownCounts(m_defaults);
    ++counts[bulletin.bulletinID];
    QJsonObject stored;
    for (auto i = counts.cbegin(); i != counts.cend(); ++i)
        stored.insert(i.key(), i.value());
    m_defaults.setObject(settings::ShownBulletins,
                         QString::fromUtf8(QJsonDocument(stored).toJson(QJsonDocument::Compact)));
    m_defaults.setObject(settings::lastShownBulletinDate,
                         QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
}

void BulletinFeed::suppress(const Bulletin &bulletin)
{
    QStringList suppressed = m_defaults.stringArrayForKey(settings::SuppressedBulletins);
    if (!bulletin.allowSuppress || bulletin.bulletinID.isEmpty() || suppressed.contains(bulletin.bulletinID))
        return;
    suppressed.append(bulletin.bulletinID);
    m_defaults.setObject(settings::SuppressedBulletins, suppressed);
}

} // namespace plexa
