// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace plexa
{

/// Files that a drag or the clipboard offers, and that are made when somebody wants them. It stands for the
/// images that were selected when it was given, whatever happens to the list meanwhile. Main thread, where
/// nothing else is said.
class FilePromise
{
public:
    virtual ~FilePromise() = default;

    /// The names of the files, in order, before any of them is made. Any thread.
    virtual QStringList names() const = 0;

    struct Outcome {
        bool isStopped = false; ///< by the user, who wants none of the files any more
        QStringList failures;   ///< a line a file: "path: reason"
    };

    /// Makes the files in an existing folder, under names(); those that could not be made are missing. Any
    /// thread, but one call at a time; the main thread is free to do other things meanwhile.
    /// @param isUnwanted  asked before each file, on any thread; true: no further one is made
    virtual Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) = 0;

    /// Tells the user what could not be made, a line a file; nothing for an empty list.
    virtual void report(const QStringList & /*failures*/) {}

    /// Is there somebody who saves into a target's folder?
    virtual bool canSaveInto() const { return false; }
    /// Begins to save into the folder of the receiver, which the user chose by dropping; in the background
    /// and under other names, as the user's own save does.
    /// @return false when it could not begin
    virtual bool saveInto(const QString & /*folder*/) { return false; }

    /// MIME names of what image() can make.
    virtual QStringList imageTypes() const = 0;

    /// The first image as a file of that type; empty when it cannot be made, with the reasons in `failures`.
    /// As makeFiles() on any thread.
    virtual QByteArray image(const QString &mimeType, QStringList &failures) = 0;
};

} // namespace plexa
