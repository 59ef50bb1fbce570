// SPDX-License-Identifier: GPL-3.0-or-later

#include "scene.h"

namespace samples
{

namespace
{

const Vec kSun = normalized({-0.42, 0.16, 1});

Vec sky(Vec d)
{
    const double up = std::max(d.y, 0.0), toSun = std::max(dot(d, kSun), 0.0);
    Vec c = mix({1.5, 0.72, 0.34}, {0.62, 0.42, 0.52}, smoothstep(0, 0.16, up));
    c = mix(c, {0.13, 0.21, 0.46}, smoothstep(0.06, 0.62, up));
    c = c + Vec{1.9, 0.95, 0.32} * (0.55 * std::pow(toSun, 12) + 0.9 * std::pow(toSun, 120));
    // Long bands of cloud, lit from below.
    const double u = d.x / (up + 0.10), v = 1 / (up + 0.10);
    const double cover =
        smoothstep(0.42, 0.72, clouds(u * 0.55 + 1.7, v * 1.05 + 0.4, 7)) * smoothstep(0.01, 0.10, up);
    const double under = clouds(u * 0.55 + 1.75, v * 1.05 + 0.62, 5);
    c = mix(c, mix(Vec{0.30, 0.19, 0.27}, Vec{2.1, 0.92, 0.42}, smoothstep(0.55, 0.32, under)), cover * 0.88);
    return c + Vec{26, 19, 10} * smoothstep(0.99955, 0.99975, toSun) * (1 - 0.9 * cover);
}

/// Height of the sea; the wind blows towards the viewer and a little to the right.
double waves(double x, double z, int octaves)
{
    double sum = 0, size = 0.26, rate = 0.33, turn = 0.35;
    for (int i = 0; i < octaves; ++i) {
        const double along = z * std::cos(turn) + x * std::sin(turn),
                     across = x * std::cos(turn) - z * std::sin(turn);
        const double n = noise(along * rate * 1.6 + 3.0 * i, across * rate * 0.7, i);
        sum += size * (1 - std::abs(2 * n - 1)) * (1 - std::abs(2 * n - 1));
        size *= 0.52;
        rate *= 1.83;
        turn = -turn * 1.22;
    }
    return sum;
}

struct Point {
    double x, y;
};

/// Is the point inside of a polygon given counter-clockwise, with sides bulging outwards by `belly`?
bool isInside(Point p, const std::vector<Point> &corners)
{
    bool inside = false;
    for (std::size_t i = 0, j = corners.size() - 1; i < corners.size(); j = i++) {
        const Point a = corners[i], b = corners[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x)
            inside = !inside;
    }
    return inside;
}

/// The boat, flat, in metres from its waterline amidships. @return whether it covers the point
bool boat(Point p, Vec &color)
{
    p.x += 0.055 * p.y; // heeling
    static const std::vector<Point> kHull = {
        {-3.5, 0.75}, {-3.1, -0.2}, {2.6, -0.2}, {4.2, 0.95}, {1.0, 0.78}};
    static const std::vector<Point> kCabin = {{-1.2, 0.7}, {-1.0, 1.18}, {0.6, 1.18}, {1.2, 0.7}};
    if (p.y > 1.3 && p.y < 11.2) {
        const double k = (p.y - 1.3) / 9.9;
        const double leech = -3.3 * (1 - k) - 0.55 * std::sin(3.14159 * std::pow(k, 0.8));
        if (p.x > leech && p.x < 0.25) {
            const double seam = std::abs(std::fmod(p.y * 0.62 - 0.12 * p.x, 1.0) - 0.5) < 0.03 ? 0.86 : 1;
            color = mix(Vec{0.95, 0.48, 0.26}, Vec{1.45, 0.95, 0.62}, smoothstep(0.2, -3.4, p.x)) *
                    (seam * mix(0.72, 1.0, k));
            return true;
        }
    }
    if (std::abs(p.x - 0.32) < 0.06 && p.y > 0.6 && p.y < 11.5) {
        color = {0.10, 0.06, 0.05};
        return true;
    }
    if (p.y > 1.0 && p.y < 9.6) {
        const double k = (p.y - 1.0) / 8.6, luff = mix(4.05, 0.5, k),
                     leech = 0.55 + 0.5 * std::sin(3.14159 * k) * (1 - k);
        if (p.x < luff && p.x > leech - 0.9 * (1 - k) * smoothstep(0.35, 0, k)) {
            color = mix(Vec{1.5, 0.92, 0.55}, Vec{0.72, 0.36, 0.24}, smoothstep(leech, luff, p.x)) *
                    mix(0.8, 1.0, k);
            return true;
        }
    }
    if (isInside(p, kHull)) {
        color = p.y > 0.52 ? Vec{0.30, 0.16, 0.10} : Vec{0.045, 0.035, 0.055};
        return true;
    }
    if (isInside(p, kCabin)) {
        color = {0.22, 0.13, 0.10};
        return true;
    }
    return false;
}

constexpr double kBoatAway = 46, kBoatRight = 7.5;

/// A headland with a lighthouse, far out on the right.
bool headland(double bearing, double elevation, Vec &color)
{
    const double rise = 0.055 * smoothstep(0.24, 0.62, bearing) +
                        0.013 * clouds(bearing * 22, 4, 5) * smoothstep(0.24, 0.34, bearing);
    const bool isTower = std::abs(bearing - 0.502) < 0.0062 - 0.035 * std::max(elevation - 0.045, 0.0) &&
                         elevation < 0.098 && elevation > 0;
    const bool isLantern = std::abs(bearing - 0.502) < 0.0046 && elevation >= 0.098 && elevation < 0.106;
    if (elevation <= rise) {
        color = Vec{0.16, 0.085, 0.095} * (0.75 + 0.5 * clouds(bearing * 60, elevation * 90, 4));
        return true;
    }
    if (!isTower && !isLantern)
        return false;

    if (isTower)
        color = std::fmod(elevation, 0.03) < 0.015 ? Vec{0.50, 0.30, 0.24} : Vec{0.34, 0.12, 0.09};
    if (isLantern)
        color = {3.2, 2.0, 0.8};
    return true;
}

Vec above(Vec from, Vec d)
{
    Vec c;
    const double t = (kBoatAway - from.z) / d.z;
    const Vec p = from + d * t;
    if (t > 0 && boat({p.x - kBoatRight, p.y - 0.25}, c))
        return c;
    return headland(d.x / d.z, d.y / d.z, c) ? c : sky(d);
}

} // namespace

Sample sailingBoat(double x, double y, Random &)
{
    const Vec eye = {0, 3.2, 0};
    const Vec d = normalized({x * 0.40, y * 0.40 + 0.10, 1});
    double t = d.y < 0 ? (eye.y - 0.5) / -d.y : -1;
    for (int i = 0; i < 60 && t > 0 && t < 500; ++i) {
        const Vec p = eye + d * t;
        const double height = p.y - waves(p.x, p.z, 5);
        if (height < 0.002 * t)
            break;
        t += std::max(0.4 * height / std::max(-d.y, 0.08), 0.004 * t);
    }
    if (t <= 0 || t > 2500)
        return {above(eye, d) * 0.62};
    const Vec p = eye + d * t;
    Vec c;
    if (p.z > kBoatAway - 0.2) {
        const double k = (kBoatAway - eye.z) / d.z;
        const Vec q = eye + d * k;
        if (boat({q.x - kBoatRight, q.y - 0.25}, c))
            return {c * 0.62};
    }
    const double e = 0.02 + 0.0012 * t, flat = 1 / (1 + 0.006 * t);
    const int octaves = 9;
    const Vec n = normalized({(waves(p.x - e, p.z, octaves) - waves(p.x + e, p.z, octaves)) * flat, 2 * e,
                              (waves(p.x, p.z - e, octaves) - waves(p.x, p.z + e, octaves)) * flat});
    Vec r = reflected(d, n);
    r = normalized({r.x, std::abs(r.y) + 0.004, std::max(r.z, 0.05)});
    const double mirror = 0.02 + 0.98 * std::pow(1 - std::clamp(-dot(d, n), 0.0, 1.0), 5);
    Vec image = p.z < kBoatAway ? above(p, r) : sky(r);
    // The sun's own disc, mirrored, is a glitter; its full brightness would burn single pixels.
    image = {std::min(image.x, 7.0), std::min(image.y, 5.0), std::min(image.z, 3.0)};
    const Vec body =
        mix(Vec{0.012, 0.030, 0.050}, Vec{0.05, 0.10, 0.10}, smoothstep(0.1, 0.5, waves(p.x, p.z, 4)));
    c = mix(body, image, std::clamp(mirror, 0.0, 1.0));
    c = mix(c, sky(normalized({d.x, 0.01, d.z})), 0.55 * smoothstep(120, 1500, t));
    return {c * 0.62};
}

} // namespace samples
