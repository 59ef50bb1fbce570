// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/libraryio.h"

#include "imageio/container/tiffmetadata.h"
#include "imageio/embedded/metadatablocks.h"

#include <sys/mman.h>

#include <algorithm>
#include <new>

namespace plexa
{

namespace
{

/// Read of a camera raw file without TIFF directories. Its metadata are at the start, or, in old and small
/// kinds, at the end.
constexpr quint64 kStartBytes = 32 * 1024 * 1024;

/// Bound for crafted files with values all over.
constexpr quint64 kMaxBytes = 256 * 1024 * 1024;

} // namespace

LibraryIo::LibraryIo(QIODevice &device)
    : m_device(device)
    , m_memoryBytes(std::max<size_t>(size_t(device.size()), 1))
{
}

LibraryIo::~LibraryIo()
{
    if (m_memory)
        ::munmap(m_memory, m_memoryBytes);
}

int LibraryIo::open()
{
    return seek(0, beg);
}

Exiv2::DataBuf LibraryIo::read(long count)
{
    if (count < 0 || count > m_device.size())
        throw Exiv2::Error(Exiv2::kerInvalidMalloc);
    Exiv2::DataBuf bytes(count);
    bytes.size_ = read(bytes.pData_, count);
    return bytes;
}

long LibraryIo::read(Exiv2::byte *bytes, long count)
{
    const bool isInside = m_position < m_device.size() && m_device.seek(m_position);
    const qint64 got =
        isInside ? std::max<qint64>(m_device.read(reinterpret_cast<char *>(bytes), count), 0) : 0;
    m_isAtEnd = m_isAtEnd || got < count;
    m_position += got;
    return long(got);
}

int LibraryIo::getb()
{
    Exiv2::byte byte = 0;
    return read(&byte, 1) == 1 ? byte : EOF;
}

int LibraryIo::seek(long offset, Position from)
{
    const qint64 base = from == beg ? 0 : from == cur ? m_position : m_device.size();
    qint64 position = 0;
    if (qAddOverflow(base, qint64(offset), &position) || position < 0)
        return 1;
    m_position = position;
    m_isAtEnd = false;
    return 0;
}

void LibraryIo::transfer(Exiv2::BasicIo &)
{
    throw Exiv2::Error(Exiv2::kerFunctionNotSupported, "transfer");
}

Exiv2::byte *LibraryIo::mmap(bool)
{
    if (!m_memory) {
        // Anonymous, so pages that are not written take no memory.
        void *memory = ::mmap(nullptr, m_memoryBytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (memory == MAP_FAILED)
            throw std::bad_alloc();
        m_memory = static_cast<Exiv2::byte *>(memory);
        readMetadata();
    }
    return m_memory;
}

void LibraryIo::readMetadata()
{
    std::vector<ByteRange> ranges = tiffMetadataRanges(m_device, kMaxMetadataBytes);
    if (ranges.empty())
        ranges = {{0, std::min<quint64>(size(), kStartBytes)}};
    quint64 left = kMaxBytes;
    for (const ByteRange &range : ranges) {
        const quint64 bytes = std::min(range.end - range.start, left);
        if (m_device.seek(qint64(range.start)))
            m_device.read(reinterpret_cast<char *>(m_memory) + range.start, qint64(bytes));
        left -= bytes;
    }
}

} // namespace plexa
