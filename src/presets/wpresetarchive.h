// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"
#include "watermark/wpreset.h"

#include <functional>

namespace plexa
{

/// Finds the saving preset with an ID; null when there is none.
using SavingPresetLookup = std::function<SavingPresetPtr(qint64 presetID)>;

/// Receives the share of a file that is read, 0..1; false stops the reading, which then fails.
using ReadProgress = std::function<bool(float share)>;

/// Writes a file of watermark presets: a keyed archive with the keys "Application", "FileVersion" (1.2) and
/// "WPresets".
[[nodiscard]] Result<void> writeWPresets(const WPresetList &presets, const QString &toFile);

/// The bytes of such a file. @return a failure if they could not be read back
[[nodiscard]] Result<QByteArray> archivedWPresets(const WPresetList &presets);

/// Reads a file of any version; angles and paddings of files below 1.2 are converted. A missing or invalid
/// value becomes absent, not the default. A picture that cannot be drawn is kept unchanged
/// (WatermarkPicture::fault).
/// @param futureVersion       if given, is set to whether a later version of the program wrote the file, of
///                            which the known part is read
/// @param savingPresetWithID  finds the assigned saving presets; without it none is assigned
/// @param leftOut             if given, is set to texts about the elements and values that cannot be read
/// @param progress            called before each preset, if given
/// @return a failure as text that follows the file's name, also for a list whose elements are all unreadable
[[nodiscard]] Result<WPresetList> readWPresetsFromFile(const QString &path, bool *futureVersion = nullptr,
                                                       const SavingPresetLookup &savingPresetWithID = {},
                                                       QStringList *leftOut = nullptr,
                                                       const ReadProgress &progress = {});

/// The same from bytes.
[[nodiscard]] Result<WPresetList> wPresetsFromArchive(const QByteArray &bytes, bool *futureVersion = nullptr,
                                                      const SavingPresetLookup &savingPresetWithID = {},
                                                      QStringList *leftOut = nullptr,
                                                      const ReadProgress &progress = {});

} // namespace plexa
