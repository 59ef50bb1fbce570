// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

namespace plexa
{

/// Remembers for this thread how a packet that is about to be decoded names its namespaces: the library puts
/// a slash behind those that end in neither a slash nor '#'. To be called under lockXmpNamespaces(), which is
/// held until the packet's properties are encoded again.
void rememberXmpNamespaces(const QByteArray &packet);

/// Mends the declarations of a packet that the library encoded: namespaces are named as they were when they
/// were read, in XML's spelling, and each prefix in use is declared. The library leaves out the declaration
/// of a prefix ("shop") when one that ends with it ("photoshop") was declared before; such a packet is no
/// XML, and its photo would lose all of its XMP. To be called under lockXmpNamespaces().
QByteArray withXmpNamespaces(const QByteArray &packet);

} // namespace plexa
