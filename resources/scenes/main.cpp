// SPDX-License-Identifier: GPL-3.0-or-later

// Renders one of the sample scenes: render-sample SCENE WIDTH HEIGHT SAMPLES [adobe-rgb PROFILE] >
// picture.pam Standard output gets a PAM file of 16 bits a channel with alpha, sRGB; with "adobe-rgb" in the
// primaries and gamma of Adobe RGB (1998), whose profile is written to PROFILE.

#include "scene.h"

#include <lcms2.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace
{

using samples::Vec;

struct Named {
    const char *name;
    samples::Scene scene;
};

constexpr Named kScenes[] = {{"mountain-lake", samples::mountainLake},
                             {"sailing-boat", samples::sailingBoat},
                             {"still-life", samples::stillLife},
                             {"apple", samples::apple}};

/// A film's curve: straight in the shadows, bending towards white.
double toned(double x)
{
    x = std::max(x, 0.0);
    return x * (1 + 0.12 * x) / (1 + 0.72 * x) * 1.5 / (1 + 0.12 * x);
}

/// IEC 61966-2-1.
double srgbCurve(double x)
{
    return x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1 / 2.4) - 0.055;
}

/// Linear sRGB to linear Adobe RGB (1998); both have the white D65 and the same green and blue x.
Vec adobePrimaries(Vec c)
{
    return {0.715119 * c.x + 0.284881 * c.y, c.y, 0.041169 * c.y + 0.958831 * c.z};
}

constexpr double kAdobeGamma = 563.0 / 256;

bool writeAdobeProfile(const char *path)
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.21, 0.71, 1}, {0.15, 0.06, 1}};
    cmsToneCurve *curve = cmsBuildGamma(nullptr, kAdobeGamma);
    cmsToneCurve *curves[] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsSetProfileVersion(profile, 2.4);
    cmsMLU *name = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(name, "en", "US", "Compatible with Adobe RGB (1998)");
    const bool done =
        cmsWriteTag(profile, cmsSigProfileDescriptionTag, name) && cmsSaveProfileToFile(profile, path);
    cmsMLUfree(name);
    cmsCloseProfile(profile);
    cmsFreeToneCurve(curve);
    return done;
}

void putChannel(unsigned char *at, double value)
{
    const auto number = static_cast<unsigned>(std::lround(std::clamp(value, 0.0, 1.0) * 65535));
    at[0] = static_cast<unsigned char>(number >> 8);
    at[1] = static_cast<unsigned char>(number & 0xFF);
}

} // namespace

int main(int argc, char **argv)
{
    const bool isAdobe = argc == 7 && std::strcmp(argv[5], "adobe-rgb") == 0;
    const auto *chosen = std::find_if(std::begin(kScenes), std::end(kScenes), [&](const Named &s) {
        return argc > 1 && s.name == std::string(argv[1]);
    });
    if ((argc != 5 && !isAdobe) || chosen == std::end(kScenes)) {
        std::fputs("Usage: render-sample SCENE WIDTH HEIGHT SAMPLES [adobe-rgb PROFILE]\n", stderr);
        return 2;
    }
    const int width = std::atoi(argv[2]), height = std::atoi(argv[3]), perPixel = std::atoi(argv[4]);
    if (width < 1 || height < 1 || perPixel < 1 || (isAdobe && !writeAdobeProfile(argv[6])))
        return 1;

    std::vector<unsigned char> bytes(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 8);
    std::atomic_int nextRow = 0;
    const auto renderRows = [&] {
        for (int row = nextRow++; row < height; row = nextRow++) {
            for (int column = 0; column < width; ++column) {
                samples::Random random(static_cast<std::uint64_t>(row) * 100'003 +
                                       static_cast<std::uint64_t>(column) + 1);
                Vec sum;
                double alpha = 0;
                for (int i = 0; i < perPixel; ++i) {
                    const double unit = 2.0 / std::min(width, height);
                    const auto seen = chosen->scene((column + random.next() - width / 2.0) * unit,
                                                    (height / 2.0 - row - random.next()) * unit, random);
                    // Toning each ray keeps bright edges smooth.
                    const Vec c = {toned(seen.color.x), toned(seen.color.y), toned(seen.color.z)};
                    sum = sum + c * seen.alpha;
                    alpha += seen.alpha;
                }
                Vec c = alpha > 0 ? sum * (1 / alpha) : Vec{};
                unsigned char *at = &bytes[(static_cast<std::size_t>(row) * static_cast<std::size_t>(width) +
                                            static_cast<std::size_t>(column)) *
                                           8];
                if (isAdobe)
                    c = adobePrimaries(c);
                int channel = 0;
                for (const double value : {c.x, c.y, c.z}) {
                    const double kept = std::clamp(value, 0.0, 1.0);
                    putChannel(at + 2 * channel++,
                               isAdobe ? std::pow(kept, 1 / kAdobeGamma) : srgbCurve(kept));
                }
                putChannel(at + 6, alpha / perPixel);
            }
        }
    };
    std::vector<std::thread> threads(std::max(1U, std::thread::hardware_concurrency()));
    for (auto &thread : threads)
        thread = std::thread(renderRows);
    for (auto &thread : threads)
        thread.join();

    std::printf("P7\nWIDTH %d\nHEIGHT %d\nDEPTH 4\nMAXVAL 65535\nTUPLTYPE RGB_ALPHA\nENDHDR\n", width,
                height);
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() ? 0 : 1;
}
