// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"
#include "imageio/codecs/simple/pictureheaders.h"

namespace plexa
{

/// Reads one of the formats that Qt's image plugins know; of an animation the first frame, of an icon the
/// largest picture. Decodes a picture whole. Does not write.
class QtCodec final : public Codec
{
public:
    /// Which picture of a file counts.
    enum class Choice { First, Largest };

    /// @param qtFormat    the plugin's name of the format
    /// @param readHeader  what Qt does not say of a file; may be null
    /// @param pluginBytesPerPixel  what the plugin takes while decoding besides the picture that it gives
    explicit QtCodec(const char *qtFormat, PictureHeader (*readHeader)(QIODevice &) = nullptr,
                     int pluginBytesPerPixel = 0, Choice choice = Choice::First);

    /// Is the plugin that this needs installed?
    bool isAvailable() const;

    [[nodiscard]] Result<PictureInfo> readInfo(QIODevice &device, const ReadLimits &limits) const override;
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openReader(QIODevice &device, const ReadLimits &limits,
                                                                int reduction) const override;

private:
    const char *m_qtFormat;
    PictureHeader (*m_readHeader)(QIODevice &);
    int m_pluginBytesPerPixel;
    Choice m_choice;
};

} // namespace plexa
