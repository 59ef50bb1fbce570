// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/plainstring.h"

#include <QLocale>

#include <cmath>

namespace plexa
{

QString plainString(double number)
{
    // Doubles hold every whole number up to here.
    constexpr double exact = 9007199254740992.0;
    if (number == std::trunc(number) && std::abs(number) <= exact)
        return QString::number(static_cast<qint64>(number));
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

std::optional<QString> plainString(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isEmpty() ? std::nullopt : std::optional(value.toString());
    case QMetaType::Float: {
        // Shortest for a float, not for the double that it becomes.
        const float number = value.toFloat();
        if (number == std::trunc(number))
            return plainString(static_cast<double>(number));
        for (int digits = 6; digits < 9; ++digits) {
            const QString text = QString::number(static_cast<double>(number), 'g', digits);
            if (text.toFloat() == number)
                return text;
        }
        return QString::number(static_cast<double>(number), 'g', 9);
    }
    case QMetaType::Double:
        return plainString(value.toDouble());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
        return QString::number(value.toLongLong());
    case QMetaType::ULongLong:
        return QString::number(value.toULongLong());
    default:
        return std::nullopt;
    }
}

} // namespace plexa
