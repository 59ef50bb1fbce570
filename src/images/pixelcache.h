// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>

#include <cstdint>
#include <list>
#include <mutex>
#include <unordered_map>

namespace plexa
{

/// Decoded photos, as many as a number of bytes allows; what was used longest ago goes first. Any thread.
class PixelCache final
{
public:
    using Key = std::uint64_t;

    explicit PixelCache(qsizetype maxBytes);

    /// A key that no photo had before.
    Key newKey();

    /// The photo's pixels; null when they are not here (any more).
    QImage find(Key key);

    /// Keeps the pixels under the key, in place of what was there. An image larger than the whole cache is
    /// not kept.
    void insert(Key key, const QImage &image);

    void remove(Key key);

    /// Bytes held at this moment.
    qsizetype bytes() const;

private:
    struct Entry {
        Key key;
        QImage image;
    };
    using Entries = std::list<Entry>; // the one used last stands first

    void erase(Entries::iterator entry);

    mutable std::mutex m_mutex;
    const qsizetype m_maxBytes;
    qsizetype m_bytes = 0;
    Key m_lastKey = 0;
    Entries m_entries;
    std::unordered_map<Key, Entries::iterator> m_index;
};

} // namespace plexa
