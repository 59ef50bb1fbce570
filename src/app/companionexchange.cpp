// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/companionexchange.h"

#include "app/imagegathering.h"
#include "app/statusmanager.h"
#include "platform/alerts.h"
#include "platform/atomicfile.h"
#include "platform/identity.h"
#include "platform/workspace.h"
#include "platform/xmlpropertylist.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <iterator>

namespace plexa
{

namespace
{

const QString kInfoFile = QStringLiteral("info.qtxf");
const QString kBanner = QStringLiteral("Quorvel exchange info file version 1.0");

struct Companion {
    QLatin1String displayName;
    QLatin1String bundleIdentifier; // the name of its desktop file
    QLatin1String page;             // of the maker's web site
};

constexpr std::array kCompanions{
    Companion{QLatin1String("Brevix"), QLatin1String("com.quorvel.Brevix"), QLatin1String("/brevix")},
    Companion{QLatin1String("Plexa"), QLatin1String("com.quorvel.Plexa"), QLatin1String("/plexa")},
    Companion{QLatin1String("Lumaven"), QLatin1String("com.quorvel.Lumaven"), QLatin1String("/lumaven")},
};
/// The one that photos are sent to.
constexpr const Companion &kResizer = kCompanions[0];

/// The list of an info file, which may come from anywhere. Logs why there is none.
QStringList listOf(const QString &path)
{
    QFile file(path);
    Result<QStringList> list = fail(QString());
    if (!QFileInfo(path).isFile()) // a device or a pipe may have no end
        list = fail(QStringLiteral("it is no regular file"));
    else if (!file.open(QIODevice::ReadOnly))
        list = fail(file.errorString());
    else
        list = stringsFromXml(file.read(kMaxXmlPropertyListBytes + 1));
    if (!list || list->size() < 3 || (list->first() == kBanner && list->size() % 2 == 0)) {
        qCritical("ERROR: wrong exchange info file!");
        return {};
    }
    if (list->first() != kBanner) {
        qCritical("ERROR: incompatible companion application version!");
        return {};
    }
    return *list;
}

/// A missing file is reported with the others that cannot be read.
bool maybePhoto(const QString &path)
{
    const QFileInfo file(path);
    return QDir::isAbsolutePath(path) && (file.isFile() || !file.exists());
}

bool isInTemporaryFolder(const QString &path)
{
    const QStringList folders{QDir::tempPath(), QStringLiteral("/tmp"), QStringLiteral("/var/tmp"),
                              qEnvironmentVariable("XDG_RUNTIME_DIR")};
    return std::any_of(folders.begin(), folders.end(), [&](const QString &folder) {
        const QString canonical = QFileInfo(folder).canonicalFilePath();
        return !folder.isEmpty() && !canonical.isEmpty() && path.startsWith(canonical + QLatin1Char('/'));
    });
}

bool isFileInTemporaryFolder(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && !file.isSymLink() &&
           isInTemporaryFolder(QFileInfo(file.absolutePath()).canonicalFilePath());
}

/// Whether the file is the companion's own, which this program has to delete. An info file from elsewhere
/// must not be able to delete the user's photos.
bool isTemporaryCopy(const QString &path, const QString &photo, const QString &infoFolder)
{
    const QFileInfo file(path);
    return isFileInTemporaryFolder(path) &&
           QFileInfo(file.absolutePath()).canonicalFilePath() == infoFolder &&
           file.canonicalFilePath() != QFileInfo(photo).canonicalFilePath();
}

} // namespace

CompanionExchange::CompanionExchange(const Services &services)
    : m_services(services)
    , m_cleaning([] { ExchangeFolder::removeLeftovers(); })
{
}

CompanionExchange::~CompanionExchange()
{
    for (const QString &path : m_temporaryExchangeFiles)
        QFile::remove(path);
}

bool CompanionExchange::isInfoFile(const QString &path)
{
    return QFileInfo(path).fileName() == kInfoFile;
}

void CompanionExchange::openInCompanionApplication(BatchSave::Order order)
{
    if (m_services.save.isSavingInProgress() || order.photos.empty() || order.effectivePresets.empty())
        return;
    m_integratedApplicationBundleID = kResizer.bundleIdentifier;
    if (!m_services.workspace.hasApplication(kResizer.bundleIdentifier)) {
        reportMissingCompanionApplication();
        m_integratedApplicationBundleID.clear();
        return;
    }
    m_folder = ExchangeFolder::make();
    if (!m_folder) {
        m_integratedApplicationBundleID.clear();
        qCritical("ERROR: no temporary folder for the companion application could be created");
        m_services.status.notify(tr("The temporary folder could not be created."));
        return;
    }
    order.exchangeFolder = m_folder->path();
    m_services.save.start(order);
}

void CompanionExchange::saveEnded()
{
    if (m_folder)
        finishedSavingForCompanionApplication(m_services.save.savedImagesInfo());
    m_folder.reset();
    m_integratedApplicationBundleID.clear();
    addReceived();
}

/// @param pairs  of each copy its path and its photo's
void CompanionExchange::finishedSavingForCompanionApplication(const QStringList &pairs)
{
    if (pairs.isEmpty() || m_integratedApplicationBundleID.isEmpty())
        return;
    if (!handOver(pairs)) {
        m_folder.reset();
        reportMissingCompanionApplication();
        return;
    }
    m_folder->handOver();
    m_handedOver.push_back(std::move(m_folder));
}

bool CompanionExchange::handOver(const QStringList &pairs)
{
    const QString infoPath = QFileInfo(pairs.first()).path() + QLatin1Char('/') + kInfoFile;
    AtomicFile info(infoPath, AtomicFile::IfExists::Replace);
    Result<void> written = info.open();
    if (written) {
        info.device().write(xmlFromStrings(QStringList(kBanner) + pairs));
        written = info.commit();
    }
    if (!written) {
        qCritical("ERROR: %s: %s", qUtf8Printable(infoPath), qUtf8Printable(written.error().text));
        return false;
    }
    QStringList files(infoPath);
    for (qsizetype index = 0; index < pairs.size(); index += 2)
        files.append(pairs[index]);
    return m_services.workspace.openFiles(files, m_integratedApplicationBundleID);
}

void CompanionExchange::reportMissingCompanionApplication()
{
    const auto companion = std::find_if(kCompanions.begin(), kCompanions.end(), [this](const Companion &one) {
        return one.bundleIdentifier == m_integratedApplicationBundleID;
    });
    if (companion == kCompanions.end())
        return;
    const QString name = companion->displayName;
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("Could not open images in %1!").arg(name);
    alert.text = tr("Please make sure that %1 is installed.").arg(name);
    alert.buttons = {tr("Get %1").arg(name), tr("Close")};
    alert.escapeButton = 1;
    if (m_services.alerts.run(alert).button == 0)
        m_services.workspace.openUrl(QUrl(QLatin1String(identity::kWebSite) + companion->page));
}

void CompanionExchange::openTempFilesFromCompanionApplicationUsingInfoFile(const QString &path)
{
    const QStringList list = listOf(path);
    const QString folder = QFileInfo(QFileInfo(path).absolutePath()).canonicalFilePath();
    QFile::remove(path);
    for (qsizetype index = 1; index < list.size(); index += 2) {
        const QString &temporary = list[index];
        const QString &photo = list[index + 1];
        if (!maybePhoto(temporary) || !maybePhoto(photo)) {
            qWarning("ignored a pair of the exchange info file: %s", qUtf8Printable(temporary));
            continue;
        }
        const auto image = std::make_shared<ImageObject>(QDir::cleanPath(photo), m_services.photos);
        image->setPathToImportFrom(temporary);
        m_received.push_back(image);
        if (isTemporaryCopy(temporary, photo, folder))
            m_temporaryExchangeFiles.append(temporary);
    }
    if (!m_services.save.isSavingInProgress())
        addReceived();
}

void CompanionExchange::adoptTemporaryFiles(const QStringList &paths)
{
    std::copy_if(paths.begin(), paths.end(), std::back_inserter(m_temporaryExchangeFiles),
                 isFileInTemporaryFolder);
}

void CompanionExchange::addReceived()
{
    if (!m_received.empty())
        m_services.gathering.addImages(std::exchange(m_received, {}));
}

} // namespace plexa
