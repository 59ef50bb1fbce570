// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/savingpreset.h"
#include "presets/xmlparser.h"

#include <algorithm>
#include <cstdlib>

using namespace plexa;

namespace
{

void swallow(const QByteArray &line)
{
    // An error is one line, whatever the file says.
    if (!line.startsWith("ERROR") || line.count('\n') != 1 || !line.endsWith('\n'))
        std::abort();
}

void lookAt(const XMLParser::Element &element, int depth)
{
    if (depth > XMLParser::kMaxDepth || element.name().contains('\0') || element.text().contains('\0'))
        std::abort();
    element.attributeValue("version");
    element.subelement("name");
    if (element.subelement(element.subelementCount()) || element.subelement(qsizetype(-1)))
        std::abort();
    for (qsizetype i = 0; i < element.subelementCount(); ++i)
        lookAt(*element.subelement(i), depth + 1);
}

/// Does it begin with what the reader cannot take for markup?
bool beginsPlain(const QString &text)
{
    return text.isEmpty() || text.at(0).isLetterOrNumber();
}

/// Is it a text that a file gives back as it was written into it?
bool isPlain(const QString &text)
{
    return beginsPlain(text) && !text.contains(u'<') && !text.contains(u'&');
}

bool isPlain(const SavingPresetValues &values)
{
    // Names and tokens are escaped.
    return beginsPlain(values.name) &&
           std::all_of(values.filenameTokens.begin(), values.filenameTokens.end(), beginsPlain) &&
           isPlain(values.fileBaseNameCase) && isPlain(values.fileExtensionCase) &&
           isPlain(values.imageFormat) && isPlain(values.alternativeImageFormat);
}

void writeAndRead(const SavingPreset &preset)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\"?>");
    preset.appendObjectToXML(xml);
    XMLParser parser(swallow);
    if (!parser.parse(xml.toUtf8()))
        std::abort();
    const auto again = SavingPreset::initWithXMLData(*parser.root(), 1.4);
    SavingPresetValues expected = preset.values();
    expected.tiffCompressionLZW = true; // a zero that is not followed by a line end
    if (!again || again->presetID() != preset.presetID() || again->values() != expected)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    XMLParser parser(swallow);
    if (parser.parse(bytes) == parser.hasError())
        std::abort();
    if (parser.header())
        lookAt(*parser.header(), 1);
    if (!parser.root())
        return 0;
    lookAt(*parser.root(), 1);
    for (qsizetype i = 0; i < parser.root()->subelementCount(); ++i) {
        for (const double version : {1.0, 1.3, 1.4}) {
            const auto preset = SavingPreset::initWithXMLData(*parser.root()->subelement(i), version);
            if (preset && isPlain(preset->values()))
                writeAndRead(*preset);
        }
    }
    return 0;
}
