// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "ui/browser/filepromise.h"

#include <functional>
#include <memory>
#include <vector>

namespace plexa
{

/// Shows the progress of copies and can stop them. Any thread.
class CopyProgress
{
public:
    virtual ~CopyProgress() = default;
    /// @return the argument for isStopped(), so that a stop applies only to copies in progress
    virtual int begin() = 0;
    /// @param share  of the copies, 0..1
    virtual void setProgress(float share) = 0;
    virtual bool isStopped(int begun) const = 0;
    virtual void end() = 0;
};

/// Watermarked copies of photos, one for each preset, for a drag or the clipboard.
class PhotoPromise final : public FilePromise
{
public:
    struct Contents {
        std::vector<std::shared_ptr<ImageObject>> photos;
        std::vector<AppliedPreset> presets;
        SavingPresetValues savingPreset; ///< the files' format
        int threads = 1;                 ///< copies that are written at a time
        bool preservesCreationDate = true;
        /// Starts to save the photos to a target's folder, as the user's own save does; returns whether it
        /// started. Called during the drag, so it must not ask the user anything before it returns. May be
        /// empty.
        std::function<bool(const QString &folder)> startSaving;
        /// Receives failures, one line for each file: "path: reason". Must not ask the user either; may be
        /// empty.
        std::function<void(const QStringList &failures)> reportFailures;
        /// May be null.
        std::shared_ptr<CopyProgress> progress;
    };

    explicit PhotoPromise(Contents contents)
        : m_contents(std::move(contents))
    {
    }

    /// "image0", "image1" and so on: all presets of the first photo, then those of the next photo.
    QStringList names() const override;
    Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) override;
    void report(const QStringList &failures) override;
    bool canSaveInto() const override { return m_contents.startSaving != nullptr; }
    bool saveInto(const QString &folder) override
    {
        return m_contents.startSaving && m_contents.startSaving(folder);
    }
    QStringList imageTypes() const override;
    QByteArray image(const QString &mimeType, QStringList &failures) override;

private:
    Result<void> writeFile(std::size_t number, const QString &path) const;

    const Contents m_contents;
};

} // namespace plexa
