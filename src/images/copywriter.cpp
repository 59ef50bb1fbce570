// SPDX-License-Identifier: GPL-3.0-or-later

#include "images/copywriter.h"

#include "imageio/base/picturefailures.h"
#include "imageio/base/sourcefile.h"
#include "imageio/embedded/storedfacts.h"
#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "images/uprighting.h"
#include "platform/applicationname.h"
#include "watermark/texttokens.h"

#include <algorithm>
#include <new>

namespace plexa
{

namespace
{

constexpr int kTiffCompressionNone = 1;
constexpr int kTiffCompressionLzw = 5;

QString softwareOfCopies()
{
    return applicationNameWithCompany();
}

/// The dictionary that the copy carries: the photo's, for pixels that are upright and square.
QVariantMap propertiesOfCopy(ImageMetadata metadata, const CopyOrder &order, const Uprighting &uprighting)
{
    metadata.setOrientation(1);
    metadata.setCompressionQuality(order.quality);
    metadata.setTiffSoftware(softwareOfCopies());
    metadata.setTiffCompression(order.tiffLzw ? kTiffCompressionLzw : kTiffCompressionNone);
    if (uprighting.isStretched()) {
        const double dpi = std::max(metadata.dpiWidth().toDouble(), metadata.dpiHeight().toDouble());
        metadata.setDpiWidth(dpi);
        metadata.setDpiHeight(dpi);
    }
    return metadata.imagePropertiesDictionary();
}

/// Resolutions that differ a lot are rather a fault of the file than the shape of its pixels.
QStringList noticesOf(const Uprighting &uprighting)
{
    constexpr double kUsualStretch = 2;
    const double stretch = std::max(uprighting.scaleX, uprighting.scaleY);
    if (stretch <= kUsualStretch)
        return {};
    return {
        QStringLiteral("stretched by a factor of %1, because its horizontal and vertical resolutions differ")
            .arg(stretch, 0, 'g', 3)};
}

using Drawings = std::vector<WatermarkDrawing>;

Result<Drawings> prepareMarks(const CopyOrder &order, const PhotoFacts &facts, const PhotoServices &services,
                              CopyReport &report)
{
    Drawings drawings;
    for (const MarkOrder &mark : order.marks) {
        Result<std::optional<WatermarkDrawing>> drawing =
            WatermarkDrawing::prepare(mark, facts, services.fonts, {.isCanceled = order.isCanceled});
        if (!drawing)
            return tl::unexpected(drawing.error());
        const bool hasRect = *drawing && !(*drawing)->layout().rect.isEmpty();
        report.rects.push_back(hasRect ? std::optional((*drawing)->layout().rect) : std::nullopt);
        report.isMarked = report.isMarked || (*drawing && (*drawing)->isVisible());
        if (*drawing)
            report.notices += (*drawing)->notices();
        if (*drawing)
            drawings.push_back(std::move(**drawing));
    }
    return drawings;
}

/// The time of birth, or of the last modification where that is earlier (the birth of a file that was copied
/// here) or the birth is not known.
timespec creationTimeOf(const FileVersion &version)
{
    const FileTime created = std::min(version.modified, version.born.value_or(version.modified));
    return timespec{created.seconds, static_cast<long>(created.nanoseconds)};
}

void drawAll(const Drawings &drawings, QImage &rows, int firstRow)
{
    for (const WatermarkDrawing &drawing : drawings)
        drawing.drawRows(rows, firstRow);
}

/// Decoder to compositor to encoder, a strip at a time.
Result<void> streamRows(RowReader &reader, const Drawings &drawings, RowWriter &writer,
                        const CancelCheck &isCanceled)
{
    return forEachStrip(reader, [&](QImage &strip, int firstRow, int count) -> Result<void> {
        if (canceled(isCanceled))
            return fail(canceledText());
        if (count == strip.height()) {
            drawAll(drawings, strip, firstRow);
        } else {
            QImage last(strip.bits(), strip.width(), count, strip.bytesPerLine(), strip.format());
            drawAll(drawings, last, firstRow);
        }
        return writer.writeRows(strip, count);
    });
}

/// A photo on its way from its file to its copy.
class Copy
{
public:
    /// @param inFile  the source's
    Copy(const CopyOrder &order, const PhotoServices &services, const ImageSource &source,
         const QVariantMap &inFile)
        : m_order(order)
        , m_services(services)
        , m_source(source)
        , m_metadata(inFile)
        , m_uprighting(uprightingOf(source.info().rows.size, m_metadata, order.turns, services.limits))
    {
        if (order.metadata)
            m_metadata = *order.metadata;
        else if (order.metadataEdit)
            order.metadataEdit(m_metadata);
        m_request = {order.targetType,
                     propertiesOfCopy(m_metadata, order, m_uprighting),
                     &source,
                     &m_omitted,
                     m_metadata.clearedGroups(),
                     !m_uprighting.isIdentity(),
                     m_uprighting.orientation};
    }

