// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/wpresetarchive.h"

#include "imageio/imagedestination.h"
#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "platform/keyedarchive.h"
#include "platform/propertylistcheck.h"
#include "platform/systemerror.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <cmath>
#include <limits>
#include <numbers>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WPresetArchive)
};

using Key = QLatin1StringView;
using Reference = KeyedArchiver::Reference;

const Key kApplication("Application");
const Key kFileVersion("FileVersion");
const Key kWPresets("WPresets");
const Key kPresetClass("WPreset");
const Key kOldBackgroundPadding("WPBackgroundPadding");

constexpr float kVersion = 1.2F;
/// A property list may hold two hundred nodes for each of so many presets.
constexpr std::size_t kMaxPresets = 10'000;

/// The number of lost parts that are reported one by one.
constexpr qsizetype kMaxNotes = 20;

/// The longer side of the pixels that represent a drawing.
constexpr double kDrawingSide = 2048;

/// The archived form of a picture that was not read from an archive: its pixels as a TIFF file; for an SVG
/// drawing also the drawing, the pixels being for programs without SVG.
Result<ArchivedImage> archivedImage(const WatermarkPicture &picture)
{
    ArchivedImage archived{picture.size(), {}, picture.svg()};
    QImage image;
    if (archived.svg.isEmpty()) {
        image = picture.image();
    } else {
        const double side = std::max(picture.size().width(), picture.size().height());
        const QSize size = (picture.size() * (kDrawingSide / side)).toSize();
        image = picture.imageOfSize(size.expandedTo(QSize(1, 1)));
    }
    image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    QBuffer buffer(&archived.tiff);
    buffer.open(QIODevice::ReadWrite);
    CopyRequest request;
    request.type = QStringLiteral("image/tiff");
    return writeImage(buffer, image, request).map([&] { return archived; });
}

/// Adds pictures to an archive, each once.
class PictureEncoder
{
public:
    explicit PictureEncoder(KeyedArchiver &archiver)
        : m_archiver(archiver)
    {
    }

    Result<Reference> reference(const WatermarkPicture &picture)
    {
        // The original object, so that neither quality nor an unreadable part is lost.
        if (const KeptObject original = picture.original(); !original.isNone())
            return m_archiver.addCopy(original);
        for (const auto &[known, reference] : m_known) {
            if (known == picture)
                return reference;
        }
        return archivedImage(picture).map([&](const ArchivedImage &image) {
            m_known.emplace_back(picture, m_archiver.addImage(image));
            return m_known.back().second;
        });
    }

private:
    KeyedArchiver &m_archiver;
    std::vector<std::pair<WatermarkPicture, Reference>> m_known;
};

/// Adds lists of texts to an archive. Lists that were read from one object share their memory and are added
/// once: a few of them may be very long.
class TextsEncoder
{
public:
    /// @param archiver  outlives the object, as do the lists
    explicit TextsEncoder(KeyedArchiver &archiver)
        : m_archiver(archiver)
    {
    }

    Reference reference(const QStringList &texts)
    {
        const auto identity = std::make_pair(texts.constData(), texts.size());
        const auto known = m_known.constFind(identity);
        if (known != m_known.cend())
            return *known;
        std::vector<Reference> pieces;
        for (const QString &text : texts)
            pieces.push_back(m_archiver.addString(text.isNull() ? QLatin1StringView("") : text));
        return *m_known.insert(identity, m_archiver.addArray(pieces, KeyedArchiver::Mutability::Immutable));
    }

private:
    KeyedArchiver &m_archiver;
    QHash<std::pair<const QString *, qsizetype>, Reference> m_known;
};

/// Adds a field's value under its key.
struct FieldEncoder {
    KeyedArchiver &archiver;
    PictureEncoder &pictures;
    TextsEncoder &texts;
    KeyedArchiver::Object &object;
    QLatin1StringView key;
    Result<void> &result;

    void operator()(const QString &text) const { object.setObject(key, archiver.addString(text)); }
    void operator()(const QStringList &list) const { object.setObject(key, texts.reference(list)); }
    void operator()(WholeNumber number) const
    {
        object.setObject(key, number ? archiver.addInteger(*number) : Reference::None);
    }
    void operator()(FloatNumber number) const
    {
        object.setObject(key, number ? archiver.addFloat(*number) : Reference::None);
    }
    void operator()(bool on) const { object.setBool(key, on); }
    void operator()(const QColor &color) const { object.setObject(key, archiver.addColor(color)); }
    void operator()(const WatermarkPicture &picture) const
    {
        if (picture.isNull())
            return;
        const Result<Reference> image = pictures.reference(picture);
        if (image)
            object.setObject(key, *image);
        else
            result = tl::unexpected(image.error());
    }
    void operator()(const SavingPresetPtr &preset) const
    {
        if (preset)
            object.setInteger(key, preset->presetID());
    }
};

