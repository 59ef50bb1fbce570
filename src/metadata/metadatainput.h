// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/imagemetadataproperties.h"
#include "platform/result.h"

#include <QLocale>
#include <QVariant>

namespace plexa
{

// The values of properties as people read and enter them: numbers by the locale with their unit ("0.008 sec",
// "50 mm"), dates as "2024-12-31 23:59:59", lists with commas.

/// The text of a value; empty for an absent one.
QString textOfMetadata(MetadataProperty property, const QVariant &value, const QLocale &locale);

/// The value of a text. An empty text is an invalid QVariant, which removes the property. The unit may be
/// absent; an exposure time may be a fraction.
/// @return what is wrong with the text, a sentence without a period
[[nodiscard]] Result<QVariant> metadataOfText(MetadataProperty property, const QString &text,
                                              const QLocale &locale);

} // namespace plexa
