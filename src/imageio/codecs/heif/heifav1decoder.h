// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

struct heif_decoder_plugin;

namespace plexa
{

/// The decoder of AV1 for libheif to use before its own: dav1d as well, but on the calling thread alone, with
/// a bound for its pictures, and silent where libheif lets it write of every damage to the standard error
/// stream. Static storage.
const heif_decoder_plugin &av1DecoderPlugin();

} // namespace plexa
