// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/messages.h"

#include "cli/plainnumbers.h"
#include "platform/bytebudget.h"

#include <QJsonArray>
#include <QJsonObject>

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

} // namespace

namespace
{

/// C0, delete and C1.
bool isControl(QChar character)
{
    return character.category() == QChar::Other_Control;
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

QByteArray jsonText(const QJsonDocument &document, QJsonDocument::JsonFormat format)
{
    // Only the characters below the blank are escaped already.
    const QJsonDocument plain = document.isArray()
                                    ? QJsonDocument(withPlainNumbers(document.array()).toArray())
                                    : QJsonDocument(withPlainNumbers(document.object()).toObject());
    QString text = QString::fromUtf8(plain.toJson(format));
    for (char16_t control = 0x7F; control < 0xA0; ++control)
        text.replace(QChar(control), QStringLiteral("\\u%1").arg(int(control), 4, 16, QLatin1Char('0')));
    return text.toUtf8();
}

int threadsToUse(int wanted)
{
    // A slow run is better than one that runs out of memory.
    constexpr qint64 kThreadBytes = 32'000'000; // its stack, and a photo in strips
    if (const std::optional<qint64> room = mappableBytes())
        wanted = int(std::clamp<qint64>(*room / kThreadBytes, 1, std::max(wanted, 1)));
    const int threads = startableThreads(wanted);
    if (threads < 1)
        printLine(stderr,
                  QStringLiteral("plexa-cli: no thread can be started: there is not enough memory, or "
                                 "there are too many processes"));
    return threads;
}

void printAbout(const QString &path, const QString &reason)
{
    printLine(stderr, onOneLine(QStringLiteral("%1: %2").arg(path, reason)));
}

} // namespace plexa
