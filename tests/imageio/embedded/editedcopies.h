// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/factplaces.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "support/exiftool.h"
#include "support/files.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <QBuffer>

#include <functional>

namespace plexa::test
{

/// Small JPEGs in which exiftool has written facts, and copies of them with edited metadata in any format.
class EditedCopies
{
public:
    enum Places { All, XmpOnly, None };
    using Edit = std::function<void(ImageMetadata &)>;

    /// A value for a fact; two different ones.
    static QVariant value(const FactPlaces &fact, bool isNew)
    {
        using namespace Qt::Literals::StringLiterals;
        if (fact.key == kCGImagePropertyExifSubsecTimeOrginal)
            return isNew ? u"93"_s : u"17"_s;
        switch (metadataProperty(*fact.property()).kind) {
        case MetadataKind::DateTime:
            return isNew ? u"2020:10:11 12:13:14"_s : u"2001:02:03 04:05:06"_s;
        case MetadataKind::Integer:
        case MetadataKind::IntegerList:
            return isNew ? 5 : 3;
        case MetadataKind::Number:
            return isNew ? 5.5 : 2.5;
        default:
            return (isNew ? u"new \u00E9 "_s : u"old "_s) + fact.name().section(u':', 1) + u'.';
        }
    }

    /// @param places  which tags of the editable facts get their old value
    /// @param more    further arguments of exiftool
    /// @return the path; empty when exiftool failed
    QString sourceWith(Places places, const QStringList &more = {})
    {
        const QString path = m_folder.path(QStringLiteral("source%1.jpg").arg(++m_count));
        if (!writeFile(path, encoded(flatPicture({32, 32}), "JPEG")))
            return {};
        QStringList arguments = words("-n -overwrite_original -charset filename=utf8");
        for (const FactPlaces &fact : kFactPlaces) {
            for (const QString &place : fact.property() ? fact.places() : QStringList()) {
                if (places == All || (places == XmpOnly && place.startsWith(u"XMP")))
                    arguments += u'-' + place + u'=' + value(fact, false).toString();
            }
        }
        arguments += more;
        if (places == None && more.isEmpty())
            return path;
        const QByteArray out = outputOf(QStringLiteral("exiftool"), arguments + QStringList(path));
        return out.contains("1 image files updated") ? path : QString();
    }

    /// Writes a copy with edited metadata. @return its path; empty when that failed
    QString copyOf(const QString &path, const Edit &edit, const char *type = "image/jpeg")
    {
        const auto source = ImageSource::open(path);
        if (!source)
            return {};
        ImageMetadata metadata(*source->properties());
        edit(metadata);
        CopyRequest request{QString::fromLatin1(type), metadata.imagePropertiesDictionary(), &*source};
        request.cleared = metadata.clearedGroups();
        QBuffer file;
        file.open(QIODevice::ReadWrite);
        const QString copy = m_folder.path(QStringLiteral("copy%1").arg(++m_count));
        const bool isWritten =
            writeImage(file, flatPicture({32, 32}), request) && writeFile(copy, file.data());
        return isWritten ? copy : QString();
    }

    /// What exiftool reads of one copy.
    QJsonObject recordOf(const QString &path, const Edit &edit, const char *type = "image/jpeg")
    {
        const QString copy = copyOf(path, edit, type);
        return exiftoolRecords({copy}).value(copy);
    }

private:
    TestFolder m_folder;
    int m_count = 0;
};

/// The formats that can be written and have room for metadata.
inline QList<ImageFormat> formatsWithMetadata()
{
    QList<ImageFormat> formats;
    for (const ImageFormat &format : imageFormats()) {
        if (format.canWrite && qstrcmp(format.type, "image/bmp") != 0)
            formats += format;
    }
    return formats;
}

} // namespace plexa::test
