// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/userdefaults.h"

#include "platform/numbervalues.h"

#include <QRegularExpression>

#include <cmath>
#include <cstdlib>
#include <limits>

namespace plexa
{
namespace
{

bool isText(const QVariant &value)
{
    return value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QByteArray;
}

bool truthOf(const QString &text)
{
    static const QRegularExpression pattern(QStringLiteral("\\A\\s*[-+]?0*[YyTt1-9]"));
    return pattern.match(text).hasMatch();
}

qint64 integerOf(const QString &text)
{
    return std::strtoll(text.toUtf8().constData(), nullptr, 10); // skips blanks, and clamps to its limits
}

qint64 integerOf(double number)
{
    constexpr double kBeyond = 9223372036854775808.0; // 2^63
    if (std::isnan(number))
        return 0;
    if (number >= kBeyond)
        return std::numeric_limits<qint64>::max();
    if (number < -kBeyond)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(number);
}

double decimalOf(const QString &text)
{
    static const QRegularExpression pattern(
        QStringLiteral("\\A\\s*([-+]?(?:[0-9]+\\.?[0-9]*|\\.[0-9]+)(?:[eE][-+]?[0-9]+)?)"));
    return pattern.match(text).captured(1).toDouble();
}

float finiteFloat(double number)
{
    constexpr double kGreatest = std::numeric_limits<float>::max();
    return std::isnan(number) ? 0.0F : static_cast<float>(std::clamp(number, -kGreatest, kGreatest));
}

} // namespace

UserDefaults::UserDefaults(const QString &maker, const QString &application)
    : m_stored(maker, application)
{
}

void UserDefaults::registerDefaults(const QHash<QString, QVariant> &defaults)
{
    const std::lock_guard lock(m_mutex);
    m_registered.insert(defaults);
}

QVariant UserDefaults::objectForKey(const QString &key) const
{
    const std::lock_guard lock(m_mutex);
    if (!m_stored.contains(key))
        return m_registered.value(key);
    const QVariant value = m_stored.value(key);
    // An empty list is written as a value of no type; nothing else is, since storing one removes the key.
    return value.isValid() ? value : QVariant(QStringList());
}

bool UserDefaults::isStored(const QString &key) const
{
    const std::lock_guard lock(m_mutex);
    return m_stored.contains(key);
}

bool UserDefaults::boolForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (isText(value))
        return truthOf(value.toString());
    return isNumber(value) && value.toDouble() != 0;
}

qint64 UserDefaults::integerForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (isText(value))
        return integerOf(value.toString());
    if (value.typeId() == QMetaType::Float || value.typeId() == QMetaType::Double)
        return integerOf(value.toDouble());
    return isNumber(value) ? value.toLongLong() : 0;
}

float UserDefaults::floatForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (isText(value))
        return finiteFloat(decimalOf(value.toString()));
    return isNumber(value) ? finiteFloat(value.toDouble()) : 0.0F;
}

QString UserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return isText(value) || isNumber(value) ? value.toString() : QString();
}

QStringList UserDefaults::stringArrayForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    // A list of one and a single text look alike in the file.
    if (isText(value) || value.typeId() == QMetaType::QStringList)
        return value.toStringList();
    QStringList texts;
    for (const QVariant &element : value.toList()) {
        if (!isText(element))
            return {};
        texts.append(element.toString());
    }
    return texts;
}

void UserDefaults::setObject(const QString &key, const QVariant &value)
{
    const std::lock_guard lock(m_mutex);
    if (value.isValid())
        m_stored.setValue(key, value);
    else
        m_stored.remove(key);
}

bool UserDefaults::synchronize()
{
    const std::lock_guard lock(m_mutex);
    m_stored.sync();
    return m_stored.status() == QSettings::NoError;
}

} // namespace plexa
