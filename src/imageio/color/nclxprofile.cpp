// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/color/nclxprofile.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <vector>

namespace plexa
{

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

double srgbToLinear(double v)
{
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
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

/// Light of an HDR picture for a monitor: ITU-R BT.2408 puts reference white at 203 cd/m2. Up to half of it
/// the picture stays as it is; above, a hyperbola of the same slope nears white.
double pressed(double nits)
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
        return pressed(pqToNits(v));
    case 17:
        return std::min(1.0, 52.37 / 48 * std::pow(v, 2.6));
    case 18:
        return pressed(hlgToNits(v));
    default: // sRGB, and SDR video
        return srgbToLinear(v);
    }
}

bool isLikeSrgb(int transfer)
{
    return !(transfer == 4 || transfer == 5 || (transfer >= 8 && transfer <= 10) ||
             (transfer >= 16 && transfer <= 18));
}

} // namespace

QByteArray profileOfNclx(const NclxColors &colors)
{
    const std::optional<Primaries> known = primariesOf(colors.primaries);
    if (isLikeSrgb(colors.transfer) && (!known || colors.primaries == 1))
        return {};
    const Primaries primaries = known.value_or(*primariesOf(1));
    const std::unique_ptr<std::remove_pointer_t<cmsContext>, void (*)(cmsContext)> context(
        cmsCreateContext(nullptr, nullptr), [](cmsContext c) { cmsDeleteContext(c); });
    if (!context)
        return {};
    std::vector<cmsUInt16Number> table(4096);
    for (size_t i = 0; i < table.size(); ++i) {
        const double light = lightOf(colors.transfer, double(i) / double(table.size() - 1));
        table[i] = cmsUInt16Number(std::lround(std::clamp(light, 0.0, 1.0) * 65535));
    }
    const std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve *)> curve(
        cmsBuildTabulatedToneCurve16(context.get(), cmsUInt32Number(table.size()), table.data()),
        cmsFreeToneCurve);
    if (!curve)
        return {};
    cmsToneCurve *curves[3] = {curve.get(), curve.get(), curve.get()};
    const std::unique_ptr<void, cmsBool (*)(void *)> profile(
        cmsCreateRGBProfileTHR(context.get(), &primaries.white, &primaries.colors, curves), cmsCloseProfile);
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return {};
    QByteArray bytes(qsizetype(size), '\0');
    return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : QByteArray();
}

} // namespace plexa
