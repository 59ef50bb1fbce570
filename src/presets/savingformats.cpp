// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingformats.h"

#include "imageio/imageformat.h"

#include <algorithm>

namespace plexa
{
namespace
{

struct SavingFormat {
    QString name;
    QString type;
    // Fewer than the suffixes by which a format is recognized: "photo.jfif" becomes "photo.jpg".
    QStringList extensions;
};

const QList<SavingFormat> &writableFormats()
{
    static const QList<SavingFormat> formats = [] {
        QList<SavingFormat> all{
            {u"JPEG"_qs, u"image/jpeg"_qs, {u"jpg"_qs, u"jpeg"_qs}},
            {u"HEIC"_qs, u"image/heic"_qs, {u"heic"_qs}},
            {u"TIFF"_qs, u"image/tiff"_qs, {u"tif"_qs, u"tiff"_qs}},
            {u"PNG"_qs, u"image/png"_qs, {u"png"_qs}},
            {u"GIF"_qs, u"image/gif"_qs, {u"gif"_qs}},
            {u"BMP"_qs, u"image/bmp"_qs, {u"bmp"_qs}},
        };
        all.removeIf([](const SavingFormat &format) {
            const ImageFormat *known = imageFormatOfType(format.type);
            return !known || !known->canWrite;
        });
        return all;
    }();
    return formats;
}

template<class Test>
const SavingFormat *firstFormat(Test test)
{
    const QList<SavingFormat> &formats = writableFormats();
    const auto found = std::find_if(formats.begin(), formats.end(), test);
    return found == formats.end() ? nullptr : &*found;
}

const SavingFormat *formatOfType(const QString &type)
{
    return firstFormat([&type](const SavingFormat &format) { return format.type == type; });
}

} // namespace

QString originalFormatName()
{
    return QStringLiteral("Original");
}

QStringList savingFormatNames()
{
    return savingFormatNamesWithoutOriginal() << originalFormatName();
}

QStringList savingFormatNamesWithoutOriginal()
{
    QStringList names;
    for (const SavingFormat &format : writableFormats())
        names.append(format.name);
    return names;
}

QString savingTypeForExtension(const QString &extension)
{
    // A format's name in lower case is one of its extensions.
    const SavingFormat *format = firstFormat([lower = extension.toLower()](const SavingFormat &candidate) {
        return candidate.extensions.contains(lower);
    });
    return format ? format->type : QString();
}

bool isSavingType(const QString &type)
{
    return formatOfType(type) != nullptr;
}

QStringList savingExtensionsOfType(const QString &type)
{
    const SavingFormat *format = formatOfType(type);
    return format ? format->extensions : QStringList();
}

} // namespace plexa
