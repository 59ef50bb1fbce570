// SPDX-License-Identifier: GPL-3.0-or-later

#include "scene.h"

namespace samples
{

namespace
{

const Vec kSun = normalized({-0.75, 0.42, 0.18});
const Vec kSunColor = {3.5, 2.8, 2.0};
constexpr double kFar = 34;

/// Ridges: noise folded at its middle, the finer ones only where the coarse ones are high already, as erosion
/// leaves them.
double ridges(double x, double z, int octaves)
{
    double sum = 0, weight = 0.5, carry = 1;
    for (int i = 0; i < octaves; ++i) {
        double ridge = 1 - std::abs(2 * noise(x, z) - 1);
        ridge *= ridge;
        sum += weight * ridge * carry;
        carry = std::clamp(ridge * 1.6, 0.0, 1.0);
        const double turned = 1.58 * x + 1.22 * z + 4.7;
        z = 1.58 * z - 1.22 * x + 9.2;
        x = turned;
        weight *= 0.47;
    }
    return sum;
}

double ground(double x, double z, int octaves)
{
    // The lake fills an uneven oval before the camera.
    const double shore = 0.35 * (clouds(x * 0.7 + 3, z * 0.7, 3) - 0.45);
    const double beyond = std::hypot(x / 4.6, (z - 3.6) / 5.0) - 1 + shore;
    const double rise = smoothstep(-0.05, 1.7, beyond);
    const double hills = 0.16 * clouds(x * 1.7, z * 1.7, std::min(octaves, 5)) * smoothstep(0, 0.25, beyond);
    return 6.8 * rise * ridges(x * 0.19 + 1.35, z * 0.19 + 0.62, octaves) + hills - 0.11 +
           0.05 * smoothstep(-0.1, 0.1, beyond);
}

/// How high conifers stand above the ground: a cone in each cell of a shaken grid.
double conifers(double x, double z, double level)
{
    const double density = smoothstep(1.15, 0.35, level) * smoothstep(0.0, 0.05, level);
    if (density <= 0)
        return 0;
    constexpr double kCell = 0.085;
    double height = 0;
    const auto column = static_cast<std::int64_t>(std::floor(x / kCell)),
               row = static_cast<std::int64_t>(std::floor(z / kCell));
    for (std::int64_t i = column - 1; i <= column + 1; ++i) {
        for (std::int64_t j = row - 1; j <= row + 1; ++j) {
            if (lattice(i, j, 5) >
                density * smoothstep(0.22, 0.52, clouds(double(i) * 0.09, double(j) * 0.09, 3)) + 0.08)
                continue;
            const double dx = x - (double(i) + lattice(i, j, 1)) * kCell,
                         dz = z - (double(j) + lattice(i, j, 2)) * kCell;
            const double tall = 0.10 + 0.09 * lattice(i, j, 3);
            height = std::max(height, tall * (1 - std::hypot(dx, dz) / 0.036));
        }
    }
    return height;
}

double surface(double x, double z, int octaves)
{
    const double level = ground(x, z, octaves);
    return level > 1.3 ? level : level + conifers(x, z, level);
}

Vec sky(Vec d)
{
    const double up = std::max(d.y, 0.0);
    Vec c = mix({1.02, 0.80, 0.62}, {0.17, 0.34, 0.66}, std::pow(smoothstep(-0.04, 0.55, up), 0.62));
    c = c + Vec{1.2, 0.75, 0.35} * (0.55 * std::pow(std::max(dot(d, kSun), 0.0), 7));
    if (d.y > 0.015) {
        const double u = d.x / (d.y + 0.12), v = d.z / (d.y + 0.12);
        const double cover = smoothstep(0.46, 0.80, clouds(u * 1.1 + 2.6, v * 0.75 + 1.4, 7));
        const double lit = clouds(u * 1.1 + 2.45, v * 0.75 + 1.45, 4);
        c = mix(c, mix(Vec{0.72, 0.68, 0.74}, Vec{1.9, 1.62, 1.36}, smoothstep(0.62, 0.3, lit)),
                cover * 0.9 * smoothstep(0.015, 0.16, d.y));
    }
    return c;
}

/// Where a ray meets the land: the way to it, or a negative number.
double march(Vec from, Vec d, double start, double end, int octaves)
{
    double t = start;
    for (int i = 0; i < 260 && t < end; ++i) {
        const Vec p = from + d * t;
        if (p.y > 5.5 && d.y > 0)
            return -1;
        const double above = p.y - (p.y > 1.7 ? ground(p.x, p.z, octaves) : surface(p.x, p.z, octaves));
        if (above < 0.0007 * t)
            return t;
        t += std::max(0.0012 * t, 0.33 * above);
    }
    return -1;
}

Vec normalAt(Vec p, double t)
{
    const double e = std::max(0.0032 * t, 0.006);
    return normalized({surface(p.x - e, p.z, 9) - surface(p.x + e, p.z, 9), 2 * e,
                       surface(p.x, p.z - e, 9) - surface(p.x, p.z + e, 9)});
}

Vec landColor(Vec p, Vec d, double t)
{
    const Vec n = normalAt(p, t);
    const double level = ground(p.x, p.z, 8), tree = p.y - level;
    const double grain = clouds(p.x * 9, p.z * 9 + p.y * 6, 4);
    Vec matter = mix({0.20, 0.185, 0.17}, {0.36, 0.33, 0.29}, grain);
    matter = mix(matter, mix({0.10, 0.13, 0.045}, {0.21, 0.20, 0.075}, grain),
                 smoothstep(0.62, 0.85, n.y) * smoothstep(2.0, 0.9, level));
    if (level < 1.3 && tree > 0.004 + 0.001 * t)
        matter = mix({0.018, 0.036, 0.016}, {0.05, 0.085, 0.03}, std::clamp(tree * 8, 0.0, 1.0));
    const double line = 1.75 + 0.9 * (clouds(p.x * 0.9, p.z * 0.9, 5) - 0.5);
    const double snow =
        smoothstep(line, line + 0.35, level) * smoothstep(0.42, 0.66, n.y + 0.16 * (grain - 0.5));
    matter = mix(matter, {0.86, 0.88, 0.93}, snow);
    if (level < -0.02 + 0.05 * grain)
        matter = mix({0.22, 0.20, 0.17}, {0.40, 0.37, 0.32}, grain);

    const double facing = std::max(dot(n, kSun), 0.0);
    const double light = facing > 0 && march(p + n * 0.03, kSun, 0.04, 9, 6) > 0 ? 0 : 1;
    Vec c = matter * (kSunColor * (facing * light) + Vec{0.30, 0.40, 0.60} * (0.55 + 0.45 * n.y) +
                      Vec{0.16, 0.12, 0.08} * std::max(-dot(n, Vec{kSun.x, 0, kSun.z}), 0.0));
    const double haze = 1 - std::exp(-0.0005 * t * t - 0.008 * t);
    const double low = 0.34 * std::exp(-7 * std::max(p.y, 0.0)) * smoothstep(3, 11, t);
    const Vec air = mix({0.48, 0.56, 0.70}, {1.1, 0.84, 0.6}, 0.5 + 0.5 * dot(d, kSun));
    return mix(c, air, std::clamp(haze + low, 0.0, 0.92));
}

Vec seen(Vec from, Vec d)
{
    const double t = march(from, d, 0.05, kFar, 8);
    return t > 0 ? landColor(from + d * t, d, t) : sky(d);
}

} // namespace

Sample mountainLake(double x, double y, Random &)
{
    const Vec eye = {0.15, 0.30, -1.6};
    const Vec d = normalized({x * 0.47 + 0.10, y * 0.47 + 0.10, 1});
    const double land = march(eye, d, 0.05, kFar, 8);
    const double water = d.y < 0 ? -eye.y / d.y : -1;
    Vec c;
    if (water > 0 && (land < 0 || land > water)) {
        const Vec p = eye + d * water;
        const double calm = 0.006 + 0.030 * smoothstep(0.42, 0.62, clouds(p.x * 0.35 + 8, p.z * 0.8, 3));
        const double rough = calm * std::min(1.0, 5 / water);
        const Vec n = normalized({rough * (clouds(p.x * 9, p.z * 22, 3) - 0.44) * 2, 1,
                                  rough * (clouds(p.x * 9 + 50, p.z * 22, 3) - 0.44) * 3});
        const Vec r = reflected(d, n);
        const double mirror = 0.03 + 0.97 * std::pow(1 - std::clamp(-dot(d, n), 0.0, 1.0), 4);
        const double depth = -ground(p.x, p.z, 6);
        const Vec stones = mix({0.06, 0.10, 0.10}, {0.20, 0.22, 0.17}, clouds(p.x * 14, p.z * 14, 4));
        const Vec bottom = mix(stones, {0.015, 0.075, 0.09}, smoothstep(0, 0.07, depth));
        c = mix(bottom, seen(p, {r.x, std::max(r.y, 0.004), r.z}) * 0.93,
                std::clamp(mirror + 0.22, 0.0, 0.9));
    } else {
        c = land > 0 ? landColor(eye + d * land, d, land) : sky(d);
    }
    return {c * 0.80};
}

} // namespace samples
