// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/batchsave.h"
#include "app/exchangefolder.h"

#include <QObject>

#include <thread>

namespace plexa
{

class Alerts;
class ImageGathering;
class StatusManager;
class Workspace;
struct PhotoServices;

/// Sends watermarked copies to the companion application for resizing, and takes photos from companions: the
/// sender writes TIFF files into a private temporary folder and beside them an info file, "info.qtxf", that
/// names for each of them the photo it was made from, and opens all of these files with the receiver. Main
/// thread.
class CompanionExchange final : public QObject
{
    Q_OBJECT

public:
    struct Services {
        const PhotoServices &photos;
        ImageGathering &gathering;
        StatusManager &status;
        Alerts &alerts;
        Workspace &workspace;
        BatchSave &save;
    };

    /// @param services  outlive this object; only `save` may be destroyed before it
    explicit CompanionExchange(const Services &services);
    /// Deletes the temporary files of received photos, and the folders that no companion has.
    ~CompanionExchange() override;

    /// Whether a file of this name starts an exchange.
    static bool isInfoFile(const QString &path);

    /// Saves copies and opens them with the companion. Warns, and writes nothing, if that is not installed.
    /// @param order  without the folder
    void openInCompanionApplication(BatchSave::Order order);

    /// The running save is not handed over at its end.
    void cancelHandOver() { m_integratedApplicationBundleID.clear(); }

    /// Adds the photos that the info file lists, during a save after its end, and deletes the info file. They
    /// are shown under their own paths and read from the temporary files. A file that is no such list is
    /// logged and deleted.
    void openTempFilesFromCompanionApplicationUsingInfoFile(const QString &path);

    /// The files of received photos that are deleted at the end.
    const QStringList &temporaryFiles() const { return m_temporaryExchangeFiles; }
    /// Deletes those of a program that was killed at the end, too. Ignores files that are not in a temporary
    /// folder.
    void adoptTemporaryFiles(const QStringList &paths);

    /// Has to be called when a save has finished.
    void saveEnded();

private:
    void finishedSavingForCompanionApplication(const QStringList &pairs);
    bool handOver(const QStringList &pairs);
    void reportMissingCompanionApplication();
    void addReceived();

    const Services m_services;
    QString m_integratedApplicationBundleID;  // empty: no hand-over
    std::unique_ptr<ExchangeFolder> m_folder; // of the hand-over that is being saved
    std::vector<std::unique_ptr<ExchangeFolder>> m_handedOver;
    ImageList m_received;                 // for the end of a save
    QStringList m_temporaryExchangeFiles; // of received photos
    std::jthread m_cleaning;
};

} // namespace plexa
