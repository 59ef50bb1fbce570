// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

#include <QBuffer>

#include <sanitizer/allocator_interface.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace plexa::test
{

/// The allocations of this process, as the sanitizer sees them.
class Allocations
{
public:
    static Allocations &all()
    {
        static Allocations allocations;
        return allocations;
    }

    /// Starts a new peak. @return the allocated bytes
    qint64 restart()
    {
        m_peak = m_current.load();
        return m_peak;
    }

    /// The most bytes since restart().
    qint64 peak() const { return m_peak; }

private:
    Allocations()
    {
        s_self = this;
        __sanitizer_install_malloc_and_free_hooks(
            [](const volatile void *, size_t bytes) { s_self.load()->add(qint64(bytes)); },
            [](const volatile void *bytes) {
                if (bytes)
                    s_self.load()->add(-qint64(__sanitizer_get_allocated_size(const_cast<void *>(bytes))));
            });
    }

    void add(qint64 bytes)
    {
        const qint64 now = m_current += bytes;
        qint64 peak = m_peak;
        while (now > peak && !m_peak.compare_exchange_weak(peak, now)) {
        }
    }

    std::atomic<qint64> m_current = 0;
    std::atomic<qint64> m_peak = 0;
    static inline std::atomic<Allocations *> s_self = nullptr;
};

/// Aborts if more was allocated than the codec announced.
inline void checkAllocated(qint64 allocated, qint64 announced, const char *when)
{
    // Tables of the libraries, profiles and the bytes of the file, which codecs do not announce.
    constexpr qint64 kSpareBytes = 12'000'000;
    if (allocated <= announced + announced / 2 + kSpareBytes)
        return;
    std::fprintf(stderr, "%s: announced %lld bytes, allocated %lld\n", when,
                 static_cast<long long>(announced), static_cast<long long>(allocated));
    std::abort();
}

/// Decodes bytes through one codec, whole and reduced, within limits that keep a run quick. Aborts if rows or
/// memory are not as announced.
inline void decodeForFuzzing(const Codec &codec, const uint8_t *data, size_t size)
{
    const ReadLimits limits = {2'000'000, 32'000'000};
    QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    Allocations &allocations = Allocations::all();
    qint64 before = allocations.restart();
    const auto info = codec.readInfo(device, limits);
    checkAllocated(allocations.peak() - before, info ? info->decoderBytes : 0, "facts");
    if (!info)
        return;
    for (const int reduction : {1, 8}) {
        before = allocations.restart();
        device.seek(0);
        const auto reader = codec.openReader(device, limits, reduction);
        if (!reader)
            continue;
        const RowFormat format = (*reader)->format();
        if (reduction == 1 && format != info->rows)
            std::abort();
        QImage strip(format.size.width(), 50, format.imageFormat());
        const qint64 stripBytes = strip.sizeInBytes();
        for (int row = 0; row < format.size.height(); row += strip.height()) {
            if (!(*reader)->readRows(strip, qMin(strip.height(), format.size.height() - row)))
                break;
        }
        // Some codecs hold a strip of whole rows for reduced ones.
        checkAllocated(allocations.peak() - before, info->decoderBytes + 9 * stripBytes, "rows");
    }
}

} // namespace plexa::test
