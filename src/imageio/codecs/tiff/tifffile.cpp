// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/codecs/tiff/tifffile.h"

#include "imageio/base/picturefailures.h"
#include "imageio/color/colorprofile.h"
#include "imageio/container/tiffpictures.h"

#include <cmath>
#include <cstdio>
#include <limits>
#include <map>

namespace plexa
{

namespace
{

/// Profiles of printers have a few megabytes.
constexpr quint32 kMaxProfileBytes = 32'000'000;

/// Samples of a pixel. A photo with its masks needs a few.
constexpr int kMaxSamples = 64;

/// DNG: demosaiced raw samples.
constexpr quint16 kLinearRaw = 34892;

template<class Value>
Value fieldOf(TIFF *tiff, ttag_t tag, Value otherwise)
{
    Value value = otherwise;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : otherwise;
}

int channelsOf(TiffFacts::Kind kind)
{
    switch (kind) {
    case TiffFacts::Kind::Gray:
    case TiffFacts::Kind::Palette:
        return 1;
    case TiffFacts::Kind::Cmyk:
        return 4;
    default:
        return 3;
    }
}

} // namespace

TiffFile::TiffFile(QIODevice &device, const ReadLimits &limits)
    : m_device(device)
    , m_limits(limits)
{
}

TiffFile::~TiffFile()
{
    if (m_tiff)
        TIFFClose(m_tiff);
}

tmsize_t TiffFile::read(thandle_t handle, void *bytes, tmsize_t count)
{
    auto *file = static_cast<TiffFile *>(handle);
    qint64 got = 0;
    if (file->m_position < file->m_device.size()) {
        got = file->m_device.seek(file->m_position) ? file->m_device.read(static_cast<char *>(bytes), count)
                                                    : -1;
        file->m_readFailed = file->m_readFailed || got < 0;
    }
    file->m_reachedEnd = file->m_reachedEnd || (got >= 0 && got < count);
    file->m_position += qMax<qint64>(got, 0);
    return got;
}

toff_t TiffFile::seek(thandle_t handle, toff_t offset, int whence)
{
    auto *file = static_cast<TiffFile *>(handle);
    const quint64 base = whence == SEEK_SET   ? 0
                         : whence == SEEK_CUR ? quint64(file->m_position)
                                              : quint64(file->m_device.size());
    const quint64 position = base + offset; // a negative offset wraps around
    if (position > quint64(std::numeric_limits<qint64>::max()))
        return toff_t(-1);
    file->m_position = qint64(position);
    return position;
}

int TiffFile::onError(TIFF *, void *self, const char *, const char *, va_list)
{
    static_cast<TiffFile *>(self)->m_isDamaged = true;
    return 1;
}

int TiffFile::onWarning(TIFF *, void *self, const char *module, const char *format, va_list)
{
    auto *file = static_cast<TiffFile *>(self);
    // libjpeg and the fax decoders only warn of damaged data and invent what is missing.
    if (qstrcmp(module, "JPEGLib") == 0)
        file->m_isDamaged = true;
    else if (qstrncmp(format, "Premature EOF", 13) == 0)
        file->m_isDamaged = file->m_reachedEnd = true;
    return 1;
}

QString TiffFile::failureReason() const
{
    if (m_readFailed)
        return PictureFailures::readError(m_device);
    return m_reachedEnd ? PictureFailures::truncated() : PictureFailures::damaged();
}

Result<void> TiffFile::open()
{
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    if (!options)
        return fail(PictureFailures::outOfMemory());
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(m_limits.maxBytes));
    TIFFOpenOptionsSetErrorHandlerExtR(options, onError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options, onWarning, this);
    m_tiff = TIFFClientOpenExt(
        "", "rm", this, read, [](thandle_t, void *, tmsize_t) { return tmsize_t(0); }, seek,
        [](thandle_t) { return 0; },
        [](thandle_t handle) { return toff_t(static_cast<TiffFile *>(handle)->m_device.size()); }, nullptr,
        nullptr, options);
    TIFFOpenOptionsFree(options);
    if (!m_tiff)
        return fail(failureReason());
    if (isCameraRaw())
        return fail(PictureFailures::unsupportedKind("TIFF"));
    if (const auto read = readLayout(); !read)
        return read;
    // Warnings up to here concern the metadata.
    m_isDamaged = m_reachedEnd = false;
    return {};
}

