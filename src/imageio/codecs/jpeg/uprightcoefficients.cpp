// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/jpeg/uprightcoefficients.h"

#include <algorithm>

namespace plexa
{

UprightCoefficients::UprightCoefficients(QIODevice &device, const ReadLimits &limits, int orientation)
    : m_orientation(orientation)
    , m_isTransposed(orientation >= 5)
    , m_reversesColumns(orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8)
    , m_reversesRows(orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7)
    , m_stored(device, limits)
{
}

bool UprightCoefficients::isPossible() const
{
    const QSize size = m_stored.size();
    const QSize mcu = m_stored.mcuSize();
    return !m_stored.sampling().empty() && (!m_reversesColumns || size.width() % mcu.width() == 0) &&
           (!m_reversesRows || size.height() % mcu.height() == 0);
}

QSize UprightCoefficients::size() const
{
    return turned(m_stored.size());
}

QSize UprightCoefficients::mcuSize() const
{
    return turned(m_stored.mcuSize());
}

QSize UprightCoefficients::mcuCount() const
{
    return turned(m_stored.mcuCount());
}

JpegSampling UprightCoefficients::sampling() const
{
    JpegSampling sampling = m_stored.sampling();
    for (JpegStructure::Component &component : sampling) {
        if (m_isTransposed)
            std::swap(component.horizontal, component.vertical);
    }
    return sampling;
}

bool UprightCoefficients::start(int rowsKept)
{
    if (m_orientation == 1)
        return m_stored.start(rowsKept);
    const int storedRows = m_stored.mcuCount().height();
    if (!m_stored.start(storedRows) || !m_stored.readTo(storedRows - 1))
        return false;
    const bool isWhole = rowsKept >= mcuCount().height();
    for (const JpegStructure::Component &component : sampling()) {
        m_planes.emplace_back(mcuCount().width() * component.horizontal, rowsKept * component.vertical);
        const size_t i = m_planes.size() - 1;
        for (int row = 0; row < mcuCount().height() && isWhole; ++row)
            turnRow(i, row);
        if (isWhole)
            m_stored.release(i);
    }
    m_rowsTurned = isWhole ? mcuCount().height() : 0;
    return true;
}

bool UprightCoefficients::readTo(int row)
{
    if (m_orientation == 1)
        return m_stored.readTo(row);
    for (; m_rowsTurned <= row; ++m_rowsTurned) {
        for (size_t i = 0; i < m_planes.size(); ++i)
            turnRow(i, m_rowsTurned);
    }
    return true;
}

JBLOCKARRAY UprightCoefficients::rowsOf(int component, int row)
{
    if (m_orientation == 1)
        return m_stored.rowsOf(component, row);
    return m_planes[size_t(component)].rows(row * sampling()[size_t(component)].vertical);
}

void UprightCoefficients::turnRow(size_t component, int row)
{
    const JpegStructure::Component upright = sampling()[component];
    const JpegStructure::Component stored = m_stored.sampling()[component];
    CoefficientPlane &plane = m_planes[component];
    // All blocks, those that fill up the last MCUs included.
    const QSize blocks(m_stored.mcuCount().width() * stored.horizontal,
                       m_stored.mcuCount().height() * stored.vertical);
    const JBLOCKARRAY out = plane.rows(row * upright.vertical);
    for (int line = 0; line < upright.vertical; ++line) {
        for (int column = 0; column < plane.across(); ++column) {
            QPoint at(column, row * upright.vertical + line);
            if (m_isTransposed)
                at = at.transposed();
            if (m_reversesColumns)
                at.setX(blocks.width() - 1 - at.x());
            if (m_reversesRows)
                at.setY(blocks.height() - 1 - at.y());
            const JBLOCKARRAY in = m_stored.rowsOf(int(component), at.y() / stored.vertical);
            turnBlock(in[at.y() % stored.vertical][at.x()], out[line][column]);
        }
    }
}

/// A mirrored wave of an odd frequency has the other sign.
void UprightCoefficients::turnBlock(const JCOEF *from, JCOEF *to) const
{
    for (int y = 0; y < DCTSIZE; ++y) {
        for (int x = 0; x < DCTSIZE; ++x) {
            const bool isNegated = (m_reversesColumns && x % 2 == 1) != (m_reversesRows && y % 2 == 1);
            const JCOEF value = from[y * DCTSIZE + x];
            to[m_isTransposed ? x * DCTSIZE + y : y * DCTSIZE + x] = isNegated ? JCOEF(-value) : value;
        }
    }
}

QuantizationTable UprightCoefficients::tableOf(int component)
{
    const QuantizationTable stored = m_stored.tableOf(component);
    QuantizationTable table = stored;
    for (size_t k = 0; k < table.size() && m_isTransposed; ++k)
        table[k] = stored[k % DCTSIZE * DCTSIZE + k / DCTSIZE];
    return table;
}

} // namespace plexa
