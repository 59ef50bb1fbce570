// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/feeddownload.h"

#include <QNetworkAccessManager>
#include <QObject>

class QNetworkReply;

namespace plexa
{

/// One request for a small file, past all caches, without cookies.
class FeedRequest final : public QObject
{
    Q_OBJECT

public:
    FeedRequest(const QUrl &address, const DownloadLimits &limits);

Q_SIGNALS:
    // One of these, once, from the event loop.
    void arrived(const QByteArray &body);
    void failed(const QString &reason);

private:
    void read();
    void redirect(const QUrl &target);
    void stop(const QString &reason);
    void finish();

    const DownloadLimits m_limits;
    QNetworkAccessManager m_manager;
    QNetworkReply *const m_reply; // owned by m_manager
    QByteArray m_body;
    QString m_failure;
};

} // namespace plexa
