// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/makernotefacts.h"

#include "imageio/exifvalues.h"
#include "imageio/metadatatext.h"
#include "imageio/propertykeys.h"

#include <QRegularExpression>

#include <initializer_list>

namespace plexa
{

namespace
{

/// Looks into one file's maker notes.
class MakerNotes
{
public:
    explicit MakerNotes(const Exiv2::ExifData &exif)
        : m_exif(exif)
    {
    }

    const Exiv2::Exifdatum *find(const char *key) const
    {
        const auto found = m_exif.findKey(Exiv2::ExifKey(key));
        return found == m_exif.end() || found->count() < 1 ? nullptr : &*found;
    }

    /// The first of these that holds a text.
    QVariant text(std::initializer_list<const char *> keys) const
    {
        for (const char *key : keys) {
            const Exiv2::Exifdatum *datum = find(key);
            if (!datum || datum->typeId() != Exiv2::asciiString)
                continue;
            if (const QVariant found = textOfValue(datum->value(), true); found.isValid())
                return found;
        }
        return {};
    }

    /// The single whole number under the key, 0 when there is none.
    qlonglong number(const char *key) const
    {
        const Exiv2::Exifdatum *datum = find(key);
        return datum && datum->count() == 1 && isNumeric(datum->value())
                   ? numberOfValue(datum->value(), 0).toLongLong()
                   : 0;
    }

    /// As the library words it for people.
    QString interpreted(const Exiv2::Exifdatum &datum) const
    {
        return trimmedAtEnd(decodedField(QByteArray::fromStdString(datum.print(&m_exif))));
    }

