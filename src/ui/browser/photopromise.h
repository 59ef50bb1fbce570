// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "images/imageobject.h"
#include "ui/browser/filepromise.h"

#include <functional>
#include <memory>
#include <vector>

namespace plexa
{

/// Whom the making of copies tells how far it is, and who may stop it. Any thread.
class CopyProgress
{
public:
    virtual ~CopyProgress() = default;
    /// @return what isStopped() wants to know, so that a stop concerns the copies that are being made then
    virtual int begin() = 0;
    /// @param share  of the copies, 0..1
    virtual void setProgress(float share) = 0;
    virtual bool isStopped(int begun) const = 0;
    virtual void end() = 0;
};

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
        /// Empty: there is nobody who saves.
        std::function<bool(const QString &folder)> startSaving;
        /// Is told what could not be made, a line a file: "path: reason". Under the same condition; may be
        /// empty.
        std::function<void(const QStringList &failures)> reportFailures;
        /// Shows the making of files, where it is given.
        std::shared_ptr<CopyProgress> progress;
    };

    explicit PhotoPromise(Contents contents)
        : m_contents(std::move(contents))
    {
    }

    /// "image0", "image1" and so on: all presets of the first photo, then those of the next one.
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
