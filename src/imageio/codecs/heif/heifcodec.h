// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// HEIC and AVIF through libheif: reads the primary picture of a file, turned and cropped as the file says;
/// writes HEIC.
class HeifCodec final : public Codec
{
public:
    /// What the coded pictures are. A file of either kind is read by both.
    enum class Kind { Hevc, Av1 };

    explicit HeifCodec(Kind kind)
        : m_kind(kind)
    {
    }

    /// Has the library an encoder for this kind?
    bool canEncode() const;

    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;
    [[nodiscard]] Result<std::unique_ptr<RowWriter>> openWriter(QIODevice &device, const RowFormat &format,
                                                                const WriteOptions &options) const override;
    bool writesIptc() const override { return false; }
    bool writesComment() const override { return false; }
    bool holdsThumbnail() const override { return false; }
    qint64 writerBytes(const RowFormat &format, const WriteOptions &options) const override;

private:
    const char *formatName() const { return m_kind == Kind::Hevc ? "HEIC" : "AVIF"; }

    const Kind m_kind;
};

} // namespace plexa
