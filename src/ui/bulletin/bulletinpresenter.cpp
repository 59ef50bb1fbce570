// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/bulletinpresenter.h"

#include "bulletin/bulletinfeed.h"
#include "platform/siblingprogram.h"
#include "ui/bulletin/bulletinreports.h"

#include <QDebug>
#include <QProcess>
#include <QWidget>

#include <utility>

namespace plexa
{

namespace
{

constexpr int kMillisecondsToEnd = 1000;

} // namespace

BulletinPresenter::BulletinPresenter(BulletinFeed &feed, const QWidget &mainWindow)
    : BulletinPresenter(feed, mainWindow, siblingProgram(QStringLiteral("plexa-bulletin")))
{
}

BulletinPresenter::BulletinPresenter(BulletinFeed &feed, const QWidget &mainWindow, const QString &program)
    : m_feed(feed)
    , m_mainWindow(mainWindow)
    , m_program(program)
{
    connect(&feed, &BulletinFeed::bulletinChosen, this, &BulletinPresenter::showBulletin);
}

BulletinPresenter::~BulletinPresenter()
{
    closeBulletin();
}

void BulletinPresenter::showBulletin(const Bulletin &bulletin)
{
    closeBulletin();
    m_process = new QProcess(this);
    m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel); // the log is one
    connect(m_process, &QProcess::readyReadStandardOutput, this, [this, bulletin] { readReports(bulletin); });
    connect(m_process, &QProcess::errorOccurred, this, [this] {
        qCritical().noquote() << "ERROR: the bulletin could not be shown:" << m_process->errorString();
    });
    connect(m_process, &QProcess::finished, this, [](int status) {
        if (status != 0)
            qCritical("ERROR: the bulletin could not be shown: the browser engine failed");
    });
    const QPoint center = m_mainWindow.frameGeometry().center();
    QStringList arguments{QStringLiteral("--center"), QStringLiteral("%1,%2").arg(center.x()).arg(center.y()),
                          bulletin.page.toString(QUrl::FullyEncoded)};
    if (bulletin.allowSuppress)
        arguments.prepend(QStringLiteral("--allow-suppress"));
    m_process->start(m_program, arguments, QIODevice::ReadOnly);
}

void BulletinPresenter::closeBulletin()
{
    QProcess *const process = std::exchange(m_process, nullptr);
    if (!process)
        return;
    process->disconnect(this);
    process->terminate();
    process->waitForFinished(kMillisecondsToEnd);
    delete process;
}

void BulletinPresenter::readReports(const Bulletin &bulletin)
{
    while (m_process->canReadLine()) {
        const QByteArray report = m_process->readLine().trimmed();
        if (report == bulletinreports::kShown)
            m_feed.bulletinWasShown(bulletin);
        else if (report == bulletinreports::kSuppressed)
            m_feed.suppress(bulletin);
    }
}

} // namespace plexa