Result<Reference> encode(KeyedArchiver &archiver, PictureEncoder &pictures, TextsEncoder &texts,
                         const WPresetValues &values)
{
    KeyedArchiver::Object object;
    Result<void> result;
    for (const WPresetField &field : wPresetFields())
        std::visit(FieldEncoder{archiver, pictures, texts, object, field.archiveKey, result},
                   field.value(values));
    if (!result)
        return tl::unexpected(result.error());
    return archiver.addObject(std::move(object), kPresetClass);
}

WholeNumber wholeNumber(const ArchivedValue &value)
{
    const std::optional<qint64> number = value.integer();
    if (!number || *number < std::numeric_limits<int>::min() || *number > std::numeric_limits<int>::max())
        return std::nullopt;
    return static_cast<int>(*number);
}

FloatNumber floatNumber(const ArchivedValue &value)
{
    const std::optional<double> number = value.number();
    if (!number || std::abs(*number) > static_cast<double>(std::numeric_limits<float>::max()))
        return std::nullopt;
    return static_cast<float>(*number);
}

/// A list of texts from an archive.
struct Pieces {
    QStringList texts;
    bool areAll = true; ///< false: some elements are not texts
};

/// Null elements of a list are skipped; they are no loss.
Pieces piecesOf(const ArchivedValue &value)
{
    Pieces pieces;
    const auto elements = value.array();
    pieces.areAll = elements || (value.isNone() && !value.isMissing());
    for (const ArchivedValue &element : elements.value_or(std::vector<ArchivedValue>())) {
        if (const std::optional<QString> text = element.string())
            pieces.texts.append(*text);
        else
            pieces.areAll = pieces.areAll && element.isNone() && !element.isMissing();
    }
    return pieces;
}

/// Angles of older files increase clockwise.
float counterClockwise(float degrees)
{
    if (degrees >= 180)
        return 360 - degrees;
    return degrees < -180 ? -360 - degrees : 0 - degrees;
}

/// The treatment of the pictures of an archive.
enum class Pictures {
    Created,
    Counted, ///< within the bounds of reading, but not created
};

struct DecodingOptions {
    SavingPresetLookup savingPresetWithID = {};
    ReadProgress progress = {};
    Pictures pictures = Pictures::Created;
};

/// Reads the presets of one archive.
class Decoder
{
public:
    Decoder(float version, const DecodingOptions &options)
        : m_version(version)
        , m_options(options)
    {
    }

    Result<WPresetList> presets(const ArchivedValue &list, QStringList &leftOut);

private:
    /// A field's value, and whether it represents the archived value without loss.
    struct Read {
        FieldValue value;
        bool isWhole;
    };

    WPresetValues values(const ArchivedValue &preset, std::size_t number);
    Read read(const WPresetField &field, const ArchivedValue &value);
    const Pieces &pieces(const ArchivedValue &value);
    WatermarkPicture picture(const ArchivedValue &value) const;
    void convert(WPresetValues &values, const ArchivedValue &preset, std::size_t number);
    void note(const QString &text);
    void noteUnreadable(QLatin1StringView name, std::size_t number);
    void noteUnknownKeys(const ArchivedValue &preset, std::size_t number);

    float m_version;
    const DecodingOptions &m_options;
    // By identity: many presets may refer to one object.
    QHash<const void *, WatermarkPicture> m_pictures;
    QHash<const void *, Pieces> m_pieces;
    QStringList m_notes; ///< at most kMaxNotes
    qint64 m_moreNotes = 0;
};

const Pieces &Decoder::pieces(const ArchivedValue &value)
{
    const auto known = m_pieces.constFind(value.identity());
    return known != m_pieces.cend() ? *known : *m_pieces.insert(value.identity(), piecesOf(value));
}

WatermarkPicture Decoder::picture(const ArchivedValue &value) const
{
    if (m_options.pictures == Pictures::Created)
        return WatermarkPicture::fromArchive(value);
    value.imageRepresentations();
    return {};
}

