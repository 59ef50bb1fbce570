// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QFile>

#include <ctime>
#include <functional>
#include <memory>
#include <optional>

namespace plexa
{

/// A file that appears whole or not at all. It is written without a name, in the target's folder, where the
/// file system can do that (a killed program then leaves nothing behind), else under a temporary name that
/// starts with a dot; commit() puts it in place. Without commit() the destructor removes it. One thread at a
/// time; any number of objects, also in other processes, may aim at the same target.
class AtomicFile final
{
public:
    /// What commit() does where the target exists. A symbolic link is followed by Replace and replaced itself
    /// by ReplaceLink. Fail never replaces anything, not even a file that appears at the last moment or a
    /// dangling symbolic link.
    enum class IfExists { Replace, ReplaceLink, Fail };

    /// Whether commit() waits until the disk has the contents, so that not even a power cut leaves an empty
    /// file, or leaves the time to the system (for what is easily made again).
    enum class Durability { Synced, Lazy };

    /// How the unfinished file is kept.
    enum class Staging {
        NamelessWherePossible,
        Named, ///< always under a temporary name, as on file systems that know no other way
    };

    AtomicFile(QString path, IfExists ifExists, Durability durability,
               Staging staging = Staging::NamelessWherePossible);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    /// With IfExists::Fail: asked for another path in the same folder each time that the target turns out to
    /// exist; none: open() or commit() fails then. On the thread of the object.
    void setAlternatives(std::function<std::optional<QString>()> nextPath);

    /// Checks the target and starts the file. Refuses a target that is a folder, a device or
    /// write-protected, and with IfExists::Fail one that is already there.
    [[nodiscard]] Result<void> open();

    /// What open() would say, as far as that can be known without starting anything. Instead of open().
    [[nodiscard]] Result<void> check();

    /// Where to write, random access; valid from open() to commit(). Has no file name of use. A write that
    /// failed once makes commit() fail.
    QFile &device();

    /// The modification time that the finished file shall have.
    void setModificationTime(const timespec &time);

    /// Puts the file in place. A new file has the permissions that the umask leaves; one that replaces
    /// another takes over its permission bits, and where allowed its owner and group. After a failure (no
    /// space, the target exists, the folder is gone) nothing of it is left and what was there stands. Once.
    [[nodiscard]] Result<void> commit();

    /// Whether a file of this name (without folder) is the unfinished file of a program that was killed.
    static bool isTemporaryName(const QString &fileName);

private:
    class Device;

    void resolveTarget();
    Result<void> checkTarget();
    bool takeAlternative();
    int openNameless() const;
    int openNamed();
    Result<void> finishContents();
    Result<void> takeOverPermissions() const;
    int putInPlace();
    int giveTemporaryName();
    int moveWithoutReplacing() const;
    void discard();
    Result<void> failure(int error) const;

    QString m_path;
    IfExists m_ifExists;
    std::function<std::optional<QString>()> m_nextPath; // may be empty
    Durability m_durability;
    Staging m_staging;
    std::unique_ptr<Device> m_device;
    QByteArray m_target;        // absolute, links resolved where they are followed
    QByteArray m_temporaryPath; // empty while the file has no name
    std::optional<timespec> m_modificationTime;
};

} // namespace plexa
