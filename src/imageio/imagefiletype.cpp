// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/imagefiletype.h"

#include "imageio/imageformat.h"
#include "platform/filenames.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr qint64 kSignatureBytes = 64;

bool isReadableType(const QMimeType &type)
{
    const QList<ImageFormat> &formats = imageFormats();
    return std::any_of(formats.begin(), formats.end(), [&type](const ImageFormat &format) {
        return type.inherits(QLatin1String(format.type));
    });
}

bool hasReadableContents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && imageFormatOfContents(file.read(kSignatureBytes));
}

} // namespace

bool isImageFile(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.fileName().startsWith(QLatin1Char('.')))
        return false;
    const QString suffix = fileExtensionOf(path);
    if (!suffix.isEmpty()) {
        if (imageFormatOfSuffix(suffix))
            return true;
        const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(info.fileName());
        if (!types.isEmpty())
            return std::any_of(types.begin(), types.end(), isReadableType);
    }
    return hasReadableContents(path);
}

} // namespace plexa