Decoder::Read Decoder::read(const WPresetField &field, const ArchivedValue &value)
{
    const auto asRead = [](const auto &maybe) { return Read{FieldValue(maybe), maybe.has_value()}; };
    switch (field.kind) {
    case FieldKind::String:
        return {value.string().value_or(QString()), value.string().has_value()};
    case FieldKind::Strings:
        return {pieces(value).texts, pieces(value).areAll};
    case FieldKind::Integer:
        return asRead(wholeNumber(value));
    case FieldKind::Float:
        return asRead(floatNumber(value));
    case FieldKind::Boolean:
        return {value.boolean(), value.number().has_value()};
    case FieldKind::Color:
        return {value.color(), value.color().isValid()};
    case FieldKind::Image: // kept unchanged, and its fault is reported elsewhere
        if (!m_pictures.contains(value.identity()))
            m_pictures.insert(value.identity(), picture(value));
        return {m_pictures.value(value.identity()), true};
    case FieldKind::SavingPreset: {
        const std::optional<qint64> presetID = value.integer();
        const bool isFindable = presetID && m_options.savingPresetWithID;
        return {isFindable ? m_options.savingPresetWithID(*presetID) : SavingPresetPtr(),
                presetID.has_value()};
    }
    }
    Q_UNREACHABLE();
}

void Decoder::note(const QString &text)
{
    if (m_notes.size() < kMaxNotes)
        m_notes.append(text);
    else
        ++m_moreNotes;
}

/// @param name    of the field
/// @param number  of the preset in the list, from 1
void Decoder::noteUnreadable(QLatin1StringView name, std::size_t number)
{
    note(Texts::tr("\"%1\" of number %2 in its list cannot be read").arg(name).arg(number));
}

void Decoder::convert(WPresetValues &values, const ArchivedValue &preset, std::size_t number)
{
    if (values.angle)
        values.angle = counterClockwise(*values.angle);
    if (values.shadowAngle)
        values.shadowAngle = counterClockwise(*values.shadowAngle * 180 / std::numbers::pi_v<float> - 90);
    const ArchivedValue oldPadding = preset.value(kOldBackgroundPadding);
    const WholeNumber padding = wholeNumber(oldPadding);
    if (!padding && !oldPadding.isNone())
        noteUnreadable(QLatin1StringView("backgroundPadding"), number);
    values.backgroundPaddingTop = padding;
    values.backgroundPaddingBottom = padding;
    values.backgroundPaddingLeft = padding;
    values.backgroundPaddingRight = padding;
}

/// An unknown key may be a damaged one, whose value is lost.
void Decoder::noteUnknownKeys(const ArchivedValue &preset, std::size_t number)
{
    static const QSet<QByteArray> known = [] {
        QSet<QByteArray> keys{"$class",
                              QByteArray(kOldBackgroundPadding.data(), kOldBackgroundPadding.size())};
        for (const WPresetField &field : wPresetFields())
            keys.insert(QByteArray(field.archiveKey.data(), field.archiveKey.size()));
        return keys;
    }();
    for (const QByteArray &key : preset.keys()) {
        if (!known.contains(key))
            note(Texts::tr("\"%1\" of number %2 in its list is not known")
                     .arg(QString::fromUtf8(key))
                     .arg(number));
    }
}

WPresetValues Decoder::values(const ArchivedValue &preset, std::size_t number)
{
    WPresetValues values;
    for (const WPresetField &field : wPresetFields()) {
        const ArchivedValue value = preset.value(field.archiveKey);
        const auto [fieldValue, isWhole] = read(field, value);
        if (value.isNone() ? value.isMissing() : !isWhole)
            noteUnreadable(field.name, number);
        field.setValue(values, fieldValue);
    }
    if (m_version < kVersion)
        convert(values, preset, number);
    else if (m_version == kVersion) // later versions have other keys
        noteUnknownKeys(preset, number);
    return values;
}

Result<WPresetList> Decoder::presets(const ArchivedValue &list, QStringList &leftOut)
{
    const auto objects = list.array();
    if (!objects)
        return fail(Texts::tr("it has no list of watermark presets"));
    if (objects->size() > kMaxPresets)
        return fail(Texts::tr("it has more than %1 presets").arg(kMaxPresets));
    WPresetList presets;
    // An object that occurs twice in the list becomes two presets with the same values.
    QHash<const void *, WPresetValues> known;
    for (std::size_t i = 0; i < objects->size(); ++i) {
        if (m_options.progress &&
            !m_options.progress(static_cast<float>(i) / static_cast<float>(objects->size())))
            return fail(Texts::tr("the reading was stopped"));
        const ArchivedValue &object = (*objects)[i];
        if (!object.isOfClass(kPresetClass)) {
            note(Texts::tr("number %1 in its list is not a watermark preset").arg(i + 1));
            continue;
        }
        auto found = known.constFind(object.identity());
        if (found == known.cend())
            found = known.insert(object.identity(), values(object, i + 1));
        presets.push_back(std::make_shared<WPreset>(*found));
    }
    if (list.isExhausted())
        return fail(Texts::tr("it is too large"));
    leftOut = m_notes;
    if (m_moreNotes > 0)
        leftOut.append(Texts::tr("%1 more in its list cannot be read").arg(m_moreNotes));
    if (presets.empty() && !leftOut.isEmpty())
        return fail(leftOut.first());
    return presets;
}

