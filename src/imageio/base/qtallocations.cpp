// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/qtallocations.h"

#include <QImageReader>

#include <mutex>

namespace plexa
{

void allowQtPictures(qint64 bytes)
{
    static std::mutex mutex;
    static int allowedMegabytes = QImageReader::allocationLimit();
    const std::lock_guard lock(mutex);
    const auto megabytes = int(qBound(qint64(1), bytes / (1 << 20), qint64(1 << 20)));
    if (megabytes > allowedMegabytes) {
        allowedMegabytes = megabytes;
        QImageReader::setAllocationLimit(megabytes);
    }
}

} // namespace plexa
