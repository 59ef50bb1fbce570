// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/messages.h"

#include "cli/plainnumbers.h"
#include "platform/bytebudget.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <future>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace plexa
{
namespace
{

/// How many of `wanted` threads can run beside the calling one at this moment: fewer where a limit on memory
/// or on processes is tight. Starts them to find out.
int startableThreads(int wanted)
{
    std::vector<std::jthread> threads;
    std::promise<void> end;
    try {
        threads.reserve(static_cast<std::size_t>(std::max(wanted, 0)));
        const std::shared_future<void> ended = end.get_future().share();
        for (int i = 0; i < wanted; ++i)
            threads.emplace_back([ended] { ended.wait(); });
    } catch (const std::system_error &) { // no more can be started
    } catch (const std::bad_alloc &) {
    }
    end.set_value();
    return static_cast<int>(threads.size());
}

/// C0, delete, C1, and the marks that change the direction of what follows on the line.
bool isControl(QChar character)
{
    const char16_t code = character.unicode();
    return character.category() == QChar::Other_Control || (code >= 0x202A && code <= 0x202E) ||
           (code >= 0x2066 && code <= 0x2069);
}

/// The library escapes only the characters below the blank.
QByteArray withEscapedControls(const QByteArray &json)
{
    QString text = QString::fromUtf8(json);
    for (char16_t control = 0x7F; control < 0xA0; ++control)
        text.replace(QChar(control), QStringLiteral("\\u%1").arg(int(control), 4, 16, QLatin1Char('0')));
    return text.toUtf8();
}

} // namespace

void printLine(FILE *stream, const QString &text)
{
    QString safe = text;
    for (QChar &character : safe) {
        if (isControl(character) && character != u'\n')
            character = u'?';
    }
    std::fprintf(stream, "%s\n", safe.toUtf8().constData());
}

QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (isControl(character) || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = u'?';
    }
    return text;
}

void printMessage(const QString &text)
{
    printLine(stderr, onOneLine(QStringLiteral("plexa-cli: ") + text));
}

void printAbout(const QString &path, const QString &reason)
{
    printMessage(QStringLiteral("%1: %2").arg(path.isEmpty() ? QStringLiteral("\"\"") : path, reason));
}

QByteArray jsonText(const QJsonValue &value)
{
    const QByteArray list = QJsonDocument(QJsonArray{withPlainNumbers(value)}).toJson(QJsonDocument::Compact);
    return withEscapedControls(list.mid(1, list.size() - 2));
}

void printJson(const QJsonArray &array)
{
    const QJsonDocument plain(withPlainNumbers(array).toArray());
    std::fputs(withEscapedControls(plain.toJson(QJsonDocument::Indented)).constData(), stdout);
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue::Null : QJsonValue(text);
}

QJsonValue orNull(const QStringList &texts)
{
    return texts.isEmpty() ? QJsonValue() : QJsonValue(QJsonArray::fromStringList(texts));
}

int threadsToUse(int wanted)
{
    if (wanted < 1)
        wanted = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
    // A slow run is better than one that runs out of memory.
    constexpr qint64 kThreadBytes = 32'000'000; // its stack, and a photo in strips
    if (const std::optional<qint64> room = mappableBytes())
        wanted = int(std::clamp<qint64>(*room / kThreadBytes, 1, wanted));
    const int threads = startableThreads(wanted);
    if (threads < 1)
        printMessage(QStringLiteral("no thread can be started: there is not enough memory, or there are too "
                                    "many processes"));
    return threads;
}

} // namespace plexa
