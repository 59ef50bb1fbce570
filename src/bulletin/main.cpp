// SPDX-License-Identifier: GPL-3.0-or-later

#include "bulletin/feedrequest.h"

#include <QCoreApplication>

#include <cstdio>

namespace
{

bool write(const QByteArray &text, std::FILE *stream)
{
    const auto size = static_cast<std::size_t>(text.size());
    return std::fwrite(text.constData(), 1, size, stream) == size && std::fflush(stream) == 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4) {
        std::fputs("Usage: plexa-fetch ADDRESS MILLISECONDS BYTES\n\n"
                   "Writes a small file of a web server to the standard output, or else the reason of\n"
                   "the failure to the standard error. Plexa starts this program; it is not for use\n"
                   "by hand.\n",
                   stderr);
        return 2;
    }
    const plexa::DownloadLimits limits{std::chrono::milliseconds(arguments[2].toLongLong()),
                                       arguments[3].toLongLong()};
    const plexa::FeedRequest request(QUrl(arguments[1]), limits);
    QObject::connect(&request, &plexa::FeedRequest::arrived, &application,
                     [](const QByteArray &body) { QCoreApplication::exit(write(body, stdout) ? 0 : 1); });
    QObject::connect(&request, &plexa::FeedRequest::failed, &application, [](const QString &reason) {
        write(reason.toUtf8(), stderr);
        QCoreApplication::exit(1);
    });
    return QCoreApplication::exec();
}
