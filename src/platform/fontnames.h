// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

namespace plexa
{

/// The PostScript names (name 6) that a font file's "name" table gives, which is usually one name twice.
/// Format: the OpenType standard, "name - Naming Table". Bytes that point outside of the table are skipped;
/// a pure function.
QStringList postScriptNames(const QByteArray &nameTable);

} // namespace plexa
