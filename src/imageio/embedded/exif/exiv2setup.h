// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <mutex>

namespace plexa
{

/// Initializes the metadata library: silent, with a lock of its own and all XMP namespaces registered. Must
/// be called before any use of the library; only the first call has an effect. Any thread.
void prepareMetadataLibrary();

/// Held while the library decodes or encodes XMP, never between the two: its table of namespaces means the
/// same at any other time (XmpNamespaces).
[[nodiscard]] std::unique_lock<std::recursive_mutex> lockXmpNamespaces();

} // namespace plexa
