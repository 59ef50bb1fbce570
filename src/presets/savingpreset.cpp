// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpreset.h"

#include "presets/savingformats.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::SavingPreset)
};

const QString kRootElement = QStringLiteral("savingPresets");
const QString kFileVersion = QStringLiteral("1.4");
constexpr double kSupportedVersion = 1.4;

// A little below the versions 1.1, 1.3 and 1.4, which no binary fraction equals.
constexpr double kWithTiffCompression = 1.099;
constexpr double kWithCases = 1.299;
constexpr double kWithFormatNames = 1.399;

// Greater IDs, which only a damaged file has, do not raise the counter: it would soon overflow.
constexpr qint64 kHighestCountedID = std::numeric_limits<qint64>::max() - (qint64(1) << 32);

void raiseTo(std::atomic<qint64> &highest, qint64 presetID)
{
    qint64 current = highest;
    while (presetID > current && presetID <= kHighestCountedID) {
        if (highest.compare_exchange_weak(current, presetID))
            return;
    }
}

bool isFormat(const SavingPresetField &field)
{
    return field.id == SavingField::ImageFormat || field.id == SavingField::AlternativeImageFormat;
}

bool isCase(const SavingPresetField &field)
{
    return field.id == SavingField::FileBaseNameCase || field.id == SavingField::FileExtensionCase;
}

/// Do files of that version contain the field?
bool isStored(const SavingPresetField &field, double fileVersion)
{
    if (field.id == SavingField::TiffCompressionLZW)
        return fileVersion > kWithTiffCompression;
    return !isCase(field) || fileVersion > kWithCases;
}

bool isRequired(const SavingPresetField &field, double fileVersion)
{
    return !isCase(field) && (!isFormat(field) || fileVersion <= kWithFormatNames);
}

using MaybeValue = std::optional<FieldValue>;

const XMLParser::Element *requiredElement(const XMLParser::Element &preset, QByteArrayView name)
{
    const XMLParser::Element *element = preset.subelement(name);
    if (!element)
        preset.report("the preset has no element \"" + name.toByteArray() + '"');
    return element;
}

MaybeValue readText(const XMLParser::Element &element)
{
    if (element.text().isValidUtf8())
        return QString::fromUtf8(element.text());
    element.report("the text of the element \"" + element.name() + "\" is not UTF-8");
    return std::nullopt;
}

MaybeValue readTokens(const XMLParser::Element &filename)
{
    QStringList tokens;
    for (qsizetype i = 0; i < filename.subelementCount(); ++i) {
        const MaybeValue token = readText(*filename.subelement(i));
        if (!token)
            return std::nullopt;
        tokens.append(std::get<QString>(*token));
    }
    return tokens;
}

/// Older files number the formats.
MaybeValue readFormatNumber(const XMLParser::Element &element)
{
    const QStringList formats = savingFormatNames();
    const qint64 number = std::strtoll(element.text().constData(), nullptr, 10);
    if (number >= 0 && number < formats.size())
        return formats.at(number);
    element.report("there is no format number " + QByteArray::number(number));
    return std::nullopt;
}

MaybeValue readValue(const SavingPresetField &field, const XMLParser::Element &element, double fileVersion)
{
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    switch (field.kind) {
    case FieldKind::Strings:
        return readTokens(element);
    case FieldKind::Integer:
        return WholeNumber(
            static_cast<int>(std::clamp(XMLFile::leadingDecimal(element.text()), lowest, highest)));
    case FieldKind::Boolean:
        // Only a zero that ends its line means false. A bare zero, as it is written, was always read as true.
        return !element.text().startsWith("0\n");
    default:
        return isFormat(field) && fileVersion <= kWithFormatNames ? readFormatNumber(element)
                                                                  : readText(element);
    }
}

bool readField(const SavingPresetField &field, const XMLParser::Element &preset, double fileVersion,
               SavingPresetValues &values)
{
    if (!isStored(field, fileVersion))
        return true;
    const XMLParser::Element *element = isRequired(field, fileVersion)
                                            ? requiredElement(preset, field.xmlElement)
                                            : preset.subelement(field.xmlElement);
    if (!element)
        return !isRequired(field, fileVersion);
    const MaybeValue value = readValue(field, *element, fileVersion);
    if (value)
        field.setValue(values, *value);
    return value.has_value();
}

