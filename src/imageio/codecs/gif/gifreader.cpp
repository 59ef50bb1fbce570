// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"
#include "imageio/codecs/codecs.h"
#include "imageio/color/rowconversion.h"
#include "imageio/container/gifstructure.h"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <new>
#include <vector>

namespace plexa
{

namespace
{

struct Source {
    QIODevice *device;
    bool readFailed = false;
    bool reachedEnd = false;
    bool sawTerminator = false; ///< the last byte read alone was 0: no more data blocks

    static int read(GifFileType *gif, GifByteType *bytes, int count)
    {
        auto *source = static_cast<Source *>(gif->UserData);
        const qint64 got = source->device->read(reinterpret_cast<char *>(bytes), count);
        source->readFailed = source->readFailed || got < 0;
        source->reachedEnd = source->reachedEnd || (got >= 0 && got < count);
        // A file that lacks only the end of its last block is complete.
        const bool suppliesTerminator = got == 0 && count == 1;
        if (suppliesTerminator)
            *bytes = 0;
        source->sawTerminator = count == 1 && *bytes == 0;
        return suppliesTerminator ? 1 : int(qMax<qint64>(got, 0));
    }
};

/// Unpacks the first frame's indices through giflib, from the descriptor on.
class GifDecoder
{
public:
    explicit GifDecoder(QIODevice &device)
        : m_source{&device}
    {
    }

    ~GifDecoder()
    {
        if (m_gif)
            DGifCloseFile(m_gif, nullptr);
    }
    GifDecoder(const GifDecoder &) = delete;
    GifDecoder &operator=(const GifDecoder &) = delete;

    bool start(qint64 framePosition)
    {
        m_gif = m_source.device->seek(0) ? DGifOpen(&m_source, Source::read, &m_openError) : nullptr;
        GifRecordType record = UNDEFINED_RECORD_TYPE;
        return m_gif && m_source.device->seek(framePosition) && DGifGetRecordType(m_gif, &record) == GIF_OK &&
               record == IMAGE_DESC_RECORD_TYPE && DGifGetImageDesc(m_gif) == GIF_OK;
    }

    /// Is the frame the measured one? Rows of another one would not fit.
    bool hasFrame(const GifStructure &measured) const
    {
        const GifImageDesc &image = m_gif->Image;
        return QRect(image.Left, image.Top, image.Width, image.Height) == measured.frame &&
               image.Interlace == measured.isInterlaced;
    }

    bool readRow(uchar *indices) { return DGifGetLine(m_gif, indices, m_gif->Image.Width) == GIF_OK; }

    /// The frame's colors; null when the file has no table for it.
    const ColorMapObject *table() const
    {
        return m_gif->Image.ColorMap ? m_gif->Image.ColorMap : m_gif->SColorMap;
    }

    /// Why a function returned false.
    QString failureReason() const
    {
        const int error = m_gif ? m_gif->Error : m_openError;
        if (m_source.readFailed)
            return PictureFailures::readError(*m_source.device);
        if (error == D_GIF_ERR_NOT_ENOUGH_MEM)
            return PictureFailures::outOfMemory();
        return m_source.reachedEnd || m_source.sawTerminator || error == D_GIF_ERR_EOF_TOO_SOON
                   ? PictureFailures::truncated()
                   : PictureFailures::damaged();
    }

private:
    Source m_source;
    GifFileType *m_gif = nullptr;
    int m_openError = 0;
};

/// The colors of all indices, premultiplied sRGB: black beyond the file's table; black and white without one,
/// by the standard.
std::array<QRgb, 256> colorsOf(const ColorMapObject *table, const GifStructure &structure)
{
    std::array<QRgb, 256> colors;
    colors.fill(0xff000000);
    if (!table)
        colors[1] = 0xffffffff;
    for (int i = 0; table && i < qMin(table->ColorCount, 256); ++i)
        colors[size_t(i)] = qRgb(table->Colors[i].Red, table->Colors[i].Green, table->Colors[i].Blue);
    RowConversion({}, {structure.iccProfile, {}}, int(colors.size())).convertPixels(colors.data());
    if (structure.transparentIndex >= 0)
        colors[size_t(structure.transparentIndex)] = 0;
    return colors;
}

Result<GifStructure> readCheckedStructure(QIODevice &device, const ReadLimits &limits)
{
    Result<GifStructure> structure = readGifStructure(device);
    if (!structure)
        return structure;
    if (const auto checked = PictureFailures::checkSize(structure->size, limits); !checked)
        return tl::unexpected(checked.error());
    const QRect &frame = structure->frame;
    if (frame.isEmpty())
        return fail(PictureFailures::damaged());
    // A code of w bits represents 2^w pixels at most; w is 12 at most.
    constexpr qint64 kMaxPixelsOfByte = (8 * 4096 + 11) / 12;
    const qint64 pixels = qint64(frame.width()) * frame.height();
    if (structure->frameDataBytes < pixels / kMaxPixelsOfByte)
        return fail(PictureFailures::truncated());
    const auto checked = PictureFailures::checkMemory(frame.size(), 1, limits);
    if (structure->isInterlaced && !checked)
        return tl::unexpected(checked.error());
    return structure;
}

class GifRowReader final : public SingleRowReader
{
public:
    GifRowReader(QIODevice &device, GifStructure structure)
        : SingleRowReader({structure.size, structure.hasAlpha()})
        , m_structure(std::move(structure))
        , m_decoder(device)
    {
    }

