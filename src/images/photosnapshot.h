// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/customorigins.h"
#include "platform/result.h"
#include "watermark/texttokens.h"
#include "watermark/wpreset.h"

#include <QImage>
#include <QRectF>

#include <memory>

namespace plexa
{

class FontCatalog;

/// A preset as it was when a piece of work began: its identity, by which places chosen by hand are kept, and
/// its values, which the work reads while the user goes on editing.
struct AppliedPreset {
    std::shared_ptr<const WPreset> preset;
    WPresetValues values;
};

/// A photo at one moment: facts, places and pixels belong together, whatever the user turns meanwhile.
struct PhotoSnapshot {
    PhotoFacts facts;
    CustomOrigins customOrigins;
    QImage pixels; ///< upright; null where they were not wanted or could not be read

    /// One preset drawn. Any thread.
    /// @param image  of the photo's full size; not null
    /// @param rect   receives, where given, the watermark's rectangle; unchanged when there is no watermark
    /// @return the same image when the preset has nothing to draw; the reason when it cannot be drawn
    [[nodiscard]] Result<QImage> drawn(const QImage &image, const AppliedPreset &preset,
                                       const FontCatalog &fonts, QRectF *rect = nullptr) const;
};

} // namespace plexa
