// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QStringList>

namespace plexa
{

/// Files that a drag or the clipboard offers, and that are made when somebody wants them. It stands for the
/// images that were selected when it was given, whatever happens to the list meanwhile. Main thread.
class FilePromise
{
public:
    enum class Destination {
        PrivateFolder, ///< ours; whoever receives the drag takes the files from there
        TargetFolder,  ///< that of the receiver, which the user chose by dropping
    };

    virtual ~FilePromise() = default;

    /// The names of the files, in order, before any of them is made.
    virtual QStringList names() const = 0;

    /// Makes the files in an existing folder. In a private folder they are there, under names(), when this
    /// returns; those that could not be made are missing. Into a target's folder they may also be saved in
    /// the background, under other names.
    /// @return false when nothing could be made or begun
    virtual bool writeFiles(const QString &folder, Destination destination) = 0;

    /// MIME names of what image() can make.
    virtual QStringList imageTypes() const = 0;

    /// The first image as a file of that type; empty when it cannot be made.
    virtual QByteArray image(const QString &mimeType) = 0;
};

} // namespace plexa
