// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace samples
{

/// A point, a direction or a linear colour.
struct Vec {
    double x = 0, y = 0, z = 0;
};

inline Vec operator+(Vec a, Vec b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vec operator-(Vec a, Vec b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vec operator*(Vec a, Vec b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
inline Vec operator*(Vec a, double k)
{
    return {a.x * k, a.y * k, a.z * k};
}
inline double dot(Vec a, Vec b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline double length(Vec a)
{
    return std::sqrt(dot(a, a));
}
inline Vec normalized(Vec a)
{
    return a * (1 / length(a));
}
inline Vec reflected(Vec d, Vec n)
{
    return d - n * (2 * dot(d, n));
}
inline Vec cross(Vec a, Vec b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double mix(double a, double b, double k)
{
    return a + (b - a) * k;
}
inline Vec mix(Vec a, Vec b, double k)
{
    return a + (b - a) * k;
}

inline double smoothstep(double from, double to, double x)
{
    const double k = std::clamp((x - from) / (to - from), 0.0, 1.0);
    return k * k * (3 - 2 * k);
}

/// A number from 0 to 1 for a lattice point, always the same one.
inline double lattice(std::int64_t x, std::int64_t y, std::int64_t z = 0)
{
    std::uint64_t h = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15U ^
                      static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FU ^
                      static_cast<std::uint64_t>(z) * 0x165667B19E3779F9U;
    h = (h ^ (h >> 31)) * 0xD6E8FEB86659FD93U;
    h ^= h >> 32;
    return static_cast<double>(h & 0xFFFFFFU) / 0xFFFFFF;
}

/// Smooth noise, 0 to 1, about one hill a unit.
inline double noise(double x, double y, double z = 0)
{
    const double fx = std::floor(x), fy = std::floor(y), fz = std::floor(z);
    const auto ix = static_cast<std::int64_t>(fx), iy = static_cast<std::int64_t>(fy),
               iz = static_cast<std::int64_t>(fz);
    const double u = smoothstep(0, 1, x - fx), v = smoothstep(0, 1, y - fy), w = smoothstep(0, 1, z - fz);
    const auto plane = [&](std::int64_t k) {
        return mix(mix(lattice(ix, iy, k), lattice(ix + 1, iy, k), u),
                   mix(lattice(ix, iy + 1, k), lattice(ix + 1, iy + 1, k), u), v);
    };
    return w > 0 ? mix(plane(iz), plane(iz + 1), w) : plane(iz);
}

/// Octaves of noise, each turned against the one before so that the lattice does not show; 0 to 1.
inline double clouds(double x, double y, int octaves)
{
    double sum = 0, weight = 0.5;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * noise(x, y);
        const double turned = 1.62 * x + 1.18 * y + 7.3;
        y = 1.62 * y - 1.18 * x + 3.1;
        x = turned;
        weight *= 0.5;
    }
    return sum;
}

/// Random numbers of one pixel, the same in every run.
class Random
{
public:
    explicit Random(std::uint64_t seed)
        : m_state(seed * 0x9E3779B97F4A7C15U + 0x1234567)
    {
    }

    /// 0 <= value < 1
    double next()
    {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return static_cast<double>(m_state >> 11) / 9007199254740992.0;
    }

private:
    std::uint64_t m_state;
};

/// What one ray through the picture sees: linear sRGB (1 is white before toning), and how much of it
/// covers the background.
struct Sample {
    Vec color;
    double alpha = 1;
};

/// A scene is a function of the place in the picture: x to the right and y upwards, the middle (0, 0), the
/// shorter side 2 long.
using Scene = Sample (*)(double x, double y, Random &random);

Sample mountainLake(double x, double y, Random &random);
Sample sailingBoat(double x, double y, Random &random);
Sample stillLife(double x, double y, Random &random);
Sample apple(double x, double y, Random &random);

} // namespace samples
