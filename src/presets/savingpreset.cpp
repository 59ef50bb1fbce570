// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpreset.h"

#include "imageio/imageformat.h"

#include <QFileInfo>

namespace plexa
{

namespace
{

const QString kOriginal = QStringLiteral("Original");

// The formats that presets offer, in the order in which they are shown.
const char *const kOfferedTypes[] = {"image/jpeg", "image/heic", "image/tiff",
                                     "image/png",  "image/gif",  "image/bmp"};

bool isOffered(const ImageFormat &format)
{
    return format.canWrite && std::any_of(std::begin(kOfferedTypes), std::end(kOfferedTypes),
                                          [&](const char *type) { return qstrcmp(type, format.type) == 0; });
}

} // namespace

QString SavingPreset::imageFormatUTI(const QString &sourcePath) const
{
    if (imageFormat != kOriginal)
        return utiForFileExtension(imageFormat);
    const QString own = utiForFileExtension(QFileInfo(sourcePath).suffix());
    return own.isEmpty() ? utiForFileExtension(alternativeImageFormat) : own;
}

QStringList SavingPreset::filenameExtensions(const QString &sourcePath) const
{
    const ImageFormat *format = imageFormatOfType(imageFormatUTI(sourcePath));
    return format ? format->suffixes : QStringList();
}

QStringList SavingPreset::supportedFileFormats()
{
    QStringList names;
    for (const char *type : kOfferedTypes) {
        const ImageFormat *format = imageFormatOfType(QLatin1String(type));
        if (format && format->canWrite)
            names.append(QLatin1String(format->name));
    }
    names.append(kOriginal);
    return names;
}

QString SavingPreset::utiForFileExtension(const QString &extension)
{
    // A format's name in lower case is one of its suffixes.
    const ImageFormat *format = imageFormatOfSuffix(extension);
    return format && isOffered(*format) ? QLatin1String(format->type) : QString();
}

bool SavingPreset::supportedUTI(const QString &type)
{
    const ImageFormat *format = imageFormatOfType(type);
    return format && isOffered(*format);
}

} // namespace plexa
