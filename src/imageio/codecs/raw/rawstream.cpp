// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/raw/rawstream.h"

#include <jpeglib.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <utility>

namespace plexa
{

namespace
{

constexpr qint64 kWindowBytes = 1 << 16;

/// Work of a call besides its bytes.
constexpr qint64 kCallWork = 16;

} // namespace

[[gnu::noinline]] void clearStackBelow()
{
    constexpr size_t kBytes = 32 * 1024; // LibRaw's functions that read headers need less
    std::array<char, kBytes> stack;
    stack.fill(0);
    asm volatile("" : : "r"(stack.data()) : "memory"); // or the compiler would omit it
}

RawStream::RawStream(QIODevice &device)
    : m_device(device)
    , m_size(device.size())
{
}

void RawStream::grant(qint64 work, qint64 endReadings)
{
    m_workLeft = work;
    m_maxEndReadings = endReadings;
    m_endReadings = 0;
    m_hasDamagedJpeg = false;
}

void RawStream::count(qint64 work)
{
    m_workLeft -= work;
    if (m_workLeft < 0)
        throw LIBRAW_EXCEPTION_IO_CORRUPT;
}

void RawStream::countEndReading()
{
    if (++m_endReadings > m_maxEndReadings)
        throw LIBRAW_EXCEPTION_IO_EOF;
}

qint64 RawStream::readAt(qint64 position, char *bytes, qint64 count)
{
    const qint64 got = m_device.seek(position) ? m_device.read(bytes, count) : -1;
    if (got < 0)
        m_hasFailed = true;
    return qMax<qint64>(got, 0);
}

bool RawStream::fillWindow()
{
    m_windowStart = m_position;
    m_window.resize(qMin(kWindowBytes, m_size - m_position));
    m_window.resize(readAt(m_position, m_window.data(), m_window.size()));
    clearStackBelow();
    return !m_window.isEmpty();
}

int RawStream::read(void *bytes, size_t size, size_t count)
{
    constexpr auto kMost = size_t(std::numeric_limits<int>::max());
    if (size == 0 || count == 0 || size > kMost || count > kMost / size)
        return 0;
    auto *out = static_cast<char *>(bytes);
    const auto wanted = qint64(size * count);
    this->count(kCallWork + qMin(wanted, m_size - m_position));
    if (m_position >= m_size)
        countEndReading();
    qint64 done = 0;
    while (done < wanted && m_position < m_size) {
        const qint64 ahead = m_windowStart + m_window.size() - m_position;
        qint64 got = 0;
        if (m_position >= m_windowStart && ahead > 0) {
            got = qMin(ahead, wanted - done);
            std::memcpy(out + done, m_window.constData() + (m_position - m_windowStart), size_t(got));
        } else if (wanted - done >= kWindowBytes) {
            got = readAt(m_position, out + done, wanted - done);
        } else if (fillWindow()) {
            continue;
        }
        if (got == 0)
            break;
        done += got;
        m_position += got;
    }
    return int((size_t(done) + size - 1) / size);
}

int RawStream::seek(INT64 offset, int whence)
{
    if (m_beforeSeek)
        std::exchange(m_beforeSeek, {})();
    count(kCallWork);
    const qint64 base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? m_position : m_size;
    // Offsets come out of the file and may be any number.
    m_position = offset < -base ? 0 : offset > m_size - base ? m_size : base + offset;
    return 0;
}

int RawStream::get_char()
{
    count(1);
    if (m_position >= m_size) {
        countEndReading();
        return -1;
    }
    if (m_position < m_windowStart || m_position >= m_windowStart + m_window.size()) {
        if (!fillWindow())
            return -1;
    }
    return uchar(m_window[m_position++ - m_windowStart]);
}

char *RawStream::gets(char *text, int size)
{
    if (size < 1)
        return nullptr;
    int length = 0;
    while (length < size - 1) {
        const int character = get_char();
        if (character < 0)
            break;
        text[length++] = char(character);
        if (character == '\n')
            break;
    }
    text[length] = '\0';
    return length > 0 ? text : nullptr;
}

int RawStream::scanf_one(const char *format, void *value)
{
    QByteArray word;
    int character = get_char();
    while (character == ' ' || (character >= '\t' && character <= '\r'))
        character = get_char();
    while (character > ' ' && word.size() < 24) {
        word += char(character);
        character = get_char();
    }
    if (character >= 0)
        --m_position;
    bool ok = false;
    if (std::strcmp(format, "%d") == 0)
        *static_cast<int *>(value) = word.toInt(&ok);
    else if (std::strcmp(format, "%f") == 0)
        *static_cast<float *>(value) = word.toFloat(&ok);
    return ok ? 1 : EOF;
}

int RawStream::jpeg_src(void *decompressor)
{
    auto *jpeg = static_cast<j_decompress_ptr>(decompressor);
    // libjpeg's own handlers print.
    jpeg->client_data = this;
    jpeg->err->output_message = [](j_common_ptr) {};
    jpeg->err->emit_message = [](j_common_ptr any, int level) {
        if (level < 0)
            static_cast<RawStream *>(any->client_data)->m_hasDamagedJpeg = true;
    };
    // LibRaw's handler throws, too, but leaks the decompressor's memory. Frames of LibRaw are between this
    // one and any jump target, so the exception passes libjpeg's C frames, as those of read() do. That needs
    // unwind tables in libjpeg: amd64 and arm64 always have them, others with -fexceptions.
    jpeg->err->error_exit = [](j_common_ptr any) {
        jpeg_destroy(any);
        throw LIBRAW_EXCEPTION_DECODE_JPEG;
    };
    return LibRaw_abstract_datastream::jpeg_src(decompressor);
}

} // namespace plexa
