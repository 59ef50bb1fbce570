// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/outputnaming.h"

#include "platform/alerts.h"
#include "platform/filenames.h"
#include "saving/namingtokens.h"
#include "saving/safefilename.h"
#include "watermark/texttokens.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace plexa
{
namespace
{

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(plexa::OutputNaming)
};

constexpr int kHighestNumber = 9999;

QString inCase(const QString &text, const QString &letterCase)
{
    if (letterCase == QLatin1StringView("upper case"))
        return text.toUpper();
    return letterCase == QLatin1StringView("lower case") ? text.toLower() : text;
}

/// The folders of a path, from the root, without "..".
QStringList foldersOf(const QString &path)
{
    QStringList folders = QDir::cleanPath(QDir(path).absolutePath()).split(u'/', Qt::SkipEmptyParts);
    folders.removeAll(QStringLiteral("..")); // cleanPath() leaves those that lead above the root
    return folders;
}

/// A name of at most kMaxFileNameBytes, with the suffix between base name and extension.
QString fittingName(const QString &base, const QString &suffix, const QString &extension)
{
    const QString end = extension.isEmpty() ? suffix : suffix + u'.' + extension;
    const qsizetype room = std::max<qsizetype>(kMaxFileNameBytes - end.toUtf8().size(), 0);
    return shortenedToBytes(base, room) + end;
}

QString numberedPath(const QString &path, int number)
{
    const QFileInfo info(path);
    const QString name = info.fileName();
    return QDir(info.path())
        .filePath(fittingName(filenameOf(name), u'-' + QString::number(number), fileExtensionOf(name)));
}

} // namespace

OutputNaming::ConflictCode OutputNaming::always(Choice choice)
{
    return static_cast<ConflictCode>(kRemembered | static_cast<quint32>(choice));
}

OutputNaming::OutputNaming(OutputFolders folders, Alerts &alerts, Wait waitForOutcome, Scope scope)
    : m_folders(std::move(folders))
    , m_alerts(alerts)
    , m_waitForOutcome(std::move(waitForOutcome))
    , m_scope(scope)
{
}

QString OutputNaming::filenameForImage(const PhotoFacts &image, const QString &imagePath,
                                       const QString &wPresetName, const SavingPresetValues &savingPreset,
                                       qint64 sequenceNumber)
{
    const auto expanded = [&](const QString &token) -> QString {
        if (const auto text = namingTokenText(token, sequenceNumber, wPresetName, savingPreset.name))
            return *text;
        bool isToken = false;
        const std::optional<QString> value = image.stringForInfoToken(token, &isToken);
        return isToken ? value.value_or(QString()) : token;
    };
    QString name;
    for (const QString &token : savingPreset.filenameTokens)
        name += expanded(token);
    return filenameWithExtensionForFilename(name, imagePath, savingPreset);
}

QString OutputNaming::filenameWithExtensionForFilename(const QString &filename, const QString &originalPath,
                                                       const SavingPresetValues &savingPreset)
{
    QString base = safeFileName(filename);
    if (base.isEmpty())
        base = safeFileName(filenameOf(originalPath));
    if (base.isEmpty())
        base = u'_';

    const QStringList extensions = savingPreset.filenameExtensions(originalPath);
    QString extension = fileExtensionOf(base).toLower();
    if (extensions.contains(extension))
        base = safeFileName(filenameOf(base));
    else
        extension = extensions.value(0);

    if (savingPreset.fileExtensionCase == QLatin1StringView("upper case"))
        extension = extension.toUpper();
    return fittingName(inCase(base, savingPreset.fileBaseNameCase), QString(), extension);
}

QString OutputNaming::targetDirectoryForFile(const QString &path) const
{
    if (m_folders.destDirectory.isEmpty())
        return QFileInfo(path).path();
    if (!m_folders.replicateOrigDirStructure)
        return m_folders.destDirectory;
    const QStringList source = foldersOf(QFileInfo(path).path());
    const QString &startDirectory = m_folders.replicationStartDirectory;
    const QStringList start = startDirectory.isEmpty() ? QStringList() : foldersOf(startDirectory);
    if (source.mid(0, start.size()) != start)
        return m_folders.destDirectory;
    QStringList below = source.mid(start.size());
    if (m_folders.hasPortableNames)
        std::transform(below.begin(), below.end(), below.begin(), portableFileName);
    const QString folder = QDir(m_folders.destDirectory).filePath(below.join(u'/'));
    if (m_folders.makesFolders)
        QDir().mkpath(folder);
    return folder;
}

