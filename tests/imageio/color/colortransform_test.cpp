// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/colorprofile.h"
#include "imageio/color/colortransform.h"
#include "imageio/color/lcmshandles.h"
#include "support/datarows.h"

#include <QDataStream>
#include <QRandomGenerator>

#include <cmath>
#include <functional>
#include <thread>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr cmsCIExyY kD50 = {0.3457, 0.3585, 1};
constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1};
constexpr cmsCIExyYTRIPLE kProPhoto = {{0.7347, 0.2653, 1}, {0.1596, 0.8404, 1}, {0.0366, 0.0001, 1}};
constexpr cmsCIExyYTRIPLE kP3 = {{0.68, 0.32, 1}, {0.265, 0.69, 1}, {0.15, 0.06, 1}};

using Color = std::array<double, 3>;
/// A formula of a profile: from samples to encoded sRGB, all 0..1.
using Judge = std::function<Color(const double *samples)>;

using Bytes = QByteArray;
using Kind = Row<Bytes, int, double>; // profile, its channels, greatest error in 1 of 255

LcmsCurve powerCurve(double exponent)
{
    return LcmsCurve(cmsBuildGamma(nullptr, exponent));
}

/// A table so short that its corners matter.
LcmsCurve corneredCurve(double exponent)
{
    std::vector<cmsUInt16Number> entries;
    for (int i = 0; i < 21; ++i)
        entries.push_back(cmsUInt16Number(65535 * std::pow(i / 20.0, exponent)));
    return LcmsCurve(cmsBuildTabulatedToneCurve16(nullptr, cmsUInt32Number(entries.size()), entries.data()));
}

LcmsCurve srgbCurve()
{
    const double parameters[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    return LcmsCurve(cmsBuildParametricToneCurve(nullptr, 4, parameters));
}

Bytes saved(const LcmsProfile &profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile.get(), nullptr, &size);
    Bytes bytes(qsizetype(size), '\0');
    cmsSaveProfileToMem(profile.get(), bytes.data(), &size);
    return bytes;
}

Bytes grayProfile(const LcmsCurve &curve)
{
    return saved(LcmsProfile(cmsCreateGrayProfile(&kD50, curve.get())));
}

Bytes matrixProfile(const cmsCIExyY &white, const cmsCIExyYTRIPLE &primaries, const LcmsCurve &curve)
{
    return saved(rgbProfile(nullptr, white, primaries, curve));
}

LcmsTransform makeTransform(const LcmsProfile &from, int channels, cmsHPROFILE to, cmsUInt32Number format)
{
    const cmsUInt32Number formats[] = {0, TYPE_GRAY_DBL, 0, TYPE_RGB_DBL, TYPE_CMYK_DBL};
    return LcmsTransform(
        cmsCreateTransform(from.get(), formats[channels], to, format, INTENT_RELATIVE_COLORIMETRIC,
                           cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE | cmsFLAGS_BLACKPOINTCOMPENSATION));
}

