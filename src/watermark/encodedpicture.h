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

/// Pixels that stay encoded and are decoded when they are asked for. The bytes are not copied and must
/// outlive the object. What is decoded is kept, while all that is kept of all these objects is within a
/// bound. Any thread.
class EncodedPicture final
{
public:
    /// What the picture of a watermark may be.
    static ReadLimits readLimits();

    /// Looks at representations of one picture (files: TIFF, PNG or JPEG) without decoding them.
    /// @return the failure of the first one when none can be read
    [[nodiscard]] static Result<std::shared_ptr<const EncodedPicture>>
    fromRepresentations(const QList<QByteArrayView> &representations);

    ~EncodedPicture();
    EncodedPicture(const EncodedPicture &) = delete;
    EncodedPicture &operator=(const EncodedPicture &) = delete;

    /// Pixels of the largest representation, upright.
    QSize size() const;

    /// The largest representation that can be decoded, upright.
    /// @return the failure of the largest one when none can
    [[nodiscard]] Result<QImage> decoded() const;

private:
    class Kept;
    struct Representation {
        QByteArrayView bytes;
        const ImageFormat *format;
        QSize size;      // as stored
        int orientation; // 1 to 8 as EXIF counts
    };

    explicit EncodedPicture(std::vector<Representation> representations);
    static Result<Representation> measured(QByteArrayView bytes);
    static Result<QImage> decode(const Representation &representation);

    const std::vector<Representation> m_representations; // the largest first, at least one
    const std::shared_ptr<Kept> m_kept;                  // shared by all
};

} // namespace plexa
