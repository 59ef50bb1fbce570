// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imageformat.h"
#include "platform/fileversion.h"

#include <memory>
#include <optional>

namespace plexa
{

class EmbeddedMetadata;
class SourceFile;

/// A picture file that is open for reading. Detects the type by content first, then by suffix. Reads all that
/// it returns through one descriptor, so picture and metadata are of one file, whatever happens to its path.
/// One thread at a time.
class ImageSource final
{
public:
    ~ImageSource();
    ImageSource(ImageSource &&) noexcept;
    ImageSource &operator=(ImageSource &&) noexcept;

    /// Opens the file and reads the facts that need no decoding.
    /// @return the failure as text that follows a file's name: "the file is empty", ...
    [[nodiscard]] static Result<ImageSource> open(const QString &path, const ReadLimits &limits = {});

    /// MIME name of the contents, whatever the file is called.
    QString type() const { return QString::fromLatin1(m_format->type); }
    const ImageFormat &format() const { return *m_format; }
    const PictureInfo &info() const { return m_info; }

    /// The version of the file that was opened.
    const FileVersion &version() const;

    /// Fails if the file was changed since it was opened, because facts read earlier and later may not match;
    /// or if any read has failed.
    [[nodiscard]] Result<void> checkUnchanged() const;

    /// The property dictionary of image 0 (keys: metadata/propertykeys.h). Read at the first call.
    /// @return a failure if the file cannot be read; damaged metadata are left out
    [[nodiscard]] Result<QVariantMap> properties() const;

    /// All metadata of the file, including those without a key in the dictionary; never null. Read at the
    /// first call.
    /// @return a failure if the file cannot be read; damaged metadata are left out
    [[nodiscard]] Result<std::shared_ptr<const EmbeddedMetadata>> metadata() const;

    /// Image 0 as stored (orientation tag not applied), 8-bit sRGB. If `minimumSide` is above 0, reduced by a
    /// factor of up to 8 whose result is at least that long on the longer side.
    [[nodiscard]] Result<QImage> createImage(int minimumSide = 0) const;

    /// The rows of the picture that createImage() returns. The reader uses this object's file: keep it alive,
    /// and read one at a time.
    [[nodiscard]] Result<std::unique_ptr<RowReader>> openRows(int minimumSide = 0) const;

    /// Writes a copy of the file's own format with what is drawn on it.
    /// @return as RetouchFunction; none, too, where the format has no such function
    std::optional<QString> retouch(QIODevice &to, const WriteOptions &options, const Retouch &retouch) const;

    /// Upper bound of the memory (bytes) of a reader of openRows() besides the caller's strips; 0 where the
    /// rows stream. To be reserved before openRows().
    qint64 rowsBytes() const { return m_info.decoderBytes; }

    /// Upper bound of the memory (bytes) of createImage(), the image included.
    qint64 imageBytes(int minimumSide = 0) const;

    /// The size in pixels of the image that createImage() returns.
    QSize imageSize(int minimumSide = 0) const;

private:
    ImageSource();
    QVariantMap makeProperties(const EmbeddedMetadata &fromMetadata) const;
    int reductionTo(int minimumSide) const;

    ReadLimits m_limits;
    std::unique_ptr<SourceFile> m_file;
    const ImageFormat *m_format = nullptr;
    PictureInfo m_info;
    mutable std::shared_ptr<const EmbeddedMetadata> m_metadata;
    mutable std::optional<QVariantMap> m_properties;
};

} // namespace plexa
