// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/imageobject.h"

#include "platform/filenames.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

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
    return m_photo.snapshot().pixels;
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

CustomOrigins ImageObject::customWatermarkRectOrigins()
{
    CustomOrigins all;
    m_photo.editOrigins([&all](CustomOrigins &origins) {
        all = origins;
        return false;
    });
    return all;
}

bool ImageObject::exchangeCustomWatermarkRectOrigins(const CustomOrigins &expected,
                                                     const CustomOrigins &origins)
{
    bool isExpected = false;
    m_photo.editOrigins([&](CustomOrigins &current) {
        isExpected = current == expected;
        return isExpected && std::exchange(current, origins) != origins;
    });
    return isExpected;
}

Result<QImage> ImageObject::createWatermarkedImage(const AppliedPreset &preset)
{
    const PhotoSnapshot current = m_photo.snapshot();
    if (current.pixels.isNull())
        return fail(loadError());
    return current.drawn(current.pixels, preset, m_services.fonts);
}

Result<CopyReport> ImageObject::saveImageAtPath(const CopyTarget &target,
                                                const std::vector<AppliedPreset> &presets,
                                                const SavingPresetValues &savingPreset,
                                                const CopyRules &rules, const CancelCheck &isCanceled,
                                                const QString &readFrom)
{
    Result<CopyOrder> ordered = copyOrderFor(path(), target, savingPreset);
    if (!ordered)
        return tl::unexpected(ordered.error());
    CopyOrder &order = *ordered;
    order.readPath = readFrom.isEmpty() ? readPath() : readFrom;
    order.rules = rules;
    order.isCanceled = isCanceled;
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
