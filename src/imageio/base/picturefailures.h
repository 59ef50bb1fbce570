// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/result.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QSize>

namespace plexa
{

/// Bounds for pictures from outside.
struct ReadLimits {
    qint64 maxPixels = 1'000'000'000; ///< a picture with more is refused
    qint64 maxBytes = 4'000'000'000;  ///< memory that one decoded picture may take
};

/// The reasons why a picture cannot be read or written: text that follows a file's name and a colon.
class PictureFailures
{
    Q_DECLARE_TR_FUNCTIONS(plexa::PictureFailures)

public:
    static QString emptyFile() { return tr("the file is empty"); }
    static QString notAPicture() { return tr("not a picture that can be read"); }
    static QString unsupportedKind(const char *format);
    static QString noRawData() { return tr("it contains no camera raw photo of a known kind"); }
    static QString lacksSensorData() { return tr("it lacks data of the camera's sensor"); }
    static QString truncated() { return tr("the file is truncated"); }
    static QString lacksLastScan()
    {
        return tr("the file lacks the last of its scans; the finest step of the detail is missing");
    }
    static QString mayBeDamaged()
    {
        return tr("the picture may be damaged: its data contain bytes that belong to no part of it");
    }
    static QString damaged() { return tr("the picture data are damaged"); }
    static QString tooManyPixels(QSize size, const ReadLimits &limits);
    static QString tooMuchMemory(QSize size, qint64 bytes, const ReadLimits &limits);
    static QString outOfMemory() { return tr("there is not enough memory for the picture"); }
    static QString changedMeanwhile() { return tr("the file was changed while it was read"); }
    static QString readError(const QIODevice &device);
    static QString readError(const QString &reason);
    static QString writeError(const QIODevice &device);
    static QString exifTooLong() { return tr("its EXIF data are too long for a JPEG file"); }
    static QString encoderFailed(const char *format);
    /// @param code  libimagequant's
    static QString colorsNotReduced(int code);
    static QString tooLargeToWrite(const char *format);
    static QString cannotWrite(const QString &type);

    /// Fails if a side is below 1 or there are more pixels than allowed.
    static Result<void> checkSize(QSize size, const ReadLimits &limits);

    /// Fails if the whole picture needs more memory than allowed.
    static Result<void> checkMemory(QSize size, qint64 bytesPerPixel, const ReadLimits &limits);
};

} // namespace plexa
