// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/focusloader.h"

namespace plexa
{

FocusLoader::FocusLoader()
{
    connect(&m_job, &BackgroundJob::ended, this, &FocusLoader::ended);
}

void FocusLoader::load(const std::shared_ptr<ImageObject> &image)
{
    m_wanted = image;
    if (!m_job.isRunning())
        begin();
}

void FocusLoader::begin()
{
    m_loading = std::exchange(m_wanted, nullptr);
    m_job.start([image = m_loading] { return image->loadImageFromDisk(); });
}

void FocusLoader::ended(BackgroundJob::End end)
{
    const std::shared_ptr<ImageObject> image = std::exchange(m_loading, nullptr);
    if (m_wanted)
        begin();
    Q_EMIT loaded(image, end == BackgroundJob::End::Done);
}

} // namespace plexa
