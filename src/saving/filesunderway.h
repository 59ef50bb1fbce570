// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QString>

#include <array>
#include <mutex>

namespace plexa
{

/// The files that the copies of one run use at this moment. Any thread.
class FilesUnderWay final
{
public:
    enum class Use {
        Named,   ///< a copy has this path, whether it is being written yet or not
        Written, ///< a copy is being written there
        Read,    ///< a copy is being made from it
        Photo,   ///< a photo of the run
        Made,    ///< a copy of the run has been written there
    };

    /// The same text for all paths of one file, through whatever symbolic links they lead, and whether the
    /// file exists or not. What the links of a run lead to must not change during the run.
    static QString keyOf(const QString &path);

    /// The same text for all paths of one entry of a folder: a symbolic link is not the file it leads to.
    static QString nameKeyOf(const QString &path);

    /// Each use begins and ends any number of times.
    /// @param key  of keyOf()
    void begin(const QString &key, Use use);
    void end(const QString &key, Use use);
    bool isUsed(const QString &key, Use use) const;

private:
    mutable std::mutex m_mutex;
    using Counts = std::array<int, 5>;
    QHash<QString, Counts> m_counts; // guarded; by use
};

} // namespace plexa