Result<QByteArray> contentsOf(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) // opening a pipe would block
        return fail(openErrorText(path, Texts::tr("it is not a regular file")));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(openErrorText(path, file.errorString()));
    const QByteArray bytes = file.read(kMaxPropertyListBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    return bytes;
}

/// @param leftOut  as readWPresetsFromFile() sets it
Result<WPresetList> decoded(const QByteArray &bytes, bool &isLater, QStringList &leftOut,
                            const DecodingOptions &options)
{
    isLater = false;
    leftOut.clear();
    const Result<ArchivedValue> top = ArchivedValue::readArchive(bytes);
    if (!top)
        return tl::unexpected(top.error());
    const std::optional<QString> application = top->value(kApplication).string();
    const float version = floatNumber(top->value(kFileVersion)).value_or(0.0F);
    isLater = version > kVersion;
    const bool isOurs = application && (*application == applicationNameWithCompany() ||
                                        *application == firstVersionApplicationName());
    if (!isOurs || !(version > 0))
        return fail(Texts::tr("it is not a file of watermark presets"));
    return Decoder(version, options).presets(top->value(kWPresets), leftOut);
}

Result<QByteArray> encoded(const WPresetList &presets)
{
    if (presets.size() > kMaxPresets)
        return fail(Texts::tr("there are more than %1 presets").arg(kMaxPresets));
    KeyedArchiver archiver;
    archiver.top().setObject(kApplication, archiver.addString(applicationNameWithCompany()));
    archiver.top().setFloat(kFileVersion, kVersion);
    PictureEncoder pictures(archiver);
    TextsEncoder texts(archiver);
    std::vector<Reference> references;
    for (const auto &preset : presets) {
        const Result<Reference> reference = encode(archiver, pictures, texts, preset->values());
        if (!reference)
            return tl::unexpected(reference.error());
        references.push_back(*reference);
    }
    archiver.top().setObject(kWPresets, archiver.addArray(references, KeyedArchiver::Mutability::Mutable));
    return archiver.finish();
}

} // namespace

Result<QByteArray> archivedWPresets(const WPresetList &presets)
{
    return encoded(presets).and_then([](const QByteArray &bytes) -> Result<QByteArray> {
        // An unreadable file must not replace a readable one.
        bool isLater = false;
        QStringList leftOut;
        const auto read = decoded(bytes, isLater, leftOut, {.pictures = Pictures::Counted});
        if (!read)
            return fail(Texts::tr("it could not be read back: %1").arg(read.error().text));
        return bytes;
    });
}

Result<void> writeWPresets(const WPresetList &presets, const QString &toFile)
{
    const Result<QByteArray> bytes = archivedWPresets(presets);
    if (!bytes)
        return tl::unexpected(bytes.error());
    AtomicFile file(toFile, AtomicFile::IfExists::Replace);
    if (Result<void> opened = file.open(); !opened)
        return opened;
    file.device().write(*bytes); // commit() reports a failure
    return file.commit();
}

Result<WPresetList> wPresetsFromArchive(const QByteArray &bytes, bool *futureVersion,
                                        const SavingPresetLookup &savingPresetWithID, QStringList *leftOut,
                                        const ReadProgress &progress)
{
    bool isLater = false;
    QStringList notes;
    return decoded(bytes, futureVersion ? *futureVersion : isLater, leftOut ? *leftOut : notes,
                   {savingPresetWithID, progress});
}

Result<WPresetList> readWPresetsFromFile(const QString &path, bool *futureVersion,
                                         const SavingPresetLookup &savingPresetWithID, QStringList *leftOut,
                                         const ReadProgress &progress)
{
    if (futureVersion)
        *futureVersion = false;
    if (leftOut)
        leftOut->clear();
    return contentsOf(path).and_then([&](const QByteArray &bytes) {
        return wPresetsFromArchive(bytes, futureVersion, savingPresetWithID, leftOut, progress);
    });
}

} // namespace plexa
