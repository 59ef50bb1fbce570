// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlfile.h"

#include "platform/applicationname.h"
#include "platform/atomicfile.h"

#include <QDebug>

#include <charconv>
#include <cmath>

namespace plexa
{
namespace
{

void logAbstractCall(const char *function)
{
    qCritical("ERROR:  The abstract method XMLFile::%s has been called directly!", function);
}

bool isHeader(const XMLParser::Element *header)
{
    return header && header->attributeCount() == 2 && header->attributeValue("version") == "1.0" &&
           header->attributeValue("encoding") == "UTF-8";
}

bool isRoot(const XMLParser::Element *root, const QString &appID, const QString &name)
{
    if (!root || root->name() != name.toUtf8() || root->attributeCount() != 2)
        return false;
    const std::optional<QByteArray> application = root->attributeValue("application");
    return application &&
           (*application == appID.toUtf8() || *application == firstVersionApplicationName().toUtf8());
}

} // namespace

void XMLFile::appendObjectToXML(QString &) const
{
    logAbstractCall("appendObjectToXML");
}

std::shared_ptr<XMLFile> XMLFile::initWithXMLData(const XMLParser::Element &, double)
{
    logAbstractCall("initWithXMLData");
    return nullptr;
}

std::optional<std::vector<std::shared_ptr<XMLFile>>>
XMLFile::readObjectsFromFile(const QString &, const QString &, ReadCode &returnCode)
{
    logAbstractCall("readObjectsFromFile");
    returnCode = ReadCode::Failed;
    return std::nullopt;
}

Result<void> XMLFile::writeObjects(const std::vector<std::shared_ptr<XMLFile>> &, const QString &,
                                   const QString &)
{
    logAbstractCall("writeObjects");
    return fail(QStringLiteral("these objects have no file"));
}

Result<void> XMLFile::writeObjects(std::span<const XMLFile *const> objects, const QString &path,
                                   const QString &appID, const QString &rootXMLElement,
                                   const QString &supportedVersion)
{
    AtomicFile file(path, AtomicFile::IfExists::Replace);
    if (Result<void> opened = file.open(); !opened)
        return opened;
    // commit() reports a failure.
    file.device().write(xmlOf(objects, appID, rootXMLElement, supportedVersion));
    return file.commit();
}

QByteArray XMLFile::xmlOf(std::span<const XMLFile *const> objects, const QString &appID,
                          const QString &rootXMLElement, const QString &supportedVersion)
{
    QString xml = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<%1 application=\"%2\" fileVersion=\"%3\">")
                      .arg(rootXMLElement, appID, supportedVersion);
    for (const XMLFile *object : objects)
        object->appendObjectToXML(xml);
    xml += QStringLiteral("\n</%1>\n").arg(rootXMLElement);
    return xml.toUtf8();
}

QString XMLFile::replaceXmlSpecialChars(const QString &text)
{
    QString replaced = text;
    replaced.replace(QLatin1Char('&'), QLatin1StringView("&amp;"));
    replaced.replace(QLatin1Char('<'), QLatin1StringView("&lt;"));
    replaced.replace(QLatin1Char('>'), QLatin1StringView("&gt;"));
    return replaced;
}

double XMLFile::leadingDecimal(const QByteArray &text)
{
    QByteArray number = text.trimmed();
    if (number.startsWith('+'))
        number.remove(0, 1);
    double value = 0;
    // Unlike strtod(), it does not depend on the locale.
    std::from_chars(number.constData(), number.constData() + number.size(), value);
    return std::isfinite(value) ? value : 0;
}

QString XMLFile::withoutLoneSurrogates(const QString &text)
{
    QString whole = text;
    for (qsizetype i = 0; i < whole.size(); ++i) {
        if (whole.at(i).isHighSurrogate() && i + 1 < whole.size() && whole.at(i + 1).isLowSurrogate())
            ++i;
        else if (whole.at(i).isSurrogate())
            whole[i] = QChar::ReplacementCharacter;
    }
    return whole;
}

QString XMLFile::withReadableStart(const QString &text)
{
    QString readable = withoutLoneSurrogates(text);
    const QChar first = readable.isEmpty() ? QChar() : readable.front();
    if (QStringView(u"\"'=/?> \t\r\n").contains(first))
        readable.replace(0, 1, QStringLiteral("&#%1;").arg(first.unicode()));
    return readable;
}

bool XMLFile::readFile(const QString &path, const QString &appID, const QString &rootXMLElement,
                       const KeepObject &keepObject, const XMLParser::ErrorSink &errors, double &fileVersion)
{
    XMLParser parser(errors);
    if (!parser.loadAndParseFile(path))
        return false;
    if (!isHeader(parser.header())) {
        parser.report("the XML header is not that of preset files in \"" + path.toUtf8() + '"');
        return false;
    }
    if (!isRoot(parser.root(), appID, rootXMLElement)) {
        parser.report('"' + path.toUtf8() + "\" does not have the root element \"" + rootXMLElement.toUtf8() +
                      "\" of the application \"" + appID.toUtf8() + '"');
        return false;
    }
    const XMLParser::Element &root = *parser.root();
    fileVersion = leadingDecimal(root.attributeValue("fileVersion").value_or(QByteArray()));
    for (qsizetype i = 0; i < root.subelementCount(); ++i) {
        if (!keepObject(*root.subelement(i), fileVersion)) {
            parser.report("number " + QByteArray::number(i + 1) + " of the presets in \"" + path.toUtf8() +
                          "\" cannot be read");
            return false;
        }
    }
    return true;
}

} // namespace plexa
