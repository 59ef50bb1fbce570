// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/feedrequest.h"

#include "platform/identity.h"

#include <QNetworkReply>
#include <QTimer>

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
    // Instead of the user's languages.
    request.setRawHeader("Accept-Language", "*");
    request.setHeader(QNetworkRequest::UserAgentHeader, QString::fromLatin1(identity::kApplicationName));
    request.setMaximumRedirectsAllowed(kMostRedirects);
    return request;
}

/// Qt reports a status such as 404 as an error; the answer has arrived all the same. The same errors stand
/// for a damaged compression.
bool hasArrived(const QNetworkReply &reply)
{
    constexpr int kFirstErrorStatus = 400;
    const auto error = reply.error();
    const bool isOfStatus =
        (error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError) ||
        (error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError);
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return error == QNetworkReply::NoError || (isOfStatus && status >= kFirstErrorStatus);
}

} // namespace

FeedRequest::FeedRequest(const QUrl &address, const DownloadLimits &limits)
    : m_limits(limits)
    , m_reply(m_manager.get(requestFor(address)))
{
    connect(m_reply, &QNetworkReply::readyRead, this, &FeedRequest::read);
    connect(m_reply, &QNetworkReply::redirected, this, &FeedRequest::redirect);
    connect(m_reply, &QNetworkReply::finished, this, &FeedRequest::finish, Qt::QueuedConnection);
    QTimer::singleShot(limits.time, this, [this] { stop(QStringLiteral("The server is too slow")); });
}

void FeedRequest::read()
{
    m_body += m_reply->read(m_limits.bytes + 1 - m_body.size());
    if (m_body.size() > m_limits.bytes)
        stop(QStringLiteral("The file is too large"));
}

void FeedRequest::redirect(const QUrl &target)
{
    if (target.scheme() == u"https")
        Q_EMIT m_reply->redirectAllowed();
    else
        stop(QStringLiteral("The server redirects to an address without encryption"));
}

void FeedRequest::stop(const QString &reason)
{
    if (m_failure.isEmpty())
        m_failure = reason;
    m_reply->abort(); // leads to finish()
}

void FeedRequest::finish()
{
    if (m_failure.isEmpty() && !hasArrived(*m_reply))
        m_failure = m_reply->errorString();
    if (m_failure.isEmpty())
        read();
    if (m_failure.isEmpty())
        Q_EMIT arrived(m_body);
    else
        Q_EMIT failed(m_failure);
}

} // namespace plexa
