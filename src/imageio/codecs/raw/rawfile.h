// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

#include <memory>

namespace plexa
{

/// What a camera raw file says of its photo.
struct RawFacts {
    QSize size;          ///< of the developed photo, not turned, its pixels square
    int orientation = 1; ///< how it is to be turned, as EXIF counts
    int depth = 0;       ///< bits of a sample of the sensor
    int pictureCount = 1;
    qint64 decoderBytes = 0; ///< the most memory that decode() takes, the picture included
    bool canHalve = false;   ///< decode() can give half of the size, sides rounded up
    QVariantMap properties;  ///< camera and exposure, in the form of the property dictionary
};

/// A camera raw file on a device, which must outlive it. LibRaw, its exceptions and its messages stay inside.
/// One thread at a time; works on the calling thread alone.
class RawFile final
{
public:
    RawFile(QIODevice &device, const ReadLimits &limits);
    ~RawFile();
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;

    /// Reads everything but the pixels. To be called once, before all else.
    /// @return the failure when it is no camera raw file that LibRaw knows, damaged or too large
    [[nodiscard]] Result<void> open();

    const RawFacts &facts() const { return m_facts; }

    /// Develops the photo; to be called once.
    /// @param isHalf  at half of the size, where facts().canHalve
    /// @return 8-bit sRGB, opaque, in one of several formats
    [[nodiscard]] Result<QImage> decode(bool isHalf);

private:
    class Decoder;

    QString failureReason(int error) const;
    Result<void> readFacts();

    QIODevice &m_device;
    const ReadLimits m_limits;
    std::unique_ptr<Decoder> m_decoder;
    RawFacts m_facts;
};

} // namespace plexa
