// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"
#include "platform/fileversion.h"

#include <memory>
#include <optional>

namespace plexa
{

class EmbeddedMetadata;

/// A picture file that is open for reading. Detects the type by content first, then by suffix. Holds the
/// file open; not shared between threads.
class ImageSource final
{
public:
    /// Opens the file and reads what can be known without decoding.
    /// @return the failure as text that follows a file's name: "the file is empty", ...
    [[nodiscard]] static Result<ImageSource> open(const QString &path, const ReadLimits &limits = {});

    ImageSource(ImageSource &&) noexcept;
    ImageSource &operator=(ImageSource &&) noexcept;
    ~ImageSource();

    /// MIME name of the contents, whatever the file is called.
    QString type() const;
    const ImageFormat &format() const;
    const PictureInfo &info() const;
    int imageCount() const;

    /// The file as it was when it was opened; all that this object tells is of that file, also after another
    /// one has taken its name.
    std::optional<FileVersion> version() const;

    /// A failure when somebody has written into the file since it was opened, so that what was read earlier
    /// and later may not belong together.
    [[nodiscard]] Result<void> checkUnchanged() const;

    /// The property dictionary of image 0 (keys: imageio/propertykeys.h). Read at the first call.
    const QVariantMap &properties() const;

    /// All metadata of the file, for a copy to keep what the dictionary does not model. Never null.
    std::shared_ptr<const EmbeddedMetadata> metadata() const;

    /// Image 0 as stored (no orientation tag followed), 8-bit sRGB. Where `minimumSide` is above 0, at least
    /// that long on its longer side where the file has as many pixels: decoded at a reduced scale where the
    /// format can, else reduced while its rows are read.
    [[nodiscard]] Result<QImage> createImage(int minimumSide = 0) const;

    /// The rows of the picture that createImage() returns. The reader uses this object's file: keep it alive,
    /// and read one at a time.
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openRows(int minimumSide = 0) const;

    /// The most memory (bytes) that a reader of openRows() takes besides the caller's strips: 0 where the
    /// rows stream; else the coefficients of a JPEG of several scans, an interlaced PNG, or the whole
    /// picture with what its conversion takes. To be reserved before openRows().
    qint64 rowsBytes() const;

    /// The most memory (bytes) that createImage() takes, the image included.
    qint64 imageBytes(int minimumSide = 0) const;

    /// The size in pixels of the image that createImage() returns.
    QSize imageSize(int minimumSide = 0) const;

private:
    struct State;
    explicit ImageSource(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

} // namespace plexa
