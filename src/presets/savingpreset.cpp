// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpreset.h"

#include "presets/savingformats.h"
#include "presets/xmlnumbers.h"

#include <QCoreApplication>

#include <algorithm>
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

// A little below the versions that they stand for, which no binary fraction is equal to.
constexpr double kWithTiffCompression = 1.099;
constexpr double kWithCases = 1.299;
constexpr double kWithFormatNames = 1.399;

// Greater IDs, which only a damaged file has, are not counted on from: there would soon be no next one. Nor
// will it ever be their turn, so no other preset gets them either.
constexpr qint64 kHighestCountedID = std::numeric_limits<qint64>::max() - (qint64(1) << 32);

void raiseTo(std::atomic<qint64> &highest, qint64 presetID)
{
    qint64 current = highest;
    while (presetID > current && presetID <= kHighestCountedID) {
        if (highest.compare_exchange_weak(current, presetID))
            return;
    }
}

bool readText(const XMLParser::Element &element, QString &text)
{
    if (!element.text().isValidUtf8()) {
        element.report("the text of the element \"" + element.name() + "\" is not UTF-8");
        return false;
    }
    text = QString::fromUtf8(element.text());
    return true;
}

bool readOptionalText(const XMLParser::Element &preset, const char *name, QString &text)
{
    const XMLParser::Element *element = preset.subelement(name);
    return !element || readText(*element, text);
}

const XMLParser::Element *requiredElement(const XMLParser::Element &preset, const char *name)
{
    const XMLParser::Element *element = preset.subelement(name);
    if (!element)
        preset.report("the preset has no element \"" + QByteArray(name) + '"');
    return element;
}

bool readTokens(const XMLParser::Element &filename, QStringList &tokens)
{
    tokens.clear();
    for (qsizetype i = 0; i < filename.subelementCount(); ++i) {
        QString token;
        if (!readText(*filename.subelement(i), token))
            return false;
        tokens.append(token);
    }
    return true;
}

/// Older files number the formats.
bool readFormatNumber(const XMLParser::Element &preset, const char *name, QString &format)
{
    const XMLParser::Element *element = requiredElement(preset, name);
    if (!element)
        return false;
    const QStringList formats = savingFormatNames();
    const qint64 number = leadingInteger(element->text());
    if (number < 0 || number >= formats.size()) {
        preset.report("there is no format number " + QByteArray::number(number));
        return false;
    }
    format = formats.at(number);
    return true;
}

bool readFormats(const XMLParser::Element &preset, double fileVersion, SavingPresetValues &values)
{
    if (fileVersion > kWithFormatNames)
        return readOptionalText(preset, "format", values.imageFormat) &&
               readOptionalText(preset, "alternativeFormat", values.alternativeImageFormat);
    return readFormatNumber(preset, "format", values.imageFormat) &&
           readFormatNumber(preset, "alternativeFormat", values.alternativeImageFormat);
}

bool readQuality(const XMLParser::Element &preset, int &quality)
{
    const XMLParser::Element *element = requiredElement(preset, "quality");
    if (!element)
        return false;
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    quality = static_cast<int>(std::clamp(leadingDecimal(element->text()), lowest, highest));
    return true;
}

bool readTiffCompression(const XMLParser::Element &preset, bool &isOn)
{
    const XMLParser::Element *element = requiredElement(preset, "tiffCompressionLZW");
    if (!element)
        return false;
    // Only a zero that ends its line counts as off. Files with a bare zero, as they are written, have always
    // been read as on.
    isOn = !element->text().startsWith("0\n");
    return true;
}

bool readValues(const XMLParser::Element &preset, double fileVersion, SavingPresetValues &values)
{
    const XMLParser::Element *name = requiredElement(preset, "name");
    if (!name || !readText(*name, values.name))
        return false;
    const XMLParser::Element *filename = requiredElement(preset, "filename");
    if (!filename || !readTokens(*filename, values.filenameTokens))
        return false;
    if (fileVersion > kWithCases &&
        !(readOptionalText(preset, "fileExtensionCase", values.fileExtensionCase) &&
          readOptionalText(preset, "fileBaseNameCase", values.fileBaseNameCase)))
        return false;
    if (!readFormats(preset, fileVersion, values) || !readQuality(preset, values.jpegQuality))
        return false;
    return fileVersion <= kWithTiffCompression || readTiffCompression(preset, values.tiffCompressionLZW);
}

/// The value as it is written, with no references. No value that means anything holds markup; one that does,
/// out of a damaged file, would make the written file unreadable.
QString writable(const QString &value, const QString &initial)
{
    const bool isRead = !value.contains(u'<') && !value.contains(u'&') && !value.startsWith(u'>') &&
                        XMLFile::withReadableStart(value) == value;
    return isRead ? value : initial;
}

/// What a preset with these values is read as from its own file.
SavingPresetValues readAgain(SavingPresetValues values)
{
    const SavingPresetValues initial;
    values.name = XMLFile::withoutLoneSurrogates(values.name);
    for (QString &token : values.filenameTokens)
        token = XMLFile::withoutLoneSurrogates(token);
    values.fileBaseNameCase = writable(values.fileBaseNameCase, initial.fileBaseNameCase);
    values.fileExtensionCase = writable(values.fileExtensionCase, initial.fileExtensionCase);
    values.imageFormat = writable(values.imageFormat, initial.imageFormat);
    values.alternativeImageFormat = writable(values.alternativeImageFormat, initial.alternativeImageFormat);
    values.tiffCompressionLZW = true; // as readTiffCompression() says
    return values;
}

