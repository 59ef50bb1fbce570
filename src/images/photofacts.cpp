// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/photofacts.h"

#include "platform/filenames.h"

namespace plexa
{

PhotoFacts::PhotoFacts(const QString &path, ImageMetadata metadata, QSize pixelSize, QSize unscaledSize,
                       const LocaleFormat &locale)
    : m_metadata(std::move(metadata))
    , m_path(path)
    , m_filename(filenameOf(path))
    , m_pixelSize(pixelSize)
    , m_unscaledSize(unscaledSize)
    , m_locale(locale)
{
}

std::optional<QString> PhotoFacts::stringForInfoToken(const QString &piece, bool *tokenExists) const
{
    const TokenFacts facts{&m_metadata, m_path, m_filename, m_unscaledSize};
    return plexa::stringForInfoToken(piece, facts, m_locale, tokenExists);
}

} // namespace plexa
