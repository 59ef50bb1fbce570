// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

namespace plexa
{

/// The rows of the table for camera raw files whose first bytes tell them from all others: to be tested in
/// front of TIFF, which some of them look like.
QList<ImageFormat> rawFormatsWithSignature(const Codec &codec);

/// The rows for camera raw files that begin like any TIFF file: to stand behind TIFF.
QList<ImageFormat> rawFormatsLikeTiff(const Codec &codec);

} // namespace plexa
