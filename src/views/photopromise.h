// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "views/filepromise.h"

#include <functional>
#include <memory>
#include <vector>

namespace plexa
{

/// Watermarked copies of photos, one for each preset: what a drag or the clipboard offers.
class PhotoPromise final : public FilePromise
{
public:
    struct Contents {
        std::vector<std::shared_ptr<ImageObject>> photos;
        std::vector<AppliedPreset> presets;
        SavingPresetValues savingPreset; ///< the files' format
        int threads = 1;                 ///< copies that are made at a time
        bool preservesCreationDate = true;
        /// Begins to save the photos into a target's folder, as the user's own save would; returns whether it
        /// did. It is called while the drag goes on, so it must not ask the user anything before it returns.
        std::function<bool(const QString &folder)> startSaving;
        /// Is told what could not be made, a line a file: "path: reason". Under the same condition; may be
        /// empty.
        std::function<void(const QStringList &failures)> reportFailures;
    };

    explicit PhotoPromise(Contents contents)
        : m_contents(std::move(contents))
    {
    }

    /// "image0", "image1" and so on: all presets of the first photo, then those of the next one.
    QStringList names() const override;
    /// Into a private folder: holds the main thread up until the files are there.
    bool writeFiles(const QString &folder, Destination destination) override;
    QStringList imageTypes() const override;
    QByteArray image(const QString &mimeType) override;

private:
    Result<void> writeFile(std::size_t number, const QString &path) const;
    void report(const QStringList &failures) const;

    const Contents m_contents;
};

} // namespace plexa
