// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "bulletin/releaseselection.h"

#include <QDialog>

namespace plexa
{

/// Shows which newer version there is and what is new in it. The user downloads it, skips it, or is reminded
/// later. Deletes itself when it closes.
class UpdateWindow final : public QDialog
{
    Q_OBJECT

public:
    /// @param releases  at least one, the newest first
    UpdateWindow(const QList<Release> &releases, QWidget *parent);

Q_SIGNALS:
    void pageWanted(const QUrl &page);
    void skipWanted(const QVersionNumber &version);

private:
    QWidget *texts(const QVersionNumber &version) const;
};

} // namespace plexa
