// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSlider>

namespace plexa
{

/// A slider for a zoom factor, 0..1.
class ZoomSlider final : public QSlider
{
    Q_OBJECT

public:
    /// @param purpose  tool tip and accessible name
    explicit ZoomSlider(const QString &purpose, QWidget *parent = nullptr);

    /// Shows a zoom, which may lie between two of the slider's steps; sends no signal.
    void setZoomFactor(double factor);

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has chosen another zoom.
    void zoomFactorChosen(double factor);

private:
    int m_shownStep = 0;
};

} // namespace plexa
