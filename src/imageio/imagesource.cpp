// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagesource.h"

#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/base/sourcefile.h"
#include "imageio/color/colorprofile.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "metadata/propertykeys.h"

#include <QFileInfo>

#include <optional>

namespace plexa
{

namespace
{

/// Adds the codec's facts where the metadata lack the whole group, and single facts only to the TIFF group:
/// the codec's exposure facts come from the same place, less exactly.
void fillIn(QVariantMap &map, const QVariantMap &fromCodec)
{
    for (auto group = fromCodec.cbegin(); group != fromCodec.cend(); ++group) {
        QVariantMap filled = map.value(group.key()).toMap();
        if (!filled.isEmpty() && group.key() != kCGImagePropertyTIFFDictionary)
            continue;
        QVariantMap values = group->toMap();
        values.insert(filled);
        map.insert(group.key(), values);
    }
}

void setOrientation(QVariantMap &map, int orientation)
{
    QVariantMap tiff = map.value(kCGImagePropertyTIFFDictionary).toMap();
    tiff.insert(kCGImagePropertyTIFFOrientation, orientation);
    map.insert(kCGImagePropertyTIFFDictionary, tiff);
    map.insert(kCGImagePropertyOrientation, orientation);
}

} // namespace

ImageSource::ImageSource() = default;
ImageSource::~ImageSource() = default;
ImageSource::ImageSource(ImageSource &&) noexcept = default;
ImageSource &ImageSource::operator=(ImageSource &&) noexcept = default;

Result<ImageSource> ImageSource::open(const QString &path, const ReadLimits &limits)
{
    Result<std::unique_ptr<SourceFile>> opened = SourceFile::openAt(path);
    if (!opened)
        return tl::unexpected(opened.error());
    ImageSource source;
    source.m_limits = limits;
    source.m_file = std::move(*opened);
    SourceFile &file = *source.m_file;
    if (file.size() == 0)
        return fail(PictureFailures::emptyFile());
    const QByteArray head = file.peek(kSignatureBytes);
    std::optional<Error> failure;
    for (const ImageFormat *format : formatsToTry(file, head, QFileInfo(path).suffix())) {
        file.seek(0);
        Result<PictureInfo> info = format->codec->readInfo(file, limits);
        if (const auto read = file.checkReads(); !read)
            return tl::unexpected(read.error());
        if (info) {
            source.m_format = format;
            source.m_info = std::move(*info);
            return source;
        }
        failure = failure.value_or(info.error());
    }
    if (const auto read = file.checkReads(); !read)
        return tl::unexpected(read.error());
    return tl::unexpected(failure.value_or(Error{PictureFailures::notAPicture()}));
}

const FileVersion &ImageSource::version() const
{
    return m_file->version();
}

Result<void> ImageSource::checkUnchanged() const
{
    return m_file->checkUnchanged();
}

QVariantMap ImageSource::makeProperties(const EmbeddedMetadata &fromMetadata) const
{
    QVariantMap map;
    map.insert(kCGImagePropertyPixelWidth, m_info.rows.size.width());
    map.insert(kCGImagePropertyPixelHeight, m_info.rows.size.height());
    map.insert(kCGImagePropertyDepth, m_info.depth);
    map.insert(kCGImagePropertyColorModel, m_info.colorModel);
    map.insert(kCGImagePropertyHasAlpha, m_info.rows.hasAlpha);
    const QString profile = profileDescription(m_info.iccProfile);
    if (!profile.isEmpty())
        map.insert(kCGImagePropertyProfileName, profile);
    if (m_info.dpiWidth > 0 && m_info.dpiHeight > 0) {
        map.insert(kCGImagePropertyDPIWidth, m_info.dpiWidth);
        map.insert(kCGImagePropertyDPIHeight, m_info.dpiHeight);
    }
    // EXIF's density replaces JFIF's, which is often only a default.
    map.insert(fromMetadata.properties());
    // Texts of a PNG come with the metadata, the rest of its dictionary with the picture.
    for (auto dictionary = m_info.formatProperties.begin(); dictionary != m_info.formatProperties.end();
         ++dictionary) {
        QVariantMap whole = map.value(dictionary.key()).toMap();
        whole.insert(dictionary->toMap());
        map.insert(dictionary.key(), whole);
    }
    fillIn(map, m_info.properties);
    if (m_info.orientation > 0 && map.value(kCGImagePropertyOrientation, 1).toInt() != m_info.orientation)
        setOrientation(map, m_info.orientation);
    return map;
}

Result<QVariantMap> ImageSource::properties() const
{
    const auto read = metadata();
    if (!read)
        return tl::unexpected(read.error());
    if (!m_properties)
        m_properties = makeProperties(**read);
    return *m_properties;
}

Result<std::shared_ptr<const EmbeddedMetadata>> ImageSource::metadata() const
{
    if (!m_metadata)
        m_metadata = EmbeddedMetadata::read(*m_file);
    if (const auto read = m_file->checkReads(); !read)
        return tl::unexpected(read.error());
    return m_metadata;
}

int ImageSource::reductionTo(int minimumSide) const
{
    return minimumSide > 0 ? reductionFor(m_info.rows.size, minimumSide) : 1;
}

QSize ImageSource::imageSize(int minimumSide) const
{
    return reducedSize(m_info.rows.size, reductionTo(minimumSide));
}

qint64 ImageSource::imageBytes(int minimumSide) const
{
    const QSize size = imageSize(minimumSide);
    return rowsBytes() + qint64(size.width()) * size.height() * qint64(sizeof(QRgb));
}

Result<std::unique_ptr<RowReader>> ImageSource::openRows(int minimumSide) const
{
    m_file->seek(0);
    auto reader = m_format->codec->openReader(*m_file, m_limits, reductionTo(minimumSide));
    if (const auto read = m_file->checkReads(); !read)
        return tl::unexpected(read.error());
    if (!reader)
        return reader;
    reader = reducedTo(imageSize(minimumSide), std::move(*reader));
    // The header of some files states another size than their pictures have.
    if ((*reader)->format() != RowFormat{imageSize(minimumSide), m_info.rows.hasAlpha})
        return fail(PictureFailures::damaged());
    return reader;
}

std::optional<QString> ImageSource::retouch(QIODevice &to, const WriteOptions &options,
                                            const Retouch &retouch) const
{
    if (!m_format->codec->retouch)
        return std::nullopt;
    m_file->seek(0);
    std::optional<QString> notice = m_format->codec->retouch(*m_file, m_limits, to, options, retouch);
    return m_file->checkReads() ? notice : std::nullopt;
}

Result<QImage> ImageSource::createImage(int minimumSide) const
{
    const Result<std::unique_ptr<RowReader>> reader = openRows(minimumSide);
    if (!reader)
        return tl::unexpected(reader.error());
    const RowFormat rows = (*reader)->format();
    if (const auto checked = PictureFailures::checkMemory(rows.size, 4, m_limits); !checked)
        return tl::unexpected(checked.error());
    QImage image(rows.size, rows.imageFormat());
    if (image.isNull())
        return fail(PictureFailures::outOfMemory());
    if (const auto read = (*reader)->readRows(image, rows.size.height()); !read)
        return tl::unexpected(read.error());
    if (const auto read = m_file->checkReads(); !read)
        return tl::unexpected(read.error());
    return image;
}

} // namespace plexa