/// The value as it is written, without references. A value with markup, read from a damaged file, would make
/// the written file unreadable: the default replaces it.
QString writable(const QString &value, const SavingPresetField &field)
{
    const bool isRead = !value.contains(u'<') && !value.contains(u'&') && !value.startsWith(u'>') &&
                        XMLFile::withReadableStart(value) == value;
    return isRead ? value : std::get<QString>(field.value(SavingPresetValues()));
}

/// A token with "&" or "<" gets references; every other one is written as it is, as files in use have it.
QString tokenText(const QString &token)
{
    const bool isMarkup = token.contains(u'&') || token.contains(u'<');
    return XMLFile::withReadableStart(isMarkup ? XMLFile::replaceXmlSpecialChars(token) : token);
}

QString xmlText(const SavingPresetField &field, const FieldValue &value)
{
    QString tokens;
    switch (field.kind) {
    case FieldKind::Strings:
        for (const QString &token : std::get<QStringList>(value))
            tokens += QStringLiteral("\n      <token>%1</token>").arg(tokenText(token));
        return tokens + QStringLiteral("\n    ");
    case FieldKind::Integer:
        return QString::number(std::get<WholeNumber>(value).value_or(0));
    case FieldKind::Boolean:
        return QString::number(std::get<bool>(value) ? 1 : 0);
    default:
        return isFormat(field) || isCase(field)
                   ? writable(std::get<QString>(value), field)
                   : XMLFile::withReadableStart(XMLFile::replaceXmlSpecialChars(std::get<QString>(value)));
    }
}

/// The values that a file returns for these.
SavingPresetValues readAgain(SavingPresetValues values)
{
    values.name = XMLFile::withoutLoneSurrogates(values.name);
    for (QString &token : values.filenameTokens)
        token = XMLFile::withoutLoneSurrogates(token);
    for (const SavingPresetField &field : savingPresetFields()) {
        if (isFormat(field) || isCase(field))
            field.setValue(values, FieldValue(writable(std::get<QString>(field.value(values)), field)));
    }
    values.tiffCompressionLZW = true; // as in readValue()
    return values;
}

/// The start of a text, short enough for a message, on one line.
QString excerpt(const QString &text)
{
    constexpr qsizetype kLongest = 60;
    QString start = text.left(kLongest);
    start.replace(u'\n', u' ');
    return text.size() > kLongest ? start + u'\u2026' : start;
}

/// Would the file of these presets be read again? A failure names the first preset that would not.
Result<void> checkXML(const QByteArray &xml, const std::vector<std::shared_ptr<SavingPreset>> &presets)
{
    for (const auto &preset : presets) {
        if (Result<void> checked = preset->checkWritable(); !checked)
            return checked;
    }
    XMLParser parser([](const QByteArray &) {});
    if (!parser.parse(xml) || parser.root()->subelementCount() != std::ssize(presets))
        return fail(Texts::tr("the presets are too many to be read back"));
    return {};
}

} // namespace

std::atomic<qint64> SavingPreset::s_lastUsedPresetID = 0;

SavingPreset::SavingPreset(SavingPresetValues values)
    : m_values(std::move(values))
{
    selfAssignNewID();
}

std::unique_ptr<SavingPreset> SavingPreset::initWithoutNewID()
{
    return std::unique_ptr<SavingPreset>(new SavingPreset(WithoutID()));
}

std::unique_ptr<SavingPreset> SavingPreset::copy() const
{
    return std::make_unique<SavingPreset>(m_values);
}

void SavingPreset::selfAssignNewID()
{
    m_presetID = ++s_lastUsedPresetID;
}

void SavingPreset::setValues(const SavingPresetValues &values)
{
    // A slot may change the preset, and `values` with it, before all fields are set.
    const SavingPresetValues wanted = values;
    for (const SavingPresetField &field : savingPresetFields())
        setValue(field.id, field.value(wanted));
}

