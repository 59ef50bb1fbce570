// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/savereport.h"

#include "cli/messages.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cmath>
#include <cstdio>
#include <utility>

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

/// Of a watermark, or null if it has nothing to draw. Thousandths of a pixel are enough.
QJsonValue jsonRect(const std::optional<QRectF> &rect)
{
    if (!rect)
        return QJsonValue::Null;
    QJsonArray sides;
    for (const double side : {rect->x(), rect->y(), rect->width(), rect->height()})
        sides.append(std::round(side * 1000) / 1000);
    return sides;
}

QJsonArray jsonRects(const CopyReport &report)
{
    QJsonArray rects;
    for (const std::optional<QRectF> &rect : report.rects)
        rects.append(jsonRect(rect));
    return rects;
}

/// What the user should know about a written copy, although it is no failure.
QStringList noticesOf(const SavingOutput &output)
{
    QStringList notices = output.report.notices;
    if (output.conflict == Conflict::UniqueNameInRun)
        notices.append(QStringLiteral("another file of this run has the name of the copy, so it is \"%1\"")
                           .arg(output.path));
    return notices;
}

/// Is a watermark visible on the copy? Null if that is not known.
QJsonValue jsonMarked(const SavingOutput &output)
{
    if (output.status == Status::Written)
        return output.report.isMarked;
    return output.status == Status::Planned && output.isKnownUnmarked ? QJsonValue(false) : QJsonValue::Null;
}

/// How the picture of a copy was made. Null without a copy, and for a planned one.
QJsonValue jsonRoad(const SavingOutput &output)
{
    if (output.status != Status::Written)
        return QJsonValue::Null;
    return output.report.isRecompressed ? QStringLiteral("recompressed") : QStringLiteral("rendered");
}

QJsonObject jsonOf(const SavingOutput &output)
{
    const CopyReport &report = output.report;
    const bool isWritten = output.status == Status::Written;
    const bool isFailure = output.status == Status::Failed;
    const bool hasRect = isWritten && !output.isCombined && report.rects.size() == 1;
    QJsonObject line{{QStringLiteral("source"), output.sourcePath},
                     {QStringLiteral("output"), isFailure ? QJsonValue::Null : orNull(output.path)},
                     {QStringLiteral("status"), nameOf(output.status)},
                     {QStringLiteral("error"), orNull(output.error)},
                     {QStringLiteral("sequence"), output.sequenceNumber},
                     {QStringLiteral("wpreset"), orNull(output.wPresetName)},
                     {QStringLiteral("marked"), jsonMarked(output)},
                     {QStringLiteral("road"), jsonRoad(output)},
                     {QStringLiteral("rect"), hasRect ? jsonRect(report.rects.front()) : QJsonValue::Null},
                     {QStringLiteral("rects"), isWritten ? QJsonValue(jsonRects(report)) : QJsonValue::Null},
                     {QStringLiteral("size"), QJsonValue::Null},
                     {QStringLiteral("dropped"), orNull(report.dropped)},
                     {QStringLiteral("conflict"), orNull(nameOf(output.conflict))},
                     {QStringLiteral("notices"), orNull(noticesOf(output))},
                     {QStringLiteral("emptyTokens"), orNull(output.emptyTokens)}};
    if (isWritten)
        line[QStringLiteral("size")] = QJsonArray{report.size.width(), report.size.height()};
    return line;
}

void printJsonLine(const QJsonObject &object)
{
    std::fprintf(stdout, "%s\n", jsonText(object).constData());
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
    return output.status == Status::Planned ? output.isKnownUnmarked
                                            : output.status == Status::Written && !output.report.isMarked;
}

/// Is there more to report about a copy than that it is written?
bool hasNotice(const SavingOutput &output)
{
    return isWithoutWatermark(output) || !noticesOf(output).isEmpty() || !output.report.dropped.isEmpty();
}

/// @param isOneOfSeveral  does the run have other watermarks?
QString withoutWatermark(const SavingOutput &output, bool isOneOfSeveral)
{
    QString what = QStringLiteral("it");
    if (isOneOfSeveral)
        what = output.isCombined ? QStringLiteral("them") : QStringLiteral("\"%1\"").arg(output.wPresetName);
    return (output.status == Status::Planned
                ? QStringLiteral("would be saved without a watermark: nothing of %1 is visible on this photo")
                : QStringLiteral("saved without a watermark: nothing of %1 is visible on this photo"))
        .arg(what);
}

} // namespace

SaveReport::SaveReport(Form form)
    : m_form(form)
    , m_progress(!form.quiet)
{
}

