// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

#include <functional>

namespace plexa
{

/// Files that a drag or the clipboard offers and that are written on request. Represents the images that were
/// selected when it was created, even if the list changes. Main thread unless stated otherwise.
class FilePromise
{
public:
    virtual ~FilePromise() = default;

    /// The names of the files, in order; known before they are written. Any thread.
    virtual QStringList names() const = 0;

    struct Outcome {
        bool isStopped = false; ///< the user has canceled all files
        QStringList failures;   ///< one line for each file: "path: reason"
    };

    /// Writes the files to an existing folder, under names(); files that fail are missing. Any thread, one
    /// call at a time.
    /// @param isUnwanted  called before each file, on any thread; true: no further file is written
    virtual Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) = 0;

    /// Reports failures to the user, one line for each file; does nothing for an empty list.
    virtual void report(const QStringList &failures) = 0;

    /// Starts a save to the folder of the drop, in the background and with the names of the user's own save.
    /// @return false if it could not start
    virtual bool saveInto(const QString &folder) = 0;

    /// The MIME names that image() supports.
    virtual QStringList imageTypes() const = 0;

    /// The first image as a file of one of these types; empty if it fails, with the reasons in `failures`.
    /// Any thread, like makeFiles().
    virtual QByteArray image(const QString &mimeType, QStringList &failures) = 0;
};

} // namespace plexa
