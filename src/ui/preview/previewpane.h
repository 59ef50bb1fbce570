// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QKeyEvent>
#include <QWidget>

namespace plexa
{

class AppController;
class BusyIndicator;
class CommandActions;
class ElidedLabel;
class ImageViewController;
class ImageViewWithWatermarkControl;
class ZoomSlider;

/// The upper half of the main window's left side: the preview, and below it what is known about the photo and
/// the controls of the zoom. Main thread.
class PreviewPane final : public QWidget
{
    Q_OBJECT

public:
    struct Services {
        AppController &controller;
        CommandActions &actions;
    };

    /// @param services  outlive the pane
    explicit PreviewPane(const Services &services, QWidget *parent = nullptr);
    ~PreviewPane() override;

    ImageViewController &imageViewController() { return *m_controller; }
    const ImageViewController &imageViewController() const { return *m_controller; }

Q_SIGNALS:
    /// A key for the list of photos; the receiver may accept the event.
    void keyForImageList(QKeyEvent *event);

private:
    QWidget *makeBar();
    void connectZoom();
    void showInfo();
    void showZoom();

    CommandActions &m_actions;
    ImageViewWithWatermarkControl *const m_imageView;
    ImageViewController *const m_controller;
    ElidedLabel *const m_imageInfoLabel;
    ElidedLabel *const m_messageLabel;
    BusyIndicator *const m_spinningIndicator;
    ZoomSlider *const m_zoomSlider;
};

} // namespace plexa