void SavingPreset::setValue(SavingField id, const FieldValue &value)
{
    const SavingPresetField &field = savingPresetField(id);
    const FieldValue old = field.value(m_values);
    if (old == value)
        return;
    const FieldValue now = value;
    field.setValue(m_values, now);
    Q_EMIT fieldChanged(id, old, now);
    if (!isFormat(field))
        return;
    Q_EMIT hideJPEGQualityChanged();
    Q_EMIT hideTiffCompressionChanged();
    if (id == SavingField::ImageFormat)
        Q_EMIT hideAlternativeFormatChanged();
}

QStringList SavingPreset::supportedFileFormats()
{
    return savingFormatNames();
}

QStringList SavingPreset::supportedFileFormatsWithoutOriginal()
{
    return savingFormatNamesWithoutOriginal();
}

QString SavingPreset::utiForFileExtension(const QString &extension)
{
    return savingTypeForExtension(extension);
}

bool SavingPreset::supportedUTI(const QString &type)
{
    return isSavingType(type);
}

void SavingPreset::appendObjectToXML(QString &xml) const
{
    xml += QStringLiteral("\n  <preset>\n    <id>%1</id>").arg(m_presetID);
    for (const SavingPresetField &field : savingPresetFields()) {
        xml += QStringLiteral("\n    <%1>%2</%1>")
                   .arg(QLatin1StringView(field.xmlElement), xmlText(field, field.value(m_values)));
    }
    xml += QStringLiteral("\n  </preset>");
}

Result<void> SavingPreset::checkWritable() const
{
    QString xml = QStringLiteral("<?xml version=\"1.0\"?>");
    appendObjectToXML(xml);
    XMLParser parser([](const QByteArray &) {});
    const auto again =
        parser.parse(xml.toUtf8()) ? initWithXMLData(*parser.root(), kSupportedVersion) : nullptr;
    if (!again || again->presetID() != presetID() || again->values() != readAgain(values()))
        return fail(
            Texts::tr("the saving preset \"%1\" could not be read back unchanged").arg(excerpt(name())));
    return {};
}

std::shared_ptr<SavingPreset> SavingPreset::initWithXMLData(const XMLParser::Element &element,
                                                            double fileVersion)
{
    std::shared_ptr<SavingPreset> preset = initWithoutNewID();
    const XMLParser::Element *id = requiredElement(element, "id");
    if (!id)
        return nullptr;
    preset->m_presetID = std::strtoll(id->text().constData(), nullptr, 10);
    const auto fields = savingPresetFields();
    const bool isRead = std::all_of(fields.begin(), fields.end(), [&](const SavingPresetField &field) {
        return readField(field, element, fileVersion, preset->m_values);
    });
    return isRead ? preset : nullptr;
}

std::optional<std::vector<std::shared_ptr<SavingPreset>>>
SavingPreset::readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
                                  const XMLParser::ErrorSink &errors, bool *isLater)
{
    auto presets = readForeignObjectsFromFile(path, appID, returnCode, errors, isLater);
    if (presets) {
        for (const auto &preset : *presets)
            raiseTo(s_lastUsedPresetID, preset->m_presetID);
    }
    return presets;
}

std::optional<std::vector<std::shared_ptr<SavingPreset>>>
SavingPreset::readForeignObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
                                         const XMLParser::ErrorSink &errors, bool *isLater)
{
    return XMLFile::readObjectsFromFile<SavingPreset>(path, appID, kRootElement, kSupportedVersion,
                                                      returnCode, errors, isLater);
}

Result<void> SavingPreset::writeObjects(const std::vector<std::shared_ptr<SavingPreset>> &presets,
                                        const QString &path, const QString &appID)
{
    std::vector<const XMLFile *> objects;
    objects.reserve(presets.size());
    for (const auto &preset : presets)
        objects.push_back(preset.get());
    const QByteArray xml = XMLFile::xmlOf(objects, appID, kRootElement, kFileVersion);
    if (const Result<void> checked = checkXML(xml, presets); !checked)
        return fail(Texts::tr("\"%1\" cannot be written: %2").arg(path, checked.error().text));
    return XMLFile::writeObjects(objects, path, appID, kRootElement, kFileVersion);
}

} // namespace plexa
