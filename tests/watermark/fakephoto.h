// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/texttokens.h"

#include <QHash>

namespace plexa::test
{

/// A photo of which only the size and a few tokens' texts are known.
class FakePhoto final : public TokenSource
{
public:
    explicit FakePhoto(QSize size, QHash<QString, QString> tokens = {})
        : m_size(size)
        , m_tokens(std::move(tokens))
    {
    }

    QSize pixelSize() const override { return m_size; }

    std::optional<QString> stringForInfoToken(const QString &piece, bool *tokenExists) const override
    {
        *tokenExists = tokenNames().contains(piece);
        const auto found = m_tokens.find(piece);
        return found == m_tokens.end() ? std::nullopt : std::optional(*found);
    }

private:
    QSize m_size;
    QHash<QString, QString> m_tokens;
};

} // namespace plexa::test
