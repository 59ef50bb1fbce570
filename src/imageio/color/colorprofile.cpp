// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/colorprofile.h"

#include "imageio/color/lcmshandles.h"
#include "imageio/color/srgbcurve.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <type_traits>
#include <vector>

namespace plexa
{

namespace
{

/// @param light  of a signal, both 0..1
template<class Light>
LcmsCurve tabulatedCurve(cmsContext context, size_t entries, Light light)
{
    std::vector<cmsUInt16Number> table(entries);
    for (size_t i = 0; i < entries; ++i)
        table[i] = cmsUInt16Number(
            std::lround(std::clamp(light(double(i) / double(entries - 1)), 0.0, 1.0) * 65535));
    return LcmsCurve(cmsBuildTabulatedToneCurve16(context, cmsUInt32Number(entries), table.data()));
}

/// The bytes of a profile; empty without memory.
QByteArray savedProfile(const LcmsProfile &profile)
{
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return {};
    QByteArray bytes(qsizetype(size), '\0');
    return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : QByteArray();
}

} // namespace

QString profileColorModel(const QByteArray &iccProfile)
{
    const LcmsContext context(cmsCreateContext(nullptr, nullptr));
    const LcmsProfile profile = openProfile(context.get(), iccProfile);
    if (!profile || !describesPictures(profile.get()))
        return {};
    switch (cmsGetColorSpace(profile.get())) {
    case cmsSigRgbData:
        return QStringLiteral("RGB");
    case cmsSigGrayData:
        return QStringLiteral("Gray");
    case cmsSigCmykData:
        return QStringLiteral("CMYK");
    case cmsSigLabData:
        return QStringLiteral("Lab");
    default:
        return {};
    }
}

QString profileDescription(const QByteArray &iccProfile)
{
    const LcmsContext context(cmsCreateContext(nullptr, nullptr));
    const LcmsProfile profile = openProfile(context.get(), iccProfile);
    if (!profile)
        return {};
    const cmsUInt32Number bytes =
        cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", nullptr, 0);
    if (bytes < sizeof(wchar_t) || bytes > 4096 * sizeof(wchar_t))
        return {};
    std::vector<wchar_t> text(bytes / sizeof(wchar_t) + 1, L'\0');
    cmsGetProfileInfo(profile.get(), cmsInfoDescription, "en", "US", text.data(), bytes);
    return QString::fromWCharArray(text.data()).trimmed();
}

namespace
{

constexpr cmsCIExyY kD65 = {0.3127, 0.3290, 1};
constexpr cmsCIExyY kC = {0.310, 0.316, 1};

struct Primaries {
    cmsCIExyY white;
    cmsCIExyYTRIPLE colors;
};

std::optional<Primaries> primariesOf(int code)
{
    switch (code) {
    case 1:
        return Primaries{kD65, {{0.640, 0.330, 1}, {0.300, 0.600, 1}, {0.150, 0.060, 1}}};
    case 4:
        return Primaries{kC, {{0.67, 0.33, 1}, {0.21, 0.71, 1}, {0.14, 0.08, 1}}};
    case 5:
        return Primaries{kD65, {{0.64, 0.33, 1}, {0.29, 0.60, 1}, {0.15, 0.06, 1}}};
    case 6:
    case 7:
        return Primaries{kD65, {{0.630, 0.340, 1}, {0.310, 0.595, 1}, {0.155, 0.070, 1}}};
    case 8:
        return Primaries{kC, {{0.681, 0.319, 1}, {0.243, 0.692, 1}, {0.145, 0.049, 1}}};
    case 9:
        return Primaries{kD65, {{0.708, 0.292, 1}, {0.170, 0.797, 1}, {0.131, 0.046, 1}}};
    case 11:
        return Primaries{{0.314, 0.351, 1}, {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}};
    case 12:
        return Primaries{kD65, {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}};
    case 22:
        return Primaries{kD65, {{0.630, 0.340, 1}, {0.295, 0.605, 1}, {0.155, 0.077, 1}}};
    default:
        return std::nullopt;
    }
}

/// SMPTE ST 2084: the light (cd/m2) of a signal.
double pqToNits(double v)
{
    constexpr double m1 = 2610.0 / 16384;
    constexpr double m2 = 2523.0 / 4096 * 128;
    constexpr double c1 = 3424.0 / 4096;
    constexpr double c2 = 2413.0 / 4096 * 32;
    constexpr double c3 = 2392.0 / 4096 * 32;
    const double power = std::pow(v, 1 / m2);
    return 10000 * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
}

/// ITU-R BT.2100, table 5: the light of a signal on a display of 1000 cd/m2, whose system gamma is 1.2.
double hlgToNits(double v)
{
    constexpr double a = 0.17883277;
    constexpr double b = 1 - 4 * a;
    const double c = 0.5 - a * std::log(4 * a);
    const double scene = v <= 0.5 ? v * v / 3 : (std::exp((v - c) / a) + b) / 12;
    return 1000 * std::pow(scene, 1.2);
}

/// Light of an HDR picture for a monitor: unchanged up to half of reference white (203 cd/m2 by ITU-R
/// BT.2408); above, a hyperbola of the same slope approaches white.
double compressed(double nits)
{
    constexpr double kReferenceWhite = 203;
    constexpr double kKnee = 0.5;
    const double light = nits / kReferenceWhite;
    if (light <= kKnee)
        return light;
    const double above = light - kKnee;
    return kKnee + above * (1 - kKnee) / (above + 1 - kKnee);
}

double logarithmic(double v, double decades)
{
    return v <= 0 ? 0 : std::pow(10, (v - 1) * decades);
}

double lightOf(int transfer, double v)
{
    switch (transfer) {
    case 4:
        return std::pow(v, 2.2);
    case 5:
        return std::pow(v, 2.8);
    case 8:
        return v;
    case 9:
        return logarithmic(v, 2);
    case 10:
        return logarithmic(v, 2.5);
    case 16:
        return compressed(pqToNits(v));
    case 17:
        return std::min(1.0, 52.37 / 48 * std::pow(v, 2.6));
    case 18:
        return compressed(hlgToNits(v));
    default: // sRGB, and SDR video
        return srgbLight(v);
    }
}

bool isLikeSrgb(int transfer)
{
    return !(transfer == 4 || transfer == 5 || (transfer >= 8 && transfer <= 10) ||
             (transfer >= 16 && transfer <= 18));
}

bool setText(cmsContext context, cmsHPROFILE profile, cmsTagSignature tag, const char *text)
{
    cmsMLU *translations = cmsMLUalloc(context, 1);
    const bool isSet = translations && cmsMLUsetASCII(translations, "en", "US", text) &&
                       cmsWriteTag(profile, tag, translations);
    cmsMLUfree(translations);
    return isSet;
}

/// A profile of version 2, which all programs with color management read; white is D65.
QByteArray makeRgbProfile(cmsContext context, const cmsCIExyYTRIPLE &primaries, const LcmsCurve &curve,
                          const char *description)
{
    const LcmsProfile profile = rgbProfile(context, kD65, primaries, curve);
    cmsSetProfileVersion(profile.get(), 2.1);
    setText(context, profile.get(), cmsSigProfileDescriptionTag, description);
    setText(context, profile.get(), cmsSigCopyrightTag, "No copyright, use freely");
    QByteArray bytes = savedProfile(profile);
    // A fixed date (header bytes 24 to 35): equal copies have equal bytes.
    static constexpr char kDate[12] = {0x07, char(0xe8), 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    bytes.replace(24, 12, kDate, 12);
    return bytes;
}

QByteArray makeSrgbProfile()
{
    const LcmsContext context(cmsCreateContext(nullptr, nullptr));
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    // 1024 entries are exact to well under 1 of 255.
    return makeRgbProfile(context.get(), primaries, tabulatedCurve(context.get(), 1024, srgbLight),
                          "sRGB IEC61966-2.1");
}

/// Adobe RGB (1998) Color Image Encoding, version 2005-05: sections 4.3.1.1 (primaries) and 4.3.4.2
/// (exponent).
QByteArray makeAdobeRgbProfile()
{
    const LcmsContext context(cmsCreateContext(nullptr, nullptr));
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    const LcmsCurve curve(cmsBuildGamma(context.get(), 2.19921875));
    return makeRgbProfile(context.get(), primaries, curve, "Adobe RGB (1998)");
}

} // namespace

const QByteArray &srgbProfile()
{
    static const QByteArray profile = makeSrgbProfile();
    return profile;
}

const QByteArray &adobeRgbProfile()
{
    static const QByteArray profile = makeAdobeRgbProfile();
    return profile;
}

QByteArray profileOfNclx(const NclxColors &colors)
{
    const std::optional<Primaries> known = primariesOf(colors.primaries);
    if (isLikeSrgb(colors.transfer) && (!known || colors.primaries == 1))
        return {};
    const Primaries primaries = known.value_or(*primariesOf(1));
    const LcmsContext context(cmsCreateContext(nullptr, nullptr));
    if (!context)
        return {};
    const LcmsCurve curve = tabulatedCurve(
        context.get(), 4096, [&colors](double signal) { return lightOf(colors.transfer, signal); });
    return curve ? savedProfile(rgbProfile(context.get(), primaries.white, primaries.colors, curve))
                 : QByteArray();
}

} // namespace plexa
