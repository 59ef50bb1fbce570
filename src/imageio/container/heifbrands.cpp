// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/heifbrands.h"

#include <QtEndian>

#include <algorithm>
#include <array>

namespace plexa
{

namespace
{

enum class Coding { None, Any, Hevc, Av1 };

/// ISO 23008-12, annex B; AV1 Image File Format, 6.
Coding codingOf(QByteArrayView brand)
{
    static constexpr std::array kHevc = {"heic", "heix", "hevc", "hevx", "heim", "heis", "hevm", "hevs"};
    static constexpr std::array kAv1 = {"avif", "avis"};
    static constexpr std::array kAny = {"mif1", "mif2", "msf1", "miaf"};
    const auto isAmong = [brand](const auto &brands) {
        return std::any_of(brands.begin(), brands.end(),
                           [brand](const char *name) { return brand == QByteArrayView(name); });
    };
    return isAmong(kHevc)  ? Coding::Hevc
           : isAmong(kAv1) ? Coding::Av1
           : isAmong(kAny) ? Coding::Any
                           : Coding::None;
}

/// The coding of the first brand that specifies one; the major brand comes first.
Coding codingOfContents(QByteArrayView head)
{
    if (head.size() < 12 || head.sliced(4, 4) != QByteArrayView("ftyp"))
        return Coding::None;
    const qsizetype boxEnd = qFromBigEndian<quint32>(head.data());
    Coding coding = codingOf(head.sliced(8, 4));
    // Films have their own brands, and may claim compatibility with stills.
    if (coding != Coding::Any)
        return coding;
    for (qsizetype at = 16; at + 4 <= qMin(boxEnd, head.size()); at += 4) {
        const Coding compatible = codingOf(head.sliced(at, 4));
        if (compatible == Coding::Hevc || compatible == Coding::Av1)
            return compatible;
    }
    return coding;
}

} // namespace

bool isHeicContents(QByteArrayView head)
{
    const Coding coding = codingOfContents(head);
    return coding == Coding::Hevc || coding == Coding::Any;
}

bool isAvifContents(QByteArrayView head)
{
    return codingOfContents(head) == Coding::Av1;
}

} // namespace plexa
