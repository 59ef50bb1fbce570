// SPDX-License-Identifier: GPL-3.0-or-later

#include "presets/xmlnumbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace plexa
{

double leadingDecimal(const QByteArray &text)
{
    QByteArray number = text.trimmed();
    if (number.startsWith('+'))
        number.remove(0, 1);
    double value = 0;
    // Unlike strtod(), it does not depend on the locale.
    std::from_chars(number.constData(), number.constData() + number.size(), value);
    return std::isfinite(value) ? value : 0;
}

qint64 leadingInteger(const QByteArray &text)
{
    static_assert(sizeof(long long) == sizeof(qint64));
    return std::strtoll(text.constData(), nullptr, 10);
}

} // namespace plexa
