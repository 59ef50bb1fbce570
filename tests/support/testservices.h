// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"

namespace plexa::test
{

/// What the photos of a test share.
struct TestPhotoServices {
    explicit TestPhotoServices(qsizetype cacheBytes = 64 * 1024 * 1024, qint64 budgetBytes = 1'000'000'000)
        : cache(cacheBytes)
        , budget(budgetBytes)
    {
    }

    FontCatalog fonts;
    LocaleFormat locale{QStringLiteral("en_US")};
    PixelCache cache;
    ByteBudget budget;
    PhotoServices all{fonts, locale, cache, budget, {}};
};

} // namespace plexa::test
