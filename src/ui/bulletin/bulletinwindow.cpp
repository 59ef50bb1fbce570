// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/bulletin/bulletinwindow.h"

#include "ui/bulletin/bulletinpage.h"
#include "ui/widgets/look.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QStackedLayout>
#include <QVBoxLayout>
#include <QWebEngineLoadingInfo>
#include <QWebEngineView>

namespace plexa
{

BulletinWindow::BulletinWindow(const QUrl &page, bool allowSuppress)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , m_stack(new QStackedLayout)
    , m_webView(new QWebEngineView)
    , m_suppressCheckbox(new QCheckBox(tr("&Do not show this again")))
{
    setObjectName(QStringLiteral("bulletin"));
    setWindowTitle(tr("News"));
    m_profile.setHttpCacheType(QWebEngineProfile::NoCache);
    m_profile.setPersistentCookiesPolicy(QWebEngineProfile::NoPersistentCookies);
    m_profile.setSpellCheckEnabled(false);

    m_webView->setObjectName(QStringLiteral("webView"));
    m_webView->setAccessibleName(tr("News page"));
    m_webView->setContextMenuPolicy(Qt::NoContextMenu);
    m_webView->setAcceptDrops(false);
    m_webView->setPage(new BulletinPage(&m_profile, m_webView));
    auto *const failure = new QLabel(tr("The page could not be loaded."));
    failure->setObjectName(QStringLiteral("failure"));
    failure->setAlignment(Qt::AlignCenter);
    m_stack->addWidget(m_webView);
    m_stack->addWidget(failure);
    connect(m_webView->page(), &QWebEnginePage::loadingChanged, this, &BulletinWindow::loadingChanged);

    m_suppressCheckbox->setObjectName(QStringLiteral("suppressCheckbox"));
    m_suppressCheckbox->setToolTip(tr("This news is not shown at later starts"));
    m_suppressCheckbox->setVisible(allowSuppress);
    auto *const buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->button(QDialogButtonBox::Close)->setToolTip(tr("Closes this window"));
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    // The page would keep the key.
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, &BulletinWindow::closeView);

    auto *const bar = new QHBoxLayout;
    bar->setContentsMargins(look::kLargeGap, look::kGap, look::kLargeGap, look::kGap);
    bar->addWidget(m_suppressCheckbox);
    bar->addWidget(buttons);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    layout->addLayout(m_stack, 1);
    layout->addLayout(bar);
    resize(kSize);
    m_webView->load(page);
}

BulletinWindow::~BulletinWindow()
{
    delete m_webView; // the page before its profile
}

/// A link that opens in the browser also ends a loading; the page stays.
void BulletinWindow::loadingChanged(const QWebEngineLoadingInfo &info)
{
    m_wasLoaded = m_wasLoaded || info.status() == QWebEngineLoadingInfo::LoadSucceededStatus;
    const bool isOver = info.status() != QWebEngineLoadingInfo::LoadStartedStatus;
    m_stack->setCurrentIndex(isOver && !m_wasLoaded ? 1 : 0);
}

void BulletinWindow::closeView()
{
    Q_EMIT closed(!m_suppressCheckbox->isHidden() && m_suppressCheckbox->isChecked());
}

} // namespace plexa
