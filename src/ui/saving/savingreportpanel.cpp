// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/saving/savingreportpanel.h"

#include "platform/applicationname.h"
#include "platform/atomicfile.h"
#include "ui/widgets/look.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSet>
#include <QVBoxLayout>

namespace plexa
{
namespace
{

constexpr int kIconSide = 40;
constexpr int kWidth = 440;
constexpr QSize kSizeWithList(640, 480);
constexpr QSize kSizeWithShortList(640, 280);
constexpr int kFewLines = 5;

QLabel *textLabel(const QString &name, const QString &text)
{
    auto *const label = new QLabel(text);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText); // names of files are no markup
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

} // namespace

SavingReportPanel::SavingReportPanel(SavingReport report, Alerts &alerts, QWidget *parent)
    : QDialog(parent)
    , m_report(std::move(report))
    , m_alerts(alerts)
{
    setObjectName(QStringLiteral("savingReportPanel"));
    setWindowTitle(applicationName());
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(look::kPageGap, look::kPageGap, look::kPageGap, look::kLargeGap);
    layout->setSpacing(look::kLargeGap);
    layout->addWidget(makeHeading());
    const QString text = m_report.text(false);
    if (!text.isEmpty()) {
        auto *const list = new QPlainTextEdit(text);
        list->setObjectName(QStringLiteral("savingReportText"));
        list->setAccessibleName(tr("Report"));
        list->setReadOnly(true);
        list->setTabChangesFocus(true);
        list->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        layout->addWidget(list, 1);
    }
    layout->addWidget(makeButtons());
    setMinimumWidth(kWidth);
    if (!text.isEmpty())
        resize(text.count(u'\n') > kFewLines ? kSizeWithList : kSizeWithShortList);
    auto *const close = findChild<QPushButton *>(QStringLiteral("closeReportButton"));
    close->setDefault(true); // which a button outside of a dialog cannot become
    close->setFocus();
}

QWidget *SavingReportPanel::makeHeading()
{
    auto *const heading = new QWidget;
    auto *const row = new QHBoxLayout(heading);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::kLargeGap);
    const char *const icon = m_report.hasFailures() ? "critical" : m_report.isClean() ? "info" : "warning";
    auto *const picture = new QLabel;
    picture->setPixmap(QIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1StringView(icon)))
                           .pixmap(QSize(kIconSide, kIconSide), devicePixelRatioF()));
    row->addWidget(picture, 0, Qt::AlignTop);
    auto *const texts = new QVBoxLayout;
    texts->setSpacing(look::kSmallGap);
    QLabel *const title = textLabel(QStringLiteral("savingReportTitle"), m_report.title());
    QFont font = title->font();
    font.setBold(true);
    title->setFont(font);
    texts->addWidget(title);
    texts->addWidget(textLabel(QStringLiteral("savingReportExplanation"), m_report.explanation()));
    row->addLayout(texts, 1);
    return heading;
}

QWidget *SavingReportPanel::makeButtons()
{
    auto *const box = new QDialogButtonBox(QDialogButtonBox::Close);
    QPushButton *const close = box->button(QDialogButtonBox::Close);
    close->setText(tr("Close"));
    close->setObjectName(QStringLiteral("closeReportButton"));
    QPushButton *const open = box->addButton(tr("Open Folder"), QDialogButtonBox::ActionRole);
    open->setObjectName(QStringLiteral("openFolderButton"));
    open->setEnabled(!m_report.writtenPaths().isEmpty());
    open->setToolTip(open->isEnabled() ? tr("Show the copies in the file manager")
                                       : tr("There are no copies"));
    QPushButton *const save = box->addButton(tr("Save Report…"), QDialogButtonBox::ActionRole);
    save->setObjectName(QStringLiteral("saveReportButton"));
    save->setToolTip(tr("Write the report to a text file, with the paths of all copies"));
    for (QPushButton *const button : {open, save})
        button->setAutoDefault(false); // Enter closes
    connect(open, &QAbstractButton::clicked, this, &SavingReportPanel::openFolder);
    connect(save, &QAbstractButton::clicked, this, &SavingReportPanel::saveReport);
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    return box;
}

void SavingReportPanel::openFolder()
{
    QSet<QString> folders;
    QStringList copies;
    for (const QString &path : m_report.writtenPaths()) {
        const QString folder = QFileInfo(path).path();
        if (!folders.contains(folder))
            copies.append(path);
        folders.insert(folder);
    }
    Q_EMIT openFolderWanted(copies);
}

void SavingReportPanel::saveReport()
{
    auto *const dialog = new QFileDialog(this, tr("Save Report"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setNameFilter(tr("Text files (*.txt)"));
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(tr("Report") + QStringLiteral(".txt"));
    connect(dialog, &QFileDialog::fileSelected, this, &SavingReportPanel::writeTo);
    dialog->open();
}

void SavingReportPanel::writeTo(const QString &path)
{
    AtomicFile file(path, AtomicFile::IfExists::Replace);
    const Result<void> written = file.open().and_then([&]() -> Result<void> {
        file.device().write(m_report.text(true).toUtf8());
        return file.commit();
    });
    if (written)
        return;
    Alert alert;
    alert.style = Alert::Style::Warning;
    alert.title = tr("The report could not be saved");
    alert.text = tr("%1: %2").arg(path, written.error().text);
    m_alerts.run(alert);
}

} // namespace plexa
