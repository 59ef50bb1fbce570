// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/feeddownload.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTimer>

#include <utility>

namespace plexa
{

namespace
{

constexpr int kMostRedirects = 5;

QNetworkRequest requestFor(const QUrl &address)
{
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(kMostRedirects);
    return request;
}

/// Qt reports a status such as 404 as an error; the answer has arrived all the same.
bool hasArrived(const QNetworkReply &reply)
{
    const auto error = reply.error();
    return error == QNetworkReply::NoError ||
           (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError) ||
           (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
}

/// One download; deletes itself at its end.
class FeedDownload final : public QObject
{
public:
    FeedDownload(const QUrl &address, const DownloadLimits &limits, QObject *context,
                 std::function<void(const Result<QByteArray> &)> done)
        : QObject(context)
        , m_limits(limits)
        , m_done(std::move(done))
        , m_reply(m_manager.get(requestFor(address)))
    {
        connect(m_reply, &QNetworkReply::readyRead, this, &FeedDownload::read);
        connect(m_reply, &QNetworkReply::redirected, this, &FeedDownload::redirect);
        connect(m_reply, &QNetworkReply::finished, this, &FeedDownload::finish);
        QTimer::singleShot(limits.time, this, [this] { stop(QStringLiteral("The server is too slow")); });
    }

private:
    void read()
    {
        m_body += m_reply->read(m_limits.bytes + 1 - m_body.size());
        if (m_body.size() > m_limits.bytes)
            stop(QStringLiteral("The file is too large"));
    }

    void redirect(const QUrl &target)
    {
        if (target.scheme() == u"https")
            Q_EMIT m_reply->redirectAllowed();
        else
            stop(QStringLiteral("The server redirects to an address without encryption"));
    }

    void stop(const QString &reason)
    {
        m_failure = reason;
        m_reply->abort(); // leads to finish()
    }

    void finish()
    {
        if (!m_done)
            return;
        if (m_failure.isEmpty() && hasArrived(*m_reply))
            read();
        const auto done = std::exchange(m_done, nullptr);
        deleteLater();
        if (m_failure.isEmpty() && !hasArrived(*m_reply))
            m_failure = m_reply->errorString();
        if (m_failure.isEmpty())
            done(m_body);
        else
            done(fail(m_failure));
    }

    const DownloadLimits m_limits;
    std::function<void(const Result<QByteArray> &)> m_done;
    QNetworkAccessManager m_manager;
    QNetworkReply *const m_reply; // owned by m_manager
    QByteArray m_body;
    QString m_failure;
};

} // namespace

void downloadFeed(const QUrl &address, const DownloadLimits &limits, QObject *context,
                  std::function<void(const Result<QByteArray> &)> done)
{
    new FeedDownload(address, limits, context, std::move(done));
}

} // namespace plexa
