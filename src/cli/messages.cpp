// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/messages.h"

#include "platform/bytebudget.h"

#include <QFileInfo>

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

void printLine(FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

QString onOneLine(QString text)
{
    for (QChar &character : text) {
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = QLatin1Char('?');
    }
    return text;
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
    const QString name = QFileInfo(path).fileName();
    printLine(stderr, onOneLine(QStringLiteral("%1: %2").arg(name.isEmpty() ? path : name, reason)));
}

} // namespace plexa
