// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/cancelcheck.h"

#include <QCache>
#include <QImage>
#include <QSet>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace plexa
{

/// Caches pictures at the sizes that were used last, within one bound of bytes. Any thread.
class ScaledPictures final
{
public:
    explicit ScaledPictures(qint64 maxBytes);

    /// The cache of the process.
    static std::shared_ptr<ScaledPictures> shared();

    /// The picture of `owner` in that size: the cached one, else the result of `render`. Threads that want
    /// the same size wait for one rendering, unless the size exceeds the bound. Nothing is locked meanwhile.
    /// @return a null image if `render` returns one or the work is canceled
    QImage find(const void *owner, QSize size, const std::function<QImage()> &render,
                const CancelCheck &isCanceled);

    /// Discards all sizes of a picture. Called before the address of `owner` is used again.
    void remove(const void *owner);

private:
    using Key = std::pair<const void *, quint64>;

    std::mutex m_lock;
    std::condition_variable m_rendered;
    QCache<Key, QImage> m_images; // guarded by m_lock
    QSet<Key> m_inWork;           // guarded by m_lock
};

} // namespace plexa
