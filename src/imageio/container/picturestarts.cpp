// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/picturestarts.h"

#include <QtEndian>

#include <string_view>

namespace plexa
{

namespace
{

using namespace std::string_view_literals;

/// The header of a Windows bitmap, which names the size of all.
bool beginsAsBitmap(std::string_view bytes)
{
    const auto numberAt = [bytes](size_t at) { return qFromLittleEndian<quint32>(bytes.data() + at); };
    return bytes.starts_with("BM"sv) && numberAt(2) <= bytes.size() && numberAt(6) == 0 &&
           numberAt(10) < bytes.size() && numberAt(14) >= 12 && numberAt(14) <= 124;
}

/// Does a file begin with these bytes that shows a picture? Too few bytes show nothing.
bool beginsAsPicture(std::string_view bytes)
{
    constexpr size_t kLeastBytes = 128;
    if (bytes.size() < kLeastBytes)
        return false;
    for (const std::string_view beginning :
         {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv, "GIF87a"sv, "GIF89a"sv, "\xFF\x0A"sv,
          "\xFF\x4F\xFF\x51"sv, "\0\0\0\x0CJXL "sv, "\0\0\0\x0CjP  "sv}) {
        if (bytes.starts_with(beginning))
            return true;
    }
    return bytes.substr(4, 4) == "ftyp"sv ||
           (bytes.starts_with("RIFF"sv) && bytes.substr(8, 4) == "WEBP"sv) || beginsAsBitmap(bytes);
}

} // namespace

bool holdsPictureStart(QByteArrayView bytes)
{
    return bytes.contains("\xFF\xD8\xFF") || bytes.contains("\x89PNG\r\n\x1A\n");
}

bool isPictureValue(const QByteArray &value)
{
    return holdsPictureStart(value) ||
           beginsAsPicture({value.constData(), static_cast<size_t>(value.size())});
}

} // namespace plexa
