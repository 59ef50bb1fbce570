// SPDX-License-Identifier: GPL-3.0-or-later

#include "cli/presetfiles.h"

#include "presets/presetsfilereading.h"

#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

namespace plexa
{
namespace
{

using Kind = PresetsStore::Kind;

QString laterNotice()
{
    return QStringLiteral("a later version of Plexa wrote it; additions of that version are not read");
}

/// An error line of the reader as part of a sentence: without the leading "ERROR" and the file's name.
QString reasonIn(QByteArray line, const QString &path)
{
    const QByteArray start = "ERROR";
    const qsizetype position = start.size() + path.toUtf8().size();
    if (line.startsWith(start + ':'))
        line.remove(0, start.size() + 1);
    else if (line.startsWith(start))
        line.remove(0, position);
    return QString::fromUtf8(line).simplified();
}

/// @return a failure when the presets are not of this kind
Result<void> expectKind(const QString &path, Kind kind)
{
    const Result<Kind> found = kindOfPresetsFile(path);
    if (!found)
        return tl::unexpected(found.error());
    if (*found == kind)
        return {};
    return fail(kind == Kind::Saving
                    ? QStringLiteral("it is a file of watermark presets, not of saving presets")
                    : QStringLiteral("it is a file of saving presets, not of watermark presets"));
}

} // namespace

Result<Kind> kindOfPresetsFile(const QString &path)
{
    constexpr qint64 kStartBytes = 64 * 1024;
    if (QFileInfo::exists(path) && !QFileInfo(path).isFile()) // opening a pipe would block
        return fail(QStringLiteral("it is not a regular file"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(file.errorString());
    const QByteArray start = file.read(kStartBytes);
    if (file.error() != QFileDevice::NoError)
        return fail(file.errorString());
    if (start.isEmpty())
        return fail(QStringLiteral("it is empty"));
    // Watermark presets are a property list, in its binary form or as XML.
    if (start.startsWith("bplist"))
        return Kind::Watermark;
    QXmlStreamReader xml(start);
    if (xml.readNextStartElement())
        return xml.name() == QLatin1StringView("plist") ? Kind::Watermark : Kind::Saving;
    // The reader reports more about XML that is damaged or begins with a very long comment.
    const bool hasMark = start.startsWith("\xEF\xBB\xBF"); // the byte order mark of some editors
    if (start.mid(hasMark ? 3 : 0).trimmed().startsWith('<'))
        return Kind::Saving;
    return fail(QStringLiteral("it is not a file of presets"));
}

Result<PresetsRead<SavingPresetList>> savingPresetsIn(const QString &path)
{
    if (const Result<void> expected = expectKind(path, Kind::Saving); !expected)
        return tl::unexpected(expected.error());
    QStringList errors;
    ReadCode code{};
    bool isLater = false;
    auto presets = SavingPreset::readObjectsFromFile(
        path, presetsApplicationID(), code,
        [&](const QByteArray &line) { errors.append(reasonIn(line, path)); }, &isLater);
    if (!presets)
        return fail(QStringLiteral("it is not a file of saving presets: %1").arg(errors.join(u"; ")));
    PresetsRead<SavingPresetList> read{std::move(*presets), {}, {}};
    if (!errors.isEmpty())
        read.notice = QStringLiteral("some of it cannot be read: %1").arg(errors.join(u"; "));
    else if (isLater)
        read.notice = laterNotice();
    return read;
}

Result<PresetsRead<WPresetList>> wPresetsIn(const QString &path, const SavingPresetLookup &savingPresetWithID)
{
    if (const Result<void> expected = expectKind(path, Kind::Watermark); !expected)
        return tl::unexpected(expected.error());
    bool isLater = false;
    QStringList leftOut;
    return readWPresetsFromFile(path, &isLater, savingPresetWithID, &leftOut).map([&](WPresetList &&presets) {
        return PresetsRead<WPresetList>{std::move(presets), isLater ? laterNotice() : QString(), leftOut};
    });
}

QString storedPresetsFile(PresetsStore::Kind kind)
{
    return PresetsStore::listOrExamplesFile(kind, PresetsStore::Places::own());
}

} // namespace plexa
