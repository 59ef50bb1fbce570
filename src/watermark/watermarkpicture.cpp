// SPDX-License-Identifier: GPL-3.0-or-later

#include "watermark/watermarkpicture.h"

#include "imageio/imagesource.h"
#include "metadata/propertykeys.h"
#include "platform/systemerror.h"
#include "raster/bitmaputilities.h"
#include "raster/orientation.h"
#include "watermark/encodedpicture.h"
#include "watermark/scaledpictures.h"
#include "watermark/svgdrawing.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <mutex>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::WatermarkPicture)
};

constexpr qint64 kHeadBytes = 1024; // enough to tell formats apart
constexpr qint64 kMaxSvgBytes = 16'000'000;

bool isSvg(QByteArrayView head)
{
    const QByteArray start = head.first(std::min<qsizetype>(head.size(), 1024)).toByteArray().trimmed();
    const bool isXml = start.startsWith('<') || start.startsWith("\xef\xbb\xbf<");
    return isXml && (start.contains("<svg") || start.startsWith("<?xml") || start.contains("<!DOCTYPE svg"));
}

Result<QByteArray> startOf(const QString &path, qint64 bytes)
{
    QFile file(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) // opening a pipe would wait for its other end
        return fail(openErrorText(path, Texts::tr("it is not a regular file")));
    if (!file.open(QIODevice::ReadOnly))
        return fail(openErrorText(path, file.errorString()));
    return file.read(bytes);
}

Result<QByteArray> svgOf(const QString &path)
{
    const Result<QByteArray> bytes = startOf(path, kMaxSvgBytes + 1);
    if (bytes && bytes->size() > kMaxSvgBytes)
        return fail(Texts::tr("the SVG drawing is larger than %1 MB").arg(kMaxSvgBytes / 1'000'000));
    return bytes;
}

Result<QImage> uprightImage(const QString &path)
{
    const Result<ImageSource> source = ImageSource::open(path, EncodedPicture::readLimits());
    if (!source)
        return tl::unexpected(source.error());
    const Result<QImage> stored = source->createImage();
    if (!stored)
        return stored;
    const Result<QVariantMap> properties = source->properties();
    if (!properties)
        return tl::unexpected(properties.error());
    const int orientation = properties->value(kCGImagePropertyOrientation).toInt();
    if (orientation < 2 || orientation > 8)
        return stored;
    const QImage upright = createImageUpright(*stored, orientation, 1, 1);
    if (upright.isNull())
        return fail(Texts::tr("there is not enough memory for it"));
    return upright;
}

} // namespace

/// Has one of `svg`, `pixels` and `encoded`, or none if it cannot be drawn.
struct WatermarkPicture::Data {
    QByteArray svg;
    QImage pixels;
    KeptObject original; // holds the bytes of `encoded`
    std::shared_ptr<const EncodedPicture> encoded;
    QSizeF size;

    const std::shared_ptr<ScaledPictures> scaledPictures = ScaledPictures::shared();

    mutable std::mutex faultLock;
    mutable QString fault;                    // guarded by faultLock
    mutable qint64 pixelsThatTookTooLong = 0; // guarded by faultLock; of a drawing

    Data() = default;
    Data(const Data &) = delete;
    Data &operator=(const Data &) = delete;
    ~Data() { scaledPictures->remove(this); }

    void setFault(const QString &text) const
    {
        const std::lock_guard guard(faultLock);
        if (fault != text)
            fault = text;
    }

    /// The pixels at their own size. Sets the fault.
    QImage decoded() const
    {
        if (!encoded)
            return pixels;
        const Result<QImage> image = encoded->decoded();
        setFault(image ? QString() : image.error().text);
        return image.value_or(QImage());
    }

    /// The drawing in that size. Sets the fault; a drawing that took too long is not tried again.
    QImage drawn(QSize to, double tilt, const CancelCheck &isCanceled) const
    {
        {
            const std::lock_guard guard(faultLock);
            if (!fault.isEmpty() && pixelsThatTookTooLong <= qint64{to.width()} * to.height())
                return {};
        }
        const Result<QImage> image = renderedSvg(svg, to, tilt, isCanceled);
        if (image || canceled(isCanceled))
            return image.value_or(QImage());
        const std::lock_guard guard(faultLock);
        fault = image.error().text;
        pixelsThatTookTooLong = qint64{to.width()} * to.height();
        return {};
    }

