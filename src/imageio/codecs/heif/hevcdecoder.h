// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

struct heif_decoder_plugin;

namespace plexa
{

/// A decoder for libheif of HEVC pictures, with libde265, on the calling thread alone. The decoder that
/// libheif has itself ignores all errors and warnings and returns random pixels for data that are damaged or
/// missing.
extern const heif_decoder_plugin kHevcPlugin;

} // namespace plexa
