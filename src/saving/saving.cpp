// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/saving.h"

#include "presets/savingpreset.h"
#include "saving/savingprocess.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <utility>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::Saving)
};

constexpr qsizetype kNamesInReport = 10;

/// Passes on what the observer hears, and keeps what the end report needs.
class Bookkeeper final : public SavingObserver
{
public:
    explicit Bookkeeper(SavingObserver &observer)
        : m_observer(observer)
    {
    }

    void begun(qint64 maximum, const QString &message) override { m_observer.begun(maximum, message); }
    void pictureBegun(const QImage &picture) override { m_observer.pictureBegun(picture); }
    void copyBegun(qint64 value, const QString &message) override { m_observer.copyBegun(value, message); }

    void copyFinished(const SavingOutput &output) override
    {
        if (output.status == SavingOutput::Status::Written)
            savedImagesInfo << output.path << output.sourcePath;
        else if (output.status == SavingOutput::Status::Failed)
            failedImages << QFileInfo(output.sourcePath).fileName();
        m_observer.copyFinished(output);
    }

    QStringList savedImagesInfo;
    QStringList failedImages;

private:
    SavingObserver &m_observer;
};

} // namespace

void SavingObserver::begun(qint64, const QString &) {}
void SavingObserver::pictureBegun(const QImage &) {}
void SavingObserver::copyBegun(qint64, const QString &) {}
void SavingObserver::copyFinished(const SavingOutput &) {}

std::vector<PresetToSave> presetsToSave(const std::vector<AppliedPreset> &presets)
{
    std::vector<PresetToSave> result;
    for (const AppliedPreset &preset : presets) {
        const auto *assigned = dynamic_cast<const SavingPreset *>(preset.values.assignedSavingPreset.get());
        result.push_back({preset, assigned ? std::optional(assigned->values()) : std::nullopt});
    }
    return result;
}

Saving::Saving(Alerts &alerts)
    : m_alerts(alerts)
{
}

void Saving::begin()
{
    m_terminateOperation = false;
    m_isSavingInProgress = true;
}

void Saving::saveImages(const SavingRun &run, SavingObserver &observer)
{
    if (!m_isSavingInProgress)
        begin();
    Bookkeeper bookkeeper(observer);
    saveCopies(run, bookkeeper, m_alerts, m_terminateOperation);

    const std::lock_guard lock(m_mutex);
    m_savingFailedImages += bookkeeper.failedImages;
    m_savedImagesInfo.reset();
    if (run.collectsSavedImagesInfo)
        m_savedImagesInfo = bookkeeper.savedImagesInfo;
}

QStringList Saving::savingFailedImages() const
{
    const std::lock_guard lock(m_mutex);
    return m_savingFailedImages;
}

Saving::End Saving::finishedSavingImages()
{
    QStringList failed;
    End end;
    {
        const std::lock_guard lock(m_mutex);
        failed = std::exchange(m_savingFailedImages, {});
        end.savedImagesInfo = std::exchange(m_savedImagesInfo, {});
    }
    if (!failed.isEmpty()) {
        QString list = failed.mid(0, kNamesInReport).join(u'\n');
        if (failed.size() > kNamesInReport)
            list += Texts::tr("\n  ...and %1 more...").arg(failed.size() - kNamesInReport);
        Alert &alert = end.failures.emplace();
        alert.style = Alert::Style::Critical;
        alert.title = Texts::tr("Failed to save %1 image(s)!").arg(failed.size());
        alert.text =
            Texts::tr("Sorry, could not save the following image(s). Possibly the original image "
                      "format is not supported, or missing write permissions on the destination:\n%1")
                .arg(list);
    }
    m_isSavingInProgress = false;
    return end;
}

} // namespace plexa