void SaveReport::pathsNotRead(const std::vector<PhotoPath> &paths)
{
    m_search.notRead = static_cast<qint64>(paths.size());
    for (const PhotoPath &path : paths) {
        printAbout(path.path, path.failure);
        SavingOutput output;
        output.sourcePath = path.path;
        output.status = Status::Failed;
        output.error = path.failure;
        QJsonObject line = jsonOf(output);
        line[QStringLiteral("sequence")] = QJsonValue::Null;
        if (m_form.json)
            printJsonLine(line);
    }
}

void SaveReport::photosLeftOut(qint64 copies, qint64 links)
{
    m_search.copies = copies;
    m_search.links = links;
}

void SaveReport::begun(qint64 maximum, const QString &)
{
    m_counts.notStarted = maximum;
    m_progress.begin(maximum);
}

void SaveReport::copyFinished(const SavingOutput &output)
{
    count(output);
    m_progress.clear();
    printMessages(output);
    const bool isFailure = output.status == Status::Failed;
    if (m_form.json && (!m_form.quiet || isFailure || hasNotice(output)))
        printJsonLine(jsonOf(output));
    else if (!m_form.json && !m_form.quiet && !isFailure)
        printLine(stdout, onOneLine(textLine(output)));
    std::fflush(stdout);
    m_progress.advance();
    m_progress.draw();
}

void SaveReport::count(const SavingOutput &output)
{
    --m_counts.notStarted;
    switch (output.status) {
    case Status::Planned:
        ++m_counts.planned;
        break;
    case Status::Written:
        ++m_counts.written;
        break;
    case Status::Skipped:
        ++m_counts.skipped;
        break;
    case Status::Failed:
        ++m_counts.failed;
        break;
    }
    m_counts.unmarked += isWithoutWatermark(output) ? 1 : 0;
}

void SaveReport::printMessages(const SavingOutput &output)
{
    const bool isFailure = output.status == Status::Failed;
    if (output.sourcePath != m_failure.sourcePath || (isFailure && output.error != m_failure.reason))
        printFailure();
    if (isFailure)
        m_failure = {output.sourcePath, output.error, m_failure.copies + 1};
    if (isWithoutWatermark(output))
        printAbout(output.sourcePath, withoutWatermark(output, m_form.hasSeveralWatermarks));
    if (m_form.json) // the JSON line contains the rest
        return;
    for (const QString &notice : noticesOf(output))
        printAbout(output.sourcePath, notice);
    if (!output.report.dropped.isEmpty())
        printAbout(output.sourcePath,
                   QStringLiteral("the copy leaves out: ") + output.report.dropped.join(QLatin1String(", ")));
}

void SaveReport::printFailure()
{
    const auto [sourcePath, reason, copies] = std::exchange(m_failure, {});
    if (copies > 0)
        printAbout(sourcePath,
                   copies == 1 ? reason : QStringLiteral("%1 (%2 copies)").arg(reason).arg(copies));
}

QString SaveReport::summary() const
{
    QStringList parts;
    const auto add = [&](qint64 number, const char *what) {
        if (number > 0)
            parts.append(QStringLiteral("%1 %2").arg(number).arg(QLatin1String(what)));
    };
    add(m_counts.planned, "planned");
    add(m_counts.written, "written");
    add(m_counts.skipped, "skipped");
    add(m_counts.failed, "failed");
    add(m_counts.notStarted, "not started");
    if (parts.isEmpty())
        parts.append(QStringLiteral("none"));
    QString text = QStringLiteral("copies: ") + parts.join(QLatin1String(", "));
    parts.clear();
    add(m_counts.unmarked, "without a visible watermark");
    add(m_search.copies,
        m_search.copies == 1 ? "copy of an earlier run left out" : "copies of earlier runs left out");
    add(m_search.links,
        m_search.links == 1 ? "further name of a photo left out" : "further names of photos left out");
    add(m_search.notRead, m_search.notRead == 1 ? "path not read" : "paths not read");
    for (const QString &part : std::as_const(parts))
        text += QLatin1String("; ") + part;
    return text;
}

void SaveReport::printJsonSummary() const
{
    const QJsonObject summary{
        {QStringLiteral("planned"), m_counts.planned},       {QStringLiteral("written"), m_counts.written},
        {QStringLiteral("skipped"), m_counts.skipped},       {QStringLiteral("failed"), m_counts.failed},
        {QStringLiteral("notStarted"), m_counts.notStarted}, {QStringLiteral("unmarked"), m_counts.unmarked},
        {QStringLiteral("leftOut"), m_search.copies},        {QStringLiteral("links"), m_search.links},
        {QStringLiteral("notRead"), m_search.notRead}};
    printJsonLine({{QStringLiteral("summary"), summary}});
}

void SaveReport::end()
{
    m_progress.clear();
    printFailure();
    if (m_form.json)
        printJsonSummary();
    if (!m_form.quiet || !isComplete() || m_counts.unmarked > 0 || m_search.notRead > 0)
        printMessage(summary());
}

} // namespace plexa
