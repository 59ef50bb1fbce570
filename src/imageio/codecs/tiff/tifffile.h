// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "imageio/codecs/codec.h"

#include <tiffio.h>

#include <cstdarg>

namespace plexa
{

/// The picture of a TIFF file's first directory, as libtiff returns its samples.
struct TiffFacts {
    /// How the samples become colors.
    enum class Kind {
        Gray,
        Palette,
        Rgb,
        Cmyk,
        Lab,
        ByLibrary, ///< libtiff converts to RGB: YCbCr that is not JPEG, LogLuv
    };

    QSize size;
    Kind kind = Kind::Gray;
    int depth = 8; ///< bits a sample
    bool isFloat = false;
    int channels = 1;     ///< of the color; they come first
    int samples = 1;      ///< of a pixel
    int alphaSample = -1; ///< -1: no alpha
    bool isPremultiplied = false;
    bool zeroIsWhite = false; ///< Gray
    bool hasSignedAB = false; ///< Lab: a and b are signed numbers
    bool isPlanar = false;
    bool isTiled = false;
    quint32 blockWidth = 0; ///< of a tile; of a strip, the picture's
    quint32 blockHeight = 0;
    QString colorModel;
    QByteArray iccProfile;
    double dpiWidth = 0; ///< 0: unknown
    double dpiHeight = 0;
};

/// An open TIFF file on a device, which must outlive it. One thread at a time.
class TiffFile final
{
public:
    TiffFile(QIODevice &device, const ReadLimits &limits);
    ~TiffFile();
    TiffFile(const TiffFile &) = delete;
    TiffFile &operator=(const TiffFile &) = delete;

    /// Reads the first directory. To be called once, before all else.
    /// @return the failure if it is damaged, too large, camera raw data or of an unknown kind
    [[nodiscard]] Result<void> open();

    const TiffFacts &facts() const { return m_facts; }
    TIFF *handle() const { return m_tiff; }
    qint64 fileBytes() const { return m_device.size(); }

    /// Has libtiff reported damage, even if it continued?
    bool isDamaged() const { return m_isDamaged; }

    /// The reason why the last call of libtiff failed.
    QString failureReason() const;

private:
    static tmsize_t read(thandle_t handle, void *bytes, tmsize_t count);
    static toff_t seek(thandle_t handle, toff_t offset, int whence);
    static int onError(TIFF *, void *self, const char *, const char *, va_list);
    static int onWarning(TIFF *, void *self, const char *module, const char *format, va_list);

    bool isCameraRaw();
    Result<void> readLayout();
    bool readKind();
    bool isReadableSample() const;
    void readExtraSamples();
    void readResolution();

    QIODevice &m_device;
    const ReadLimits m_limits;
    TIFF *m_tiff = nullptr;
    TiffFacts m_facts;
    qint64 m_position = 0; ///< as libtiff sees it; may be beyond the end
    bool m_reachedEnd = false;
    bool m_readFailed = false;
    bool m_isDamaged = false;
};

} // namespace plexa
