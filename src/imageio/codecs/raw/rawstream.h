// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QIODevice>

#include <libraw/libraw.h>

#include <functional>

namespace plexa
{

/// A device for LibRaw. LibRaw follows invalid offsets and counts and reads zeros after the end of the file,
/// so the stream counts the work and throws, as LibRaw's own streams do, beyond a bound. One thread at a
/// time; the device must outlive it.
class RawStream final : public LibRaw_abstract_datastream
{
public:
    explicit RawStream(QIODevice &device);

    /// Restarts the count.
    /// @param work         bytes and calls
    /// @param endReadings  reads that may begin at the file's end
    void grant(qint64 work, qint64 endReadings);

    /// Calls the function once, before the next seek(), with which LibRaw begins to decode pixels.
    void callBeforeSeek(std::function<void()> function) { m_beforeSeek = std::move(function); }

    /// The reads that began at the file's end since grant().
    qint64 endReadings() const { return m_endReadings; }

    /// Has libjpeg, which LibRaw calls for some files, warned of damage since grant()?
    bool hasDamagedJpeg() const { return m_hasDamagedJpeg; }
    bool hasFailed() const { return m_hasFailed; }

    int valid() override { return 1; }
    int read(void *bytes, size_t size, size_t count) override;
    int seek(INT64 offset, int whence) override;
    INT64 tell() override { return m_position; }
    INT64 size() override { return m_size; }
    int get_char() override;
    char *gets(char *text, int size) override;
    int scanf_one(const char *format, void *value) override;
    int eof() override { return m_position >= m_size ? 1 : 0; }
    void *make_jas_stream() override { return nullptr; }
    int jpeg_src(void *decompressor) override;

private:
    void count(qint64 work);
    void countEndReading();
    qint64 readAt(qint64 position, char *bytes, qint64 count);
    bool fillWindow();

    QIODevice &m_device;
    const qint64 m_size;
    qint64 m_position = 0;
    QByteArray m_window; ///< what is read ahead
    qint64 m_windowStart = 0;
    qint64 m_workLeft = 0;
    qint64 m_endReadings = 0;
    qint64 m_maxEndReadings = 0;
    bool m_hasDamagedJpeg = false;
    bool m_hasFailed = false;
    std::function<void()> m_beforeSeek;
};

/// Clears the part of the stack that functions called next will use. LibRaw reads some variables that
/// damaged files never set; without this, pixels would depend on what ran before. Inexpensive.
void clearStackBelow();

} // namespace plexa
