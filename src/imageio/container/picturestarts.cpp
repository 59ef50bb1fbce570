// SPDX-License-Identifier: GPL-3.0-or-later

#include "imageio/container/picturestarts.h"

#include "imageio/container/jpegmarkers.h"

#include <QtEndian>

#include <algorithm>
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

int byteAt(QByteArrayView bytes, qsizetype at)
{
    return at < bytes.size() ? uchar(bytes[at]) : -1;
}

/// Can this marker follow the start of a JPEG? 0xFF is a fill byte.
bool canFollowStart(int marker)
{
    return marker == JpegMarker::TEM || (marker >= JpegMarker::SOF0 && marker < JpegMarker::RST0) ||
           marker > JpegMarker::SOS;
}

/// The frame header of ITU-T T.81, B.2.2, or of JPEG-LS: its length follows from the number of components.
bool isFrameHeader(QByteArrayView bytes, qsizetype at)
{
    const int marker = byteAt(bytes, at + 1);
    const int components = byteAt(bytes, at + 9);
    return (JpegMarker::isFrame(marker) || marker == JpegMarker::SOF55) && components > 0 &&
           byteAt(bytes, at + 2) * 256 + byteAt(bytes, at + 3) == 8 + 3 * components &&
           byteAt(bytes, at + 4) >= 2 && byteAt(bytes, at + 4) <= 16 &&
           (byteAt(bytes, at + 7) > 0 || byteAt(bytes, at + 8) > 0);
}

/// Any decoder needs a frame header; bytes before it are skipped by some.
qsizetype jpegStartIn(QByteArrayView bytes)
{
    constexpr QByteArrayView kStart("\xD8\xFF");
    qsizetype start = bytes.indexOf(kStart);
    while (start >= 0 && !canFollowStart(byteAt(bytes, start + kStart.size())))
        start = bytes.indexOf(kStart, start + 1);
    qsizetype frame = start < 0 ? -1 : bytes.indexOf('\xFF', start);
    while (frame >= 0 && !isFrameHeader(bytes, frame))
        frame = bytes.indexOf('\xFF', frame + 1);
    return frame < 0 ? -1 : std::max<qsizetype>(0, start - 1);
}

} // namespace

qsizetype pictureStartIn(QByteArrayView bytes)
{
    const qsizetype jpeg = jpegStartIn(bytes);
    const qsizetype png = bytes.indexOf("\x89PNG\r\n\x1A\n");
    return jpeg < 0 || png < 0 ? std::max(jpeg, png) : std::min(jpeg, png);
}

bool holdsPictureAsText(const QByteArray &text)
{
    constexpr int kMaxStarts = 16; // decoding from each of many would take quadratic time
    const auto holds = [](const QByteArray &searched, const QByteArray &start, const auto &decoded) {
        int starts = 0;
        for (qsizetype at = searched.indexOf(start); at >= 0; at = searched.indexOf(start, at + 1)) {
            if (++starts > kMaxStarts || jpegStartIn(decoded(searched.mid(at))) >= 0)
                return true;
        }
        return false;
    };
    return text.contains("iVBORw0KGgo") ||
           holds(text, "/9j/", [](const QByteArray &rest) { return QByteArray::fromBase64(rest); }) ||
           holds(text.toLower(), "ffd8ff", [](const QByteArray &rest) { return QByteArray::fromHex(rest); });
}

bool isPictureValue(const QByteArray &value)
{
    return holdsPictureStart(value) ||
           beginsAsPicture({value.constData(), static_cast<size_t>(value.size())});
}

} // namespace plexa
