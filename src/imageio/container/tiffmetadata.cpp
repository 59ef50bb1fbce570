// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/tiffmetadata.h"

#include "imageio/container/tiffdirectoryreader.h"

#include <algorithm>
#include <set>

namespace plexa
{

namespace
{

/// The values of a maker note lie beside it, if not in it.
constexpr quint64 kMargin = 256 * 1024;

/// Bound for crafted chains of directories; the metadata of a photo have about ten.
constexpr size_t kMaxDirectories = 256;

/// Bound for crafted files whose directories have many fields: after as many, no further directory is read.
constexpr int kMaxFields = 65535; // one directory may have all

/// Fields that lead to further directories: sub-pictures, EXIF, GPS, interoperability.
constexpr quint16 kDirectories[] = {0x014A, 0x8769, 0x8825, 0xA005};

class Walk
{
public:
    Walk(QIODevice &device, quint64 mostValueBytes)
        : m_reader(device)
        , m_size(quint64(device.size()))
        , m_mostValueBytes(mostValueBytes)
    {
    }

    std::vector<ByteRange> ranges()
    {
        std::set<quint64> seen;
        std::vector<quint64> positions = {m_reader.first()};
        int fields = 0;
        while (!positions.empty() && seen.size() < kMaxDirectories && fields < kMaxFields) {
            const quint64 at = positions.back();
            positions.pop_back();
            const auto directory = seen.insert(at).second ? m_reader.read(at) : std::nullopt;
            if (!directory)
                continue;
            fields += directory->fieldCount;
            add(at, directory->bytes);
            addValues(directory->fields);
            positions.push_back(directory->next);
            for (const quint16 tag : kDirectories) {
                const auto further = m_reader.numbers(directory->fields.value(tag), kMaxDirectories);
                positions.insert(positions.end(), further.begin(), further.end());
            }
        }
        return merged();
    }

private:
    void addValues(const TiffFields &fields)
    {
        for (const TiffField &field : fields) {
            if (const quint64 at = m_reader.positionOf(field); field.valueBytes() <= m_mostValueBytes)
                add(at, field.valueBytes());
        }
    }

    void add(quint64 position, quint64 bytes)
    {
        if (position > 0 && position < m_size)
            m_ranges.push_back({position - std::min(position, kMargin),
                                position + std::min(m_size - position, bytes + kMargin)});
    }

    std::vector<ByteRange> merged()
    {
        if (!m_ranges.empty()) // the file's header, and what a maker note may have beside it
            m_ranges.push_back({0, std::min(m_size, kMargin)});
        std::sort(m_ranges.begin(), m_ranges.end(),
                  [](const ByteRange &a, const ByteRange &b) { return a.start < b.start; });
        std::vector<ByteRange> found;
        for (const ByteRange &range : m_ranges) {
            if (found.empty() || range.start > found.back().end)
                found.push_back(range);
            else
                found.back().end = std::max(found.back().end, range.end);
        }
        return found;
    }

    const TiffDirectoryReader m_reader;
    const quint64 m_size;
    const quint64 m_mostValueBytes;
    std::vector<ByteRange> m_ranges;
};

} // namespace

std::vector<ByteRange> tiffMetadataRanges(QIODevice &tiff, quint64 mostValueBytes)
{
    return Walk(tiff, mostValueBytes).ranges();
}

} // namespace plexa
