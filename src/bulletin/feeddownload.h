// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QUrl>

#include <chrono>
#include <functional>

class QObject;

namespace plexa
{

/// How long a server may take, and how much it may send.
struct DownloadLimits {
    std::chrono::milliseconds time = std::chrono::seconds(10); ///< from the request to the last byte
    qint64 bytes = 1024 * 1024;                                ///< after decompression
};

/// Fetches a small file past all caches, without cookies or facts about the user, in a process of its own
/// ("plexa-fetch"). The body of an answer counts whatever its HTTP status is. Redirects lead to https only.
/// Main thread.
/// @param context  owns the download; without it the download stops, and `done` is not called
/// @param done  called once, from the event loop, with the body or the reason of the failure
void downloadFeed(const QUrl &address, const DownloadLimits &limits, QObject *context,
                  std::function<void(const Result<QByteArray> &)> done);

} // namespace plexa
