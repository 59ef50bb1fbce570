// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/savingreport.h"

#include "saving/filesunderway.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace plexa
{
namespace
{

using Status = SavingOutput::Status;
using Conflict = SavingOutput::Conflict;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::SavingReport)
};

QString line(const QString &path, const QString &remark)
{
    return QStringLiteral("%1: %2").arg(path, remark);
}

void appendSection(QStringList &sections, const QString &title, const QStringList &lines)
{
    if (!lines.isEmpty())
        sections.append(title + u'\n' + lines.join(u'\n') + u'\n');
}

} // namespace

void SavingReport::add(const SavingOutput &output)
{
    ++m_finished;
    addConflict(output);
    if (output.status == Status::Written && output.conflict == Conflict::Overwrite &&
        !rivalOf(output).isEmpty())
        m_written.removeOne(output.path); // its file is gone
    if (output.status == Status::Failed)
        m_failed.append(line(output.sourcePath, output.error));
    if (output.status != Status::Written)
        return;
    m_sources.insert(FilesUnderWay::nameKeyOf(output.path), output.sourcePath);
    m_written.append(output.path);
    if (!output.report.isMarked)
        m_unmarked.append(output.path);
    for (const QString &notice : output.report.notices)
        m_notices.append(line(output.sourcePath, notice));
}

QString SavingReport::rivalOf(const SavingOutput &output) const
{
    return output.conflict == Conflict::None ? QString()
                                             : m_sources.value(FilesUnderWay::nameKeyOf(output.wantedPath));
}

void SavingReport::addConflict(const SavingOutput &output)
{
    const QString rival = rivalOf(output);
    if (output.status == Status::Skipped) {
        if (output.conflict == Conflict::NoNameIsFree)
            m_skipped.append(line(output.sourcePath,
                                  Texts::tr("not saved; no name is free for \"%1\"").arg(output.wantedPath)));
        else if (rival.isEmpty())
            m_skipped.append(
                line(output.sourcePath, Texts::tr("not saved; \"%1\" exists").arg(output.wantedPath)));
        else
            m_skipped.append(
                line(output.sourcePath, Texts::tr("not saved; the name \"%2\" belongs to the copy of \"%1\"")
                                            .arg(rival, output.wantedPath)));
    } else if (output.status == Status::Written && !rival.isEmpty()) {
        m_conflicts.append(line(
            output.path,
            output.conflict == Conflict::Overwrite
                ? Texts::tr("copy of \"%1\"; it replaced the copy of \"%2\"").arg(output.sourcePath, rival)
                : Texts::tr("copy of \"%1\"; its name belongs to the copy of \"%2\"")
                      .arg(output.sourcePath, rival)));
    }
}

bool SavingReport::isClean() const
{
    return m_finished == m_maximum && m_failed.isEmpty() && m_skipped.isEmpty() && m_conflicts.isEmpty() &&
           m_unmarked.isEmpty() && m_notices.isEmpty();
}

QString SavingReport::summary() const
{
    const auto written = static_cast<int>(m_written.size());
    QString result =
        written == 1 ? Texts::tr("1 copy saved") : Texts::tr("%n copies saved", nullptr, written);
    if (!m_skipped.isEmpty())
        result += Texts::tr(", %n skipped", nullptr, static_cast<int>(m_skipped.size()));
    if (!m_failed.isEmpty())
        result += Texts::tr(", %n failed", nullptr, static_cast<int>(m_failed.size()));
    if (m_finished < m_maximum)
        result += Texts::tr(", %n not begun", nullptr, static_cast<int>(m_maximum - m_finished));
    return result;
}

QString SavingReport::explanation() const
{
    if (m_failureAlert)
        return m_failureAlert->text;
    QSet<QString> folders;
    for (const QString &path : m_written)
        folders.insert(QFileInfo(path).path());
    QStringList texts;
    if (m_finished < m_maximum)
        texts.append(Texts::tr("You stopped saving. The copies under way were completed."));
    if (folders.size() == 1)
        texts.append(QDir::toNativeSeparators(*folders.begin()));
    else if (folders.size() > 1)
        texts.append(Texts::tr("In %n folders", nullptr, static_cast<int>(folders.size())));
    return texts.join(u'\n');
}

QString SavingReport::text(bool withWritten) const
{
    QStringList sections;
    if (withWritten || m_failureAlert) // else it is the title
        sections.append(summary() + u'\n');
    appendSection(sections, Texts::tr("Failed:"), m_failed);
    appendSection(sections, Texts::tr("The name was in use by another copy:"), m_conflicts);
    appendSection(sections, Texts::tr("Skipped:"), m_skipped);
    appendSection(sections, Texts::tr("No watermark is visible on:"), m_unmarked);
    appendSection(sections, Texts::tr("Remarks:"), m_notices);
    if (withWritten)
        appendSection(sections, Texts::tr("Saved:"), m_written);
    return sections.join(u'\n');
}

} // namespace plexa
