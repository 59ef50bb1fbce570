// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "app/savingreport.h"

#include <QDialog>

namespace plexa
{

/// The report at the end of a run, in a sheet of the window: a few words if all copies are as expected, else
/// with a list of the others. Deletes itself when it is closed.
class SavingReportPanel final : public QDialog
{
    Q_OBJECT

public:
    /// @param alerts  for a report that cannot be stored; outlives the panel
    SavingReportPanel(SavingReport report, Alerts &alerts, QWidget *parent);

Q_SIGNALS:
    /// A copy of each folder has to be shown in it.
    void openFolderWanted(const QStringList &copies);

private:
    QWidget *makeHeading();
    QWidget *makeButtons();
    void openFolder();
    void saveReport();
    void writeTo(const QString &path);

    const SavingReport m_report;
    Alerts &m_alerts;
};

} // namespace plexa
