// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/imagedestination.h"
#include "imageio/imagesource.h"
#include "support/exiftool.h"
#include "support/files.h"
#include "support/picturedifference.h"
#include "support/testenvironment.h"
#include "support/testpictures.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>

#include <cstdlib>

namespace plexa::test
{

/// Decodes a file as the program does. @return null when it cannot be read, with the reason in `error`
inline QImage decoded(const QString &path, QString *error = nullptr, const ReadLimits &limits = {})
{
    const auto source = ImageSource::open(path, limits);
    const auto image = source ? source->createImage() : tl::unexpected(source.error());
    if (!image && error)
        *error = image.error().text;
    return image ? *image : QImage();
}

/// Decodes a file with ImageMagick, its colors brought to the sRGB of `profile` (a file).
/// @param assumedProfile  a file with the profile to take for a picture that has none
inline QImage decodedByMagick(const QString &path, QSize size, const QString &profile,
                              const QString &assumedProfile = {})
{
    QStringList arguments{path + QStringLiteral("[0]"), QStringLiteral("-intent"), QStringLiteral("Relative"),
                          QStringLiteral("-black-point-compensation")};
    if (!assumedProfile.isEmpty())
        arguments += {QStringLiteral("-profile"), assumedProfile};
    arguments += {QStringLiteral("-profile"),    profile,
                  QStringLiteral("-colorspace"), QStringLiteral("sRGB"),
                  QStringLiteral("-depth"),      QStringLiteral("8"),
                  QStringLiteral("rgba:-")};
    const QByteArray pixels = outputOf(magickConvert(), arguments);
    if (pixels.size() != qsizetype(size.width()) * size.height() * 4)
        return {};
    return QImage(reinterpret_cast<const uchar *>(pixels.constData()), size.width(), size.height(),
                  QImage::Format_RGBA8888)
        .copy();
}

/// Streams a photo into a file in memory, in strips whose height does not divide the picture's.
/// @return empty when something failed; `error` then says what
inline QByteArray copied(const QString &path, const char *type, double quality, QString *error = nullptr)
{
    const auto report = [error](const Error &reason) {
        if (error)
            *error = reason.text;
        return QByteArray();
    };
    const auto source = ImageSource::open(path);
    if (!source)
        return report(source.error());
    QVariantMap properties = *source->properties();
    properties.insert(QStringLiteral("kCGImageDestinationLossyCompressionQuality"), quality);
    properties.insert(QStringLiteral("Orientation"), 1);
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    const auto reader = source->openRows();
    if (!reader)
        return report(reader.error());
    const RowFormat format = (*reader)->format();
    const auto writer = openDestination(file, format, {QLatin1String(type), properties, &*source});
    if (!writer)
        return report(writer.error());
    QImage strip(format.size.width(), 37, format.imageFormat());
    for (int row = 0; row < format.size.height(); row += strip.height()) {
        const int rows = qMin(strip.height(), format.size.height() - row);
        if (const auto read = (*reader)->readRows(strip, rows); !read)
            return report(read.error());
        if (const auto written = (*writer)->writeRows(strip, rows); !written)
            return report(written.error());
    }
    if (const auto finished = (*writer)->finish(); !finished)
        return report(finished.error());
    return file.data();
}

/// Writes a picture into a file as a copy is written. @return false when that fails, with the reason in
/// `error`
inline bool writePicture(const QString &path, const char *type, const QImage &image,
                         const QVariantMap &properties = {}, QString *error = nullptr)
{
    QBuffer file;
    file.open(QIODevice::ReadWrite);
    const auto written = writeImage(file, image, {QLatin1String(type), properties});
    if (!written && error)
        *error = written.error().text;
    return written && writeFile(path, file.data());
}

} // namespace plexa::test