bool TiffFile::isCameraRaw()
{
    const quint16 photometric = fieldOf<quint16>(m_tiff, TIFFTAG_PHOTOMETRIC, 0);
    quint8 *version = nullptr;
    return photometric == PHOTOMETRIC_CFA || photometric == kLinearRaw ||
           TIFFGetField(m_tiff, TIFFTAG_DNGVERSION, &version) != 0 ||
           (m_device.seek(8) && m_device.read(2) == "CR");
}

Result<void> TiffFile::readLayout()
{
    const quint32 width = fieldOf<quint32>(m_tiff, TIFFTAG_IMAGEWIDTH, 0);
    const quint32 height = fieldOf<quint32>(m_tiff, TIFFTAG_IMAGELENGTH, 0);
    constexpr quint32 kMaxSide = std::numeric_limits<int>::max();
    m_facts.size = QSize(int(qMin(width, kMaxSide)), int(qMin(height, kMaxSide)));
    if (const auto checked = PictureFailures::checkSize(m_facts.size, m_limits); !checked)
        return checked;
    m_facts.isPlanar =
        fieldOf<quint16>(m_tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
    m_facts.samples = fieldOf<quint16>(m_tiff, TIFFTAG_SAMPLESPERPIXEL, 1);
    if (m_facts.samples == 1)
        m_facts.isPlanar = false;
    m_facts.depth = fieldOf<quint16>(m_tiff, TIFFTAG_BITSPERSAMPLE, 1);
    m_facts.isFloat =
        fieldOf<quint16>(m_tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT) == SAMPLEFORMAT_IEEEFP;
    if (!readKind())
        return fail(PictureFailures::unsupportedKind("TIFF"));
    m_facts.isTiled = TIFFIsTiled(m_tiff) != 0;
    m_facts.blockWidth = m_facts.isTiled ? fieldOf<quint32>(m_tiff, TIFFTAG_TILEWIDTH, 0) : width;
    m_facts.blockHeight = m_facts.isTiled
                              ? fieldOf<quint32>(m_tiff, TIFFTAG_TILELENGTH, 0)
                              : qMin(fieldOf<quint32>(m_tiff, TIFFTAG_ROWSPERSTRIP, height), height);
    if (m_facts.blockWidth == 0 || m_facts.blockHeight == 0)
        return fail(PictureFailures::damaged());
    quint32 profileBytes = 0;
    const void *profile = nullptr;
    if (TIFFGetField(m_tiff, TIFFTAG_ICCPROFILE, &profileBytes, &profile) && profileBytes <= kMaxProfileBytes)
        m_facts.iccProfile = QByteArray(static_cast<const char *>(profile), qsizetype(profileBytes));
    else if (m_facts.colorModel == u"RGB"_qs && exifSaysAdobeRgb(m_device))
        m_facts.iccProfile = adobeRgbProfile();
    readResolution();
    return {};
}

bool TiffFile::readKind()
{
    using Kind = TiffFacts::Kind;
    TiffFacts &facts = m_facts;
    const quint16 compression = fieldOf<quint16>(m_tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    if (!TIFFIsCODECConfigured(compression))
        return false;
    quint16 photometric = 0;
    if (!TIFFGetField(m_tiff, TIFFTAG_PHOTOMETRIC, &photometric))
        photometric = facts.samples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK;
    static const std::map<quint16, std::pair<Kind, const char *>> kinds = {
        {PHOTOMETRIC_MINISWHITE, {Kind::Gray, "Gray"}}, {PHOTOMETRIC_MINISBLACK, {Kind::Gray, "Gray"}},
        {PHOTOMETRIC_RGB, {Kind::Rgb, "RGB"}},          {PHOTOMETRIC_PALETTE, {Kind::Palette, "RGB"}},
        {PHOTOMETRIC_SEPARATED, {Kind::Cmyk, "CMYK"}},  {PHOTOMETRIC_CIELAB, {Kind::Lab, "Lab"}},
        {PHOTOMETRIC_ICCLAB, {Kind::Lab, "Lab"}},       {PHOTOMETRIC_YCBCR, {Kind::ByLibrary, "RGB"}},
        {PHOTOMETRIC_LOGL, {Kind::ByLibrary, "RGB"}},   {PHOTOMETRIC_LOGLUV, {Kind::ByLibrary, "RGB"}}};
    const auto found = kinds.find(photometric);
    if (found == kinds.end() || (photometric == PHOTOMETRIC_SEPARATED &&
                                 fieldOf<quint16>(m_tiff, TIFFTAG_INKSET, INKSET_CMYK) != INKSET_CMYK))
        return false;
    facts.kind = found->second.first;
    facts.colorModel = QString::fromLatin1(found->second.second);
    facts.zeroIsWhite = photometric == PHOTOMETRIC_MINISWHITE;
    facts.hasSignedAB = photometric == PHOTOMETRIC_CIELAB;
    if (photometric == PHOTOMETRIC_YCBCR && compression == COMPRESSION_JPEG && !facts.isPlanar) {
        facts.kind = Kind::Rgb;
        TIFFSetField(m_tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    }
    if (facts.kind == Kind::ByLibrary) {
        char text[1024];
        // Rows as stored.
        TIFFSetField(m_tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
        return TIFFRGBAImageOK(m_tiff, text) != 0;
    }
    facts.channels = channelsOf(facts.kind);
    readExtraSamples();
    return facts.samples >= facts.channels && facts.samples <= kMaxSamples && isReadableSample();
}

bool TiffFile::isReadableSample() const
{
    using Kind = TiffFacts::Kind;
    const int depth = m_facts.depth;
    const bool isByteOrWord = depth == 8 || depth == 16;
    switch (fieldOf<quint16>(m_tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT)) {
    case SAMPLEFORMAT_IEEEFP:
        return (depth == 16 || depth == 32 || depth == 64) && m_facts.kind != Kind::Palette &&
               m_facts.kind != Kind::Lab;
    case SAMPLEFORMAT_INT: // usually written by mistake for unsigned samples
        return (isByteOrWord || depth == 32) && m_facts.kind != Kind::Palette &&
               (m_facts.kind != Kind::Lab || isByteOrWord);
    case SAMPLEFORMAT_UINT:
    case SAMPLEFORMAT_VOID:
        if (m_facts.kind == Kind::Lab)
            return isByteOrWord;
        return depth >= 1 && (depth <= 8 || (m_facts.kind != Kind::Palette && (depth <= 16 || depth == 32)));
    default:
        return false;
    }
}

void TiffFile::readExtraSamples()
{
    quint16 count = 0;
    const quint16 *kinds = nullptr;
    if (!TIFFGetField(m_tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds))
        return;
    for (int i = 0; i < count && m_facts.channels + i < m_facts.samples; ++i) {
        if (kinds[i] == EXTRASAMPLE_ASSOCALPHA || kinds[i] == EXTRASAMPLE_UNASSALPHA) {
            m_facts.alphaSample = m_facts.channels + i;
            m_facts.isPremultiplied = kinds[i] == EXTRASAMPLE_ASSOCALPHA;
            return;
        }
    }
}

void TiffFile::readResolution()
{
    const auto horizontal = double(fieldOf<float>(m_tiff, TIFFTAG_XRESOLUTION, 0));
    const auto vertical = double(fieldOf<float>(m_tiff, TIFFTAG_YRESOLUTION, 0));
    const quint16 unit = fieldOf<quint16>(m_tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
    const double perInch = unit == RESUNIT_INCH ? 1 : unit == RESUNIT_CENTIMETER ? 2.54 : 0;
    if (!std::isfinite(horizontal) || !std::isfinite(vertical) || horizontal <= 0 || vertical <= 0)
        return;
    m_facts.dpiWidth = horizontal * perInch;
    m_facts.dpiHeight = vertical * perInch;
}

} // namespace plexa
