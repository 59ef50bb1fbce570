// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/embedded/xmp/xmpdeclarations.h"

#include "imageio/embedded/xmp/xmppackets.h"

#include <QHash>
#include <QXmlStreamReader>

#include <algorithm>
#include <set>

namespace plexa
{

namespace
{

/// The namespaces of the packet decoded last by what the library makes of them, where that is something else.
QHash<QString, QString> &changedNamespaces()
{
    thread_local QHash<QString, QString> namespaces;
    return namespaces;
}

struct Names {
    std::set<QString> used;     ///< prefixes of elements and attributes
    std::set<QString> declared; ///< prefixes
};

Names prefixesOf(const QByteArray &packet)
{
    Names names;
    names.declared = {QString(), QStringLiteral("xml"), QStringLiteral("xmlns")};
    QXmlStreamReader reader(packet);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        names.used.insert(reader.prefix().toString());
        for (const QXmlStreamAttribute &attribute : reader.attributes()) {
            names.used.insert(attribute.prefix().toString());
            if (attribute.prefix() == u"xmlns")
                names.declared.insert(attribute.name().toString());
        }
    }
    return names;
}

/// @param uri  as the library has it
QByteArray declaration(const QString &prefix, const QString &uri)
{
    const QString own = changedNamespaces().value(uri, uri);
    return "xmlns:" + prefix.toUtf8() + "=\"" + own.toHtmlEscaped().toUtf8() + '"';
}

/// The library writes namespaces into a packet as they are, '&' and '<' and all.
QByteArray withSpelling(const QByteArray &packet)
{
    QByteArray result;
    qsizetype copied = 0;
    for (qsizetype at = packet.indexOf(" xmlns:"); at >= 0; at = packet.indexOf(" xmlns:", at + 1)) {
        const qsizetype equals = packet.indexOf("=\"", at);
        const qsizetype end = equals < 0 ? -1 : packet.indexOf('"', equals + 2);
        if (end < 0)
            break;
        if (packet.lastIndexOf('<', at) < packet.lastIndexOf('>', at))
            continue; // in a text
        const QByteArray prefix = packet.mid(at + 7, equals - at - 7);
        result += packet.mid(copied, at + 1 - copied);
        result += declaration(QString::fromUtf8(prefix),
                              QString::fromUtf8(packet.mid(equals + 2, end - equals - 2)));
        copied = end + 1;
        at = end;
    }
    return result + packet.mid(copied);
}

} // namespace

void rememberXmpNamespaces(const QByteArray &packet)
{
    changedNamespaces().clear();
    QXmlStreamReader reader(packet);
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement)
            continue;
        for (const QXmlStreamNamespaceDeclaration &declared : reader.namespaceDeclarations()) {
            const QString uri = declared.namespaceUri().toString();
            const QString changed = uri + u'/';
            const bool isKnown =
                std::ranges::find(knownXmpNamespaces(), changed) != knownXmpNamespaces().end();
            if (!uri.isEmpty() && !uri.endsWith(u'/') && !uri.endsWith(u'#') && !isKnown)
                changedNamespaces().insert(changed, uri);
        }
    }
}

QByteArray withXmpNamespaces(const QByteArray &packet)
{
    QByteArray mended = withSpelling(packet);
    const QByteArray root = "<rdf:RDF ";
    const qsizetype at = mended.indexOf(root);
    if (at < 0)
        return mended;
    const Names names = prefixesOf(mended);
    QByteArray missing;
    for (const QString &prefix : names.used) {
        if (names.declared.contains(prefix))
            continue;
        const std::string uri = Exiv2::XmpProperties::ns(prefix.toStdString());
        missing += declaration(prefix, QString::fromStdString(uri)) + ' ';
    }
    return mended.insert(at + root.size(), missing);
}

} // namespace plexa
