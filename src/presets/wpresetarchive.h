// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "watermark/wpreset.h"

#include <functional>

namespace plexa
{

/// Finds the saving preset with an ID; null when there is none.
using SavingPresetLookup = std::function<SavingPresetPtr(qint64 presetID)>;

/// Writes watermark presets into a file, whole or not at all: a keyed archive with the keys "Application",
/// "FileVersion" (1.2) and "WPresets".
[[nodiscard]] Result<void> writeWPresets(const WPresetList &presets, const QString &toFile);

/// The same as bytes, which were read again to see that they can be.
/// @return a failure when there is more than can be read
[[nodiscard]] Result<QByteArray> archivedWPresets(const WPresetList &presets);

/// Reads a file of watermark presets, of any version: angles and paddings of files below 1.2 are converted. A
/// value that a preset lacks, or that cannot be understood, is absent from it, not the default; a picture is
/// kept, also when it cannot be drawn (WatermarkPicture::fault), and written again as it came.
/// @param futureVersion       is set, where given, to whether a later version of the program wrote the file,
///                            which is then read as far as it is known
/// @param savingPresetWithID  finds the saving presets that are assigned; without it, none is
/// @param leftOut             is set, where given, to what of the list is no preset and what of the presets
///                            cannot be understood, a text each: the presets written again would be without
///                            it
/// @return a failure as text that follows the file's name, when it is another program's file, or nothing in
/// its
///         list is a preset, and the list is not empty
[[nodiscard]] Result<WPresetList> readWPresetsFromFile(const QString &path, bool *futureVersion = nullptr,
                                                       const SavingPresetLookup &savingPresetWithID = {},
                                                       QStringList *leftOut = nullptr);

/// The same from bytes.
[[nodiscard]] Result<WPresetList> wPresetsFromArchive(const QByteArray &bytes, bool *futureVersion = nullptr,
                                                      const SavingPresetLookup &savingPresetWithID = {},
                                                      QStringList *leftOut = nullptr);

} // namespace plexa
