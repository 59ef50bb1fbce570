// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace plexa::test
{

/// What the n-th call that changes a file does.
enum class Fault { None, Error, Death };

inline Fault fault = Fault::None;
inline int callsLeft = 0; ///< 1: the next call fails

/// Does this call fail? Does not return for Fault::Death.
inline bool isFailing()
{
    if (fault == Fault::None || --callsLeft != 0)
        return false;
    if (fault == Fault::Death)
        syscall(SYS_exit_group, 9);
    fault = Fault::None;
    errno = EIO;
    return true;
}

} // namespace plexa::test

// Replaces these functions of the system for all libraries of a program. One source file of it includes this.
extern "C" {

ssize_t write(int descriptor, const void *bytes, size_t count)
{
    return plexa::test::isFailing() ? -1 : syscall(SYS_write, descriptor, bytes, count);
}

int fsync(int descriptor)
{
    return plexa::test::isFailing() ? -1 : static_cast<int>(syscall(SYS_fsync, descriptor));
}

int fchmod(int descriptor, mode_t mode)
{
    return plexa::test::isFailing() ? -1 : static_cast<int>(syscall(SYS_fchmod, descriptor, mode));
}

int linkat(int from, const char *name, int to, const char *newName, int flags) noexcept
{
    return plexa::test::isFailing() ? -1
                                    : static_cast<int>(syscall(SYS_linkat, from, name, to, newName, flags));
}

int rename(const char *from, const char *to) noexcept
{
    return plexa::test::isFailing() ? -1 : static_cast<int>(syscall(SYS_rename, from, to));
}

int renameat2(int from, const char *name, int to, const char *newName, unsigned flags) noexcept
{
    return plexa::test::isFailing()
               ? -1
               : static_cast<int>(syscall(SYS_renameat2, from, name, to, newName, flags));
}

int unlink(const char *path) noexcept
{
    return plexa::test::isFailing() ? -1 : static_cast<int>(syscall(SYS_unlink, path));
}
}