/// The encoding of light as IEC 61966-2-1 gives it.
double encoded(double light)
{
    return light <= 0.0031308 ? 12.92 * light : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

/// ICC.1:2010, F.3, with the published matrices of both spaces under D50.
Color proPhotoToSrgb(const double *samples)
{
    constexpr double kToXyz[3][3] = {
        {0.7976749, 0.1351917, 0.0313534}, {0.2880402, 0.7118741, 0.0000857}, {0, 0, 0.8252100}};
    constexpr double kToSrgb[3][3] = {{3.1338561, -1.6168667, -0.4906146},
                                      {-0.9787684, 1.9161415, 0.0334540},
                                      {0.0719453, -0.2289914, 1.4052427}};
    const auto product = [](const double(&matrix)[3][3], const Color &color) {
        Color sums = {};
        for (size_t row = 0; row < 3; ++row) {
            for (size_t column = 0; column < 3; ++column)
                sums[row] += matrix[row][column] * color[column];
        }
        return sums;
    };
    const Color light = {std::pow(samples[0], 1.8), std::pow(samples[1], 1.8), std::pow(samples[2], 1.8)};
    const Color linear = product(kToSrgb, product(kToXyz, light));
    return {encoded(linear[0]), encoded(linear[1]), encoded(linear[2])};
}

/// Little CMS in floating point, without its tables.
Judge judgeOf(const Bytes &bytes, int channels)
{
    const LcmsProfile from = openProfile(nullptr, bytes);
    const LcmsProfile to(cmsCreate_sRGBProfile());
    const std::shared_ptr<void> transform = makeTransform(from, channels, to.get(), TYPE_RGB_DBL);
    return [transform, channels](const double *samples) {
        std::array<double, 4> scaled = {}; // Little CMS counts inks in percent
        std::transform(samples, samples + channels, scaled.begin(),
                       [channels](double sample) { return channels == 4 ? 100 * sample : sample; });
        Color color;
        cmsDoTransform(transform.get(), scaled.data(), color.data(), 1);
        return color;
    };
}

struct TableSource {
    int channels;
    LcmsTransform toLab; ///< null: the light itself

    /// Of the light that inks leave, or of RGB itself; black is gray.
    static cmsInt32Number sample(const cmsUInt16Number *in, cmsUInt16Number *out, void *source)
    {
        const auto *self = static_cast<TableSource *>(source);
        double light[3];
        for (int i = 0; i < 3; ++i) {
            const double part = in[i] / 65535.0;
            light[i] = 0.1 + 0.9 * (self->channels == 4 ? (1 - part) * (1 - in[3] / 65535.0) : part);
            out[i] = cmsUInt16Number(65535 * light[i]);
        }
        if (self->toLab)
            cmsDoTransform(self->toLab.get(), light, out, 1);
        return TRUE;
    }
};

Bytes profileOf(int channels, double version, cmsColorSpaceSignature pcs, cmsTagSignature tag,
                const std::vector<cmsStage *> &stages)
{
    const LcmsPipeline pipeline(cmsPipelineAlloc(nullptr, cmsUInt32Number(channels), 3));
    for (cmsStage *stage : stages)
        cmsPipelineInsertStage(pipeline.get(), cmsAT_END, stage);
    const LcmsProfile profile(cmsCreateProfilePlaceholder(nullptr));
    cmsSetProfileVersion(profile.get(), version);
    cmsSetDeviceClass(profile.get(), cmsSigInputClass);
    cmsSetColorSpace(profile.get(), channels == 4 ? cmsSigCmykData : cmsSigRgbData);
    cmsSetPCS(profile.get(), pcs);
    return cmsWriteTag(profile.get(), tag, pipeline.get()) ? saved(profile) : Bytes();
}

/// A profile with a table of Lab, or of the light of P3 with curves and a matrix after it.
/// @param nodes  of the table along each channel
Bytes tableProfile(int channels, cmsUInt32Number nodes, double version, cmsColorSpaceSignature pcs)
{
    TableSource source = {channels, nullptr};
    if (pcs == cmsSigLabData) {
        const LcmsProfile wide = rgbProfile(nullptr, kD65, kP3, powerCurve(2));
        const LcmsProfile lab(cmsCreateLab4Profile(nullptr));
        source.toLab = makeTransform(wide, 3, lab.get(), version < 4 ? TYPE_LabV2_16 : TYPE_Lab_16);
    }
    const auto count = cmsUInt32Number(channels);
    const LcmsCurve input = corneredCurve(1.8), other = corneredCurve(1.2), square = powerCurve(2),
                    plain = powerCurve(1);
    cmsToneCurve *const inputs[] = {input.get(), input.get(), other.get(), other.get()};
    cmsToneCurve *const squares[] = {square.get(), square.get(), square.get()};
    cmsToneCurve *const plains[] = {plain.get(), plain.get(), plain.get()};
    cmsStage *const grid = cmsStageAllocCLut16bit(nullptr, nodes, count, 3, nullptr);
    cmsStageSampleCLut16bit(grid, TableSource::sample, &source, 0);
    std::vector<cmsStage *> stages = {cmsStageAllocToneCurves(nullptr, count, inputs), grid};
    if (pcs == cmsSigXYZData) {
        // The columns of P3 under D50, encoded: 1 for 1.99997.
        const double matrix[] = {0.2575, 0.1460, 0.0786, 0.1206, 0.3461, 0.0333, -0.0005, 0.0209, 0.3920};
        stages.push_back(cmsStageAllocToneCurves(nullptr, 3, squares));
        stages.push_back(cmsStageAllocMatrix(nullptr, 3, 3, matrix, nullptr));
    }
    stages.push_back(cmsStageAllocToneCurves(nullptr, 3, plains));
    return profileOf(channels, version, pcs, cmsSigAToB1Tag, stages);
}

/// Four lights that are added, in floating point.
Bytes fourLightsProfile()
{
    const double matrix[] = {0.4, 0.2, 0.1, 0.2, 0.2, 0.5, 0.1, 0.2, 0.1, 0.1, 0.4, 0.2};
    return profileOf(4, 4.3, cmsSigXYZData, cmsSigDToB1Tag,
                     {cmsStageAllocMatrix(nullptr, 3, 4, matrix, nullptr)});
}

/// Elements of floating point that share one curve of many pieces, which take hours.
Bytes endlessProfile()
{
    constexpr quint32 kElements = 4000, kPieces = 8000, kChannels = 0x30003;
    constexpr quint32 kCurveBytes = 12 + 4 * (kPieces - 1) + 28 * kPieces;
    Bytes elements;
    QDataStream out(&elements, QIODevice::WriteOnly); // big-endian, as profiles are
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    out << quint32(cmsSigMultiProcessElementType) << 0 << kChannels << kElements;
    for (quint32 i = 0; i < kElements; ++i)
        out << 16 + 8 * kElements << 36 + kCurveBytes;
    out << quint32(cmsSigCurveSetElemType) << 0 << kChannels;
    for (int channel = 0; channel < 3; ++channel)
        out << 36 << kCurveBytes;
    out << quint32(cmsSigSegmentedCurve) << 0 << (kPieces << 16);
    for (quint32 i = 1; i < kPieces; ++i)
        out << 0.5F + float(i) / (2 * kPieces);
    for (quint32 i = 0; i < kPieces; ++i)
        out << quint32(cmsSigFormulaCurveSeg) << 0 << 0 << 1.0F << 1.0F << 0.0F << 0.0F;
    const LcmsProfile profile = rgbProfile(nullptr, kD65, kP3, powerCurve(1));
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsWriteRawTag(profile.get(), cmsSigDToB1Tag, elements.constData(), cmsUInt32Number(elements.size()));
    return saved(profile);
}

} // namespace

