// SPDX-License-Identifier: GPL-3.0-or-later

#include "views/photopromise.h"

#include "imageio/imagedestination.h"
#include "imageio/imageformat.h"
#include "saving/orderedwork.h"

#include <QBuffer>

#include <algorithm>

namespace plexa
{

QStringList PhotoPromise::names() const
{
    const std::size_t count = m_contents.photos.size() * m_contents.presets.size();
    QStringList names;
    for (std::size_t i = 0; i < count; ++i)
        names.append(QStringLiteral("image%1").arg(i));
    return names;
}

bool PhotoPromise::writeFiles(const QString &folder, Destination destination)
{
    if (destination == Destination::TargetFolder)
        return m_contents.startSaving && m_contents.startSaving(folder);
    const QStringList files = names();
    std::vector<Result<void>> written(static_cast<std::size_t>(files.size()));
    QStringList failures;
    OrderedWork work;
    work.count = written.size();
    work.threads = std::max(1, m_contents.threads);
    work.work = [&](std::size_t number) {
        written[number] =
            writeFile(number, folder + QLatin1Char('/') + files.at(static_cast<qsizetype>(number)));
    };
    work.deliver = [&](std::size_t number) {
        if (!written[number])
            failures.append(written[number].error().text);
    };
    runOrdered(work);
    report(failures);
    return failures.size() < files.size();
}

Result<void> PhotoPromise::writeFile(std::size_t number, const QString &path) const
{
    const std::size_t presets = m_contents.presets.size();
    ImageObject &photo = *m_contents.photos[number / presets];
    const auto copy = photo.saveImageAtPath({path}, {m_contents.presets[number % presets]},
                                            m_contents.savingPreset, m_contents.preservesCreationDate);
    if (!copy)
        return fail(photo.path() + QStringLiteral(": ") + copy.error().text);
    return {};
}

void PhotoPromise::report(const QStringList &failures) const
{
    if (!failures.isEmpty() && m_contents.reportFailures)
        m_contents.reportFailures(failures);
}

QStringList PhotoPromise::imageTypes() const
{
    if (m_contents.photos.empty() || m_contents.presets.empty())
        return {};
    QStringList types;
    for (const char *type :
         {"image/tiff", "image/jpeg", "image/png", "image/gif", "image/bmp", "image/heic"}) {
        const ImageFormat *format = imageFormatOfType(QLatin1String(type));
        if (format && format->canWrite)
            types.append(QLatin1String(type));
    }
    return types;
}

QByteArray PhotoPromise::image(const QString &mimeType)
{
    if (!imageTypes().contains(mimeType))
        return {};
    ImageObject &photo = *m_contents.photos.front();
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    CopyRequest request;
    request.type = mimeType;
    Result<void> written = fail(photo.loadError());
    if (const QImage picture = photo.savedImage(&m_contents.presets.front(), {}); !picture.isNull())
        written = writeImage(buffer, picture, request);
    if (written)
        return buffer.data();
    report({photo.path() + QStringLiteral(": ") + written.error().text});
    return {};
}

} // namespace plexa
