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

/// A file that appears whole or not at all. It is written without a name in the target's folder where the
/// file system supports that (a killed program then leaves nothing), else as ".plexa-XXXXXXXX.tmp"; commit()
/// puts it in place, the destructor removes what was not committed. One thread at a time; any number of
/// objects, also in other processes, may have the same target.
class AtomicFile final
{
public:
    /// What commit() does where the target exists. A symbolic link is followed by Replace and replaced itself
    /// by ReplaceLink. Fail never replaces anything, not even a file that appears at the last moment or a
    /// dangling symbolic link.
    enum class IfExists { Replace, ReplaceLink, Fail };

    AtomicFile(QString path, IfExists ifExists);
    ~AtomicFile();
    AtomicFile(const AtomicFile &) = delete;
    AtomicFile &operator=(const AtomicFile &) = delete;

    /// With IfExists::Fail: called for another path in the same folder each time the target exists; open()
    /// or commit() fails when it returns none.
    void setAlternatives(std::function<std::optional<QString>()> nextPath);

    /// Checks the target and starts the file. Refuses a folder, a device, a write-protected file, and with
    /// IfExists::Fail any existing target.
    [[nodiscard]] Result<void> open();

    /// The checks of open() alone, and whether the folder is writable. Instead of open().
    [[nodiscard]] Result<void> check();

    /// Where to write, random access; valid from open() to commit(). A write that failed once makes commit()
    /// fail.
    QFile &device();

    void setModificationTime(const timespec &time);

    /// Writes the contents to the disk and puts the file in place. A new file has the permissions that the
    /// umask leaves; a replacement adopts the permissions, and where allowed owner and group, of the old
    /// file. After a failure nothing of it is left and an existing target is unchanged. Once.
    [[nodiscard]] Result<void> commit();

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
    std::unique_ptr<Device> m_device;
    QByteArray m_target;        // absolute, links resolved where they are followed
    QByteArray m_temporaryPath; // empty while the file has no name
    std::optional<timespec> m_modificationTime;
};

/// Removes from a folder the unfinished files of killed programs: those that AtomicFile named, that belong to
/// this user, and that no running program has locked. Ignores failures. Any thread.
/// @return how many were removed
int removeLeftovers(const QString &folder);

} // namespace plexa
