// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QString>

#include <mutex>

namespace plexa
{

/// Initializes the metadata library: silent, with a lock of its own and the known XMP namespaces. Must be
/// called before any use of the library; only the first call has an effect. Any thread.
void prepareMetadataLibrary();

/// The namespaces that the library knows before it reads any packet, by prefix; no two share an address.
const QHash<QString, QString> &knownNamespaces();

/// Held while the library decodes or encodes XMP, never between the two: its table of namespaces means the
/// same at any other time (XmpNamespaces).
[[nodiscard]] std::unique_lock<std::recursive_mutex> lockXmpNamespaces();

/// Held while the library decodes XMP without our preparation (TIFF, raw, EXIF with a packet inside). Such a
/// packet may bind a well-known prefix to another address; the destructor repairs the library's table.
class XmpTableGuard
{
public:
    XmpTableGuard() = default;
    ~XmpTableGuard();
    XmpTableGuard(const XmpTableGuard &) = delete;
    XmpTableGuard &operator=(const XmpTableGuard &) = delete;

private:
    std::unique_lock<std::recursive_mutex> m_lock = lockXmpNamespaces();
};

} // namespace plexa
