// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/feeddownload.h"

#include "platform/siblingprogram.h"

#include <QDateTime>
#include <QProcess>
#include <QUrlQuery>

#include <utility>

namespace plexa
{

namespace
{

/// With a query that no cache has seen: the seconds since the year 2001.
QUrl pastCaches(QUrl address)
{
    constexpr qint64 kStartOf2001 = 978'307'200; // seconds since 1970, UTC
    QUrlQuery query(address);
    query.addQueryItem(QStringLiteral("nocache"),
                       QString::number(QDateTime::currentSecsSinceEpoch() - kStartOf2001));
    address.setQuery(query);
    return address;
}

/// What the process has written. The end of a killed process carries no reason.
Result<QByteArray> resultOf(QProcess &process)
{
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0)
        return process.readAllStandardOutput();
    const QString reason = QString::fromUtf8(process.readAllStandardError()).trimmed();
    return fail(reason.isEmpty() ? QStringLiteral("The download ended early") : reason);
}

} // namespace

void downloadFeed(const QUrl &address, const DownloadLimits &limits, QObject *context,
                  std::function<void(const Result<QByteArray> &)> done)
{
    auto *const process = new QProcess(context);
    const auto end = [process, done = std::move(done)](const Result<QByteArray> &result) {
        process->deleteLater();
        done(result);
    };
    QObject::connect(process, &QProcess::finished, context, [process, end] { end(resultOf(*process)); });
    QObject::connect(process, &QProcess::errorOccurred, context,
                     [process, end](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             end(fail(process->errorString()));
                     });
    process->start(siblingProgram(QStringLiteral("plexa-fetch")),
                   {pastCaches(address).toString(QUrl::FullyEncoded), QString::number(limits.time.count()),
                    QString::number(limits.bytes)},
                   QIODevice::ReadOnly);
}

} // namespace plexa
