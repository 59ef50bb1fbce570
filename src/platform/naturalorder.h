// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QCollator>

namespace plexa
{

/// The order of file names for people: numbers in names by their value, "9.jpg" before "10.jpg", and a name
/// before those that continue it, "a.jpg" before "a-copy.jpg"; the same for every locale of the user. One
/// thread at a time.
class NaturalOrder final
{
public:
    /// Keys are compared instead of their names.
    class Key
    {
    public:
        int compare(const Key &other) const
        {
            const int difference = m_stem.compare(other.m_stem);
            return difference != 0 ? difference : m_suffix.compare(other.m_suffix);
        }

    private:
        friend NaturalOrder;
        Key(const QCollatorSortKey &stem, const QString &suffix)
            : m_stem(stem)
            , m_suffix(suffix)
        {
        }
        QCollatorSortKey m_stem;
        QString m_suffix;
    };

    NaturalOrder() { m_collator.setNumericMode(true); }

    /// @param name  of a file, without its folder
    Key keyOf(const QString &name) const
    {
        const qsizetype dot = name.lastIndexOf(u'.');
        const qsizetype end = dot > 0 ? dot : name.size();
        return {m_collator.sortKey(name.first(end)), name.sliced(end)};
    }

private:
    QCollator m_collator{QLocale(QLocale::English)};
};

} // namespace plexa