/// Are colors converted as the formulas of their profile say, rounded once?
class ColorTransformTest : public QObject
{
    Q_OBJECT

    template<class Sample>
    static std::vector<Sample> makeSamples(int count)
    {
        constexpr int kFull = std::numeric_limits<Sample>::max();
        QRandomGenerator random(7);
        std::vector<Sample> samples;
        for (int i = 0; i < count; ++i) // both ends are frequent, and dark values
            samples.push_back(
                Sample(qBound(0, random.bounded(-kFull / 8, kFull * 9 / 8), kFull) >> (i / 997 % 3 * 2)));
        return samples;
    }

    template<class Sample>
    static void compare(const Bytes &profile, int channels, PixelLayout layout, const Judge &judge,
                        double most)
    {
        constexpr int kFull = std::numeric_limits<Sample>::max(), kPixels = 4001;
        const std::vector<Sample> samples = makeSamples<Sample>(channels * kPixels);
        std::vector<QRgb> pixels(kPixels);
        const auto transform = ColorTransform::toSrgb(profile, layout);
        QVERIFY(transform);
        if (layout == PixelLayout::Rgb32) {
            for (size_t i = 0; i < pixels.size(); ++i)
                pixels[i] = qRgba(samples[3 * i], samples[3 * i + 1], samples[3 * i + 2], int(i) % 256);
            transform->convert(pixels.data(), pixels.data(), kPixels);
        } else {
            transform->convert(samples.data(), pixels.data(), kPixels);
        }
        for (int i = 0; i < kPixels; ++i) {
            std::array<double, 4> pixel = {};
            for (int channel = 0; channel < channels; ++channel)
                pixel[size_t(channel)] = double(samples[size_t(i * channels + channel)]) / kFull;
            const Color wanted = judge(pixel.data());
            const QRgb is = pixels[size_t(i)];
            QCOMPARE(qAlpha(is), layout == PixelLayout::Rgb32 ? i % 256 : 255);
            const int bytes[] = {qRed(is), qGreen(is), qBlue(is)};
            for (size_t k = 0; k < 3; ++k)
                QVERIFY2(std::abs(bytes[k] - 255 * std::clamp(wanted[k], 0.0, 1.0)) <= most,
                         qPrintable(QString::asprintf("%zu bytes, pixel %d: %d, not %g", sizeof(Sample), i,
                                                      bytes[k], 255 * wanted[k])));
        }
    }

private Q_SLOTS:
    void colorsFollowTheProfile_data()
    {
        // 0.5 is the rounding. Little CMS rounds the values of tables to 16 bits.
        addRows<Kind>({
            {"ProPhoto", matrixProfile(kD50, kProPhoto, powerCurve(1.8)), 3, 0.501},
            {"Adobe RGB", adobeRgbProfile(), 3, 0.501},
            {"P3", matrixProfile(kD65, kP3, srgbCurve()), 3, 0.501},
            {"linear", matrixProfile(kD65, kP3, powerCurve(1)), 3, 0.501},
            {"matrix with a table", matrixProfile(kD65, kP3, corneredCurve(1.8)), 3, 0.501},
            {"gray 1.0", grayProfile(powerCurve(1)), 1, 0.501},
            {"gray 2.2", grayProfile(powerCurve(2.2)), 1, 0.501},
            {"gray with a table", grayProfile(corneredCurve(1.8)), 1, 0.501},
            {"RGB in Lab 2", tableProfile(3, 17, 2.1, cmsSigLabData), 3, 0.7},
            {"RGB in Lab 4", tableProfile(3, 16, 4.2, cmsSigLabData), 3, 0.7},
            {"RGB in XYZ", tableProfile(3, 9, 4.2, cmsSigXYZData), 3, 0.7},
            {"CMYK in Lab 2", tableProfile(4, 9, 2.1, cmsSigLabData), 4, 0.7},
            {"CMYK in Lab 4", tableProfile(4, 11, 4.2, cmsSigLabData), 4, 0.7},
            {"CMYK in XYZ", tableProfile(4, 7, 4.2, cmsSigXYZData), 4, 0.7},
            {"four lights", fourLightsProfile(), 4, 0.501},
        });
    }
    void colorsFollowTheProfile()
    {
        const auto [name, profile, channels, most] = currentRow<Kind>();
        const Judge judge = judgeOf(profile, channels);
        using enum PixelLayout;
        const bool isGray = channels == 1, isRgb = channels == 3;
        compare<uchar>(profile, channels, isGray ? Gray8 : isRgb ? Rgb32 : Cmyk8, judge, most);
        compare<quint16>(profile, channels, isGray ? Gray16 : isRgb ? Rgb48 : Cmyk16, judge, most);
    }

