// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace plexa
{

class ImageMetadata;
class LocaleFormat;

/// What a token may ask of a photo.
struct TokenFacts {
    const ImageMetadata *metadata = nullptr; ///< null: the photo has none
    QString path;
    QString filename; ///< without folder and extension
    QSize pixelSize;  ///< upright, before non-square pixels are squared
};

/// The expansion of one piece of a text.
/// @param piece        compared exactly with the token names
/// @param tokenExists  set, where given, to whether `piece` is a token's name
/// @return none when `piece` is no token, or the photo lacks the value
std::optional<QString> stringForInfoToken(const QString &piece, const TokenFacts &facts,
                                          const LocaleFormat &locale, bool *tokenExists = nullptr);

/// All token names, in the order in which they are tested.
const QStringList &tokenNames();

/// All that a watermark asks of the photo that it is drawn on.
class TokenSource
{
public:
    virtual ~TokenSource() = default;

    /// Pixels after all turns.
    virtual QSize pixelSize() const = 0;

    /// As the free function above, for this photo.
    virtual std::optional<QString> stringForInfoToken(const QString &piece, bool *tokenExists) const = 0;
};

} // namespace plexa
