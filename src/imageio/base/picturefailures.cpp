// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/base/picturefailures.h"

namespace plexa
{

QString PictureFailures::unsupportedKind(const char *format)
{
    return tr("this kind of %1 cannot be read").arg(QLatin1String(format));
}

QString PictureFailures::tooManyPixels(QSize size, const ReadLimits &limits)
{
    return tr("the picture is too large: %1 x %2 pixels, at most %3 megapixels can be read")
        .arg(size.width())
        .arg(size.height())
        .arg(limits.maxPixels / 1'000'000);
}

QString PictureFailures::tooMuchMemory(QSize size, qint64 bytes, const ReadLimits &limits)
{
    // No picture within the limits needs as much.
    constexpr qint64 kBeyondAnyPicture = 1'000'000'000'000;
    if (bytes >= kBeyondAnyPicture)
        return tr("the file asks for too much memory");
    return tr("the picture is too large: %1 x %2 pixels need %3 MB of memory, %4 MB are allowed")
        .arg(size.width())
        .arg(size.height())
        .arg(bytes / 1'000'000)
        .arg(limits.maxBytes / 1'000'000);
}

QString PictureFailures::readError(const QIODevice &device)
{
    return readError(device.errorString());
}

QString PictureFailures::readError(const QString &reason)
{
    return tr("it cannot be read: %1").arg(reason);
}

QString PictureFailures::writeError(const QIODevice &device)
{
    return tr("it cannot be written: %1").arg(device.errorString());
}

QString PictureFailures::encoderFailed(const char *format)
{
    return tr("the picture could not be encoded as %1").arg(QLatin1String(format));
}

QString PictureFailures::colorsNotReduced(int code)
{
    return tr("its colors could not be reduced to those of a palette (error %1)").arg(code);
}

QString PictureFailures::tooLargeToWrite(const char *format)
{
    return tr("the picture is too large for a %1 file").arg(QLatin1String(format));
}

QString PictureFailures::cannotWrite(const QString &type)
{
    return tr("files of type %1 cannot be written").arg(type);
}

Result<void> PictureFailures::checkSize(QSize size, const ReadLimits &limits)
{
    if (size.width() < 1 || size.height() < 1)
        return fail(damaged());
    if (qint64(size.width()) * size.height() > limits.maxPixels)
        return fail(tooManyPixels(size, limits));
    return {};
}

Result<void> PictureFailures::checkMemory(QSize size, qint64 bytesPerPixel, const ReadLimits &limits)
{
    const qint64 pixels = qint64(size.width()) * size.height(); // below 2^62
    if (pixels > limits.maxBytes / bytesPerPixel)
        return fail(tooMuchMemory(size, pixels * bytesPerPixel, limits));
    return {};
}

} // namespace plexa