    QString lensName() const;
    QVariant lensId() const;
    QVariant serialNumber() const;
    QVariant imageNumber() const;
    QVariant flashCompensation() const;

private:
    const Exiv2::ExifData &m_exif;
};

bool isLensName(const QString &text)
{
    static const QRegularExpression noName(
        QStringLiteral("^(\\(?[0-9 .x]*\\)?|n/a|none|unknown.*|no lens.*|manual lens.*|-+)$"),
        QRegularExpression::CaseInsensitiveOption);
    return !noName.match(text).hasMatch();
}

/// Interpreted; empty for unknown lenses, which come as numbers.
QString MakerNotes::lensName() const
{
    const auto found = Exiv2::lensName(m_exif);
    if (found != m_exif.end()) {
        const QString name = interpreted(*found);
        if (isLensName(name))
            return name;
    }
    // Newer than the library's tables: the name that the lens gives itself, or its range.
    const QString own = text({"Exif.Canon.LensModel", "Exif.OlympusEq.LensModel"}).toString();
    if (!own.isEmpty() && isLensName(own))
        return own;
    const Exiv2::Exifdatum *range = find("Exif.Nikon3.Lens");
    if (range && range->count() == 4 && numberOfValue(range->value(), 0).toDouble() > 0)
        return interpreted(*range);
    return {};
}

QVariant MakerNotes::lensId() const
{
    for (const char *key : {"Exif.CanonCs.LensType", "Exif.Sony1.LensID", "Exif.Sony2.LensID",
                            "Exif.Minolta.LensID", "Exif.SonyMinolta.LensID"}) {
        // A number that names no lens comes from a damaged note or a camera without lens mount.
        const Exiv2::Exifdatum *datum = find(key);
        if (datum && number(key) > 0 && number(key) < 0xFFFF && isLensName(interpreted(*datum)))
            return static_cast<int>(number(key));
    }
    return {};
}

QVariant MakerNotes::serialNumber() const
{
    if (const qlonglong canon = number("Exif.Canon.SerialNumber"); canon > 0) {
        // As on the body: ten digits, six on the large bodies, two numbers on the first of all.
        const Exiv2::Exifdatum *modelTag = find("Exif.Image.Model");
        const QString model = modelTag ? textOfValue(modelTag->value(), true).toString() : QString();
        if (model.endsWith(u"EOS D30"))
            return QStringLiteral("%1-%2")
                .arg(canon >> 16, 4, 16, QChar(u'0'))
                .arg(canon & 0xFFFF, 5, 10, QChar(u'0'));
        return QStringLiteral("%1").arg(canon, model.contains(u"EOS-1D") ? 6 : 10, 10, QChar(u'0'));
    }
    const auto found = Exiv2::serialNumber(m_exif);
    if (found != m_exif.end() && found->count() > 0) {
        const QVariant number = isNumeric(found->value()) && found->count() == 1
                                    ? QVariant(numberOfValue(found->value(), 0).toString())
                                    : textOfValue(found->value(), true);
        if (!number.toString().isEmpty())
            return number;
    }
    return text({"Exif.OlympusEq.SerialNumber", "Exif.Pentax.SerialNumber", "Exif.PentaxDng.SerialNumber",
                 "Exif.Image.CameraSerialNumber"});
}

QVariant MakerNotes::imageNumber() const
{
    constexpr qlonglong kUnknownCount = 0xFFFFFFFF - 2046;
    const qlonglong count = number("Exif.Nikon3.ShutterCount");
    if (count > 0 && count < kUnknownCount)
        return count;
    for (const char *key : {"Exif.Canon.FileNumber", "Exif.CanonFi.FileNumber"}) {
        // Where the bits lie depends on the model, which the library knows.
        const Exiv2::Exifdatum *datum = find(key);
        static const QRegularExpression folderAndFile(QStringLiteral("^([1-9][0-9]{2})-([0-9]{4})$"));
        const auto match = folderAndFile.match(datum ? interpreted(*datum) : QString());
        if (match.hasMatch())
            return (match.captured(1) + match.captured(2)).toInt();
    }
    return {};
}

QVariant MakerNotes::flashCompensation() const
{
    for (const char *key : {"Exif.Nikon3.FlashExposureComp", "Exif.CanonSi.FlashBias"}) {
        const Exiv2::Exifdatum *datum = find(key);
        static const QRegularExpression stops(QStringLiteral("^([+-]?[0-9.]+)(?:/([1-9][0-9]?))? EV$"));
        const auto match = stops.match(datum ? interpreted(*datum) : QString());
        if (match.hasMatch())
            return match.captured(1).toDouble() /
                   (match.captured(2).isEmpty() ? 1 : match.captured(2).toDouble());
    }
    for (const char *key : {"Exif.OlympusCs.FlashExposureComp", "Exif.Sony1.FlashExposureComp"}) {
        const Exiv2::Exifdatum *datum = find(key);
        if (datum && datum->typeId() == Exiv2::signedRational)
            return numberOfValue(datum->value(), 0);
    }
    return {};
}

} // namespace

void insertMakerNoteFacts(QVariantMap &aux, const Exiv2::ExifData &exif)
{
    const MakerNotes notes(exif);
    const auto insert = [&aux](QLatin1StringView key, const QVariant &value) {
        if (value.isValid() && !aux.contains(key))
            aux.insert(key, value);
    };
    if (const QString lens = notes.lensName(); !lens.isEmpty())
        insert(kCGImagePropertyExifAuxLensModel, lens);
    if (const Exiv2::Exifdatum *range = notes.find("Exif.Nikon3.Lens"); range && range->count() == 4)
        insert(kCGImagePropertyExifAuxLensInfo, numbersOfValue(range->value()));
    insert(kCGImagePropertyExifAuxLensID, notes.lensId());
    insert(kCGImagePropertyExifAuxSerialNumber, notes.serialNumber());
    insert(kCGImagePropertyExifAuxLensSerialNumber,
           notes.text({"Exif.OlympusEq.LensSerialNumber", "Exif.Panasonic.LensSerialNumber"}));
    insert(kCGImagePropertyExifAuxImageNumber, notes.imageNumber());
    insert(kCGImagePropertyExifAuxFlashCompensation, notes.flashCompensation());
    insert(kCGImagePropertyExifAuxOwnerName, notes.text({"Exif.Canon.OwnerName"}));
    insert(kCGImagePropertyExifAuxFirmware, notes.text({"Exif.Canon.FirmwareVersion"}));
}

} // namespace plexa
