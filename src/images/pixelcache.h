// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCache>
#include <QImage>

#include <mutex>

namespace plexa
{

/// Decoded photos, as many as a number of bytes allows; the one used longest ago is dropped first. Any
/// thread.
class PixelCache final
{
public:
    using Key = quint64;

    explicit PixelCache(qsizetype maxBytes)
        : m_images(maxBytes)
    {
    }

    /// A key that no photo had before.
    Key newKey()
    {
        const std::lock_guard lock(m_mutex);
        return ++m_lastKey;
    }

    /// The photo's pixels; null when they are not cached (any more).
    QImage find(Key key)
    {
        const std::lock_guard lock(m_mutex);
        const QImage *const found = m_images.object(key);
        return found ? *found : QImage();
    }

    /// Replaces what was cached under the key. An image larger than the whole cache is not kept.
    void insert(Key key, const QImage &image)
    {
        const std::lock_guard lock(m_mutex);
        m_images.insert(key, new QImage(image), image.sizeInBytes());
    }

    void remove(Key key)
    {
        const std::lock_guard lock(m_mutex);
        m_images.remove(key);
    }

    /// Bytes cached at this moment.
    qsizetype bytes() const
    {
        const std::lock_guard lock(m_mutex);
        return m_images.totalCost();
    }

private:
    mutable std::mutex m_mutex;
    Key m_lastKey = 0;            // guarded by m_mutex
    QCache<Key, QImage> m_images; // guarded by m_mutex
};

} // namespace plexa
