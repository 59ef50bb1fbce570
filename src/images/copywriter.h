// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/photoservices.h"
#include "images/strips.h"
#include "metadata/imagemetadata.h"
#include "platform/atomicfile.h"
#include "platform/fileversion.h"
#include "presets/savingpresetvalues.h"
#include "watermark/watermarkdrawing.h"

#include <QPointF>
#include <QRectF>

#include <functional>
#include <optional>
#include <vector>

namespace plexa
{

/// Where a copy goes.
struct CopyTarget {
    QString path;
    AtomicFile::IfExists ifExists = AtomicFile::IfExists::Fail;
    std::function<std::optional<QString>()> nextPath = {}; ///< as AtomicFile::setAlternatives(); may be empty
};

/// The rules for all copies of a run.
struct CopyRules {
    bool preservesCreationDate = true; ///< the copy gets the date of its photo
    bool needsVisibleMark = false;     ///< a copy on which no watermark is visible is a failure
    bool rendersAll =
        false; ///< all pixels are decoded and encoded, also where most could be kept as they are
};

/// Everything that one watermarked copy is made of.
struct CopyOrder {
    QString path;     ///< the photo as the user knows it
    QString readPath; ///< the file to read
    std::optional<FileVersion>
        version; ///< what the file has to be for the rest of the order to fit; none: any
    CopyTarget target;
    /// The photo itself, where the copy overwrites it: the file must still be that one at the end, or the
    /// work of another program would be lost.
    std::optional<FileVersion> overwritten;
    QString targetType;   ///< MIME name of a format that can be written
    double quality = 0.8; ///< 0..1, for formats with losses
    bool tiffLzw = true;
    std::vector<MarkOrder> marks;                      ///< in drawing order
    int turns = 1;                                     ///< the user's turns, as an orientation
    std::optional<ImageMetadata> metadata;             ///< where the user has edited it; else the file's
    std::function<void(ImageMetadata &)> metadataEdit; ///< of the file's metadata; may be empty
    QImage upright; ///< the decoded photo where it is at hand, turns applied; else null
    CopyRules rules;
    CancelCheck isCanceled;
};

/// The parts of an order that a saving preset decides, for the photo at `path`.
/// @return the reason when the preset has a format that cannot be written or an impossible quality
[[nodiscard]] Result<CopyOrder> copyOrderFor(const QString &path, const CopyTarget &target,
                                             const SavingPresetValues &savingPreset);

/// The failure of a copy that breaks CopyRules::needsVisibleMark.
QString noVisibleMark();

/// What became of a copy.
struct CopyReport {
    QString path; ///< where it is in the end
    QSize size;   ///< pixels of the copy
    std::vector<std::optional<QRectF>>
        rects;                   ///< of each mark, origin at the bottom left; none: it had nothing to draw
    bool isMarked = false;       ///< is any part of a mark visible on the copy?
    bool isRecompressed = false; ///< are only the parts under the marks decoded and encoded again?
    QStringList notices;         ///< about the photo and its marks, as texts that follow the photo's path
    QStringList dropped;         ///< of the source, what the copy does not have: "gain map", "maker note"
};

/// Is the file a copy that writeCopy() has written? Decided by the name of this program, which copies carry
/// as their software. Reads the file up to its metadata. Any thread.
bool isWrittenCopy(const QString &path);

/// Reads the photo, draws the watermarks and writes the copy. A copy in the photo's own format is
/// recompressed where its codec can do that. Otherwise a photo that needs no turning passes through in
/// strips; another one is decoded whole. A failure leaves no file. Any thread.
[[nodiscard]] Result<CopyReport> writeCopy(const CopyOrder &order, const PhotoServices &services);

} // namespace plexa
