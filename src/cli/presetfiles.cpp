// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/presetfiles.h"

#include "platform/systemerror.h"
#include "platform/xmlbounds.h"
#include "presets/presetsfilereading.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace plexa
{
namespace
{

using Kind = PresetsStore::Kind;

/// The kind of the presets in a file, detected by its first bytes, not by its name.
Result<Kind> kindOf(const QString &path)
{
    constexpr qint64 kStartBytes = 64 * 1024;
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) // opening a pipe would block
        return fail(openErrorText(path, QStringLiteral("it is not a regular file")));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(openErrorText(path, file.errorString()));
    const QByteArray start = file.read(kStartBytes);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (start.isEmpty())
        return fail(QStringLiteral("it is empty"));
    // Watermark presets are a property list, in its binary form or as XML.
    if (start.startsWith("bplist"))
        return Kind::Watermark;
    const Result<QByteArray> bounded = boundedXml(start, 50);
    QXmlStreamReader xml(bounded.value_or(QByteArray()));
    if (xml.readNextStartElement())
        return xml.name() == QLatin1StringView("plist") ? Kind::Watermark : Kind::Saving;
    // The reader reports more about XML that is damaged or begins with a very long comment.
    const bool hasMark = start.startsWith("\xEF\xBB\xBF"); // the byte order mark of some editors
    if (start.mid(hasMark ? 3 : 0).trimmed().startsWith('<'))
        return bounded.map([](const QByteArray &) { return Kind::Saving; });
    return fail(QStringLiteral("it is not a file of presets"));
}

} // namespace

Result<PresetsFile> presetsIn(const QString &path, std::optional<Kind> expected,
                              const SavingPresetLookup &savingPresetWithID)
{
    const Result<Kind> kind = kindOf(path);
    if (!kind)
        return tl::unexpected(kind.error());
    const bool areWatermarks = *kind == Kind::Watermark;
    if (expected && *kind != *expected)
        return fail(areWatermarks ? QStringLiteral("it is a file of watermark presets, not of saving presets")
                                  : QStringLiteral("it is not a file of watermark presets"));
    const PresetsFileReading read =
        areWatermarks ? readWPresetsFile(path, savingPresetWithID) : readSavingPresetsFile(path);
    const QString faults = read.faults.join(u"; ");
    if (!read.hasList)
        return fail(areWatermarks ? faults
                                  : QStringLiteral("it is not a file of saving presets: %1").arg(faults));
    PresetsFile file{areWatermarks, read.wPresets, read.savingPresets, {}, !read.faults.isEmpty(), {}};
    if (areWatermarks)
        file.leftOut = read.faults;
    else if (!read.faults.isEmpty())
        file.notice = QStringLiteral("some of it cannot be read: %1").arg(faults);
    if (file.notice.isEmpty() && read.isLater)
        file.notice = QStringLiteral("a later version of Plexa wrote it; additions of that version are not "
                                     "read");
    return file;
}

} // namespace plexa
