// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "app/imagelist.h"

namespace plexa
{

/// Loads the photo that the user looks at in the background. While one is being loaded, only the last of the
/// photos that are asked for waits: a user who walks through a long list gets the photo where he stops.
/// Main thread.
class FocusLoader final : public QObject
{
    Q_OBJECT

public:
    FocusLoader();

    void load(const std::shared_ptr<ImageObject> &image);
    /// Forgets the photo that waits.
    void cancel() { m_wanted = nullptr; }

Q_SIGNALS:
    /// Sent for each photo that was begun.
    void loaded(const std::shared_ptr<plexa::ImageObject> &image, bool isLoaded);

private:
    void begin();
    void ended(BackgroundJob::End end);

    std::shared_ptr<ImageObject> m_wanted;
    std::shared_ptr<ImageObject> m_loading;
    BackgroundJob m_job;
};

} // namespace plexa
