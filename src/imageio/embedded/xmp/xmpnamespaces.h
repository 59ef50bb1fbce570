// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <string>

namespace plexa
{

/// The namespaces of one file's XMP that the library does not know.
///
/// The library keeps one table of prefixes for the whole process, and every packet changes it. Therefore
/// the library never reads a namespace of a file: it reads an alias that is derived from the address alone,
/// so the table means the same at any time and on any thread. Aliases also avoid three faults of the library:
/// it appends a slash to some addresses, writes "&" in addresses unescaped, and cannot hold two addresses
/// that differ in the last slash only.
class XmpNamespaces
{
public:
    /// A packet as the library reads it correctly: known namespaces under the library's prefixes, all others
    /// under aliases. The library treats the beginning "type=" of a text as a command; an empty command is
    /// put before it (see withoutXmpCommand()). Adds the packet's namespaces to this value.
    /// @return empty for invalid XML, for a document type, and for nesting or a number of elements and
    ///         attributes, with the packets before, beyond the limits
    std::string packetForLibrary(const std::string &packet);

    /// A packet that the library has encoded, with the prefixes and addresses of the file.
    QByteArray packetForFile(const QByteArray &encoded) const;

    /// The file's prefix for the library's one.
    QString prefixOf(const std::string &libraryPrefix) const;

    /// The address for the library's prefix; empty: unknown.
    std::string addressOf(const std::string &libraryPrefix) const;

private:
    friend class XmpPacketWriter;

    struct Namespace {
        QString prefix;
        QString address;
    };

    /// @return the library's prefix and address
    Namespace forLibrary(const QString &prefix, const QString &address);

    QHash<QByteArray, Namespace> m_byAlias; ///< those of the file
    qsizetype m_names = 0;                  ///< elements and attributes of the packets
};

/// Removes the empty command that packetForLibrary() has put before a text.
void withoutXmpCommand(std::string &text);

} // namespace plexa
