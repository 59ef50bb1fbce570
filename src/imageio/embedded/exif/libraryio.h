// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIODevice>

#include <exiv2/exiv2.hpp>

namespace plexa
{

/// A file for the metadata library: an open device in place of a path, which the library would open once more
/// and map into memory. Reads only. One thread at a time; the device must outlive it.
class LibraryIo final : public Exiv2::BasicIo
{
public:
    /// @param device  open for reading, random access; its size must not change
    explicit LibraryIo(QIODevice &device);
    ~LibraryIo() override;
    LibraryIo(const LibraryIo &) = delete;
    LibraryIo &operator=(const LibraryIo &) = delete;

    int open() override;
    int close() override { return 0; }
    Exiv2::DataBuf read(long count) override;
    long read(Exiv2::byte *bytes, long count) override;
    int getb() override;
    int seek(long offset, Position from) override;
    long tell() const override { return long(m_position); }
    size_t size() const override { return size_t(m_device.size()); }
    bool isopen() const override { return true; }
    int error() const override { return 0; }
    bool eof() const override { return m_isAtEnd; }
    std::string path() const override { return {}; }

    /// The file in memory of its own, valid as long as this object: the parts that hold metadata, zeros in
    /// place of the others. Throws std::bad_alloc.
    Exiv2::byte *mmap(bool isWriteable = false) override;
    int munmap() override { return 0; }

    long write(const Exiv2::byte *, long) override { return 0; }
    long write(Exiv2::BasicIo &) override { return 0; }
    int putb(Exiv2::byte) override { return -1; }
    void transfer(Exiv2::BasicIo &) override;

private:
    void readMetadata();

    QIODevice &m_device;
    qint64 m_position = 0; ///< may be beyond the end
    bool m_isAtEnd = false;
    Exiv2::byte *m_memory = nullptr;
    const size_t m_memoryBytes;
};

} // namespace plexa
