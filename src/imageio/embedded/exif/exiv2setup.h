// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <mutex>

namespace plexa
{

/// Makes the metadata library ready: silent, with a lock of its own and all XMP namespaces registered. Call
/// it before any use of the library; only the first call does something. Any thread.
void prepareMetadataLibrary();

/// Holds the library's table of XMP namespaces still. A file may bring a prefix that another file used for
/// another namespace, which changes the table: whoever decodes and encodes a packet does it under one lock,
/// so that the prefixes mean the same at both ends.
[[nodiscard]] std::unique_lock<std::recursive_mutex> lockXmpNamespaces();

} // namespace plexa