    Result<CopyReport> write()
    {
        const PhotoFacts facts(m_order.path, m_metadata, m_uprighting.size(), m_uprighting.unscaledSize(),
                               m_services.locale);
        CopyReport report;
        report.size = m_uprighting.size();
        report.dropped = droppedPictures(m_source);
        report.notices = noticesOf(m_uprighting);
        return prepareMarks(m_order, facts, m_services, report)
            .and_then([&](Drawings drawings) -> Result<void> {
                m_drawings = std::move(drawings);
                return m_order.rules.needsVisibleMark && !report.isMarked ? fail(noVisibleMark())
                                                                          : reserve(firstBytes());
            })
            .and_then([this] { return mayRecompress() ? Result<void>() : makeUpright(); })
            .and_then([this] { return writeFile(); })
            .map([&] {
                report.isRecompressed = m_isRecompressed;
                report.dropped += m_omitted;
                if (!m_readerNotice.isEmpty())
                    report.notices.append(m_readerNotice);
                return report;
            });
    }

private:
    bool isStreamed() const { return m_uprighting.isIdentity() && m_order.upright.isNull(); }

    /// May the copy keep the encoded picture where no mark covers it?
    bool mayRecompress() const
    {
        return !m_order.rules.rendersAll && m_order.turns == 1 && !m_uprighting.isStretched() &&
               canRetouch(m_request);
    }

    /// The rows that the writer is given.
    RowFormat writtenFormat() const
    {
        if (!m_order.upright.isNull())
            return {m_order.upright.size(), m_order.upright.hasAlphaChannel()};
        return {m_uprighting.size(), m_source.info().rows.hasAlpha};
    }

    /// The memory that recompressing takes, if it is tried, otherwise rendering.
    qint64 firstBytes() const
    {
        return mayRecompress() ? retouchBytes(m_request, m_uprighting.orientation) : renderedBytes();
    }

    /// The memory that rendering takes beyond strips. What streams from end to end takes none.
    qint64 renderedBytes() const
    {
        const qint64 encoding = destinationBytes(writtenFormat(), m_request);
        if (isStreamed()) // decoder and encoder at the same time
            return m_source.rowsBytes() + encoding;
        if (m_order.upright.isNull()) // one after the other, around the picture
            return std::max(uprightBytes(m_source, m_uprighting),
                            pictureBytes(m_uprighting.size()) + encoding);
        // The cache goes on holding the bare picture.
        return (m_drawings.empty() ? 0 : pictureBytes(m_order.upright.size())) + encoding;
    }

    /// Waits for memory before any of it is taken, after releasing what was reserved: two copies that each
    /// wait for more would wait for each other.
    Result<void> reserve(qint64 bytes)
    {
        m_room.release();
        return reserveForPhoto(m_services.budget, m_source.info().rows.size, bytes)
            .map([this](ByteBudget::Reservation room) { m_room = std::move(room); });
    }

    /// Gets a picture that cannot pass in strips; unless it is certain to be needed, not before the target
    /// file appears.
    Result<void> makeUpright()
    {
        if (isStreamed() || !m_upright.isNull())
            return {};
        m_upright = m_order.upright;
        if (!m_upright.isNull())
            return {};
        return readUpright(m_source, m_uprighting, 0, {}, &m_readerNotice).map([this](const QImage &upright) {
            m_upright = upright;
        });
    }

    Result<void> writeFile()
    {
        AtomicFile file(m_order.target.path, m_order.target.ifExists);
        file.setAlternatives(m_order.target.nextPath);
        if (Result<void> opened = file.open(); !opened)
            return opened;
        m_isRecompressed = mayRecompress() && recompress(file.device());
        if (mayRecompress() && !m_isRecompressed) {
            if (Result<void> reserved = reserve(renderedBytes()); !reserved)
                return reserved;
        }
        if (Result<void> rendered = m_isRecompressed ? Result<void>() : render(file.device()); !rendered)
            return rendered;
        if (Result<void> unchanged = m_source.checkUnchanged(); !unchanged)
            return unchanged;
        if (m_order.overwritten && fileVersionAt(m_order.target.path) != m_order.overwritten)
            return fail(PictureFailures::changedMeanwhile());
        // Linux cannot set the time of birth, so the copy's modification time represents it.
        if (m_order.rules.preservesCreationDate)
            file.setModificationTime(creationTimeOf(m_source.version()));
        return file.commit();
    }

