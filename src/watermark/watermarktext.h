// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <optional>

namespace plexa
{

class PhotoFacts;
struct WPresetValues;

/// The text of a text watermark on one photo: its pieces in order, each that is a token replaced by the
/// photo's value (by nothing where the photo lacks it), nothing put between them.
/// @return none when there are no pieces or the text comes out empty
std::optional<QString> watermarkTextForImage(const WPresetValues &values, const PhotoFacts &image);

} // namespace plexa
