// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarktext.h"

#include "watermark/texttokens.h"
#include "watermark/wpresetvalues.h"

namespace plexa
{

std::optional<QString> watermarkTextForImage(const WPresetValues &values, const PhotoFacts &image)
{
    QString text;
    for (const QString &piece : values.textTokens) {
        bool isToken = false;
        const std::optional<QString> expansion = image.stringForInfoToken(piece, &isToken);
        text += isToken ? expansion.value_or(QString()) : piece;
    }
    if (text.isEmpty())
        return std::nullopt;
    return text;
}

} // namespace plexa
