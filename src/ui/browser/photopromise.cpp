// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/browser/photopromise.h"

#include "imageio/imagedestination.h"
#include "imageio/imageformat.h"
#include "platform/orderedwork.h"

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

FilePromise::Outcome PhotoPromise::makeFiles(const QString &folder, const std::function<bool()> &isUnwanted)
{
    const QStringList files = names();
    std::vector<Result<void>> written(static_cast<std::size_t>(files.size()));
    Outcome outcome;
    CopyProgress &progress = *m_contents.progress;
    const int begun = progress.begin();
    OrderedWork work;
    work.count = written.size();
    work.threads = std::max(1, m_contents.threads);
    work.isStopped = [&] { return isUnwanted() || progress.isStopped(begun); };
    work.work = [&](std::size_t number) {
        written[number] =
            writeFile(number, folder + QLatin1Char('/') + files.at(static_cast<qsizetype>(number)));
    };
    work.deliver = [&](std::size_t number) {
        if (!written[number])
            outcome.failures.append(written[number].error().text);
        progress.setProgress(static_cast<float>(number + 1) / static_cast<float>(work.count));
    };
    runOrdered(work);
    outcome.isStopped = progress.isStopped(begun);
    progress.end();
    return outcome;
}

Result<void> PhotoPromise::writeFile(std::size_t number, const QString &path) const
{
    const std::size_t presets = m_contents.presets.size();
    ImageObject &photo = *m_contents.photos[number / presets];
    const auto copy = photo.saveImageAtPath({path}, {m_contents.presets[number % presets]},
                                            m_contents.savingPreset, {m_contents.preservesCreationDate});
    if (!copy)
        return fail(photo.path() + QStringLiteral(": ") + copy.error().text);
    return {};
}

void PhotoPromise::report(const QStringList &failures)
{
    if (!failures.isEmpty())
        m_contents.reportFailures(failures);
}

QStringList PhotoPromise::imageTypes() const
{
    QStringList types;
    for (const char *type :
         {"image/tiff", "image/jpeg", "image/png", "image/gif", "image/bmp", "image/heic"}) {
        const ImageFormat *format = imageFormatOfType(QLatin1String(type));
        if (format && format->canWrite)
            types.append(QLatin1String(type));
    }
    return types;
}

QByteArray PhotoPromise::image(const QString &mimeType, QStringList &failures)
{
    ImageObject &photo = *m_contents.photos.front();
    QBuffer buffer;
    buffer.open(QIODevice::ReadWrite);
    CopyRequest request;
    request.type = mimeType;
    const Result<void> written =
        photo.createWatermarkedImage(m_contents.presets.front()).and_then([&](const QImage &picture) {
            return writeImage(buffer, picture, request);
        });
    if (written)
        return buffer.data();
    failures.append(photo.path() + QStringLiteral(": ") + written.error().text);
    return {};
}

} // namespace plexa
