// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/reducedrows.h"
#include "imageio/codecs/codecs.h"
#include "imageio/codecs/jpeg/blockmeans.h"
#include "imageio/codecs/jpeg/jpegfile.h"
#include "imageio/codecs/jpeg/jpegstructure.h"
#include "imageio/codecs/jpeg/requantization.h"
#include "imageio/codecs/jpeg/thumbnail.h"
#include "imageio/codecs/jpeg/uprightcoefficients.h"
#include "imageio/color/colorprofile.h"
#include "imageio/color/colortransform.h"

#include <QBuffer>

#include <algorithm>
#include <new>

namespace plexa
{

namespace
{

/// Rows of pixels of a region that is decoded and encoded at a time.
constexpr int kRegionHeight = 128;

/// The largest share of a picture, in percent, whose encoding beside the rest takes less time than decoding
/// and encoding all of it.
constexpr qint64 kMostTouched = 15;

bool isSrgb(const QByteArray &profile, bool isGray)
{
    if (profile.isEmpty() || profile == srgbProfile())
        return true;
    const bool isGrayProfile = isGray && profileColorModel(profile) == u"Gray";
    return !ColorTransform::toSrgb(profile, isGrayProfile ? PixelLayout::Gray8 : PixelLayout::Rgb32);
}

bool isGray(QRgb pixel)
{
    return qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel);
}

/// The smallest rectangles of whole MCUs, in MCUs, that hold what is covered; each at most `mostRows` high.
/// From the top down, one beside the other not.
std::vector<QRect> regionsOf(const QList<QRect> &covered, QSize mcu, QSize count, int mostRows)
{
    std::vector<QRect> regions;
    for (int row = 0; row < count.height(); ++row) {
        QRect line;
        for (const QRect &rect : covered)
            line |= rect & QRect(0, row * mcu.height(), count.width() * mcu.width(), mcu.height());
        if (line.isEmpty())
            continue;
        const int left = line.left() / mcu.width();
        const QRect touched(left, row, line.right() / mcu.width() + 1 - left, 1);
        if (!regions.empty() && regions.back().bottom() + 1 == row && regions.back().height() < mostRows)
            regions.back() |= touched;
        else
            regions.push_back(touched);
    }
    return regions;
}

/// A region and one MCU around it: what decoding its edge needs.
QRect withMargin(const QRect &region, QSize count)
{
    return region.adjusted(-1, -1, 1, 1) & QRect(QPoint(0, 0), count);
}

/// The blocks of a part of a picture.
class PartRows final : public JpegBlockRows
{
public:
    PartRows(UprightCoefficients &whole, QRect mcus)
        : m_whole(whole)
        , m_sampling(whole.sampling())
        , m_mcus(mcus)
    {
    }

    JBLOCKARRAY rowsOf(int component, int row) noexcept override
    {
        const JpegStructure::Component factors = m_sampling[size_t(component)];
        const JBLOCKARRAY rows = m_whole.rowsOf(component, m_mcus.top() + row);
        for (int i = 0; i < factors.vertical; ++i)
            m_rows[size_t(component)][size_t(i)] = rows[i] + m_mcus.left() * factors.horizontal;
        return m_rows[size_t(component)].data();
    }

private:
    UprightCoefficients &m_whole;
    const JpegSampling m_sampling;
    const QRect m_mcus;
    std::array<std::array<JBLOCKROW, 4>, 3> m_rows = {}; ///< of each component
};

/// A region that was drawn on, encoded again.
struct EncodedRegion {
    QRect mcus;
    QBuffer file;
    std::unique_ptr<JpegCoefficients> coefficients;
    std::vector<bool> isTouched; ///< of each MCU, row by row
};

/// Copies a picture with what is drawn on it. The library asks for the coefficients while it writes them,
/// which reads the source row by row.
class JpegRetouch final : public JpegBlockRows
{
public:
    JpegRetouch(QIODevice &from, const ReadLimits &limits, const WriteOptions &options,
                const Retouch &retouch)
        : m_options(options)
        , m_retouch(retouch)
        , m_limits(limits)
        , m_source(from, limits, retouch.orientation)
    {
    }

