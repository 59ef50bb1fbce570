// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/imageobject.h"

#include "platform/filenames.h"

#include <QDir>
#include <QFileInfo>

namespace plexa
{

ImageObject::ImageObject(const QString &path, const PhotoServices &services)
    : m_services(services)
    , m_photo(path, services, [this](const LoadedPhoto::Changes &changes) { announce(changes); })
{
}

void ImageObject::announce(const LoadedPhoto::Changes &changes)
{
    if (changes.inMetadata)
        Q_EMIT metadataChanged();
    if (changes.inOrigins)
        Q_EMIT customWatermarkRectOriginsChanged();
}

void ImageObject::setPath(const QString &path)
{
    if (m_photo.setPath(path))
        Q_EMIT pathChanged();
}

QString ImageObject::filename() const
{
    return filenameOf(path());
}

void ImageObject::setFilename(const QString &filename)
{
    const QFileInfo info(path());
    const QString extension = fileExtensionOf(path());
    QString name = extension.isEmpty() ? filename : filename + QLatin1Char('.') + extension;
    name.replace(QLatin1Char('/'), QLatin1Char('_')).remove(QChar());
    if (filename.isEmpty() || name == QLatin1String(".") || name == QLatin1String(".."))
        return;
    setPath(info.path() == QLatin1String(".") ? name : QDir(info.path()).filePath(name));
}

QImage ImageObject::originalCGImage()
{
    return m_photo.snapshot(LoadedPhoto::Pixels::Needed).pixels;
}

QSize ImageObject::originalImageSize()
{
    const QSize size = pixelSize();
    return size.isEmpty() && loadImageFromDisk() ? pixelSize() : size;
}

QString ImageObject::originalImageSizeAsString()
{
    const QSize size = originalImageSize();
    return QStringLiteral("%1 x %2").arg(size.width()).arg(size.height());
}

bool ImageObject::transformOriginalImageWithOperation(int operation)
{
    if (operation < 1 || operation > 5)
        return false;
    return m_photo.turn(static_cast<ImageTransform>(operation));
}

void ImageObject::setCustomWatermarkRectOrigin(QPointF origin, const std::shared_ptr<const WPreset> &preset)
{
    m_photo.editOrigins([&](CustomOrigins &origins) { return origins.set(preset, origin); });
}

bool ImageObject::resetCustomWatermarkRectOriginForWPreset(const WPreset *preset)
{
    return m_photo.editOrigins([&](CustomOrigins &origins) { return origins.reset(preset); });
}

void ImageObject::resetAllCustomWatermarkRectOrigins()
{
    m_photo.editOrigins([](CustomOrigins &origins) { return origins.clear(); });
}

QImage ImageObject::createWatermarkedImage(const QImage &image, const AppliedPreset &preset, QRectF *rect)
{
    if (rect)
        *rect = QRectF();
    using Pixels = LoadedPhoto::Pixels;
    const PhotoSnapshot current = m_photo.snapshot(image.isNull() ? Pixels::Needed : Pixels::NotNeeded);
    return current.drawn(image.isNull() ? current.pixels : image, preset, m_services.fonts, rect);
}

QImage ImageObject::createWatermarkedImageForAllAppliedWPresets(const std::vector<AppliedPreset> &presets)
{
    const PhotoSnapshot current = m_photo.snapshot(LoadedPhoto::Pixels::Needed);
    QImage result = current.pixels;
    for (const AppliedPreset &preset : presets) {
        if (const QImage marked = current.drawn(result, preset, m_services.fonts); !marked.isNull())
            result = marked;
    }
    return result;
}

QImage ImageObject::createFinalCGImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets,
                                       QRectF *rect)
{
    return preset ? createWatermarkedImage({}, *preset, rect)
                  : createWatermarkedImageForAllAppliedWPresets(presets);
}

QImage ImageObject::savedImage(const AppliedPreset *preset, const std::vector<AppliedPreset> &presets)
{
    return createFinalCGImage(preset, presets);
}

QList<QImage> ImageObject::generatePasteboardImages(const std::vector<AppliedPreset> &presets)
{
    QList<QImage> images;
    for (const AppliedPreset &preset : presets) {
        if (const QImage image = savedImage(&preset, presets); !image.isNull())
            images.append(image);
    }
    return images;
}

Result<CopyReport> ImageObject::saveImageAtPath(const CopyTarget &target,
                                                const std::vector<AppliedPreset> &presets,
                                                const SavingPresetValues &savingPreset,
                                                const CopyRules &rules, const CancelCheck &isCancelled,
                                                const QString &readFrom)
{
    Result<CopyOrder> ordered = copyOrderFor(path(), target, savingPreset);
    if (!ordered)
        return tl::unexpected(ordered.error());
    CopyOrder &order = *ordered;
    order.readPath = readFrom.isEmpty() ? readPath() : readFrom;
    order.rules = rules;
    order.isCancelled = isCancelled;
    const std::optional<FileVersion> before = fileVersionAt(readPath());
    const std::optional<FileVersion> replaced = fileVersionAt(target.path);
    if (before && replaced && before->isSameFile(*replaced))
        order.overwritten = before;
    const std::optional<FileVersion> version = readFrom.isEmpty() ? before : fileVersionAt(readFrom);
    if (readFrom.isEmpty())
        m_photo.bringUpToDate(version);
    return m_photo.writeCopyOf(version, std::move(order), presets);
}

} // namespace plexa