    QImage rendered(QSize to, double tilt, const CancelCheck &isCanceled) const
    {
        if (canceled(isCanceled))
            return {};
        if (!svg.isEmpty())
            return drawn(to, tilt, isCanceled);
        if (tilt != 0)
            return createImageRotatedByAngle(found(to, 0, isCanceled), tilt);
        QImage image = decoded();
        if (!image.isNull() && image.size() != to)
            image = createImageScaledToSize(image, to.width(), to.height(), true, isCanceled);
        image.convertTo(QImage::Format_ARGB32_Premultiplied);
        return image;
    }

    QImage found(QSize size, double tilt, const CancelCheck &isCanceled) const
    {
        return scaledPictures->find(
            this, {size, tilt}, [&] { return rendered(size, tilt, isCanceled); }, isCanceled);
    }
};

WatermarkPicture::WatermarkPicture() = default;
WatermarkPicture::~WatermarkPicture() = default;
WatermarkPicture::WatermarkPicture(const WatermarkPicture &) = default;
WatermarkPicture::WatermarkPicture(WatermarkPicture &&) noexcept = default;
WatermarkPicture &WatermarkPicture::operator=(const WatermarkPicture &) = default;
WatermarkPicture &WatermarkPicture::operator=(WatermarkPicture &&) noexcept = default;

Result<WatermarkPicture> WatermarkPicture::load(const QString &path)
{
    const auto failed = [&path](const Error &error) {
        return fail(Texts::tr("\"%1\" cannot be used as a watermark: %2").arg(path, error.text));
    };
    const Result<QByteArray> head = startOf(path, kHeadBytes);
    if (!head)
        return failed(head.error());
    if (head->startsWith("\x1f\x8b")) {
        return failed(
            Error{Texts::tr("it is compressed, as .svgz files are; save the drawing as plain SVG")});
    }
    if (isSvg(*head)) {
        const Result<WatermarkPicture> picture = svgOf(path).and_then(&WatermarkPicture::fromSvg);
        return picture ? picture : failed(picture.error());
    }
    const Result<QImage> image = uprightImage(path);
    if (!image)
        return failed(image.error());
    return fromImage(*image);
}

WatermarkPicture WatermarkPicture::fromImage(const QImage &image)
{
    WatermarkPicture picture;
    if (image.isNull())
        return picture;
    const auto data = std::make_shared<Data>();
    data->pixels = image;
    data->size = image.size();
    picture.m_data = data;
    return picture;
}

Result<WatermarkPicture> WatermarkPicture::fromSvg(const QByteArray &svg)
{
    const Result<SvgDrawing> drawing = checkedSvg(svg);
    if (!drawing)
        return tl::unexpected(drawing.error());
    const auto data = std::make_shared<Data>();
    data->svg = drawing->svg;
    data->size = drawing->size;
    WatermarkPicture picture;
    picture.m_data = data;
    return picture;
}

WatermarkPicture WatermarkPicture::fromArchive(const ArchivedValue &image)
{
    if (image.isNone())
        return {};
    const ImageRepresentations representations = image.imageRepresentations();
    const auto data = std::make_shared<Data>();
    data->original = image.kept();
    WatermarkPicture picture;
    picture.m_data = data;
    QString fault;
    if (!representations.svg.isEmpty()) {
        const Result<WatermarkPicture> drawing = fromSvg(representations.svg.toByteArray());
        if (drawing) {
            data->svg = drawing->m_data->svg;
            data->size = drawing->m_data->size;
            return picture;
        }
        fault = drawing.error().text;
    }
    const auto encoded = EncodedPicture::fromRepresentations(representations.bitmaps);
    if (!encoded) {
        data->fault = fault.isEmpty() ? encoded.error().text : fault;
        return picture;
    }
    data->encoded = *encoded;
    data->size = (*encoded)->size();
    return picture;
}

QString WatermarkPicture::fault() const
{
    if (!m_data)
        return {};
    const std::lock_guard guard(m_data->faultLock);
    return m_data->fault;
}

KeptObject WatermarkPicture::original() const
{
    return m_data ? m_data->original : KeptObject();
}

QSizeF WatermarkPicture::size() const
{
    return m_data ? m_data->size : QSizeF();
}

QByteArray WatermarkPicture::svg() const
{
    return m_data ? m_data->svg : QByteArray();
}

QImage WatermarkPicture::image() const
{
    if (!m_data || m_data->svg.isEmpty())
        return m_data ? m_data->decoded() : QImage();
    return imageOfSize(m_data->size.toSize().expandedTo(QSize(1, 1)));
}

QImage WatermarkPicture::imageOfSize(QSize size, const CancelCheck &isCanceled, double tilt) const
{
    return m_data && !size.isEmpty() ? m_data->found(size, tilt, isCanceled) : QImage();
}

} // namespace plexa
