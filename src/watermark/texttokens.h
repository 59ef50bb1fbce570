// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/imagemetadata.h"
#include "platform/localeformat.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace plexa
{

struct WPresetValues;

/// The facts of one photo that watermarks and file names depend on: its size, and the text of each token. An
/// immutable value; any thread.
class PhotoFacts final
{
public:
    /// A photo without a name, a size and metadata.
    PhotoFacts() = default;

    /// @param path          of the photo as the user knows it
    /// @param pixelSize     upright, pixels square
    /// @param unscaledSize  upright, before pixels were made square
    PhotoFacts(const QString &path, ImageMetadata metadata, QSize pixelSize, QSize unscaledSize,
               const LocaleFormat &locale);

    QString path() const { return m_path; }
    const ImageMetadata &metadata() const { return m_metadata; }
    QSize pixelSize() const { return m_pixelSize; }
    QSize unscaledSize() const { return m_unscaledSize; }
    const LocaleFormat &locale() const { return m_locale; }

    /// The expansion of one piece of a text.
    /// @param tokenExists  if given, is set to whether `piece` is the name of a token
    /// @return none if `piece` is not a token, or the photo lacks the value
    std::optional<QString> stringForInfoToken(const QString &piece, bool *tokenExists = nullptr) const;

private:
    QString m_path;
    ImageMetadata m_metadata;
    QSize m_pixelSize{0, 0};
    QSize m_unscaledSize{0, 0};
    LocaleFormat m_locale;
};

/// All token names.
const QStringList &tokenNames();

/// The text of a text watermark on one photo: its pieces, joined; tokens are replaced by the photo's values.
/// @return none if the text is empty
std::optional<QString> watermarkTextForImage(const WPresetValues &values, const PhotoFacts &image);

} // namespace plexa
