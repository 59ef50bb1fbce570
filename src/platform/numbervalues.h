// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QVariant>

namespace plexa
{

/// Is this a number (integer or floating) or a boolean, which counts as 1 or 0?
inline bool isNumber(const QVariant &value)
{
    const int type = value.typeId();
    return (type >= QMetaType::Bool && type <= QMetaType::Double) ||
           (type >= QMetaType::Long && type <= QMetaType::SChar && type != QMetaType::QObjectStar);
}

} // namespace plexa