bool isReadAgain(const QString &token)
{
    XMLParser parser([](const QByteArray &) {});
    const QString written = XMLFile::withReadableStart(token);
    return parser.parse("<?xml version=\"1.0\"?><token>" + written.toUtf8() + "</token>") &&
           parser.root()->text() == XMLFile::withoutLoneSurrogates(token).toUtf8();
}

/// As much of a text as a message has room for, on one line.
QString excerpt(const QString &text)
{
    constexpr qsizetype kLongest = 60;
    QString start = text.left(kLongest);
    start.replace(u'\n', u' ');
    return text.size() > kLongest ? start + u'\u2026' : start;
}

Result<void> checkReadAgain(const XMLParser::Element *element, const SavingPreset &preset)
{
    const auto again = element ? SavingPreset::initWithXMLData(*element, kSupportedVersion) : nullptr;
    if (!again || again->presetID() != preset.presetID() || again->values() != readAgain(preset.values()))
        return fail(Texts::tr("the saving preset \"%1\" would not be read again as it is")
                        .arg(excerpt(preset.name())));
    return {};
}

/// Reads what is about to be written.
Result<void> checkXML(const QByteArray &xml, const std::vector<std::shared_ptr<SavingPreset>> &presets)
{
    for (const auto &preset : presets) {
        if (Result<void> checked = preset->checkWritable(); !checked)
            return checked;
    }
    XMLParser parser([](const QByteArray &) {});
    if (!parser.parse(xml) || parser.root()->subelementCount() != std::ssize(presets))
        return fail(Texts::tr("the presets are more than can be read again"));
    for (std::size_t i = 0; i < presets.size(); ++i) {
        const XMLParser::Element *element = parser.root()->subelement(static_cast<qsizetype>(i));
        if (Result<void> checked = checkReadAgain(element, *presets[i]); !checked)
            return checked;
    }
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
    // Observers may change the preset while it is being set.
    const SavingPresetValues wanted = values;
#define PLEXA_SET_FIELD(name, Name, Type, initial) set##Name(wanted.name);
    PLEXA_SAVINGPRESET_FIELDS(PLEXA_SET_FIELD)
#undef PLEXA_SET_FIELD
}

void SavingPreset::announce(SavingField field)
{
    Q_EMIT fieldChanged(field);
    if (field != SavingField::ImageFormat && field != SavingField::AlternativeImageFormat)
        return;
    Q_EMIT hideJPEGQualityChanged();
    Q_EMIT hideTiffCompressionChanged();
    if (field == SavingField::ImageFormat)
        Q_EMIT hideAlternativeFormatChanged();
}

QStringList SavingPreset::supportedFileFormats()
{
    return savingFormatNames();
}

QStringList SavingPreset::supportedFileFormatsWithoutOriginal()
{
    QStringList names = savingFormatNames();
    names.removeAll(originalFormatName());
    return names;
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
    xml += QStringLiteral("\n  <preset>\n    <id>%1</id>\n    <name>%2</name>\n    <filename>")
               .arg(QString::number(m_presetID), withReadableStart(replaceXmlSpecialChars(name())));
    for (const QString &token : filenameTokens())
        xml += QStringLiteral("\n      <token>%1</token>").arg(withReadableStart(token));
    const SavingPresetValues initial;
    xml += QStringLiteral("\n    </filename>\n    <fileBaseNameCase>%1</fileBaseNameCase>"
                          "\n    <fileExtensionCase>%2</fileExtensionCase>\n    <format>%3</format>"
                          "\n    <alternativeFormat>%4</alternativeFormat>\n    <quality>%5</quality>"
                          "\n    <tiffCompressionLZW>%6</tiffCompressionLZW>\n  </preset>")
               .arg(writable(fileBaseNameCase(), initial.fileBaseNameCase),
                    writable(fileExtensionCase(), initial.fileExtensionCase),
                    writable(imageFormat(), initial.imageFormat),
                    writable(alternativeImageFormat(), initial.alternativeImageFormat),
                    QString::number(jpegQuality()), QString::number(tiffCompressionLZW() ? 1 : 0));
}

Result<void> SavingPreset::checkWritable() const
{
    for (const QString &token : filenameTokens()) {
        if (!isReadAgain(token))
            return fail(Texts::tr("the saving preset \"%1\" names files with \"%2\", which a file of saving "
                                  "presets cannot hold: \"<\" and \"&\" cannot be part of it")
                            .arg(excerpt(name()), excerpt(token)));
    }
    QString xml = QStringLiteral("<?xml version=\"1.0\"?>");
    appendObjectToXML(xml);
    XMLParser parser([](const QByteArray &) {});
    parser.parse(xml.toUtf8());
    return checkReadAgain(parser.root(), *this);
}

std::shared_ptr<SavingPreset> SavingPreset::initWithXMLData(const XMLParser::Element &element,
                                                            double fileVersion)
{
    std::shared_ptr<SavingPreset> preset = initWithoutNewID();
    const XMLParser::Element *id = requiredElement(element, "id");
    if (!id)
        return nullptr;
    preset->m_presetID = leadingInteger(id->text());
    raiseTo(s_lastUsedPresetID, preset->m_presetID);
    return readValues(element, fileVersion, preset->m_values) ? preset : nullptr;
}

std::optional<std::vector<std::shared_ptr<SavingPreset>>>
SavingPreset::readObjectsFromFile(const QString &path, const QString &appID, ReadCode &returnCode,
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
    return XMLFile::writeXML(xml, path);
}

} // namespace plexa
