// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <memory>

namespace plexa
{

/// A temporary folder for the photos of one hand-over, which only the user can open. One thread.
class ExchangeFolder
{
public:
    /// A new empty folder; null when it cannot be made.
    static std::unique_ptr<ExchangeFolder> make();
    /// Removes the folder with its files, or after handOver() only an empty one.
    ~ExchangeFolder();
    Q_DISABLE_COPY_MOVE(ExchangeFolder)

    QString path() const { return m_path; }

    /// From now on, the files belong to the companion application, which deletes them when it quits.
    void handOver();

    /// Removes what killed programs of this user have left: unfinished folders, and handed-over ones that are
    /// empty or a week old. Any thread.
    static void removeLeftovers();

private:
    ExchangeFolder(QString path, int lock);

    const QString m_path;
    const int m_lock;
    bool m_isHandedOver = false;
};

} // namespace plexa
