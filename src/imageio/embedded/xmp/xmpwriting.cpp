// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpwriting.h"

#include "imageio/embedded/metadataclearing.h"
#include "imageio/embedded/metadatavalues.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr SplitDate kSplitDates[] = {
    {kCGImagePropertyTIFFDateTime, MetadataGroup::Tiff, kCGImagePropertyExifSubsecTime,
     kCGImagePropertyExifOffsetTime},
    {kCGImagePropertyExifDateTimeOriginal, MetadataGroup::Exif, kCGImagePropertyExifSubsecTimeOrginal,
     kCGImagePropertyExifOffsetTimeOriginal},
    {kCGImagePropertyExifDateTimeDigitized, MetadataGroup::Exif, kCGImagePropertyExifSubsecTimeDigitized,
     kCGImagePropertyExifOffsetTimeDigitized},
};

/// EXIF packs the flash into one number, XMP spreads it over a structure (EXIF for XMP).
void putFlash(Exiv2::XmpData &xmp, int flash)
{
    eraseXmpProperty(xmp, "Xmp.exif.Flash");
    addXmpStructure(xmp, "Xmp.exif.Flash");
    const auto add = [&xmp](const char *name, const QString &text) {
        putXmpTexts(xmp, (std::string("Xmp.exif.Flash/exif:") + name).c_str(), {text});
    };
    const auto truth = [](int bit) { return bit ? QStringLiteral("True") : QStringLiteral("False"); };
    add("Fired", truth(flash & 1));
    add("Return", QString::number(flash >> 1 & 3));
    add("Mode", QString::number(flash >> 3 & 3));
    add("Function", truth(flash >> 5 & 1));
    add("RedEyeMode", truth(flash >> 6 & 1));
}

} // namespace

Exiv2::XmpTextValue plainXmpText(const std::string &text)
{
    Exiv2::XmpTextValue value;
    value.value_ = text;
    return value;
}

void putXmpTexts(Exiv2::XmpData &xmp, const char *name, const QStringList &texts, const QString &separator)
{
    eraseXmpProperty(xmp, name);
    const Exiv2::XmpKey key(name);
    const Exiv2::TypeId type = Exiv2::XmpProperties::propertyType(key);
    if (type == Exiv2::langAlt) {
        // Its own reading would look for a language in the text.
        Exiv2::LangAltValue value;
        value.value_["x-default"] = xmlText(texts.join(u'\n')).toStdString();
        xmp.add(key, &value);
    } else if (type == Exiv2::xmpSeq || type == Exiv2::xmpBag || type == Exiv2::xmpAlt) {
        Exiv2::XmpArrayValue value(type);
        for (const QString &text : texts)
            value.read(xmlText(text).toStdString());
        xmp.add(key, &value);
    } else {
        const Exiv2::XmpTextValue value = plainXmpText(xmlText(texts.join(separator)).toStdString());
        xmp.add(key, &value);
    }
}

void putXmpField(Exiv2::XmpData &xmp, const char *name, const MetadataField &field, const QVariant &value)
{
    const QStringList texts = xmpTexts(field.kind, value);
    const bool isText = field.kind == MetadataKind::TextList;
    if (texts.isEmpty())
        eraseXmpProperty(xmp, name);
    else if (field.key == kCGImagePropertyExifFlash)
        putFlash(xmp, value.toInt());
    else
        putXmpTexts(xmp, name, texts, isText ? QStringLiteral("; ") : QStringLiteral(" "));
}

void addXmpStructure(Exiv2::XmpData &xmp, const char *name)
{
    const Exiv2::XmpKey key(name);
    if (xmp.findKey(key) != xmp.end())
        return;
    Exiv2::XmpTextValue structure;
    structure.setXmpStruct(Exiv2::XmpValue::xsStruct);
    xmp.add(key, &structure);
}

const SplitDate *splitDateOf(const MetadataField &field)
{
    const auto found =
        std::find_if(std::begin(kSplitDates), std::end(kSplitDates), [&field](const SplitDate &split) {
            return split.dateGroup == field.group && split.date == field.key;
        });
    return found == std::end(kSplitDates) ? nullptr : found;
}

QString xmpDateText(const SplitDate &split, const QVariantMap &properties)
{
    const QVariantMap exif = groupDictionary(properties, MetadataGroup::Exif);
    const QStringList texts =
        xmpTexts(MetadataKind::DateTime, groupDictionary(properties, split.dateGroup).value(split.date));
    if (texts.isEmpty())
        return {};
    static const QRegularExpression digits(QStringLiteral("^[0-9]+"));
    static const QRegularExpression offset(QStringLiteral("^([+-][0-9]{2}:[0-9]{2}|Z)$"));
    const QString fraction = digits.match(exif.value(split.fraction).toString()).captured();
    const QString zone = offset.match(exif.value(split.zone).toString()).captured();
    return texts.constFirst() + (fraction.isEmpty() ? QString() : u'.' + fraction) + zone;
}

} // namespace plexa
