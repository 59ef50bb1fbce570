// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/exif/makernotefacts.h"

#include "imageio/embedded/exif/exifvalues.h"
#include "imageio/embedded/metadataclearing.h"
#include "metadata/metadatatext.h"
#include "metadata/propertykeys.h"

#include <QRegularExpression>

#include <algorithm>
#include <initializer_list>
#include <string>
#include <vector>

namespace plexa
{

namespace
{

/// A field of a maker note, or of DNG, that holds a fact of the dictionary.
struct NoteField {
    QLatin1StringView fact;
    const char *key;
};

/// In the order in which they are read. An edit of a fact removes the fields that are listed for it.
constexpr NoteField kNoteFields[] = {
    {kCGImagePropertyExifAuxLensModel, "Exif.Canon.LensModel"},
    {kCGImagePropertyExifAuxLensModel, "Exif.OlympusEq.LensModel"},
    {kCGImagePropertyExifAuxLensInfo, "Exif.Nikon3.Lens"},
    {kCGImagePropertyExifAuxLensID, "Exif.CanonCs.LensType"},
    {kCGImagePropertyExifAuxLensID, "Exif.Sony1.LensID"},
    {kCGImagePropertyExifAuxLensID, "Exif.Sony2.LensID"},
    {kCGImagePropertyExifAuxLensID, "Exif.Minolta.LensID"},
    {kCGImagePropertyExifAuxLensID, "Exif.SonyMinolta.LensID"},
    {kCGImagePropertyExifAuxSerialNumber, "Exif.OlympusEq.SerialNumber"},
    {kCGImagePropertyExifAuxSerialNumber, "Exif.Pentax.SerialNumber"},
    {kCGImagePropertyExifAuxSerialNumber, "Exif.PentaxDng.SerialNumber"},
    {kCGImagePropertyExifAuxSerialNumber, "Exif.Image.CameraSerialNumber"},
    {kCGImagePropertyExifAuxLensSerialNumber, "Exif.OlympusEq.LensSerialNumber"},
    {kCGImagePropertyExifAuxLensSerialNumber, "Exif.Panasonic.LensSerialNumber"},
    {kCGImagePropertyExifAuxImageNumber, "Exif.Nikon3.ShutterCount"},
    {kCGImagePropertyExifAuxImageNumber, "Exif.Canon.FileNumber"},
    {kCGImagePropertyExifAuxImageNumber, "Exif.CanonFi.FileNumber"},
    {kCGImagePropertyExifAuxFlashCompensation, "Exif.Nikon3.FlashExposureComp"},
    {kCGImagePropertyExifAuxFlashCompensation, "Exif.CanonSi.FlashBias"},
    {kCGImagePropertyExifAuxFlashCompensation, "Exif.OlympusCs.FlashExposureComp"},
    {kCGImagePropertyExifAuxFlashCompensation, "Exif.Sony1.FlashExposureComp"},
    {kCGImagePropertyExifAuxOwnerName, "Exif.Canon.OwnerName"},
    {kCGImagePropertyExifAuxFirmware, "Exif.Canon.FirmwareVersion"},
};

std::vector<const char *> keysOf(QLatin1StringView fact)
{
    std::vector<const char *> keys;
    for (const NoteField &field : kNoteFields) {
        if (field.fact == fact)
            keys.push_back(field.key);
    }
    return keys;
}

bool isLensName(const QString &text)
{
    static const QRegularExpression noName(
        QStringLiteral("^(\\(?[0-9 .x]*\\)?|n/a|none|unknown.*|no lens.*|manual lens.*|-+)$"),
        QRegularExpression::CaseInsensitiveOption);
    return !noName.match(text).hasMatch();
}

/// Reads one file's maker notes.
class MakerNotes
{
public:
    explicit MakerNotes(const Exiv2::ExifData &exif)
        : m_exif(exif)
    {
    }

    const Exiv2::Exifdatum *find(const char *key) const
    {
        const Exiv2::Exifdatum *found = exifDatum(m_exif, key);
        return found && found->count() > 0 ? found : nullptr;
    }

