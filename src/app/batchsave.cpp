// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/batchsave.h"

#include "app/statusmanager.h"
#include "saving/savingsettings.h"

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace plexa
{

BatchSave::BatchSave(const Services &services)
    : m_services(services)
    , m_saving(services.alerts)
{
    connect(&m_job, &BackgroundJob::ended, this, &BatchSave::finish);
}

BatchSave::~BatchSave()
{
    terminateOperation();
    // The run may wait for a question that this thread has to ask.
    while (m_job.isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

SavingRun BatchSave::runFor(const Order &order) const
{
    SavingRun run;
    run.photoCount = order.photos.size();
    run.photoAt = [photos = order.photos](std::size_t index) {
        return SavingPhoto{photos[index]->path(), photos[index], {}};
    };
    run.effectivePresets = presetsToSave(order.effectivePresets);
    run.defaultSavingPreset = order.defaultSavingPreset;
    run.isInSingleMode = order.isInSingleMode;
    run.jobs = m_services.threads;
    if (order.exchangeFolder.isEmpty())
        followSettings(run, m_services.defaults);
    else
        followSettingsForCompanion(run, m_services.defaults, order.exchangeFolder);
    return run;
}

bool BatchSave::start(const Order &order)
{
    if (isSavingInProgress() || order.photos.empty() || order.effectivePresets.empty())
        return false;
    m_isTerminating = false;
    m_isForCompanion = !order.exchangeFolder.isEmpty();
    m_report = SavingReport();
    m_savedImagesInfo.clear();
    m_photoCount = order.photos.size();
    change([](SavingProgress &progress) { progress = {}; });
    m_saving.begin();
    m_job.start([this, run = runFor(order)]() mutable {
        completeFilenameTokens(run.defaultSavingPreset, m_services.alerts);
        m_saving.saveImages(run, *this);
        return true;
    });
    Q_EMIT started();
    return true;
}

void BatchSave::terminateOperation()
{
    if (!isSavingInProgress() || std::exchange(m_isTerminating, true))
        return;
    m_saving.terminateOperation();
    Q_EMIT progressChanged();
}

SavingProgress BatchSave::progress() const
{
    const std::lock_guard lock(m_mutex);
    return m_progress;
}

/// Any thread. One event for all changes until it is handled.
template<class Change>
void BatchSave::change(Change change)
{
    const std::lock_guard lock(m_mutex);
    change(m_progress);
    if (!std::exchange(m_isReportQueued, true))
        QMetaObject::invokeMethod(this, "reportProgress", Qt::QueuedConnection);
}

void BatchSave::reportProgress()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isReportQueued = false;
    }
    Q_EMIT progressChanged();
}

void BatchSave::begun(qint64 maximum, const QString &message)
{
    m_report = SavingReport(maximum);
    m_copiesPerPhoto = std::max<qint64>(maximum / static_cast<qint64>(m_photoCount), 1);
    m_hasPicture = false;
    change([&](SavingProgress &progress) {
        progress.maximum = maximum;
        progress.message = message;
    });
}

void BatchSave::pictureBegun(const QImage &picture)
{
    m_hasPicture = true;
    change([&](SavingProgress &progress) { progress.picture = picture; });
}

void BatchSave::copyBegun(qint64 value, const QString &message)
{
    const bool isFirstOfPhoto = (value - 1) % m_copiesPerPhoto == 0;
    const bool isWithoutPicture = isFirstOfPhoto && !std::exchange(m_hasPicture, false);
    change([&](SavingProgress &progress) {
        if (isWithoutPicture)
            progress.picture = {};
        progress.value = value;
        progress.message = message;
    });
}

void BatchSave::copyFinished(const SavingOutput &output)
{
    m_report.add(output);
    change([](SavingProgress &progress) { ++progress.finished; });
}

void BatchSave::finish()
{
    Saving::End end = m_saving.finishedSavingImages();
    m_report.setFailureAlert(end.failures);
    m_savedImagesInfo = end.savedImagesInfo.value_or(QStringList());
    m_services.status.notify(m_report.summary());
    Q_EMIT finished();
}

} // namespace plexa
