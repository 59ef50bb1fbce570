// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/copywriter.h"

#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "images/photofacts.h"
#include "images/uprighting.h"
#include "platform/applicationname.h"
#include "watermark/watermarkdrawing.h"

#include <QFileInfo>

#include <algorithm>

namespace plexa
{

namespace
{

constexpr int kTiffCompressionNone = 1;
constexpr int kTiffCompressionLzw = 5;

/// The dictionary that the copy carries: the photo's, for pixels that are upright and square.
QVariantMap propertiesOfCopy(ImageMetadata metadata, const CopyOrder &order, const Uprighting &uprighting)
{
    metadata.setOrientation(1);
    metadata.setCompressionQuality(order.quality);
    metadata.setTiffSoftware(applicationNameWithCompany(true, false, true));
    metadata.setTiffCompression(order.tiffLzw ? kTiffCompressionLzw : kTiffCompressionNone);
    if (uprighting.isStretched()) {
        const double dpi = std::max(metadata.dpiWidth().toDouble(), metadata.dpiHeight().toDouble());
        metadata.setDpiWidth(dpi);
        metadata.setDpiHeight(dpi);
    }
    return metadata.imagePropertiesDictionary();
}

/// Linux cannot set the time of birth, so the copy's modification time stands for it.
QDateTime creationDateOf(const QString &path)
{
    const QFileInfo info(path);
    const QDateTime born = info.birthTime();
    const QDateTime modified = info.lastModified();
    return born.isValid() && born < modified ? born : modified;
}

using Drawings = std::vector<WatermarkDrawing>;

Result<Drawings> prepareMarks(const CopyOrder &order, const PhotoFacts &facts, const PhotoServices &services,
                              CopyReport &report)
{
    Drawings drawings;
    for (const MarkOrder &mark : order.marks) {
        Result<std::optional<WatermarkDrawing>> drawing =
            WatermarkDrawing::prepare(mark.values, facts, services.fonts, mark.customOrigin);
        if (!drawing)
            return tl::unexpected(drawing.error());
        report.rects.push_back(*drawing ? std::optional((*drawing)->layout().rect) : std::nullopt);
        if (*drawing)
            drawings.push_back(std::move(**drawing));
    }
    return drawings;
}

void drawAll(const Drawings &drawings, QImage &rows, int firstRow)
{
    for (const WatermarkDrawing &drawing : drawings)
        drawing.drawRows(rows, firstRow);
}

/// Decoder to compositor to encoder, a strip at a time.
Result<void> streamRows(RowReader &reader, const Drawings &drawings, RowWriter &writer,
                        const CancelCheck &isCancelled)
{
    return forEachStrip(reader, [&](QImage &strip, int firstRow, int count) -> Result<void> {
        if (isCancelled && isCancelled())
            return fail(cancelledText());
        if (count == strip.height()) {
            drawAll(drawings, strip, firstRow);
        } else {
            QImage last(strip.bits(), strip.width(), count, strip.bytesPerLine(), strip.format());
            drawAll(drawings, last, firstRow);
        }
        return writer.writeRows(strip, count);
    });
}

} // namespace

Result<CopyReport> writeCopy(const CopyOrder &order, const PhotoServices &services)
{
    const Result<ImageSource> source = ImageSource::open(order.readPath, services.limits);
    if (!source)
        return tl::unexpected(source.error());
    const ImageMetadata ownMetadata(source->properties());
    const Uprighting uprighting =
        uprightingOf(source->info().rows.size, ownMetadata, order.turns, services.limits);
    const ImageMetadata &metadata = order.metadata ? *order.metadata : ownMetadata;
    const PhotoFacts facts(order.path, metadata, uprighting.size(), uprighting.unscaledSize(),
                           services.locale);

    CopyReport report;
    report.size = uprighting.size();
    report.dropped = droppedPictures(*source);
    const Result<Drawings> drawings = prepareMarks(order, facts, services, report);
    if (!drawings)
        return tl::unexpected(drawings.error());

    // A picture that cannot pass in strips is at hand before the target file appears.
    const bool isStreamed = order.upright.isNull() && uprighting.isIdentity();
    std::optional<ByteBudget::Reservation> room;
    QImage upright = order.upright;
    if (!isStreamed && upright.isNull()) {
        const QSize size = uprighting.size();
        Result<ByteBudget::Reservation> reserved =
            services.budget.reserve(qint64(size.width()) * size.height() * 4);
        if (!reserved)
            return tl::unexpected(reserved.error());
        room = std::move(*reserved);
        Result<QImage> read = readUpright(*source, uprighting);
        if (!read)
            return tl::unexpected(read.error());
        upright = std::move(*read);
    }

    AtomicFile file(order.targetPath, order.ifExists, AtomicFile::Durability::Lazy);
    if (const Result<void> opened = file.open(); !opened)
        return tl::unexpected(opened.error());
    const RowFormat format =
        isStreamed ? source->info().rows : RowFormat{upright.size(), upright.hasAlphaChannel()};
    const CopyRequest request{order.targetType, propertiesOfCopy(metadata, order, uprighting), &*source};
    Result<std::unique_ptr<RowWriter>> writer = openDestination(file.device(), format, request);
    if (!writer)
        return tl::unexpected(writer.error());

    Result<void> written;
    if (isStreamed) {
        const Result<std::unique_ptr<RowReader>> reader = source->openRows();
        if (!reader)
            return tl::unexpected(reader.error());
        written = streamRows(**reader, *drawings, **writer, order.isCancelled);
    } else {
        drawAll(*drawings, upright, 0);
        written = writeStrips(**writer, upright, order.isCancelled);
    }
    if (written)
        written = (*writer)->finish();
    if (!written)
        return tl::unexpected(written.error());

    if (order.preservesCreationDate)
        file.setModificationTime(creationDateOf(order.path));
    if (const Result<void> committed = file.commit(); !committed)
        return tl::unexpected(committed.error());
    return report;
}

} // namespace plexa
