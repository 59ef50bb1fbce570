// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"

#include <QByteArrayView>
#include <QImage>
#include <QList>

#include <memory>
#include <vector>

namespace plexa
{

class ScaledPictures;

/// A picture that stays encoded until it is drawn. The bytes are not copied and must outlive the object.
/// Decoded pixels are cached, within one bound for all pictures. Any thread.
class EncodedPicture final
{
public:
    static ReadLimits readLimits();

    /// Reads the headers of the representations of one picture (files: TIFF, PNG or JPEG).
    /// @return the failure of the first one if none can be read
    [[nodiscard]] static Result<std::shared_ptr<const EncodedPicture>>
    fromRepresentations(const QList<QByteArrayView> &representations);

    ~EncodedPicture();
    EncodedPicture(const EncodedPicture &) = delete;
    EncodedPicture &operator=(const EncodedPicture &) = delete;

    /// Pixels of the largest representation, upright.
    QSize size() const;

    /// The largest representation that can be decoded, upright.
    /// @return the failure of the largest one if none can
    [[nodiscard]] Result<QImage> decoded() const;

private:
    struct Representation {
        QByteArrayView bytes;
        const ImageFormat *format;
        QSize size;      // as stored
        int orientation; // 1 to 8 as EXIF counts
    };

    explicit EncodedPicture(std::vector<Representation> representations);
    static Result<Representation> measured(QByteArrayView bytes);
    static Result<QImage> decode(const Representation &representation);
    Result<QImage> decodeLargest() const;

    const std::vector<Representation> m_representations; // the largest first, at least one
    const std::shared_ptr<ScaledPictures> m_cache;       // shared by all
};

} // namespace plexa
