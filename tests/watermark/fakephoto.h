// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "watermark/texttokens.h"

namespace plexa::test
{

/// A photo of which only the path, the size and the IPTC city are known.
inline PhotoFacts fakePhoto(QSize size, const QString &city = {}, const QString &path = {})
{
    return {path, ImageMetadata({{QStringLiteral("{IPTC}"), QVariantMap{{QStringLiteral("City"), city}}}}),
            size, size, LocaleFormat(QStringLiteral("en_US"))};
}

} // namespace plexa::test
