// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/batchsave.h"

#include "app/statusmanager.h"
#include "saving/savingsettings.h"

#include <QCoreApplication>

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

bool BatchSave::start(const Order &order)
{
    if (isSavingInProgress() || order.photos.empty() || order.effectivePresets.empty())
        return false;
    SavingRun run;
    run.photoCount = order.photos.size();
    run.photoAt = [photos = order.photos](std::size_t index) {
        return SavingPhoto{photos[index]->path(), photos[index], {}};
    };
    run.effectivePresets = presetsToSave(order.effectivePresets);
    run.defaultSavingPreset = order.defaultSavingPreset;
    run.isInSingleMode = order.isInSingleMode;
    run.jobs = m_services.threads;
    followSettings(run, m_services.defaults);
    m_maximum = 0;
    m_copies = 0;
    m_counts = {};
    m_saving.begin();
    m_services.status.startProcessing();
    m_job.start([this, run]() mutable {
        completeFilenameTokens(run.defaultSavingPreset, m_services.alerts);
        m_saving.saveImages(run, *this);
        return true;
    });
    Q_EMIT started();
    return true;
}

void BatchSave::begun(qint64 maximum, const QString &)
{
    m_maximum = maximum;
}

void BatchSave::copyFinished(const SavingOutput &output)
{
    ++m_counts[static_cast<std::size_t>(output.status)];
    ++m_copies;
    m_services.status.setProgress(static_cast<float>(m_copies) / static_cast<float>(m_maximum),
                                  StatusOperation::Processing);
}

void BatchSave::finish()
{
    m_services.status.endProcessing();
    const auto count = [this](SavingOutput::Status status) {
        return m_counts[static_cast<std::size_t>(status)];
    };
    const int written = count(SavingOutput::Status::Written);
    QString result = written == 1 ? tr("1 copy saved") : tr("%n copies saved", nullptr, written);
    if (const int skipped = count(SavingOutput::Status::Skipped))
        result += tr(", %n skipped", nullptr, skipped);
    if (const int failed = count(SavingOutput::Status::Failed))
        result += tr(", %n failed", nullptr, failed);
    m_services.status.notify(result);
    m_saving.finishedSavingImages();
    Q_EMIT finished();
}

} // namespace plexa
