// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatatext.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>

namespace plexa
{

namespace
{

using namespace Qt::Literals::StringLiterals;

constexpr qsizetype kCodeBytes = 8;

/// Latin letters have a zero high byte: the side with more zeros holds the high bytes.
bool looksBigEndian(const QByteArray &utf16, bool otherwise)
{
    qsizetype zerosFirst = 0;
    qsizetype zerosSecond = 0;
    for (qsizetype i = 0; i + 1 < utf16.size(); i += 2) {
        zerosFirst += utf16[i] == '\0' && utf16[i + 1] != '\0';
        zerosSecond += utf16[i + 1] == '\0' && utf16[i] != '\0';
    }
    return zerosFirst == zerosSecond ? otherwise : zerosFirst > zerosSecond;
}

QString decodedUtf16(const QByteArray &bytes, bool fileIsBigEndian)
{
    const QByteArray whole = bytes.left(bytes.size() / 2 * 2);
    if (whole.startsWith("\xFE\xFF") || whole.startsWith("\xFF\xFE")) {
        QStringDecoder decoder(QStringDecoder::Utf16);
        return decoder(whole);
    }
    QStringDecoder decoder(looksBigEndian(whole, fileIsBigEndian) ? QStringDecoder::Utf16BE
                                                                  : QStringDecoder::Utf16LE);
    return decoder(whole);
}

/// In the character set of that name; Latin-1 where Qt does not know it.
QString decodedBy(const char *characterSet, const QByteArray &bytes)
{
    QStringDecoder decoder(characterSet);
    return decoder.isValid() ? QString(decoder(bytes)) : QString::fromLatin1(bytes);
}

/// The part of ISO 8859 that an escape sequence puts into the upper half: "ESC - A" and so on, the second
/// byte being '-', '.' or '/'. Registered in ISO-IR. Null: another one.
const char *nameOfLatinSet(const QByteArray &characterSet)
{
    struct Set {
        char final;
        const char *name;
    };
    static constexpr Set kSets[] = {{'A', "windows-1252"}, {'B', "ISO-8859-2"}, {'C', "ISO-8859-3"},
                                    {'D', "ISO-8859-4"},   {'L', "ISO-8859-5"}, {'G', "ISO-8859-6"},
                                    {'F', "ISO-8859-7"},   {'H', "ISO-8859-8"}, {'M', "ISO-8859-9"},
                                    {'b', "ISO-8859-15"}};
    if (characterSet.size() < 3 || characterSet[0] != '\x1B' ||
        !QByteArrayView("-./").contains(characterSet[1]))
        return nullptr;
    const auto set = std::ranges::find(kSets, characterSet[2], &Set::final);
    return set == std::end(kSets) ? nullptr : set->name;
}

} // namespace

QString decodedText(const QByteArray &bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : decodedBy("windows-1252", bytes);
}

QString decodedIptcText(const QByteArray &bytes, const QByteArray &characterSet)
{
    const char *name = nameOfLatinSet(characterSet);
    return name ? decodedBy(name, bytes) : decodedText(bytes);
}

QString decodedField(const QByteArray &bytes, const QByteArray &characterSet)
{
    const size_t length = qstrnlen(bytes.constData(), static_cast<size_t>(bytes.size()));
    const QString text = decodedIptcText(bytes.left(static_cast<qsizetype>(length)), characterSet);
    return text.trimmed().isEmpty() ? QString() : text;
}

QString trimmedAtEnd(QString text)
{
    qsizetype end = text.size();
    while (end > 0 && (text[end - 1].isSpace() || text[end - 1] == QChar::Null))
        --end;
    text.truncate(end);
    return text;
}

QString withXmlLineEnds(QString text)
{
    return text.replace(u"\r\n"_qs, u"\n"_qs).replace(u'\r', u'\n');
}

QString xmlText(const QString &text)
{
    QString allowed;
    allowed.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar character = text[i];
        const bool isPair =
            character.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            allowed += character;
            allowed += text[++i];
        } else if (!character.isSurrogate() && character.unicode() < 0xFFFE &&
                   (character.unicode() >= 0x20 || character == u'\t' || character == u'\n' ||
                    character == u'\r')) {
            allowed += character;
        }
    }
    return allowed;
}

QString decodedComment(const QByteArray &bytes, bool fileIsBigEndian)
{
    if (bytes.size() < kCodeBytes)
        return trimmedAtEnd(decodedField(bytes));
    const QByteArray code = bytes.left(kCodeBytes);
    const QByteArray body = bytes.mid(kCodeBytes);
    QString text;
    if (code == "UNICODE\0"_ba) {
        text = decodedUtf16(body, fileIsBigEndian);
        const qsizetype end = text.indexOf(QChar::Null);
        if (end >= 0)
            text.truncate(end);
    } else if (code.startsWith("JIS\0"_ba)) {
        QStringDecoder decoder("ISO-2022-JP");
        text = decoder.isValid() ? QString(decoder(body)) : decodedField(body);
    } else {
        text = decodedField(body);
    }
    return trimmedAtEnd(text);
}

QByteArray encodedComment(const QString &text, bool bigEndian)
{
    const bool isAscii =
        std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
    if (isAscii)
        return "ASCII\0\0\0"_ba + text.toLatin1();
    QStringEncoder encoder(bigEndian ? QStringEncoder::Utf16BE : QStringEncoder::Utf16LE);
    return "UNICODE\0"_ba + QByteArray(encoder(text));
}

QByteArray utf8OfAtMost(const QString &text, qsizetype maxBytes)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= maxBytes)
        return bytes;
    qsizetype end = maxBytes;
    while (end > 0 && (static_cast<uchar>(bytes[end]) & 0xC0) == 0x80) // inside of a character
        --end;
    return bytes.left(end);
}

} // namespace plexa
