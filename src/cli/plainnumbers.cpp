// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/plainnumbers.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMetaType>
#include <QVariant>

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace plexa
{
namespace
{

/// A number of few digits that was in single precision before: 4.2 for 4.1999998. Else none.
std::optional<double> fewDigits(double number)
{
    constexpr int kDigitsOfFloat = 7;
    constexpr qsizetype kFewDigits = 5;
    const QByteArray text = QByteArray::number(number, 'e', kDigitsOfFloat - 1);
    QByteArray digits = text.left(text.indexOf('e')).replace("-", "").replace(".", "");
    while (digits.endsWith('0'))
        digits.chop(1);
    const double rounded = text.toDouble();
    const double step = double(std::numeric_limits<float>::epsilon()) * std::abs(number);
    return digits.size() <= kFewDigits && std::abs(rounded - number) <= step ? std::optional(rounded)
                                                                             : std::nullopt;
}

double plain(double number)
{
    if (const std::optional<double> few = fewDigits(number))
        return *few;
    const auto single = static_cast<float>(number);
    if (static_cast<double>(single) == number) {
        std::array<char, 64> text{};
        const char *const end = std::to_chars(text.data(), text.data() + text.size(), single).ptr;
        return QByteArray(text.data(), end - text.data()).toDouble();
    }
    constexpr int kDigits = 12;
    const double rounded = QByteArray::number(number, 'g', kDigits).toDouble();
    const double noise = 8 * std::numeric_limits<double>::epsilon() * std::abs(number);
    return std::abs(rounded - number) <= noise ? rounded : number;
}

} // namespace

QJsonValue withPlainNumbers(const QJsonValue &value)
{
    if (value.isArray()) {
        QJsonArray array;
        for (const QJsonValue &element : value.toArray())
            array.append(withPlainNumbers(element));
        return array;
    }
    if (value.isObject()) {
        QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member)
            *member = withPlainNumbers(*member);
        return object;
    }
    const bool isFraction = value.isDouble() && value.toVariant().typeId() == QMetaType::Double;
    return isFraction ? QJsonValue(plain(value.toDouble())) : value;
}

} // namespace plexa
