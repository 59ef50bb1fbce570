// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/propertyvalues.h"

#include "platform/numbervalues.h"

#include <algorithm>

namespace plexa
{

namespace
{

bool isList(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
}

bool isFloating(const QVariant &value)
{
    return value.typeId() == QMetaType::Double || value.typeId() == QMetaType::Float;
}

} // namespace

bool samePropertyValue(const QVariant &a, const QVariant &b)
{
    if (!a.isValid() || !b.isValid())
        return a.isValid() == b.isValid();
    if (isNumber(a) && isNumber(b)) {
        if (isFloating(a) || isFloating(b))
            return a.toDouble() == b.toDouble();
        return a.toLongLong() == b.toLongLong();
    }
    if (isList(a) && isList(b)) {
        const QVariantList left = a.toList();
        const QVariantList right = b.toList();
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), samePropertyValue);
    }
    if (a.typeId() == QMetaType::QVariantMap && b.typeId() == QMetaType::QVariantMap) {
        const QVariantMap left = a.toMap();
        const QVariantMap right = b.toMap();
        return left.keys() == right.keys() &&
               std::equal(left.begin(), left.end(), right.begin(), samePropertyValue);
    }
    return a.typeId() == b.typeId() && a == b;
}

} // namespace plexa
