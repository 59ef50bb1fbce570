// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <mutex>

namespace plexa
{

/// The user's settings: what is stored, and under it what the program has registered as defaults. Registered
/// values live as long as the object and are never stored. Any thread.
///
/// The readers convert: a string of digits is a number, "YES" is true. So a settings file may be edited by
/// hand, and a default may be given as text.
class UserDefaults final
{
public:
    /// The settings of a program in the user's configuration folder.
    UserDefaults(const QString &maker, const QString &application);

    /// Adds to the registered defaults, over those of the same keys.
    void registerDefaults(const QHash<QString, QVariant> &defaults);

    /// The stored value, else the registered one, else an invalid variant. The file holds texts and lists of
    /// texts only: a number that was stored in an earlier run is read as a string.
    QVariant objectForKey(const QString &key) const;

    /// Whether a value is stored: the user, or an earlier run, has set it.
    bool isStored(const QString &key) const;

    /// A truth value; a number other than 0; a text that, after blanks, a sign and zeros, starts with one of
    /// Y, y, T, t, 1 to 9. Anything else is false.
    bool boolForKey(const QString &key) const;

    /// A number, its fraction cut off; the digits that a text starts with (after blanks and a sign); 1 for a
    /// true truth value; else 0. Too large a number becomes the largest one, likewise the smallest.
    qint64 integerForKey(const QString &key) const;

    /// A number; the decimal number, with a point, that a text starts with (after blanks); 1 for a true truth
    /// value; else 0. Never infinite or not a number.
    float floatForKey(const QString &key) const;

    /// A text, or a number or truth value written as one. @return a null string when there is none
    QString stringForKey(const QString &key) const;

    /// A list of texts; a single text is a list of one. @return an empty list when there is none
    QStringList stringArrayForKey(const QString &key) const;

    /// Stores a value. @param value  an invalid one removes what is stored
    void setObject(const QString &key, const QVariant &value);

    /// Writes to the disk now (else at the latest when the object is destroyed), and reads what other
    /// processes have stored. @return whether it was written
    bool synchronize();

private:
    mutable std::mutex m_mutex;
    QSettings m_stored;                    // guarded by m_mutex
    QHash<QString, QVariant> m_registered; // guarded by m_mutex
};

} // namespace plexa
