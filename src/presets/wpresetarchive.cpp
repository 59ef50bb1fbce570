// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/wpresetarchive.h"

#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "platform/keyedarchive.h"
#include "platform/propertylistcheck.h"
#include "presets/archivedpicture.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QHash>

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
constexpr std::size_t kMaxPresets = 20'000;

/// So many things that were left out are told one by one.
constexpr qsizetype kMaxNotes = 20;

/// Puts the pictures of an archive into it, each once.
class PictureEncoder
{
public:
    explicit PictureEncoder(KeyedArchiver &archiver)
        : m_archiver(archiver)
    {
    }

    Result<Reference> reference(const WatermarkPicture &picture)
    {
        // As it came, so that nothing of it gets lost, neither quality nor what could not be read.
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

/// Puts a field's value under its key.
struct FieldEncoder {
    KeyedArchiver &archiver;
    PictureEncoder &pictures;
    KeyedArchiver::Object &object;
    QLatin1StringView key;
    Result<void> &result;

    void operator()(const QString &text) const { object.setObject(key, archiver.addString(text)); }
    void operator()(const QStringList &texts) const
    {
        std::vector<Reference> pieces;
        for (const QString &text : texts)
            pieces.push_back(archiver.addString(text.isNull() ? QLatin1StringView("") : text));
        object.setObject(key, archiver.addArray(pieces, KeyedArchiver::Mutability::Immutable));
    }
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

Result<Reference> encode(KeyedArchiver &archiver, PictureEncoder &pictures, const WPresetValues &values)
{
    KeyedArchiver::Object object;
    Result<void> result;
    for (const WPresetField &field : wPresetFields())
        std::visit(FieldEncoder{archiver, pictures, object, field.archiveKey, result}, field.value(values));
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

QStringList strings(const ArchivedValue &value)
{
    QStringList texts;
    for (const ArchivedValue &piece : value.array().value_or(std::vector<ArchivedValue>())) {
        if (const std::optional<QString> text = piece.string())
            texts.append(*text);
    }
    return texts;
}

/// Older files turn the other way round.
float turnedRound(float degrees)
{
    if (degrees >= 180)
        return 360 - degrees;
    return degrees < -180 ? -360 - degrees : 0 - degrees;
}

/// Makes presets of one archive.
class Decoder
{
public:
    Decoder(float version, const SavingPresetLookup &savingPresetWithID)
        : m_version(version)
        , m_savingPresetWithID(savingPresetWithID)
    {
    }

    Result<WPresetList> presets(const ArchivedValue &list, QStringList &leftOut);

private:
    WPresetValues values(const ArchivedValue &preset);
    FieldValue fieldValue(const WPresetField &field, const ArchivedValue &value);
    void convert(WPresetValues &values, const ArchivedValue &preset) const;

    float m_version;
    const SavingPresetLookup &m_savingPresetWithID;
    QHash<const void *, WatermarkPicture> m_pictures; // by identity: one picture may be in many presets
};

FieldValue Decoder::fieldValue(const WPresetField &field, const ArchivedValue &value)
{
    switch (field.kind) {
    case FieldKind::String:
        return value.string().value_or(QString());
    case FieldKind::Strings:
        return strings(value);
    case FieldKind::Integer:
        return FieldValue(std::in_place_type<WholeNumber>, wholeNumber(value));
    case FieldKind::Float:
        return FieldValue(std::in_place_type<FloatNumber>, floatNumber(value));
    case FieldKind::Boolean:
        return value.boolean();
    case FieldKind::Color:
        return value.color();
    case FieldKind::Image:
        if (!m_pictures.contains(value.identity()))
            m_pictures.insert(value.identity(), WatermarkPicture::fromArchive(value));
        return m_pictures.value(value.identity());
    case FieldKind::SavingPreset: {
        const std::optional<qint64> presetID = value.integer();
        return presetID && m_savingPresetWithID ? m_savingPresetWithID(*presetID) : SavingPresetPtr();
    }
    }
    Q_UNREACHABLE();
}

void Decoder::convert(WPresetValues &values, const ArchivedValue &preset) const
{
    if (values.angle)
        values.angle = turnedRound(*values.angle);
    if (values.shadowAngle)
        values.shadowAngle = turnedRound(*values.shadowAngle * 180 / std::numbers::pi_v<float> - 90);
    const WholeNumber padding = wholeNumber(preset.value(kOldBackgroundPadding));
    values.backgroundPaddingTop = padding;
    values.backgroundPaddingBottom = padding;
    values.backgroundPaddingLeft = padding;
    values.backgroundPaddingRight = padding;
}

WPresetValues Decoder::values(const ArchivedValue &preset)
{
    WPresetValues values;
    for (const WPresetField &field : wPresetFields())
        field.setValue(values, fieldValue(field, preset.value(field.archiveKey)));
    if (m_version < kVersion)
        convert(values, preset);
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
    // An object that is in the list twice is two presets, made of the same values.
    QHash<const void *, WPresetValues> known;
    for (std::size_t i = 0; i < objects->size(); ++i) {
        const ArchivedValue &object = (*objects)[i];
        if (!object.isOfClass(kPresetClass)) {
            leftOut.append(Texts::tr("number %1 in its list is no watermark preset").arg(i + 1));
            continue;
        }
        auto found = known.constFind(object.identity());
        if (found == known.cend())
            found = known.insert(object.identity(), values(object));
        presets.push_back(std::make_shared<WPreset>(*found));
    }
    if (list.isExhausted())
        return fail(Texts::tr("it holds more than can be read"));
    if (presets.empty() && !leftOut.isEmpty())
        return fail(leftOut.first());
    if (const qsizetype more = leftOut.size() - kMaxNotes; more > 0) {
        leftOut.resize(kMaxNotes);
        leftOut.append(Texts::tr("%1 more in its list are no watermark presets").arg(more));
    }
    return presets;
}

Result<QByteArray> contentsOf(const QString &path)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) // opening a pipe would wait for its other end
        return fail(Texts::tr("it is not a regular file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QByteArray bytes = file.read(kMaxPropertyListBytes + 1);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    return bytes;
}

} // namespace

Result<QByteArray> archivedWPresets(const WPresetList &presets)
{
    if (presets.size() > kMaxPresets)
        return fail(Texts::tr("there are more than %1 presets").arg(kMaxPresets));
    KeyedArchiver archiver;
    archiver.top().setObject(kApplication, archiver.addString(applicationNameWithCompany(true, false, true)));
    archiver.top().setFloat(kFileVersion, kVersion);
    PictureEncoder pictures(archiver);
    std::vector<Reference> references;
    for (const auto &preset : presets) {
        const Result<Reference> reference = encode(archiver, pictures, preset->values());
        if (!reference)
            return tl::unexpected(reference.error());
        references.push_back(*reference);
    }
    archiver.top().setObject(kWPresets, archiver.addArray(references, KeyedArchiver::Mutability::Mutable));
    return archiver.finish();
}

Result<void> writeWPresets(const WPresetList &presets, const QString &toFile)
{
    const Result<QByteArray> bytes = archivedWPresets(presets);
    if (!bytes)
        return tl::unexpected(bytes.error());
    AtomicFile file(toFile, AtomicFile::IfExists::Replace, AtomicFile::Durability::Synced);
    if (Result<void> opened = file.open(); !opened)
        return opened;
    file.device().write(*bytes); // a failure comes out of commit()
    return file.commit();
}

Result<WPresetList> wPresetsFromArchive(const QByteArray &bytes, bool *futureVersion,
                                        const SavingPresetLookup &savingPresetWithID, QStringList *leftOut)
{
    if (futureVersion)
        *futureVersion = false;
    QStringList notes;
    QStringList &told = leftOut ? *leftOut : notes;
    told.clear();
    const Result<ArchivedValue> top = ArchivedValue::readArchive(bytes);
    if (!top)
        return tl::unexpected(top.error());
    const std::optional<QString> application = top->value(kApplication).string();
    const float version = floatNumber(top->value(kFileVersion)).value_or(0.0F);
    if (futureVersion)
        *futureVersion = version > kVersion;
    const bool isOurs = application && (*application == applicationNameWithCompany(true, false, true) ||
                                        *application == firstVersionApplicationName());
    if (!isOurs || !(version > 0))
        return fail(Texts::tr("it is no file of watermark presets"));
    return Decoder(version, savingPresetWithID).presets(top->value(kWPresets), told);
}

Result<WPresetList> readWPresetsFromFile(const QString &path, bool *futureVersion,
                                         const SavingPresetLookup &savingPresetWithID, QStringList *leftOut)
{
    if (futureVersion)
        *futureVersion = false;
    if (leftOut)
        leftOut->clear();
    return contentsOf(path).and_then([&](const QByteArray &bytes) {
        return wPresetsFromArchive(bytes, futureVersion, savingPresetWithID, leftOut);
    });
}

} // namespace plexa
