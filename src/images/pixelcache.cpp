// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/pixelcache.h"

namespace plexa
{

PixelCache::PixelCache(qsizetype maxBytes)
    : m_maxBytes(maxBytes)
{
}

PixelCache::Key PixelCache::newKey()
{
    const std::lock_guard lock(m_mutex);
    return ++m_lastKey;
}

QImage PixelCache::find(Key key)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_index.find(key);
    if (found == m_index.end())
        return {};
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    return found->second->image;
}

void PixelCache::insert(Key key, const QImage &image)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_index.find(key); found != m_index.end())
        erase(found->second);
    if (image.isNull() || image.sizeInBytes() > m_maxBytes)
        return;
    while (m_bytes + image.sizeInBytes() > m_maxBytes)
        erase(std::prev(m_entries.end()));
    m_entries.push_front({key, image});
    m_index[key] = m_entries.begin();
    m_bytes += image.sizeInBytes();
}

void PixelCache::remove(Key key)
{
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_index.find(key); found != m_index.end())
        erase(found->second);
}

qsizetype PixelCache::bytes() const
{
    const std::lock_guard lock(m_mutex);
    return m_bytes;
}

void PixelCache::erase(Entries::iterator entry)
{
    m_bytes -= entry->image.sizeInBytes();
    m_index.erase(entry->key);
    m_entries.erase(entry);
}

} // namespace plexa