    /// A second judge for the first: the formulas of ICC.1 without Little CMS.
    void matrixFollowsTheFormulas()
    {
        const Bytes profile = matrixProfile(kD50, kProPhoto, powerCurve(1.8));
        compare<quint16>(profile, 3, PixelLayout::Rgb48, proPhotoToSrgb, 1);
    }

    void someProfilesAreNotApplied()
    {
        for (const PixelLayout layout : {PixelLayout::Rgb32, PixelLayout::Rgb48}) {
            QVERIFY(!ColorTransform::toSrgb(srgbProfile(), layout));
            QVERIFY(!ColorTransform::toSrgb(grayProfile(powerCurve(1)), layout));
            QVERIFY(!ColorTransform::toSrgb(endlessProfile(), layout));
        }
    }

    void threadsShareATransform()
    {
        const Bytes profile = matrixProfile(kD65, kP3, powerCurve(2.1));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&profile] {
                const quint16 white[] = {65535, 65535, 65535};
                QRgb pixel = 0;
                ColorTransform::toSrgb(profile, PixelLayout::Rgb48)->convert(white, &pixel, 1);
                QCOMPARE(pixel, 0xffffffff);
            });
        for (std::thread &thread : threads)
            thread.join();
        QCOMPARE(ColorTransform::toSrgb(profile, PixelLayout::Rgb48),
                 ColorTransform::toSrgb(profile, PixelLayout::Rgb48));
    }
};

QTEST_APPLESS_MAIN(ColorTransformTest)

#include "colortransform_test.moc"
