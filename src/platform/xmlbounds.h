// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QByteArray>

namespace plexa
{

/// Checks a document before an XML parser reads it. Parsers compare every attribute of an element with every
/// other, and every prefix with all namespaces that are declared around it: a small file could keep them busy
/// for hours. Bounded are the attributes of one element, the namespaces declared around it, and the document
/// type. Entities are not expanded; parsers bound them. Any thread.
/// @param bytes          in any encoding that QXmlStreamReader reads
/// @param maxAttributes  of one element
/// @param maxNamespaces  declared by an element and those around it
/// @return the document in UTF-8, the same bytes if it was in UTF-8; a failure as text that follows a file's
/// name
[[nodiscard]] Result<QByteArray> boundedXml(const QByteArray &bytes, int maxAttributes,
                                            int maxNamespaces = 100);

} // namespace plexa