    Result<void> open()
    {
        if (!m_decoder.start(m_structure.framePosition))
            return fail(m_decoder.failureReason());
        if (!m_decoder.hasFrame(m_structure))
            return fail(PictureFailures::changedMeanwhile());
        m_colors = colorsOf(m_decoder.table(), m_structure);
        const auto width = size_t(m_structure.frame.width());
        try {
            m_indices.resize(m_structure.isInterlaced ? width * size_t(m_structure.frame.height()) : width);
        } catch (const std::bad_alloc &) {
            return fail(PictureFailures::outOfMemory());
        }
        return {};
    }

private:
    Result<void> decodeRow(int index, QRgb *row) override
    {
        const QRect &frame = m_structure.frame;
        const int frameRow = index - frame.y();
        if (frameRow < 0 || frameRow >= frame.height()) {
            std::fill_n(row, m_format.size.width(), QRgb(0));
            return {};
        }
        if (m_structure.isInterlaced ? frameRow == 0 && !readInterlaced()
                                     : !m_decoder.readRow(m_indices.data()))
            return fail(m_decoder.failureReason());
        const uchar *indices = m_indices.data();
        if (m_structure.isInterlaced)
            indices += size_t(frameRow) * size_t(frame.width());
        row = std::fill_n(row, frame.x(), QRgb(0));
        row = std::transform(indices, indices + frame.width(), row,
                             [this](uchar index) { return m_colors[index]; });
        std::fill_n(row, m_format.size.width() - frame.x() - frame.width(), QRgb(0));
        return {};
    }

    bool readInterlaced()
    {
        constexpr struct {
            int first;
            int step;
        } kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
        for (const auto &pass : kPasses) {
            for (int row = pass.first; row < m_structure.frame.height(); row += pass.step) {
                if (!m_decoder.readRow(m_indices.data() + size_t(row) * size_t(m_structure.frame.width())))
                    return false;
            }
        }
        return true;
    }

    const GifStructure m_structure;
    GifDecoder m_decoder;
    std::array<QRgb, 256> m_colors = {};
    std::vector<uchar> m_indices; ///< of one row, or of a whole interlaced frame
};

} // namespace

Result<PictureInfo> readGifInfo(QIODevice &device, const ReadLimits &limits)
{
    const Result<GifStructure> structure = readCheckedStructure(device, limits);
    if (!structure)
        return tl::unexpected(structure.error());
    PictureInfo info;
    info.rows = {structure->size, structure->hasAlpha()};
    info.colorModel = QStringLiteral("RGB");
    info.iccProfile = structure->iccProfile;
    if (structure->isInterlaced)
        info.decoderBytes = qint64(structure->frame.width()) * structure->frame.height();
    if (structure->frameCount > 1)
        info.unmarkedPictures.append(QStringLiteral("animation"));
    return info;
}

Result<std::unique_ptr<RowReader>> openGifReader(QIODevice &device, const ReadLimits &limits, int)
{
    Result<GifStructure> structure = readCheckedStructure(device, limits);
    if (!structure)
        return tl::unexpected(structure.error());
    auto reader = std::make_unique<GifRowReader>(device, std::move(*structure));
    if (const auto opened = reader->open(); !opened)
        return tl::unexpected(opened.error());
    return reader;
}

} // namespace plexa
