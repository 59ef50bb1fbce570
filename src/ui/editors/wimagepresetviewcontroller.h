// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "platform/result.h"
#include "ui/editors/presetbinder.h"

#include <QWidget>

class QLabel;

namespace plexa
{

class ImageWell;

/// What an image watermark has beside the rest: its picture, which is dropped, pasted or chosen. A file that
/// cannot be read leaves the former picture and says why. Main thread; files are read in the background.
class WImagePresetViewController final : public QWidget
{
    Q_OBJECT

public:
    /// @param binder  outlives the editor
    explicit WImagePresetViewController(PresetBinder &binder, QWidget *parent = nullptr);

private:
    /// A picture that is wanted: a file that is not read yet, or one that is to be shown.
    struct Task {
        QString path;
        WatermarkPicture picture;
        std::weak_ptr<WPreset> preset;
    };

    void browseButtonClicked();
    void start(const Task &task);
    void show(const Task &task, const Result<WatermarkPicture> &picture, const QImage &image);
    void showFacts(const WatermarkPicture &picture);

    PresetBinder &m_binder;
    ImageWell *const m_well;
    QLabel *const m_facts;
    std::optional<Task> m_next;
    BackgroundJob m_job;
};

} // namespace plexa