    /// Decides whether the picture is copied in this way, and begins to read it.
    bool start(const QByteArray &profile)
    {
        if (!m_source.readHeader() || !m_source.isPossible())
            return false;
        m_size = m_source.size();
        m_mcu = m_source.mcuSize();
        m_count = m_source.mcuCount();
        m_sampling = m_source.sampling();
        const int regionRows = std::max(1, kRegionHeight / m_mcu.height());
        m_regions = regionsOf(m_retouch.covered, m_mcu, m_count, regionRows);
        if (!isSrgb(profile, isGrayPicture()) || !isWorthwhile())
            return false;
        if (!m_source.start(isInPlace() ? m_count.height() : regionRows + 2))
            return false;
        chooseTables();
        return true;
    }

    bool write(QIODevice &to)
    {
        for (const JpegStructure::Component &component : m_sampling) {
            if (!isInPlace())
                m_written.emplace_back(m_count.width() * component.horizontal, component.vertical);
        }
        JpegEncoding encoding = jpegEncodingOf(m_options);
        encoding.sampling = m_sampling;
        encoding.tables = m_tables;
        const auto file = std::make_unique<JpegFile>(to, m_size, encoding);
        if (!file->start(m_options, this))
            return false;
        const QSize means = reducedSize(m_size, DCTSIZE);
        if (file->needsThumbnail() && qMax(means.width(), means.height()) >= ThumbnailMaker::kLongerSide) {
            m_means.emplace(m_sampling, m_tables, m_count.width() * m_sampling.front().horizontal);
            m_thumbnail.emplace(means);
        }
        if (!file->finish() || !m_source.hasEnd())
            return false;
        if (file->needsThumbnail() && !m_thumbnail && !decodeThumbnail(to))
            return false;
        return !m_thumbnail || file->setThumbnail(*m_thumbnail);
    }

    QString notice() const { return m_source.notice(); }

    JBLOCKARRAY rowsOf(int component, int row) noexcept override
    {
        try {
            for (; m_rowsMade <= row; ++m_rowsMade) {
                if (!makeRow(m_rowsMade))
                    return nullptr;
            }
        } catch (const std::bad_alloc &) {
            return nullptr;
        }
        return writtenRows(component, row);
    }

private:
    JBLOCKARRAY writtenRows(int component, int row)
    {
        if (isInPlace() || isSourceRow(component, row))
            return m_source.rowsOf(component, row);
        return m_written[size_t(component)].rows(row * m_sampling[size_t(component)].vertical);
    }

    /// Are the copy's coefficients written over the source's? The library asks for those of a progressive
    /// copy several times.
    bool isInPlace() const { return m_options.isProgressive; }

    bool isGrayPicture() const { return m_sampling.size() == 1; }

    /// Is little enough of the picture encoded again?
    bool isWorthwhile() const
    {
        qint64 touched = 0;
        for (const QRect &region : m_regions) {
            const QRect decoded = withMargin(region, m_count);
            touched += qint64(decoded.width()) * decoded.height();
        }
        return touched * 100 <= qint64(m_count.width()) * m_count.height() * kMostTouched;
    }

    void chooseTables()
    {
        const std::array<QuantizationTable, 2> wanted = tablesOfQuality(jpegEncodingOf(m_options).quality);
        for (int i = 0; i < int(m_sampling.size()); ++i) {
            m_sourceTables.push_back(m_source.tableOf(i));
            m_requantizations.emplace_back(m_sourceTables.back(), wanted[i == 0 ? 0 : 1]);
            m_tables.push_back(m_requantizations.back().table());
        }
    }

    /// Are the source's rows written as they are?
    bool isSourceRow(int component, int row) const
    {
        return m_requantizations[size_t(component)].isIdentity() && !regionAt(row);
    }

    EncodedRegion *regionAt(int row) const
    {
        const auto region = std::find_if(m_encoded.begin(), m_encoded.end(), [row](const auto &encoded) {
            return row >= encoded->mcus.top() && row <= encoded->mcus.bottom();
        });
        return region == m_encoded.end() ? nullptr : region->get();
    }

    bool makeRow(int row)
    {
        if (canceled(m_retouch.isCanceled))
            return false;
        std::erase_if(m_encoded, [row](const auto &region) { return region->mcus.bottom() < row; });
        // Its margin begins in this row, which changes after that.
        while (m_nextRegion < m_regions.size() && m_regions[m_nextRegion].top() <= row + 1) {
            if (!encodeRegion(m_regions[m_nextRegion++]))
                return false;
        }
        if (!m_source.readTo(row))
            return false;
        for (int i = 0; i < int(m_sampling.size()); ++i) {
            if (!makeBlocks(i, row))
                return false;
        }
        if (m_means)
            addToThumbnail(row);
        return true;
    }

