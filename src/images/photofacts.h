// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "metadata/imagemetadata.h"
#include "platform/localeformat.h"
#include "watermark/texttokens.h"

namespace plexa
{

/// What is known of one photo at one moment, for watermarks to be laid out and texts to be filled in.
/// Immutable; any thread.
class PhotoFacts final : public TokenSource
{
public:
    /// @param path          of the photo as people know it
    /// @param pixelSize     after all turns, pixels square
    /// @param unscaledSize  after all turns, before pixels were made square
    PhotoFacts(const QString &path, ImageMetadata metadata, QSize pixelSize, QSize unscaledSize,
               const LocaleFormat &locale);

    QSize pixelSize() const override { return m_pixelSize; }
    std::optional<QString> stringForInfoToken(const QString &piece, bool *tokenExists) const override;

private:
    ImageMetadata m_metadata;
    QString m_path;
    QString m_filename;
    QSize m_pixelSize;
    QSize m_unscaledSize;
    LocaleFormat m_locale;
};

} // namespace plexa
