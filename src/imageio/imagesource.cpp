// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagesource.h"

#include "imageio/base/picturefailures.h"
#include "imageio/base/reducedrows.h"
#include "imageio/color/colorprofile.h"
#include "imageio/embedded/embeddedmetadata.h"
#include "imageio/formatdetection.h"
#include "metadata/propertykeys.h"

#include <QFile>
#include <QFileInfo>

#include <optional>

namespace plexa
{

namespace
{

/// Puts in what the metadata do not say. A group of theirs is whole but for the camera's name: what a codec
/// has to tell of the exposure comes from the same place, less exactly.
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

struct ImageSource::State {
    QString path;
    ReadLimits limits;
    std::unique_ptr<QFile> file;
    std::optional<FileVersion> version;
    const ImageFormat *format = nullptr;
    PictureInfo info;
    mutable std::shared_ptr<const EmbeddedMetadata> metadata;
    mutable std::optional<QVariantMap> properties;

    QVariantMap makeProperties(const EmbeddedMetadata &fromMetadata) const;
    int reductionTo(int minimumSide) const { return reductionFor(info.rows.size, minimumSide); }
    /// Does the codec decode a smaller picture?
    bool reducesItself(int reduction) const
    {
        return format->codec->reducedSize(info.rows.size, reduction) != info.rows.size;
    }
    Result<std::unique_ptr<RowReader>> openReader(int reduction) const;
    Result<QImage> readImage(int reduction) const;
};

QVariantMap ImageSource::State::makeProperties(const EmbeddedMetadata &fromMetadata) const
{
    QVariantMap map;
    map.insert(kCGImagePropertyPixelWidth, info.rows.size.width());
    map.insert(kCGImagePropertyPixelHeight, info.rows.size.height());
    map.insert(kCGImagePropertyDepth, info.depth);
    map.insert(kCGImagePropertyColorModel, info.colorModel);
    map.insert(kCGImagePropertyHasAlpha, info.rows.hasAlpha);
    const QString profile = profileDescription(info.iccProfile);
    if (!profile.isEmpty())
        map.insert(kCGImagePropertyProfileName, profile);
    if (info.dpiWidth > 0 && info.dpiHeight > 0) {
        map.insert(kCGImagePropertyDPIWidth, info.dpiWidth);
        map.insert(kCGImagePropertyDPIHeight, info.dpiHeight);
    }
    // A density that EXIF has with its unit is what the camera or the editor wrote on purpose; JFIF's is
    // often only filled in.
    map.insert(fromMetadata.properties());
    // Texts of a PNG come with the metadata, the rest of its dictionary with the picture.
    for (auto dictionary = info.formatProperties.begin(); dictionary != info.formatProperties.end();
         ++dictionary) {
        QVariantMap whole = map.value(dictionary.key()).toMap();
        whole.insert(dictionary->toMap());
        map.insert(dictionary.key(), whole);
    }
    fillIn(map, info.properties);
    if (info.orientation > 0 && map.value(kCGImagePropertyOrientation, 1).toInt() != info.orientation)
        setOrientation(map, info.orientation);
    return map;
}

Result<std::unique_ptr<RowReader>> ImageSource::State::openReader(int reduction) const
{
    Result<std::unique_ptr<RowReader>> reader = format->codec->openReader(*file, limits, reduction);
    if (reader && !reducesItself(reduction))
        reader = withReducedRows(std::move(*reader), reduction);
    // The header of some files states another size than their pictures have.
    if (reader && reduction == 1 && (*reader)->format() != info.rows)
        return fail(PictureFailures::damaged());
    return reader;
}

Result<QImage> ImageSource::State::readImage(int reduction) const
{
    const Result<std::unique_ptr<RowReader>> reader = openReader(reduction);
    if (!reader)
        return tl::unexpected(reader.error());
    const RowFormat rows = (*reader)->format();
    if (const auto checked = PictureFailures::checkMemory(rows.size, 4, limits); !checked)
        return tl::unexpected(checked.error());
    QImage image(rows.size, rows.imageFormat());
    if (image.isNull())
        return fail(PictureFailures::outOfMemory());
    if (const auto read = (*reader)->readRows(image, rows.size.height()); !read)
        return tl::unexpected(read.error());
    return image;
}

ImageSource::ImageSource(std::unique_ptr<State> state)
    : m_state(std::move(state))
{
}

ImageSource::ImageSource(ImageSource &&) noexcept = default;
ImageSource &ImageSource::operator=(ImageSource &&) noexcept = default;
ImageSource::~ImageSource() = default;

Result<ImageSource> ImageSource::open(const QString &path, const ReadLimits &limits)
{
    auto state = std::make_unique<State>();
    state->path = path;
    state->limits = limits;
    state->file = std::make_unique<QFile>(path);
    // A pipe or a device has no size and no end that could be relied on.
    if (QFileInfo(path).exists() && !QFileInfo(path).isFile())
        return fail(PictureFailures::notAPicture());
    if (!state->file->open(QIODevice::ReadOnly))
        return fail(PictureFailures::readError(*state->file));
    state->version = fileVersionOf(state->file->handle());
    const QByteArray head = state->file->peek(64);
    if (head.isEmpty())
        return fail(state->file->size() > 0 ? PictureFailures::readError(*state->file)
                                            : PictureFailures::emptyFile());
    std::optional<Error> failure;
    for (const ImageFormat *format : formatsToTry(*state->file, head, QFileInfo(path).suffix())) {
        if (!state->file->seek(0))
            return fail(PictureFailures::readError(*state->file));
        Result<PictureInfo> info = format->codec->readInfo(*state->file, limits);
        if (info) {
            state->format = format;
            state->info = std::move(*info);
            return ImageSource(std::move(state));
        }
        failure = failure.value_or(info.error());
    }
    return tl::unexpected(failure.value_or(Error{PictureFailures::notAPicture()}));
}

QString ImageSource::type() const
{
    return QString::fromLatin1(m_state->format->type);
}

const ImageFormat &ImageSource::format() const
{
    return *m_state->format;
}

const PictureInfo &ImageSource::info() const
{
    return m_state->info;
}

int ImageSource::imageCount() const
{
    return m_state->info.imageCount;
}

std::optional<FileVersion> ImageSource::version() const
{
    return m_state->version;
}

Result<void> ImageSource::checkUnchanged() const
{
    if (fileVersionOf(m_state->file->handle()) != m_state->version)
        return fail(PictureFailures::changedMeanwhile());
    return {};
}

const QVariantMap &ImageSource::properties() const
{
    if (!m_state->properties)
        m_state->properties = m_state->makeProperties(*metadata());
    return *m_state->properties;
}

std::shared_ptr<const EmbeddedMetadata> ImageSource::metadata() const
{
    if (!m_state->metadata) {
        // The very file that is open, even if its name leads to another one by now.
        const QString open = QStringLiteral("/proc/self/fd/%1").arg(m_state->file->handle());
        m_state->metadata = EmbeddedMetadata::read(QFile::exists(open) ? open : m_state->path);
    }
    return m_state->metadata;
}

Result<QImage> ImageSource::createImage(int minimumSide) const
{
    return m_state->readImage(minimumSide > 0 ? m_state->reductionTo(minimumSide) : 1);
}

qint64 ImageSource::rowsBytes() const
{
    return m_state->info.decoderBytes;
}

qint64 ImageSource::imageBytes(int minimumSide) const
{
    const QSize size = imageSize(minimumSide);
    return rowsBytes() + qint64(size.width()) * size.height() * qint64(sizeof(QRgb));
}

QSize ImageSource::imageSize(int minimumSide) const
{
    const QSize whole = m_state->info.rows.size;
    const int reduction = minimumSide > 0 ? m_state->reductionTo(minimumSide) : 1;
    return m_state->reducesItself(reduction) ? m_state->format->codec->reducedSize(whole, reduction)
                                             : reducedSize(whole, reduction);
}

Result<std::unique_ptr<RowReader>> ImageSource::openRows(int minimumSide) const
{
    return m_state->openReader(minimumSide > 0 ? m_state->reductionTo(minimumSide) : 1);
}

} // namespace plexa
