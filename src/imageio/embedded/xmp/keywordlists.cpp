// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/keywordlists.h"

#include "imageio/embedded/metadataclearing.h"

#include <QRegularExpression>

#include <algorithm>

namespace plexa
{

namespace
{

bool isStillTrue(const QString &entry, const QStringList &before, const QStringList &after)
{
    static const QRegularExpression separators(QStringLiteral("[|/]"));
    const QStringList names = entry.split(separators);
    return (after.contains(entry) || after.contains(names.last())) &&
           std::all_of(names.begin(), names.end(),
                       [&](const QString &name) { return after.contains(name) || !before.contains(name); });
}

void updateTree(Exiv2::XmpData &xmp, const char *property, const QStringList &before,
                const QStringList &after)
{
    const Exiv2::XmpKey key(property);
    const auto found = xmp.findKey(key);
    if (found == xmp.end())
        return;
    Exiv2::XmpArrayValue entries(found->typeId() == Exiv2::xmpSeq ? Exiv2::xmpSeq : Exiv2::xmpBag);
    for (long i = 0; i < found->count(); ++i) {
        const std::string entry = found->toString(i);
        if (isStillTrue(QString::fromStdString(entry), before, after))
            entries.read(entry);
    }
    if (entries.count() == found->count())
        return;
    eraseXmpProperty(xmp, property);
    if (entries.count() > 0)
        xmp.add(key, &entries);
}

} // namespace

void updateKeywordLists(Exiv2::XmpData &xmp, const QStringList &before, const QStringList &after)
{
    for (const char *tree : {"Xmp.lr.hierarchicalSubject", "Xmp.digiKam.TagsList",
                             "Xmp.MicrosoftPhoto.LastKeywordXMP", "Xmp.MicrosoftPhoto.LastKeywordIPTC",
                             "Xmp.mediapro.CatalogSets", "Xmp.expressionmedia.CatalogSets"})
        updateTree(xmp, tree, before, after);
    for (const char *list : {"Xmp.mwg-kw.Keywords", "Xmp.pdf.Keywords", "Xmp.acdsee.categories",
                             "Xmp.acdsee.keywords", "Xmp.ics.TagStructure"})
        eraseXmpProperty(xmp, list);
}

} // namespace plexa