    /// The first of the fact's fields that holds a text.
    QVariant text(QLatin1StringView fact) const
    {
        for (const char *key : keysOf(fact)) {
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

    /// In the library's words for people.
    QString interpreted(const Exiv2::Exifdatum &datum) const
    {
        return trimmedAtEnd(decodedField(QByteArray::fromStdString(datum.print(&m_exif))));
    }

    /// Interpreted; empty for unknown lenses, which come as numbers.
    QString lensName() const
    {
        const auto found = Exiv2::lensName(m_exif);
        if (found != m_exif.end()) {
            const QString name = interpreted(*found);
            if (isLensName(name))
                return name;
        }
        // Newer than the library's tables: the name that the lens gives itself, or its range.
        const QString own = text(kCGImagePropertyExifAuxLensModel).toString();
        if (!own.isEmpty() && isLensName(own))
            return own;
        const Exiv2::Exifdatum *range = lensRange();
        return range && numberOfValue(range->value(), 0).toDouble() > 0 ? interpreted(*range) : QString();
    }

    /// Focal lengths and apertures: four numbers.
    const Exiv2::Exifdatum *lensRange() const
    {
        for (const char *key : keysOf(kCGImagePropertyExifAuxLensInfo)) {
            const Exiv2::Exifdatum *datum = find(key);
            if (datum && datum->count() == 4)
                return datum;
        }
        return nullptr;
    }

    QVariant lensId() const
    {
        for (const char *key : keysOf(kCGImagePropertyExifAuxLensID)) {
            // A number that names no lens comes from a damaged note or a camera without lens mount.
            const Exiv2::Exifdatum *datum = find(key);
            if (datum && number(key) > 0 && number(key) < 0xFFFF && isLensName(interpreted(*datum)))
                return static_cast<int>(number(key));
        }
        return {};
    }

    QVariant serialNumber() const
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
        return text(kCGImagePropertyExifAuxSerialNumber);
    }

    QVariant imageNumber() const
    {
        constexpr qlonglong kUnknownCount = 0xFFFFFFFF - 2046;
        for (const char *key : keysOf(kCGImagePropertyExifAuxImageNumber)) {
            const Exiv2::Exifdatum *datum = find(key);
            if (datum && datum->tagName() == "ShutterCount") {
                const qlonglong count = number(key);
                if (count > 0 && count < kUnknownCount)
                    return count;
                continue;
            }
            // Where the bits lie depends on the model, which the library knows.
            static const QRegularExpression folderAndFile(QStringLiteral("^([1-9][0-9]{2})-([0-9]{4})$"));
            const auto match = folderAndFile.match(datum ? interpreted(*datum) : QString());
            if (match.hasMatch())
                return (match.captured(1) + match.captured(2)).toInt();
        }
        return {};
    }

    QVariant flashCompensation() const
    {
        for (const char *key : keysOf(kCGImagePropertyExifAuxFlashCompensation)) {
            const Exiv2::Exifdatum *datum = find(key);
            if (datum && datum->typeId() == Exiv2::signedRational)
                return numberOfValue(datum->value(), 0);
            static const QRegularExpression stops(QStringLiteral("^([+-]?[0-9.]+)(?:/([1-9][0-9]?))? EV$"));
            const auto match = stops.match(datum ? interpreted(*datum) : QString());
            if (match.hasMatch())
                return match.captured(1).toDouble() /
                       (match.captured(2).isEmpty() ? 1 : match.captured(2).toDouble());
        }
        return {};
    }

private:
    const Exiv2::ExifData &m_exif;
};

/// A camera's own number in the notes of some makers: "SerialNumber", "InternalSerialNumber", "SerialNO".
/// Pentax has it among other facts of the camera's making.
bool isSerialNumberInNote(const Exiv2::Exifdatum &datum)
{
    const QString name = QString::fromStdString(datum.tagName());
    const bool isInPentaxBlock = datum.groupName().starts_with("Pentax") && datum.tag() == 0x0215;
    return isInPentaxBlock || (name.contains(u"SerialN"_qs) && !name.contains(u"Lens"_qs));
}

/// Fields that name or measure the lens: those of that name, Nikon's and Sony's data of the lens, and the
/// blocks of Canon and Sony that hold its name or number among other facts.
bool isLensInNote(const Exiv2::Exifdatum &datum)
{
    static const QRegularExpression lens(QStringLiteral(
        "^(LensType2?|LensModel|LensID|LensIDNumber|Lens|LensInfo|LensRange|LensFStops|LensData|LensMount|"
        "LensFormat|LensProperties|LensFirmware|LensFirmwareVersion|RFLensType)$"));
    constexpr uint16_t kSonyTags[] = {0x0010, 0x9050, 0x9405, 0x940C, 0xB02A};
    const std::string group = datum.groupName();
    return lens.match(QString::fromStdString(datum.tagName())).hasMatch() || group.starts_with("NikonLd") ||
           (group == "Canon" && datum.tag() == 0x000D) ||
           ((group == "Sony1" || group == "Sony2") &&
            std::ranges::find(kSonyTags, datum.tag()) != std::end(kSonyTags));
}

} // namespace

void eraseFactFromMakerNotes(Exiv2::ExifData &exif, QLatin1StringView key)
{
    const std::vector<const char *> keys = keysOf(key);
    const bool isLens = key == kCGImagePropertyExifAuxLensModel;
    const bool isSerialNumber = key == kCGImagePropertyExifAuxSerialNumber;
    if (isSerialNumber)
        eraseOpaqueMakerNote(exif);
    eraseMetadataIf(exif, [&](const Exiv2::Exifdatum &datum) {
        const std::string name = datum.key();
        return std::find(keys.begin(), keys.end(), name) != keys.end() ||
               (isMakerNoteGroup(datum.groupName()) &&
                ((isLens && isLensInNote(datum)) || (isSerialNumber && isSerialNumberInNote(datum))));
    });
}

void insertMakerNoteFacts(QVariantMap &aux, const Exiv2::ExifData &exif)
{
    const MakerNotes notes(exif);
    const auto insert = [&aux](QLatin1StringView key, const QVariant &value) {
        if (value.isValid() && !aux.contains(key))
            aux.insert(key, value);
    };
    if (const QString lens = notes.lensName(); !lens.isEmpty())
        insert(kCGImagePropertyExifAuxLensModel, lens);
    if (const Exiv2::Exifdatum *range = notes.lensRange())
        insert(kCGImagePropertyExifAuxLensInfo, numbersOfValue(range->value()));
    insert(kCGImagePropertyExifAuxLensID, notes.lensId());
    insert(kCGImagePropertyExifAuxSerialNumber, notes.serialNumber());
    insert(kCGImagePropertyExifAuxLensSerialNumber, notes.text(kCGImagePropertyExifAuxLensSerialNumber));
    insert(kCGImagePropertyExifAuxImageNumber, notes.imageNumber());
    insert(kCGImagePropertyExifAuxFlashCompensation, notes.flashCompensation());
    insert(kCGImagePropertyExifAuxOwnerName, notes.text(kCGImagePropertyExifAuxOwnerName));
    insert(kCGImagePropertyExifAuxFirmware, notes.text(kCGImagePropertyExifAuxFirmware));
}

} // namespace plexa
