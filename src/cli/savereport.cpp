// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/savereport.h"

#include "cli/messages.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace plexa
{
namespace
{

using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

QString nameOf(Status status)
{
    switch (status) {
    case Status::Planned:
        return QStringLiteral("planned");
    case Status::Written:
        return QStringLiteral("written");
    case Status::Skipped:
        return QStringLiteral("skipped");
    case Status::Failed:
        break;
    }
    return QStringLiteral("failed");
}

/// The treatment of an existing file of the same name; empty when there is none.
QString nameOf(Conflict conflict)
{
    switch (conflict) {
    case Conflict::UniqueName:
    case Conflict::UniqueNameInRun:
        return QStringLiteral("unique");
    case Conflict::Overwrite:
        return QStringLiteral("overwrite");
    case Conflict::Skip:
        return QStringLiteral("skip");
    case Conflict::NoNameIsFree:
        return QStringLiteral("no name is free");
    case Conflict::None:
        break;
    }
    return {};
}

QJsonValue orNull(const QString &text)
{
    return text.isEmpty() ? QJsonValue::Null : QJsonValue(text);
}

QJsonValue jsonRect(const SavingOutput &output)
{
    if (output.isCombined || output.report.rects.size() != 1 || !output.report.rects.front())
        return QJsonValue::Null;
    const QRectF rect = *output.report.rects.front();
    return QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()};
}

bool isPlan(const SavingOutput &output)
{
    return output.status == Status::Planned;
}

/// What the user should know about a written copy, although it is no failure.
QStringList noticesOf(const SavingOutput &output)
{
    QStringList notices;
    if (output.conflict == Conflict::UniqueNameInRun)
        notices.append(QStringLiteral("another file of this run has the name of the copy, so it is \"%1\"")
                           .arg(output.path));
    return notices;
}

QByteArray jsonLine(const SavingOutput &output)
{
    const CopyReport &report = output.report;
    QJsonObject line{
        {QStringLiteral("source"), output.sourcePath},       {QStringLiteral("output"), output.path},
        {QStringLiteral("status"), nameOf(output.status)},   {QStringLiteral("error"), orNull(output.error)},
        {QStringLiteral("sequence"), output.sequenceNumber}, {QStringLiteral("wpreset"), output.wPresetName},
        {QStringLiteral("rect"), jsonRect(output)},          {QStringLiteral("size"), QJsonValue::Null}};
    if (output.status == Status::Written)
        line[QStringLiteral("size")] = QJsonArray{report.size.width(), report.size.height()};
    if (!report.dropped.isEmpty())
        line[QStringLiteral("dropped")] = QJsonArray::fromStringList(report.dropped);
    if (output.conflict != Conflict::None)
        line[QStringLiteral("conflict")] = nameOf(output.conflict);
    if (const QStringList notices = noticesOf(output); !notices.isEmpty())
        line[QStringLiteral("notices")] = QJsonArray::fromStringList(notices);
    if (isPlan(output))
        line[QStringLiteral("emptyTokens")] = QJsonArray::fromStringList(output.emptyTokens);
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

QString textLine(const SavingOutput &output)
{
    if (output.status == Status::Skipped)
        return QStringLiteral("%1 skipped: %2")
            .arg(output.sourcePath, output.conflict == Conflict::Skip
                                        ? QStringLiteral("a file of the copy's name exists")
                                        : QStringLiteral("no name is free for the copy"));
    QString line = QStringLiteral("%1 -> %2").arg(output.sourcePath, output.path);
    if (output.conflict != Conflict::None)
        line += QStringLiteral(" (%1)").arg(nameOf(output.conflict));
    if (!output.emptyTokens.isEmpty())
        line += QStringLiteral(" [empty: %1]").arg(output.emptyTokens.join(QLatin1String(", ")));
    return line;
}

bool isWithoutWatermark(const SavingOutput &output)
{
    return output.status == Status::Written && !output.report.isMarked;
}

/// @param isOneOfSeveral  does the run have other watermarks?
QString withoutWatermark(const SavingOutput &output, bool isOneOfSeveral)
{
    QString what = QStringLiteral("it");
    if (isOneOfSeveral)
        what = output.isCombined ? QStringLiteral("them") : QStringLiteral("\"%1\"").arg(output.wPresetName);
    return QStringLiteral("saved without a watermark: nothing of %1 is visible on this photo").arg(what);
}

} // namespace

SaveReport::SaveReport(Form form)
    : m_form(form)
    , m_hasProgressBar(!form.quiet && isatty(STDERR_FILENO) == 1)
{
}

void SaveReport::drawProgressBar() const
{
    constexpr qint64 kBarWidth = 40;
    const auto filled =
        static_cast<std::size_t>(std::min(kBarWidth, m_copies * kBarWidth / std::max(m_maximum, qint64{1})));
    const std::string bar = std::string(filled, '=') + std::string(kBarWidth - filled, ' ');
    std::fprintf(stderr, "\r[%s] %lld/%lld", bar.c_str(), static_cast<long long>(m_copies),
                 static_cast<long long>(m_maximum));
    std::fflush(stderr);
}

void SaveReport::clearProgressBar() const
{
    if (!m_hasProgressBar)
        return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

void SaveReport::begun(qint64 maximum, const QString &)
{
    m_maximum = maximum;
}

void SaveReport::copyFinished(const SavingOutput &output)
{
    clearProgressBar();
    const bool isFailure = output.status == Status::Failed;
    m_failures += isFailure ? 1 : 0;
    if (isFailure)
        printAbout(output.sourcePath, output.error);
    else if (!m_form.quiet && isWithoutWatermark(output))
        printAbout(output.sourcePath, withoutWatermark(output, m_form.hasSeveralWatermarks));

    if (!m_form.quiet && !m_form.json) {
        for (const QString &notice : noticesOf(output))
            printAbout(output.sourcePath, notice);
    }
    // The JSON line contains it.
    if (!m_form.quiet && !m_form.json && !output.report.dropped.isEmpty())
        printAbout(output.sourcePath,
                   QStringLiteral("the copy leaves out: ") + output.report.dropped.join(QLatin1String(", ")));

    if (m_form.json && (isFailure || !m_form.quiet))
        std::fprintf(stdout, "%s\n", jsonLine(output).constData());
    else if (!m_form.json && !m_form.quiet && !isFailure)
        printLine(stdout, onOneLine(textLine(output)));
    std::fflush(stdout);
    ++m_copies;
    if (m_hasProgressBar)
        drawProgressBar();
}

void SaveReport::end()
{
    clearProgressBar();
    if (m_failures > 0)
        printLine(stderr, QStringLiteral("plexa-cli: %1 of %2 copies failed").arg(m_failures).arg(m_copies));
    if (m_copies < m_maximum)
        printLine(stderr, QStringLiteral("plexa-cli: stopped; %1 of %2 copies were not started")
                              .arg(m_maximum - m_copies)
                              .arg(m_maximum));
}

} // namespace plexa
