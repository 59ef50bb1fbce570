// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/finemark.h"

#include "raster/resampling.h"

#include <array>
#include <cmath>
#include <mutex>

namespace plexa
{

struct FineMark::Pictures {
    /// One for each place of the mark's corner within a pixel of the target; made when it is drawn first.
    struct Phase {
        std::once_flag isMade;
        QImage image;
    };
    QImage fine;
    std::array<Phase, 4> phases;
};

FineMark::FineMark(const QImage &image, int finer)
    : m_finer(finer)
{
    if (image.isNull())
        return;
    m_pictures = std::make_shared<Pictures>();
    m_pictures->fine = image;
}

QImage FineMark::imageAt(QPoint at) const
{
    if (!m_pictures)
        return {};
    if (m_finer == 1)
        return m_pictures->fine;
    const QPoint within = at - pixelAt(at) * m_finer;
    Pictures::Phase &phase = m_pictures->phases[std::size_t(within.x() + m_finer * within.y())];
    std::call_once(phase.isMade, [&] {
        const QImage &fine = m_pictures->fine;
        const QSize size((fine.width() + within.x() + m_finer - 1) / m_finer,
                         (fine.height() + within.y() + m_finer - 1) / m_finer);
        // Beyond the picture, copy() adds transparent pixels.
        phase.image = resampled(fine.copy(QRect(-within, size * m_finer)), size, Quality::High);
    });
    return phase.image;
}

QPoint FineMark::pixelAt(QPoint at) const
{
    const auto floored = [this](int value) { return int(std::floor(double(value) / m_finer)); };
    return {floored(at.x()), floored(at.y())};
}

QSize FineMark::largestSize() const
{
    if (!m_pictures)
        return {0, 0};
    const QSize size = m_pictures->fine.size();
    return m_finer == 1 ? size : QSize(size.width() / m_finer + 1, size.height() / m_finer + 1);
}

} // namespace plexa
