// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/colortransform.h"

#include "imageio/color/colorpipeline.h"

#include <QCache>
#include <QtEndian>

#include <lcms2_plugin.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace plexa
{

namespace
{

/// For all transforms that are kept; the largest usual profiles need a few MB.
constexpr qsizetype kMaxCachedBytes = qsizetype{64} << 20;

// A few are usual. Little CMS tests the pieces of a curve one after the other, for each value.
constexpr quint32 kMaxElements = 8;
constexpr qsizetype kMaxPieces = 64;

constexpr cmsUInt32Number kOutputFormat = TYPE_RGB_FLT;

struct LayoutFacts {
    cmsUInt32Number format; ///< by which Little CMS knows the channels; it sees no pixels
    cmsColorSpaceSignature space;
    int maxSample;
};

LayoutFacts factsOf(PixelLayout layout)
{
    switch (layout) {
    case PixelLayout::Rgb32:
        return {TYPE_RGB_FLT, cmsSigRgbData, 255};
    case PixelLayout::Rgb48:
        return {TYPE_RGB_FLT, cmsSigRgbData, 65535};
    case PixelLayout::Gray8:
        return {TYPE_GRAY_FLT, cmsSigGrayData, 255};
    case PixelLayout::Gray16:
        return {TYPE_GRAY_FLT, cmsSigGrayData, 65535};
    case PixelLayout::Cmyk8:
        return {TYPE_CMYK_FLT, cmsSigCmykData, 255};
    case PixelLayout::Cmyk16:
        return {TYPE_CMYK_FLT, cmsSigCmykData, 65535};
    case PixelLayout::Lab16:
        return {TYPE_Lab_FLT, cmsSigLabData, 65535};
    }
    Q_UNREACHABLE();
}

/// Called by Little CMS with a new transform before it resamples the pipeline: copies the pipeline to the
/// place that the context names, if any. The transform then stays without a function.
cmsBool capturePipeline(_cmsTransform2Fn *, void **, _cmsFreeUserDataFn *, cmsPipeline **pipeline,
                        cmsUInt32Number *, cmsUInt32Number *outputFormat, cmsUInt32Number *)
{
    auto *place = static_cast<LcmsPipeline *>(cmsGetContextUserData(cmsGetPipelineContextID(*pipeline)));
    if (!place || *outputFormat != kOutputFormat)
        return FALSE;
    place->reset(cmsPipelineDup(*pipeline));
    return TRUE;
}

LcmsContext makeContext(LcmsPipeline *captured)
{
    cmsPluginTransform plugin = {{cmsPluginMagicNumber, 2080, cmsPluginTransformSig, nullptr}, {}};
    plugin.factories.xform = capturePipeline;
    return LcmsContext(cmsCreateContext(&plugin, captured));
}

/// Are the elements of floating point (ICC.1:2010, 10.14) of a profile so few that Little CMS evaluates them
/// in reasonable time? They may share their bytes, so that a small file can contain millions.
bool hasFewElements(cmsHPROFILE profile)
{
    for (const cmsTagSignature tag : {cmsSigDToB0Tag, cmsSigDToB1Tag, cmsSigDToB2Tag, cmsSigDToB3Tag,
                                      cmsSigBToD0Tag, cmsSigBToD1Tag, cmsSigBToD2Tag, cmsSigBToD3Tag}) {
        QByteArray bytes(qsizetype(cmsReadRawTag(profile, tag, nullptr, 0)), '\0');
        cmsReadRawTag(profile, tag, bytes.data(), cmsUInt32Number(bytes.size()));
        if (bytes.size() >= 16 && (qFromBigEndian<quint32>(bytes.constData() + 12) > kMaxElements ||
                                   bytes.count("parf") + bytes.count("samf") > kMaxPieces))
            return false;
    }
    return true;
}

/// Some grays or colors that cover the whole range.
std::vector<QRgb> testColors(cmsColorSpaceSignature space)
{
    std::vector<QRgb> colors;
    if (space == cmsSigGrayData) {
        for (int gray = 0; gray < 256; ++gray)
            colors.push_back(qRgb(gray, gray, gray));
        return colors;
    }
    for (int red = 0; red <= 256; red += 16) {
        for (int green = 0; green <= 256; green += 16) {
            for (int blue = 0; blue <= 256; blue += 16)
                colors.push_back(qRgb(qMin(red, 255), qMin(green, 255), qMin(blue, 255)));
        }
    }
    return colors;
}

/// @tparam Sample  uchar or quint16
/// @return the samples of gray or of red, green and blue
template<class Sample>
std::vector<Sample> samplesOf(const std::vector<QRgb> &colors, cmsColorSpaceSignature space)
{
    std::vector<Sample> samples;
    for (const QRgb color : colors) {
        for (const int byte : {qRed(color), qGreen(color), qBlue(color)}) {
            samples.push_back(Sample(sizeof(Sample) == 1 ? byte : byte * 257));
            if (space == cmsSigGrayData)
                break;
        }
    }
    return samples;
}

} // namespace

struct ColorTransform::Data {
    LcmsContext context; // first: destroyed last
    LcmsPipeline captured;
    std::optional<ColorPipeline> pipeline;
    PixelLayout layout = PixelLayout::Rgb32;

    using MakeProfile = LcmsProfile(cmsContext context);
    static std::shared_ptr<const ColorTransform> make(PixelLayout layout,
                                                      const std::function<MakeProfile> &makeProfile);
    bool link(cmsHPROFILE from);
    bool leavesColorsAlone() const;
    void convert(const void *in, QRgb *out, qsizetype count) const;
};

ColorTransform::ColorTransform(std::unique_ptr<Data> data)
    : m_data(std::move(data))
{
}

ColorTransform::~ColorTransform() = default;

std::shared_ptr<const ColorTransform>
ColorTransform::Data::make(PixelLayout layout, const std::function<MakeProfile> &makeProfile)
{
    auto data = std::make_unique<Data>();
    data->layout = layout;
    data->context = makeContext(&data->captured);
    if (!data->context)
        return nullptr;
    const LcmsProfile from = makeProfile(data->context.get());
    if (!from || !data->link(from.get()) || data->leavesColorsAlone())
        return nullptr;
    return std::shared_ptr<const ColorTransform>(new ColorTransform(std::move(data)));
}

/// @return false if the profile cannot be applied to pixels of this layout
bool ColorTransform::Data::link(cmsHPROFILE from)
{
    const LayoutFacts facts = factsOf(layout);
    const LcmsProfile to(cmsCreate_sRGBProfileTHR(context.get()));
    if (!to || cmsGetColorSpace(from) != facts.space || !describesPictures(from) || !hasFewElements(from))
        return false;
    const LcmsTransform transform(cmsCreateTransformTHR(context.get(), from, facts.format, to.get(),
                                                        kOutputFormat, INTENT_RELATIVE_COLORIMETRIC,
                                                        cmsFLAGS_BLACKPOINTCOMPENSATION));
    if (!transform || !captured)
        return false;
    pipeline.emplace(std::move(captured), facts.maxSample);
    return true;
}

bool ColorTransform::Data::leavesColorsAlone() const
{
    const auto [format, space, maxSample] = factsOf(layout);
    if (space != cmsSigRgbData && space != cmsSigGrayData)
        return false;
    const std::vector<QRgb> colors = testColors(space);
    std::vector<QRgb> converted = colors;
    const auto count = qsizetype(colors.size());
    if (layout == PixelLayout::Rgb32)
        pipeline->convertPixels(converted.data(), count);
    else if (maxSample == 255)
        pipeline->convert(samplesOf<uchar>(colors, space).data(), converted.data(), count);
    else
        pipeline->convert(samplesOf<quint16>(colors, space).data(), converted.data(), count);
    return std::equal(colors.begin(), colors.end(), converted.begin(), [](QRgb a, QRgb b) {
        return std::abs(qRed(a) - qRed(b)) <= 1 && std::abs(qGreen(a) - qGreen(b)) <= 1 &&
               std::abs(qBlue(a) - qBlue(b)) <= 1;
    });
}

void ColorTransform::Data::convert(const void *in, QRgb *out, qsizetype count) const
{
    if (layout != PixelLayout::Rgb32) {
        pipeline->convert(in, out, count);
        return;
    }
    if (in != out)
        std::memcpy(out, in, size_t(count) * sizeof(QRgb));
    pipeline->convertPixels(out, count);
}

std::shared_ptr<const ColorTransform> ColorTransform::toSrgb(const QByteArray &iccProfile, PixelLayout layout)
{
    static std::mutex mutex;
    static QCache<QByteArray, std::shared_ptr<const ColorTransform>> transforms(kMaxCachedBytes); // guarded
    const QByteArray key = QByteArray(iccProfile).append(char(layout));
    {
        const std::lock_guard lock(mutex);
        if (const auto *known = transforms.object(key))
            return *known;
    }
    auto transform =
        Data::make(layout, [&iccProfile](cmsContext context) { return openProfile(context, iccProfile); });
    const qint64 bytes = iccProfile.size() + (transform ? transform->m_data->pipeline->bytes() : 0);
    const std::lock_guard lock(mutex);
    transforms.insert(key, new std::shared_ptr(transform), bytes);
    return transform;
}

std::shared_ptr<const ColorTransform> ColorTransform::toSrgb(const ColorCalibration &calibration,
                                                             PixelLayout layout)
{
    // Exponents beyond these bounds are invalid.
    if (!(calibration.gamma >= 0.05 && calibration.gamma <= 20))
        return nullptr;
    const auto &c = calibration.chromaticities;
    for (size_t i = 0; i < c.size(); i += 2) {
        if (!(c[i] >= 0 && c[i + 1] > 0 && c[i] + c[i + 1] <= 1.0001))
            return nullptr;
    }
    return Data::make(layout, [&](cmsContext context) {
        const cmsCIExyY white = {c[0], c[1], 1};
        const cmsCIExyYTRIPLE primaries = {{c[2], c[3], 1}, {c[4], c[5], 1}, {c[6], c[7], 1}};
        const LcmsCurve curve(cmsBuildGamma(context, 1 / calibration.gamma));
        return curve ? rgbProfile(context, white, primaries, curve) : nullptr;
    });
}

std::shared_ptr<const ColorTransform> ColorTransform::labToSrgb()
{
    return Data::make(PixelLayout::Lab16, [](cmsContext context) {
        return LcmsProfile(cmsCreateLab4ProfileTHR(context, nullptr)); // null: D50
    });
}

void ColorTransform::convert(const void *in, QRgb *out, qsizetype count) const
{
    m_data->convert(in, out, count);
}

} // namespace plexa
