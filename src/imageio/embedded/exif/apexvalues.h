// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariantMap>

namespace plexa
{

/// EXIF holds aperture and exposure time twice, the second time as exponents of two (ApertureValue,
/// ShutterSpeedValue: EXIF 2.3, annex C). Where an edit changed or removed one of the plain values and left
/// its exponent, the exponent follows; one that was not there is not made.
/// @param before, after  property dictionaries, without and with the edit
/// @return `after` with exponents that agree
QVariantMap withAgreeingApexValues(const QVariantMap &before, const QVariantMap &after);

} // namespace plexa
