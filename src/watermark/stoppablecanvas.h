// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>

#include <atomic>
#include <memory>

namespace plexa
{

/// Paints onto an image until it is stopped; later calls of the painter do nothing. One thread.
class StoppableCanvas final : public QPaintDevice
{
public:
    /// @param image      not shared; outlives the object, as does `isStopped`
    /// @param isStopped  may be set by any thread
    StoppableCanvas(QImage &image, const std::atomic_bool &isStopped);
    ~StoppableCanvas() override;

    QPaintEngine *paintEngine() const override;

protected:
    int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;
    QImage &m_image;
    std::unique_ptr<Engine> m_engine;
};

} // namespace plexa
