// SPDX-License-Identifier: GPL-3.0-or-later

#include "scene.h"

namespace samples
{

namespace
{

enum class Thing { Skin, Stem, Leaf };

struct Hit {
    double distance = 1e9;
    Thing thing = Thing::Skin;
};

const Vec kLamp = normalized({-0.55, 0.75, -0.55});

/// Distance of the skin: a ball whose poles are drawn in, with five faint lobes at the bottom.
double skin(Vec p)
{
    const double across = std::hypot(p.x, p.z), turn = std::atan2(p.z, p.x);
    const double top = 0.34 * std::exp(-std::pow(across / 0.23, 2)),
                 bottom = 0.20 * std::exp(-std::pow(across / 0.20, 2));
    const double height = p.y > 0 ? p.y + top : p.y - bottom;
    const double lobes =
        0.022 * std::cos(5 * turn) * smoothstep(0.1, -0.75, p.y) * smoothstep(0.05, 0.3, across);
    const double slim = across * (1 + 0.20 * smoothstep(0.25, -0.85, p.y));
    return 0.55 * (std::hypot(slim, height * 1.06) - 0.80 + lobes);
}

Hit nearest(Vec p)
{
    Hit hit{skin(p), Thing::Skin};
    const double k = std::clamp((p.y - 0.36) / 0.66, 0.0, 1.0);
    const double stem = std::max(std::hypot(p.x - 0.16 * k * k, p.z + 0.05 * k) - 0.030 - 0.028 * k * k * k,
                                 std::abs(p.y - 0.69) - 0.33);
    if (0.8 * stem < hit.distance)
        hit = {0.8 * stem, Thing::Stem};
    const Vec q = p - Vec{0.36, 0.84, -0.08};
    const double along = 0.93 * q.x + 0.37 * q.y,
                 up = 0.93 * q.y - 0.37 * q.x - 0.16 * (0.09 - along * along) * 4;
    const double bend = q.z - 0.25 * along * along + 0.3 * up;
    const double wide = 0.135 * std::max(0.0, 1 - std::pow(std::abs(along) / 0.32, 1.9)) * (1 - 0.5 * along);
    const double leaf = 0.6 * std::max({std::abs(bend) - 0.008, std::abs(up) - wide, std::abs(along) - 0.32});
    if (leaf < hit.distance)
        hit = {leaf, Thing::Leaf};
    return hit;
}

double trace(Vec from, Vec d, Thing &thing)
{
    double t = 0.01;
    for (int i = 0; i < 150 && t < 8; ++i) {
        const Hit hit = nearest(from + d * t);
        if (hit.distance < 0.0005) {
            thing = hit.thing;
            return t;
        }
        t += hit.distance;
    }
    return -1;
}

Vec normalAt(Vec p)
{
    constexpr double e = 0.001;
    const auto at = [&](double x, double y, double z) {
        return nearest({p.x + x, p.y + y, p.z + z}).distance;
    };
    return normalized({at(e, 0, 0) - at(-e, 0, 0), at(0, e, 0) - at(0, -e, 0), at(0, 0, e) - at(0, 0, -e)});
}

Vec matterOf(Thing thing, Vec p)
{
    if (thing == Thing::Stem)
        return mix(Vec{0.10, 0.055, 0.025}, Vec{0.24, 0.15, 0.07}, noise(p.x * 30, p.y * 12));
    if (thing == Thing::Leaf)
        return mix(Vec{0.05, 0.16, 0.025}, Vec{0.13, 0.29, 0.05}, clouds(p.x * 7, p.y * 7, 3));
    const double turn = std::atan2(p.z, p.x), across = std::hypot(p.x, p.z);
    const double streaks = 0.6 * noise(std::cos(turn) * 9, std::sin(turn) * 9, p.y * 1.2) +
                           0.4 * noise(std::cos(turn) * 24, std::sin(turn) * 24, p.y * 2);
    const double blush =
        smoothstep(-0.55, 0.35, 0.75 * p.x - 0.55 * p.z + 0.25 * p.y + 0.9 * (streaks - 0.5));
    Vec c = mix(Vec{0.62, 0.50, 0.08}, Vec{0.52, 0.022, 0.022}, blush * 0.96);
    c = mix(c, {0.36, 0.34, 0.08}, 0.85 * std::exp(-std::pow(across / 0.17, 2)) * smoothstep(0.1, 0.4, p.y));
    return c;
}

Vec studio(Vec d)
{
    const double box = smoothstep(0.30, 0.25, std::abs(d.x + 0.56)) *
                       smoothstep(0.27, 0.22, std::abs(d.y - 0.62)) * (d.z < 0 ? 1 : 0);
    return mix(Vec{0.25, 0.23, 0.22}, Vec{0.75, 0.78, 0.82}, 0.5 + 0.5 * d.y) + Vec{7, 7, 7} * box;
}

} // namespace

Sample apple(double x, double y, Random &random)
{
    const Vec eye = {0.3, 1.75, -4.6}, forward = normalized(Vec{0.03, 0.03, 0} - eye);
    const Vec right = normalized(cross({0, 1, 0}, forward)), up = cross(forward, right);
    const Vec d = normalized(forward + right * (x * 0.232) + up * (y * 0.232));
    Thing thing = Thing::Skin, other;
    const double t = trace(eye, d, thing);
    if (t < 0) {
        // The ground is only its shadow.
        if (d.y >= 0)
            return {{}, 0};
        const Vec p = eye + d * ((eye.y + 0.66) / -d.y);
        const double soft = std::hypot((p.x - 0.13) / 0.95, (p.z - 0.10) / 0.80);
        return {{0.02, 0.015, 0.015}, 0.62 * std::pow(smoothstep(1, 0.30, soft), 1.6)};
    }
    const Vec p = eye + d * t, n = normalAt(p);
    const Vec lamp =
        normalized(kLamp + Vec{random.next() - 0.5, random.next() - 0.5, random.next() - 0.5} * 0.35);
    const double lit = trace(p + n * 0.006, lamp, other) > 0 ? 0 : std::max(dot(n, lamp), 0.0);
    const double open = std::clamp(nearest(p + n * 0.22).distance / 0.13, 0.25, 1.0);
    Vec c = matterOf(thing, p) * (Vec{2.7, 2.6, 2.45} * lit +
                                  mix(Vec{0.22, 0.17, 0.14}, Vec{0.75, 0.78, 0.85}, 0.5 + 0.5 * n.y) * open);
    const double mirror = 0.035 + 0.9 * std::pow(1 - std::clamp(-dot(d, n), 0.0, 1.0), 5);
    const double gloss = thing == Thing::Skin ? 1 : 0.3;
    c = mix(c, studio(reflected(d, n)) * open, std::min(0.5, mirror * gloss));
    return {c * 0.72};
}

} // namespace samples
