// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/statusmanager.h"
#include "images/imageobject.h"
#include "ui/browser/filepromise.h"

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

namespace plexa
{

/// Shows the copies for other programs in the status line, whose button stops them. Any thread.
class CopyProgress final
{
public:
    /// @param status  outlives this object
    explicit CopyProgress(StatusManager &status)
        : m_status(status)
    {
    }

    /// @return the argument for isStopped(), so that a stop applies only to copies in progress
    int begin()
    {
        m_status.startProcessing();
        return m_stops;
    }
    /// @param share  of the copies, 0..1
    void setProgress(float share) { m_status.setProgress(share, StatusOperation::Processing); }
    bool isStopped(int begun) const { return m_stops != begun; }
    void end() { m_status.endProcessing(); }
    void stop() { ++m_stops; }

private:
    StatusManager &m_status;
    std::atomic<int> m_stops = 0;
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
        /// started. Called during the drag, so it must not ask the user anything before it returns.
        std::function<bool(const QString &folder)> startSaving;
        /// Receives failures, one line for each file: "path: reason". Must not ask the user either.
        std::function<void(const QStringList &failures)> reportFailures;
        std::shared_ptr<CopyProgress> progress;
    };

    /// @param contents  complete, with at least one photo and one preset
    explicit PhotoPromise(Contents contents)
        : m_contents(std::move(contents))
    {
    }

    /// "image0", "image1" and so on: all presets of the first photo, then those of the next photo.
    QStringList names() const override;
    Outcome makeFiles(const QString &folder, const std::function<bool()> &isUnwanted) override;
    void report(const QStringList &failures) override;
    bool saveInto(const QString &folder) override { return m_contents.startSaving(folder); }
    QStringList imageTypes() const override;
    QByteArray image(const QString &mimeType, QStringList &failures) override;

private:
    Result<void> writeFile(std::size_t number, const QString &path) const;

    const Contents m_contents;
};

} // namespace plexa