    /// @return false: the copy has to be rendered, which also finds the reason of a failure
    bool recompress(QFile &file)
    {
        Retouch retouch{m_uprighting.orientation, {}, {}, m_order.isCanceled};
        for (const WatermarkDrawing &drawing : m_drawings)
            retouch.covered.append(drawing.coveredRect());
        retouch.draw = [this](QImage &part, QPoint at) {
            for (const WatermarkDrawing &drawing : m_drawings)
                drawing.drawRows(part, at.y(), at.x());
        };
        if (const std::optional<QString> notice = writeRetouched(file, m_request, retouch)) {
            m_readerNotice = *notice;
            return true;
        }
        m_omitted.clear();
        return false;
    }

    Result<void> render(QFile &file)
    {
        if (Result<void> upright = makeUpright(); !upright)
            return upright;
        if (file.size() > 0 || file.pos() > 0) { // what recompress() has left
            if (!file.resize(0) || !file.seek(0))
                return fail(PictureFailures::writeError(file));
        }
        const Result<std::unique_ptr<RowWriter>> writer = openDestination(file, writtenFormat(), m_request);
        if (!writer)
            return tl::unexpected(writer.error());
        if (Result<void> written = writeRows(**writer); !written)
            return written;
        return (*writer)->finish();
    }

    Result<void> writeRows(RowWriter &writer)
    {
        if (!m_upright.isNull()) {
            drawAll(m_drawings, m_upright, 0);
            return writeStrips(writer, m_upright, m_order.isCanceled);
        }
        const Result<std::unique_ptr<RowReader>> reader = m_source.openRows();
        if (!reader)
            return tl::unexpected(reader.error());
        const Result<void> streamed = streamRows(**reader, m_drawings, writer, m_order.isCanceled);
        m_readerNotice = (*reader)->notice();
        return streamed;
    }

    const CopyOrder &m_order;
    const PhotoServices &m_services;
    const ImageSource &m_source;
    ImageMetadata m_metadata;
    const Uprighting m_uprighting;
    CopyRequest m_request;
    Drawings m_drawings;
    ByteBudget::Reservation m_room;
    QStringList m_omitted;
    QString m_readerNotice;
    bool m_isRecompressed = false;
    QImage m_upright; ///< null where the picture passes in strips
};

} // namespace

QString noVisibleMark()
{
    return QStringLiteral("not saved, because no watermark is visible on it");
}

Result<CopyOrder> copyOrderFor(const QString &path, const CopyTarget &target,
                               const SavingPresetValues &savingPreset)
{
    CopyOrder order;
    order.path = path;
    order.target = target;
    order.targetType = savingPreset.imageFormatUTI(path);
    if (order.targetType.isEmpty())
        return fail(QStringLiteral("the format \"%1\" cannot be written").arg(savingPreset.imageFormat));
    const bool hasLosses =
        order.targetType == QLatin1String("image/jpeg") || order.targetType == QLatin1String("image/heic");
    if (hasLosses && (savingPreset.jpegQuality < 1 || savingPreset.jpegQuality > 100))
        return fail(
            QStringLiteral("the quality %1 % is not between 1 and 100 %").arg(savingPreset.jpegQuality));
    order.quality = savingPreset.jpegQuality / 100.0;
    order.tiffLzw = savingPreset.tiffCompressionLZW;
    return order;
}

bool isWrittenCopy(const QString &path)
{
    try {
        const Result<std::unique_ptr<SourceFile>> file = SourceFile::openAt(path);
        if (!file || !mayNameSoftware(**file, softwareOfCopies().toLatin1()))
            return false;
        const Result<ImageSource> source = ImageSource::open(path);
        const Result<QVariantMap> properties = source ? source->properties() : QVariantMap();
        return properties && ImageMetadata(*properties).tiffSoftware() == softwareOfCopies();
    } catch (const std::bad_alloc &) {
        return false; // reading it as a photo reports this
    }
}

Result<CopyReport> writeCopy(const CopyOrder &order, const PhotoServices &services)
{
    try {
        const Result<ImageSource> source = ImageSource::open(order.readPath, services.limits);
        if (!source)
            return tl::unexpected(source.error());
        if (order.version && source->version() != order.version)
            return fail(PictureFailures::changedMeanwhile());
        const Result<QVariantMap> properties = source->properties();
        if (!properties)
            return tl::unexpected(properties.error());
        Result<CopyReport> report = Copy(order, services, *source, *properties).write();
        if (report || (order.isCanceled && order.isCanceled()))
            return report;
        // To a codec, a failed read or a changed file look like damage.
        const Result<void> unchanged = source->checkUnchanged();
        return unchanged ? report : tl::unexpected(unchanged.error());
    } catch (const std::bad_alloc &) {
        // One photo too many for the memory must not end the run of the others.
        return fail(outOfMemoryText());
    }
}

} // namespace plexa
