// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/backgroundjob.h"
#include "platform/result.h"
#include "ui/editors/presetbinder.h"

#include <QWidget>

#include <deque>
#include <memory>
#include <optional>

class QLabel;

namespace plexa
{

class ImageWell;

/// What an image watermark has beside the rest: its picture, which is dropped, pasted or chosen. A file that
/// cannot be read leaves the former picture and says why. Main thread; files are read in the background, for
/// the preset for which they were chosen, also when another one is shown meanwhile.
class WImagePresetViewController final : public QWidget
{
    Q_OBJECT

public:
    /// @param binder  outlives the editor
    explicit WImagePresetViewController(PresetBinder &binder, QWidget *parent = nullptr);

private:
    /// A file that was chosen for a preset.
    struct File {
        QString path;
        std::weak_ptr<WPreset> preset;
    };

    void browseButtonClicked();
    void readFile(const File &file);
    void take(const File &file, const Result<WatermarkPicture> &picture);
    void startShowing(const WatermarkPicture &picture);
    void show(const WatermarkPicture &picture, const QImage &image);
    void showFacts(const WatermarkPicture &picture);

    PresetBinder &m_binder;
    ImageWell *const m_well;
    QLabel *const m_facts;
    std::deque<File> m_files;               ///< to be read after the one that is being read
    std::optional<WatermarkPicture> m_next; ///< to be shown instead of the one that is being drawn
    BackgroundJob m_reading;
    BackgroundJob m_drawing;
};

} // namespace plexa
