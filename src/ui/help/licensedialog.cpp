// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/help/licensedialog.h"

#include "platform/applicationname.h"
#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "ui/widgets/look.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace plexa
{

namespace
{

/// Another license would be asked about again.
const QString kLicense = QStringLiteral("GPL-3.0-or-later");

constexpr int kColumns = 84; // of the license's own lines
constexpr int kLines = 24;

QPlainTextEdit *makeText()
{
    QFile file(QStringLiteral(":/license/LICENSE"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    Q_ASSERT(isOpen);
    auto *const text = new QPlainTextEdit(isOpen ? QString::fromUtf8(file.readAll()) : QString());
    text->setObjectName(QStringLiteral("licenseText"));
    text->setReadOnly(true);
    text->setAccessibleName(LicenseDialog::tr("Text of the license"));
    QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fixed.setPointSizeF(text->font().pointSizeF()); // large where the others are large
    text->setFont(fixed);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    const QFontMetrics font = text->fontMetrics();
    text->setMinimumSize(font.horizontalAdvance(u'm') * kColumns, font.lineSpacing() * kLines / 2);
    return text;
}

bool hasScreen()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1StringView("offscreen") && platform != QLatin1StringView("minimal");
}

} // namespace

LicenseDialog::LicenseDialog(Purpose purpose, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("license"));
    setWindowTitle(tr("License of %1").arg(applicationName()));
    auto *const summary = new QLabel(
        tr("%1 is free software: you may use, study, share and change it under the terms of the GNU General "
           "Public License, version 3 or any later version. It comes without any warranty.")
            .arg(applicationName()));
    summary->setWordWrap(true);
    auto *const buttons = new QDialogButtonBox;
    if (purpose == Purpose::Agreement) {
        buttons->addButton(tr("&Agree"), QDialogButtonBox::AcceptRole)
            ->setToolTip(tr("Start %1; this question does not come again").arg(applicationName()));
        buttons->addButton(tr("&Quit"), QDialogButtonBox::RejectRole)
            ->setToolTip(tr("Quit without starting %1").arg(applicationName()));
    } else {
        buttons->addButton(QDialogButtonBox::Close);
    }
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * look::kGap, 2 * look::kGap, 2 * look::kGap, 2 * look::kGap);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(summary);
    layout->addWidget(makeText(), 1);
    layout->addWidget(buttons);
    const QSize wanted(sizeHint().width(), fontMetrics().lineSpacing() * kLines * 3 / 2);
    resize(wanted.boundedTo(screen()->availableSize()));
    buttons->buttons().first()->setFocus();
}

bool LicenseDialog::hasAgreement(UserDefaults &defaults)
{
    if (defaults.stringForKey(settings::agreedLicense) == kLicense || !hasScreen())
        return true;
    LicenseDialog dialog(Purpose::Agreement);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    defaults.setObject(settings::agreedLicense, kLicense);
    return true;
}

} // namespace plexa