    void addToThumbnail(int row)
    {
        std::array<JBLOCKARRAY, 3> blocks = {};
        for (int i = 0; i < int(m_sampling.size()); ++i)
            blocks[size_t(i)] = writtenRows(i, row);
        const QImage &means = m_means->rowsOf(blocks);
        m_thumbnail->addRows(means, means.height());
    }

    /// For a picture whose blocks are fewer than the pixels of a thumbnail: reads the copy.
    bool decodeThumbnail(QIODevice &copy)
    {
        const qint64 end = copy.pos();
        if (!copy.isReadable() || !copy.seek(0))
            return false;
        const Result<std::unique_ptr<RowReader>> reader = openJpegReader(copy, m_limits, 1);
        QImage picture(m_size, QImage::Format_RGB32);
        if (!reader || picture.isNull() || !(*reader)->readRows(picture, picture.height()))
            return false;
        m_thumbnail.emplace(m_size);
        m_thumbnail->addRows(picture, picture.height());
        return copy.seek(end);
    }

    bool makeBlocks(int component, int row)
    {
        const Requantization &requantization = m_requantizations[size_t(component)];
        const JpegStructure::Component factors = m_sampling[size_t(component)];
        const int across = m_count.width() * factors.horizontal;
        const JBLOCKARRAY from = m_source.rowsOf(component, row);
        const JBLOCKARRAY to = writtenRows(component, row);
        for (int i = 0; i < factors.vertical; ++i) {
            if (!requantization.isIdentity())
                requantization.convert(from[i], to[i], across);
            else if (from[i] != to[i])
                std::copy_n(from[i][0], size_t(across) * DCTSIZE2, to[i][0]);
        }
        if (EncodedRegion *region = regionAt(row))
            insertRegion(*region, component, row, to);
        return std::all_of(to, to + factors.vertical,
                           [across](JBLOCKROW blocks) { return Requantization::areValid(blocks, across); });
    }

    void insertRegion(EncodedRegion &region, int component, int row, JBLOCKARRAY to)
    {
        const JpegStructure::Component factors = m_sampling[size_t(component)];
        const int regionRow = row - region.mcus.top();
        const JBLOCKARRAY from = region.coefficients->rowsOf(component, regionRow);
        const size_t first = size_t(regionRow) * size_t(region.mcus.width());
        for (int column = 0; column < region.mcus.width(); ++column) {
            if (!region.isTouched[first + size_t(column)])
                continue;
            for (int i = 0; i < factors.vertical; ++i)
                std::copy_n(from[i][column * factors.horizontal], factors.horizontal * DCTSIZE2,
                            to[i][(region.mcus.left() + column) * factors.horizontal]);
        }
    }

    /// The pixels of a rectangle of MCUs.
    QRect pixelsOf(const QRect &mcus) const
    {
        return QRect(mcus.left() * m_mcu.width(), mcus.top() * m_mcu.height(), mcus.width() * m_mcu.width(),
                     mcus.height() * m_mcu.height()) &
               QRect(QPoint(0, 0), m_size);
    }

    bool encodeRegion(const QRect &mcus)
    {
        const QRect area = pixelsOf(mcus);
        const QRect around = pixelsOf(withMargin(mcus, m_count));
        const QImage before = decoded(withMargin(mcus, m_count));
        QImage drawn = before.copy(area.translated(-around.topLeft()));
        if (drawn.isNull())
            return false;
        m_retouch.draw(drawn, area.topLeft());
        EncodedRegion &region = *m_encoded.emplace_back(std::make_unique<EncodedRegion>());
        region.mcus = mcus;
        if (!findTouched(before, area.topLeft() - around.topLeft(), drawn, region))
            return false;
        JpegEncoding encoding;
        encoding.sampling = m_sampling;
        encoding.tables = m_tables;
        region.file.open(QIODevice::ReadWrite);
        const auto encoder = std::make_unique<JpegEncoder>(region.file, area.size(), encoding);
        if (!encoder->start() || !encoder->writeImage(drawn, drawn.height()) || !encoder->finish())
            return false;
        region.file.seek(0);
        region.coefficients = std::make_unique<JpegCoefficients>(region.file, m_limits);
        JpegCoefficients &coefficients = *region.coefficients;
        return coefficients.readHeader() && coefficients.start(mcus.height()) &&
               coefficients.readTo(mcus.height() - 1);
    }

