// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QDateTime>
#include <QFile>

#include <optional>

namespace plexa
{

/// A file that appears whole or not at all: written under a temporary name (it starts with a dot) in the
/// target's folder, then put in place by a rename. Without commit() the destructor removes it. One thread.
class AtomicFile final
{
public:
    /// What commit() does where the target exists.
    enum class IfExists { Replace, Fail };

    /// Whether commit() waits until the disk has the contents (for what cannot be made again), or leaves the
    /// time to the system (for copies).
    enum class Durability { Synced, Lazy };

    AtomicFile(QString path, IfExists ifExists, Durability durability);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    [[nodiscard]] Result<void> open();

    /// Where to write, random access; valid from open() to commit().
    QFile &device();

    /// The modification time that the finished file shall have.
    void setModificationTime(const QDateTime &time);

    /// Puts the file in place. After a failure (no space, the target exists, the
    /// folder is gone) nothing of it is left.
    [[nodiscard]] Result<void> commit();

private:
    QString m_path;
    IfExists m_ifExists;
    Durability m_durability;
    QFile m_file;
    std::optional<QDateTime> m_modificationTime;
};

} // namespace plexa