QString OutputNaming::pathForCopy(const QString &imagePath, const QString &filename)
{
    const QDir folder(targetDirectoryForFile(imagePath));
    if (!m_folders.hasPortableNames)
        return folder.filePath(filename);
    const QString path = folder.filePath(portableFileName(filename));
    QString &spelling = m_spellings[path.toCaseFolded()];
    if (spelling.isEmpty())
        spelling = path;
    return spelling;
}

std::optional<OutputNaming::Destination>
OutputNaming::finalDestinationForPath(const QString &path, ConflictCode &code, const QString &photoKey)
{
    const bool waits = code != always(kUniqueName);
    if (!existsFor(path, waits))
        return take({path});
    const bool isOwnFile = waits && isKept(path, photoKey);
    switch (isOwnFile ? kUniqueName : choiceFor(path, code)) {
    case kUniqueName:
        if (const std::optional<QString> unique = uniquePath(path, waits))
            return take({*unique, false, isOwnFile});
        return std::nullopt;
    case kOverwrite:
        return take({path, true});
    case kNoChoice:
    case kSkip:
        break;
    }
    return std::nullopt;
}

QString OutputNaming::targetKey(const QString &path, const QString &photoKey)
{
    const QString followed = FilesUnderWay::keyOf(path);
    return followed == photoKey ? followed : FilesUnderWay::nameKeyOf(path);
}

bool OutputNaming::isBeingWritten(const QString &path) const
{
    return m_files.isUsed(FilesUnderWay::nameKeyOf(path), FilesUnderWay::Use::Named);
}

void OutputNaming::finished(const QString &path)
{
    m_files.end(FilesUnderWay::nameKeyOf(path), FilesUnderWay::Use::Named);
}

/// Is the file at the path a file of the run, to which the choice for conflicts does not apply?
bool OutputNaming::isKept(const QString &path, const QString &photoKey) const
{
    if (m_scope == Scope::AllFiles)
        return false;
    using Use = FilesUnderWay::Use;
    const QString key = targetKey(path, photoKey);
    return isBeingWritten(path) || m_files.isUsed(key, Use::Made) ||
           (key != photoKey && m_files.isUsed(key, Use::Photo));
}

/// A dangling link takes the name, too.
bool OutputNaming::isTaken(const QString &path) const
{
    const QFileInfo info(path);
    return isBeingWritten(path) || info.exists() || info.isSymLink();
}

/// isTaken(); where `waits`, once the copy that has the path is written or has failed.
bool OutputNaming::existsFor(const QString &path, bool waits) const
{
    if (waits && m_waitForOutcome && isBeingWritten(path))
        m_waitForOutcome(path);
    return isTaken(path);
}

OutputNaming::Choice OutputNaming::choiceFor(const QString &path, ConflictCode &code) const
{
    const auto bits = static_cast<quint32>(code);
    if ((bits & kRemembered) != 0)
        return static_cast<Choice>(bits & ~kRemembered);

    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = Texts::tr("The file exists:\n  %1").arg(QFileInfo(path).fileName());
    alert.text = Texts::tr("An overwritten file cannot be recovered. Consider generating a unique filename "
                           "instead.");
    alert.buttons = {Texts::tr("Use unique filename"), Texts::tr("Overwrite file"), Texts::tr("Skip file")};
    alert.escapeButton = 2;
    alert.hasSuppressionBox = true;
    const AlertAnswer answer = m_alerts.run(alert);

    Choice choice = kSkip;
    if (answer.button == 0)
        choice = kUniqueName;
    else if (answer.button == 1)
        choice = kOverwrite;
    code = answer.suppressed ? always(choice) : choice;
    return choice;
}

std::optional<QString> OutputNaming::uniquePath(const QString &path, bool waits)
{
    // With thousands of copies of one name, a search from 1 for each would take quadratic time.
    int number = m_lastNumbers.value(path);
    if (number == 0 || !existsFor(numberedPath(path, number), waits))
        number = 1;
    for (; number <= kHighestNumber; ++number) {
        const QString candidate = numberedPath(path, number);
        if (existsFor(candidate, waits))
            continue;
        m_lastNumbers.insert(path, number);
        return candidate;
    }
    return std::nullopt;
}

std::optional<QString> OutputNaming::anotherUniquePath(const QString &path, int &number)
{
    while (++number <= kHighestNumber) {
        const QString candidate = numberedPath(path, number);
        if (!isTaken(candidate))
            return take({candidate}).path;
    }
    return std::nullopt;
}

OutputNaming::Destination OutputNaming::take(const Destination &destination)
{
    m_files.begin(FilesUnderWay::nameKeyOf(destination.path), FilesUnderWay::Use::Named);
    return destination;
}

} // namespace plexa
