// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpresetvalues.h"

#include "platform/filenames.h"
#include "presets/savingformats.h"

#include <initializer_list>

namespace plexa
{
namespace
{

/// Can a copy come out in one of these formats?
bool mayWrite(const SavingPresetValues &values, std::initializer_list<QLatin1StringView> formats)
{
    const QString &format =
        values.hideAlternativeFormat() ? values.imageFormat : values.alternativeImageFormat;
    return std::any_of(formats.begin(), formats.end(),
                       [&format](QLatin1StringView name) { return format == name; });
}

} // namespace

bool SavingPresetValues::hideJPEGQuality() const
{
    return !mayWrite(*this, {QLatin1StringView("JPEG"), QLatin1StringView("HEIC")});
}

bool SavingPresetValues::hideTiffCompression() const
{
    return !mayWrite(*this, {QLatin1StringView("TIFF")});
}

bool SavingPresetValues::hideAlternativeFormat() const
{
    return imageFormat != originalFormatName();
}

bool SavingPresetValues::validPreset() const
{
    return !filenameTokens.isEmpty() && jpegQuality >= kLowestQuality && jpegQuality <= kHighestQuality;
}

QString SavingPresetValues::imageFormatUTI(const QString &sourcePath) const
{
    if (imageFormat != originalFormatName())
        return savingTypeForExtension(imageFormat);
    const QString own = savingTypeForExtension(fileExtensionOf(sourcePath));
    return own.isEmpty() ? savingTypeForExtension(alternativeImageFormat) : own;
}

QStringList SavingPresetValues::filenameExtensions(const QString &sourcePath) const
{
    return savingExtensionsOfType(imageFormatUTI(sourcePath));
}

} // namespace plexa
