// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/updatewindow.h"

#include "platform/applicationname.h"
#include "ui/widgets/look.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

namespace plexa
{

namespace
{

constexpr int kIconSize = 64;
constexpr QSize kSize(560, 400);

/// What is new in all releases; a title for each one, if there are several.
QString notesOf(const QList<Release> &releases)
{
    QStringList parts;
    for (const Release &release : releases) {
        if (release.notes.isEmpty())
            continue;
        if (releases.size() > 1)
            parts.append(UpdateWindow::tr("Version %1").arg(release.version.toString()));
        parts.append(release.notes);
    }
    return parts.join(QStringLiteral("\n\n"));
}

QLabel *makeLabel(const QString &text)
{
    auto *const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

UpdateWindow::UpdateWindow(const QList<Release> &releases, QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("update"));
    setWindowTitle(tr("Update"));
    setAttribute(Qt::WA_DeleteOnClose);
    const Release newest = releases.first();

    auto *const notes = new QPlainTextEdit(notesOf(releases));
    notes->setObjectName(QStringLiteral("notes"));
    notes->setAccessibleName(tr("What is new"));
    notes->setReadOnly(true);
    notes->setTabChangesFocus(true);
    if (notes->document()->isEmpty())
        notes->hide();

    auto *const buttons = new QDialogButtonBox;
    const auto add = [&](const char *name, const QString &text, const QString &toolTip,
                         QDialogButtonBox::ButtonRole role, auto work) {
        QPushButton *const button = buttons->addButton(text, role);
        button->setObjectName(QLatin1String(name));
        button->setToolTip(toolTip);
        connect(button, &QPushButton::clicked, this, work);
        connect(button, &QPushButton::clicked, this, &QDialog::reject);
        return button;
    };
    add("skip", tr("&Skip This Version"), tr("Tells you about later versions only"),
        QDialogButtonBox::ResetRole, [this, newest] { Q_EMIT skipWanted(newest.version); });
    add("later", tr("Remind Me &Later"), tr("Tells you about this version again on another day"),
        QDialogButtonBox::RejectRole, [] {});
    QPushButton *const openPage =
        add("openPage", tr("&Open Download Page"), tr("Opens %1 in your browser").arg(newest.page.toString()),
            QDialogButtonBox::AcceptRole, [this, newest] { Q_EMIT pageWanted(newest.page); });

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(2 * look::kGap, 2 * look::kGap, 2 * look::kGap, 2 * look::kGap);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(texts(newest.version));
    layout->addWidget(notes, 1);
    layout->addWidget(buttons);
    openPage->setDefault(true); // now that it belongs to the dialog
    resize(notes->isHidden() ? QSize(kSize.width(), sizeHint().height()) : kSize);
}

QWidget *UpdateWindow::texts(const QVersionNumber &version) const
{
    auto *const icon = new QLabel;
    icon->setPixmap(windowIcon().pixmap(kIconSize));
    auto *const title = makeLabel(tr("%1 %2 is available").arg(applicationName(), version.toString()));
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    auto *const text = makeLabel(tr("You have version %1. Download the package, then install it with the "
                                    "package manager of your system.")
                                     .arg(applicationVersion()));

    auto *const page = new QWidget;
    auto *const layout = new QHBoxLayout(page);
    layout->setContentsMargins({});
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(icon, 0, Qt::AlignTop);
    auto *const lines = new QVBoxLayout;
    lines->setSpacing(look::kGap);
    lines->addWidget(title);
    lines->addWidget(text);
    lines->addStretch();
    layout->addLayout(lines, 1);
    return page;
}

} // namespace plexa