    /// The pixels of a rectangle of MCUs, decoded by way of a small file of its blocks.
    QImage decoded(const QRect &mcus)
    {
        if (!m_source.readTo(mcus.bottom()))
            return {};
        const QRect area = pixelsOf(mcus);
        JpegEncoding encoding;
        encoding.sampling = m_sampling;
        encoding.tables = m_sourceTables;
        QBuffer file;
        file.open(QIODevice::ReadWrite);
        PartRows rows(m_source, mcus);
        const auto encoder = std::make_unique<JpegEncoder>(file, area.size(), encoding);
        if (!encoder->start(rows) || !encoder->finish() || !file.seek(0))
            return {};
        const Result<std::unique_ptr<RowReader>> reader = openJpegReader(file, m_limits, 1);
        QImage pixels(area.size(), QImage::Format_RGB32);
        if (!reader || pixels.isNull() || !(*reader)->readRows(pixels, pixels.height()))
            return {};
        return pixels;
    }

    /// Finds the MCUs that were drawn on.
    /// @param at  where `after` lies in `before`
    /// @return false for a color in a gray picture, which has no place for it
    bool findTouched(const QImage &before, QPoint at, const QImage &after, EncodedRegion &region) const
    {
        const QSize count = region.mcus.size();
        region.isTouched.assign(size_t(count.width()) * size_t(count.height()), false);
        for (int y = 0; y < after.height(); ++y) {
            const auto *old = reinterpret_cast<const QRgb *>(before.constScanLine(at.y() + y)) + at.x();
            const auto *now = reinterpret_cast<const QRgb *>(after.constScanLine(y));
            for (int column = 0; column < count.width(); ++column) {
                const int x = column * m_mcu.width();
                const int width = qMin(m_mcu.width(), after.width() - x);
                if (std::equal(now + x, now + x + width, old + x))
                    continue;
                if (isGrayPicture() && !std::all_of(now + x, now + x + width, isGray))
                    return false;
                region.isTouched[size_t(y / m_mcu.height()) * size_t(count.width()) + size_t(column)] = true;
            }
        }
        return true;
    }

    const WriteOptions &m_options;
    const Retouch &m_retouch;
    const ReadLimits m_limits;
    UprightCoefficients m_source;
    QSize m_size;  ///< of the upright picture, pixels
    QSize m_mcu;   ///< pixels
    QSize m_count; ///< of MCUs
    JpegSampling m_sampling;
    std::vector<QRect> m_regions;
    size_t m_nextRegion = 0;
    std::vector<std::unique_ptr<EncodedRegion>> m_encoded; ///< that of this row and that of the next one
    std::vector<QuantizationTable> m_sourceTables;
    std::vector<QuantizationTable> m_tables; ///< of the copy
    std::vector<Requantization> m_requantizations;
    std::vector<CoefficientPlane> m_written; ///< the last row; empty for a copy in place
    int m_rowsMade = 0;
    std::optional<BlockMeans> m_means; ///< where a thumbnail is made of them
    std::optional<ThumbnailMaker> m_thumbnail;
};

} // namespace

std::optional<QString> retouchJpeg(QIODevice &from, const ReadLimits &limits, QIODevice &to,
                                   const WriteOptions &options, const Retouch &retouch)
{
    const Result<JpegStructure> structure = readJpegStructure(from, limits);
    if (!structure || !from.seek(0))
        return std::nullopt;
    const auto copy = std::make_unique<JpegRetouch>(from, limits, options, retouch);
    if (!copy->start(structure->iccProfile) || !copy->write(to))
        return std::nullopt;
    return copy->notice();
}

qint64 retouchJpegBytes(const PictureInfo &info, const WriteOptions &options, int orientation)
{
    const JpegSampling sampling = jpegSamplingFromText(info.chromaSampling);
    const qint64 coefficients = coefficientBytes(info.rows.size, {sampling.begin(), sampling.end()});
    const bool isWhole = info.decoderBytes > 0 || orientation != 1 || options.isProgressive;
    const bool isTwice = orientation != 1 && options.isProgressive;
    return (isWhole ? coefficients : 0) + (isTwice ? coefficients : 0);
}

} // namespace plexa
