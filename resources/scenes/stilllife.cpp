// SPDX-License-Identifier: GPL-3.0-or-later

#include "scene.h"

namespace samples
{

namespace
{

constexpr double kPi = 3.14159265358979;

enum class Thing { Table, Wall, Vase, Orange, Lemon, Leaf };

struct Hit {
    double distance = 1e9;
    Thing thing = Thing::Wall;
};

// The window on the left is the light: a rectangle across x.
const Vec kWindow = {-3.4, 2.3, -0.9};
constexpr double kWindowHeight = 2.0, kWindowWidth = 1.7;
const Vec kDaylight = {30, 28.5, 26};

double vase(Vec p)
{
    p = p - Vec{-0.42, 0, 0.45};
    const double h = std::clamp(p.y, 0.0, 1.42);
    const double belly = 0.40 * std::exp(-std::pow((h - 0.52) / 0.40, 2)) + 0.145;
    const double lip = 0.075 * smoothstep(1.2, 1.42, h), foot = 0.07 * smoothstep(0.10, 0, h);
    const double round = std::hypot(p.x, p.z) - (belly + lip + foot);
    const double tall = std::abs(p.y - 0.71) - 0.71;
    const double solid = std::max(round, tall);
    // Hollow at the top, so that the rim shows its edge.
    const double hollow = std::max(round + 0.045, 1.0 - p.y);
    return 0.72 * std::max(solid, -hollow);
}

double orange(Vec p, Vec middle, double radius)
{
    const Vec q = p - middle;
    const double rough =
        std::abs(length(q) - radius) < 0.03 ? 0.0042 * noise(q.x * 52, q.y * 52, q.z * 52) : 0.002;
    const double dimple =
        0.022 * std::exp(-90 * (q.x * q.x + (q.z + 0.06) * (q.z + 0.06))) * (q.y > 0 ? 1 : 0);
    return 0.9 * (length({q.x, q.y * 1.05, q.z}) - radius + rough + dimple);
}

double lemon(Vec p)
{
    const Vec q = p - Vec{0.04, 0.185, -0.62};
    const double along = 0.90 * q.x + 0.43 * q.z, across = 0.43 * q.x - 0.90 * q.z;
    const double thick = 0.185 * std::sqrt(std::max(0.0, 1 - std::pow(along / 0.285, 2))) +
                         0.035 * std::exp(-std::pow((std::abs(along) - 0.27) / 0.055, 2));
    const double rough = 0.003 * noise(q.x * 45, q.y * 45, q.z * 45);
    return 0.6 * std::max(std::hypot(across, q.y) - thick + rough, std::abs(along) - 0.315);
}

/// A sprig of leaves in the vase: flat ellipses along a bent stem.
double leaves(Vec p)
{
    double nearest = 1e9;
    for (int i = 0; i < 17; ++i) {
        const double k = i / 16.0, side = i % 2 ? 1 : -1;
        const Vec at = {-0.42 + 0.34 * k * k - 0.06 * k, 1.35 + 1.05 * k - 0.18 * k * k, 0.45 - 0.12 * k};
        const double turn = side * (1.05 - 0.55 * k) + 0.5 * (lattice(i, 4) - 0.5) - 0.3 * k;
        const Vec q =
            p - at - Vec{std::sin(turn) * 0.17, std::cos(turn) * 0.17, 0.10 * (lattice(i, 9) - 0.6)};
        const double along = q.x * std::sin(turn) + q.y * std::cos(turn),
                     across = q.x * std::cos(turn) - q.y * std::sin(turn);
        const double depth =
            q.z + 1.4 * across * across * (lattice(i, 2) + 0.3) + 0.35 * along * (lattice(i, 7) - 0.5);
        const double width = 0.078 * (1 - 0.2 * k) *
                             std::max(0.0, 1 - std::pow(std::abs(along) / 0.17, 1.7)) *
                             (1 - 0.35 * along / 0.17);
        nearest = std::min(nearest, 0.6 * std::max({std::abs(depth) - 0.006, std::abs(across) - width,
                                                    std::abs(along) - 0.17}));
    }
    const double k = std::clamp((p.y - 1.0) / 1.22, 0.0, 1.0);
    const double stem = std::hypot(p.x - (-0.42 + 0.28 * k * k - 0.03 * k), p.z - (0.45 - 0.12 * k)) - 0.012;
    return std::min(nearest, 0.8 * std::max(stem, std::abs(p.y - 1.6) - 0.6));
}

double boxDistance(Vec p, Vec middle, Vec half)
{
    const Vec q = {std::abs(p.x - middle.x) - half.x, std::abs(p.y - middle.y) - half.y,
                   std::abs(p.z - middle.z) - half.z};
    return length({std::max(q.x, 0.0), std::max(q.y, 0.0), std::max(q.z, 0.0)}) +
           std::min(0.0, std::max({q.x, q.y, q.z}));
}

Hit nearest(Vec p)
{
    Hit hit{p.y, Thing::Table};
    const auto take = [&](double distance, Thing thing) {
        if (distance < hit.distance)
            hit = {distance, thing};
    };
    take(1.9 - p.z, Thing::Wall);
    take(vase(p), Thing::Vase);
    take(orange(p, {0.42, 0.295, 0.02}, 0.31), Thing::Orange);
    take(orange(p, {0.86, 0.27, 0.52}, 0.285), Thing::Orange);
    take(lemon(p), Thing::Lemon);
    const double box = boxDistance(p, {-0.30, 1.75, 0.40}, {0.55, 0.75, 0.28});
    take(box > 0.1 ? box : leaves(p), Thing::Leaf);
    return hit;
}

/// The way to the nearest thing, or a negative number.
double trace(Vec from, Vec d, double end, Thing &thing)
{
    double t = 0.002;
    for (int i = 0; i < 160 && t < end; ++i) {
        const Hit hit = nearest(from + d * t);
        if (hit.distance < 0.0006) {
            thing = hit.thing;
            return t;
        }
        t += hit.distance;
    }
    return -1;
}

Vec normalAt(Vec p)
{
    constexpr double e = 0.0015;
    const auto at = [&](double x, double y, double z) {
        return nearest({p.x + x, p.y + y, p.z + z}).distance;
    };
    return normalized({at(e, 0, 0) - at(-e, 0, 0), at(0, e, 0) - at(0, -e, 0), at(0, 0, e) - at(0, 0, -e)});
}

Vec matterOf(Thing thing, Vec p)
{
    switch (thing) {
    case Thing::Table: {
        const double board = std::floor((p.z + 10) / 0.62),
                     shift = 7 * lattice(static_cast<std::int64_t>(board), 1);
        const double wave = clouds(p.x * 0.9 + shift, p.z * 5 + shift, 4);
        const double rings = 0.5 + 0.5 * std::sin(46 * wave + 5 * p.z),
                     fibre = clouds(p.x * 5 + shift, p.z * 120, 3);
        const double gap = std::abs(std::fmod(p.z + 10, 0.62) - 0.31) > 0.306 ? 0.25 : 1;
        return mix(Vec{0.19, 0.095, 0.042}, Vec{0.40, 0.225, 0.11}, 0.35 * rings + 0.65 * fibre) *
               (gap * (0.85 + 0.3 * lattice(static_cast<std::int64_t>(board), 3)));
    }
    case Thing::Wall:
        return mix(Vec{0.30, 0.335, 0.33}, Vec{0.40, 0.43, 0.41}, clouds(p.x * 2.3, p.y * 2.3, 7));
    case Thing::Vase: {
        const double drip =
            1.02 + 0.09 * clouds(std::atan2(p.z - 0.45, p.x + 0.42) * 2.2 + 9, p.y * 0.6, 4) - 0.75 * 0.5;
        const Vec glaze = mix(Vec{0.03, 0.11, 0.19}, Vec{0.06, 0.21, 0.30}, clouds(p.x * 9, p.y * 14, 4));
        return mix(Vec{0.60, 0.53, 0.43} * (0.85 + 0.3 * clouds(p.x * 40, p.y * 40, 3)), glaze,
                   smoothstep(drip - 0.02, drip + 0.02, p.y));
    }
    case Thing::Orange:
        return mix(Vec{0.80, 0.235, 0.012}, Vec{0.88, 0.36, 0.03}, clouds(p.x * 3, p.y * 3, 3));
    case Thing::Lemon:
        return mix(Vec{0.86, 0.62, 0.05}, Vec{0.72, 0.60, 0.07}, clouds(p.x * 6, p.y * 6, 3));
    case Thing::Leaf:
        return mix(Vec{0.09, 0.17, 0.07}, Vec{0.17, 0.25, 0.12}, clouds(p.x * 14, p.y * 14, 3));
    }
    return {};
}

Vec windowPoint(Random &random)
{
    return kWindow + Vec{0, (random.next() - 0.5) * kWindowHeight, (random.next() - 0.5) * kWindowWidth};
}

Vec directLight(Vec p, Vec n, Random &random)
{
    const Vec way = windowPoint(random) - p;
    const double distance = length(way);
    const Vec d = way * (1 / distance);
    const double facing = dot(n, d);
    Thing thing;
    if (facing <= 0 || d.x >= 0 || trace(p + n * 0.004, d, distance, thing) > 0)
        return {};
    return kDaylight * (facing * -d.x * kWindowHeight * kWindowWidth / (kPi * distance * distance));
}

/// What is seen in a mirror: the window with its cross bars, or the dim room.
Vec room(Vec from, Vec d)
{
    if (d.x < 0) {
        const Vec p = from + d * ((kWindow.x - from.x) / d.x);
        const double y = (p.y - kWindow.y) / kWindowHeight, z = (p.z - kWindow.z) / kWindowWidth;
        if (std::abs(y) < 0.5 && std::abs(z) < 0.5)
            return std::abs(z) < 0.03 || std::abs(y - 0.1) < 0.025 ? Vec{0.3, 0.27, 0.25} : kDaylight * 0.42;
    }
    return mix(Vec{0.20, 0.16, 0.13}, Vec{0.30, 0.31, 0.33}, 0.5 + 0.5 * d.y);
}

Vec anyDirection(Vec n, Random &random)
{
    const double turn = 2 * kPi * random.next(), z = 2 * random.next() - 1, r = std::sqrt(1 - z * z);
    return normalized(n + Vec{r * std::cos(turn), r * std::sin(turn), z} * 0.999);
}

} // namespace

Sample stillLife(double x, double y, Random &random)
{
    const Vec eye = {0.55, 1.42, -5.6}, target = {0.14, 0.93, 0.2};
    const Vec forward = normalized(target - eye), right = normalized(cross({0, 1, 0}, forward)),
              up = cross(forward, right);
    // A wide open lens, focused on the front orange.
    const Vec aim = eye + (forward + right * (x * 0.212) + up * (y * 0.212)) * 5.4;
    const double turn = 2 * kPi * random.next(), wide = 0.05 * std::sqrt(random.next());
    const Vec from = eye + right * (wide * std::cos(turn)) + up * (wide * std::sin(turn));
    const Vec d = normalized(aim - from);

    Thing thing = Thing::Wall;
    const double t = trace(from, d, 20, thing);
    if (t < 0)
        return {room(from, d)};
    const Vec p = from + d * t, n = normalAt(p), matter = matterOf(thing, p);

    Vec light = directLight(p, n, random);
    const Vec bounce = anyDirection(n, random);
    Thing other = Thing::Wall;
    const double way = trace(p + n * 0.004, bounce, 6, other);
    if (way > 0) {
        const Vec q = p + bounce * way;
        light = light + matterOf(other, q) * (directLight(q, normalAt(q), random) + Vec{0.12, 0.115, 0.11});
    } else {
        light = light + mix(Vec{0.26, 0.23, 0.20}, Vec{0.36, 0.38, 0.42}, 0.5 + 0.5 * bounce.y);
    }
    Vec c = matter * light;

    const double gloss = thing == Thing::Vase    ? 1
                         : thing == Thing::Table ? 0.35
                         : thing == Thing::Wall  ? 0
                         : thing == Thing::Leaf  ? 0.25
                                                 : 0.45;
    if (gloss > 0) {
        const double spread = thing == Thing::Vase ? 0.02 : 0.16;
        const Vec r = normalized(reflected(d, n) + (anyDirection(n, random) - n) * spread);
        const double mirror = gloss * (0.04 + 0.96 * std::pow(1 - std::clamp(-dot(d, n), 0.0, 1.0), 5));
        const double hit = trace(p + n * 0.006, r, 8, other);
        const Vec image = hit > 0 ? matterOf(other, p + r * hit) * 0.55 : room(p, r);
        c = mix(c, image, std::min(mirror, 0.8));
    }
    return {c * 0.82};
}

} // namespace samples
