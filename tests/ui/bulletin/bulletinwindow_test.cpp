// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/files.h"
#include "support/testfolder.h"
#include "support/webserver.h"
#include "ui/bulletin/bulletinwindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDirIterator>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QWebEngineDownloadRequest>
#include <QWebEnginePage>
#include <QWebEngineView>

#include <algorithm>
#include <array>
#include <functional>

using namespace plexa;
using namespace plexa::test;

/// Read by the address sanitizer. The browser engine frees objects of one size that it allocated with
/// another.
extern "C" __attribute__((used, visibility("default"))) const char *__asan_default_options()
{
    return "new_delete_type_mismatch=0";
}

namespace
{

/// Links of 40 points below each other, and a script that tries what it must not do.
const QByteArray kPage =
    "<!DOCTYPE html><title>waiting</title><style>a { position: absolute; left: 0;\n"
    "width: 300px; height: 40px; } body { margin: 0 }</style>\n"
    "<a style='top: 0' href='https://www.example.org/more?x=1&amp;y=2'>link</a>\n"
    "<a style='top: 40px' href='https://www.example.org/blank' target='_blank'>new window</a>\n"
    "<a style='top: 80px' href='file:///etc/passwd'>file</a>\n"
    "<a style='top: 120px' href='/other.bin' download='x.bin'>download</a>\n"
    "<a style='top: 160px' href='mailto:a@b.example'>mail</a>\n"
    "<script>\n"
    "localStorageWorks = (() => { try { localStorage.a = 1; return true } catch (e) { return false } })();\n"
    "popup = window.open('https://www.example.org/popup');\n"
    "alert('a'); confirm('b'); prompt('c');\n"
    "fetch('file:///etc/passwd').then(() => document.title = 'read a file', () => document.title = 'done ' "
    "+\n"
    "localStorageWorks + ' ' + popup);\n"
    "document.cookie = 'a=b; max-age=100000';\n"
    "</script>\n";

constexpr std::array kSchemes{"http", "https", "file", "mailto"};

} // namespace

class BulletinWindowTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void openInBrowser(const QUrl &url) { m_opened.append(url.toString(QUrl::FullyEncoded)); }

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1"); // tests may run as root, or in a container
        qputenv("HOME", m_folder.path("home").toUtf8());
        for (const char *scheme : kSchemes)
            QDesktopServices::setUrlHandler(QLatin1String(scheme), this, "openInBrowser");
    }
    void cleanupTestCase()
    {
        for (const char *scheme : kSchemes)
            QDesktopServices::unsetUrlHandler(QLatin1String(scheme));
    }

    void keepsThePageIn()
    {
        m_server.answerWith(kPage, "200 OK\r\nContent-Type: text/html");
        BulletinWindow window(m_server.url(u"page"_qs), false);
        window.show();
        auto &view = *window.findChild<QWebEngineView *>();
        QTRY_COMPARE_WITH_TIMEOUT(view.title(), u"done false null"_qs, 60'000);
        QCOMPARE(m_opened, QStringList());

        bool isRequested = false;
        QPointer<QWebEngineDownloadRequest> download; // the engine deletes what is refused
        connect(view.page()->profile(), &QWebEngineProfile::downloadRequested, this,
                [&](QWebEngineDownloadRequest *request) {
                    isRequested = true;
                    download = request;
                });
        const auto click = [&](int y) { QTest::mouseClick(view.focusProxy(), Qt::LeftButton, {}, {50, y}); };
        const auto opens = [&](int y, const QString &address) {
            m_opened.clear();
            click(y);
            return QTest::qWaitFor([&] { return !m_opened.isEmpty(); }, 30'000) &&
                   m_opened == QStringList(address);
        };
        QVERIFY(opens(20, u"https://www.example.org/more?x=1&y=2"_qs));
        QVERIFY(opens(60, u"https://www.example.org/blank"_qs));
        m_opened.clear();
        click(100);
        click(140);
        QTRY_VERIFY_WITH_TIMEOUT(isRequested, 30'000);
        QTRY_VERIFY_WITH_TIMEOUT(
            !download || download->state() == QWebEngineDownloadRequest::DownloadCancelled, 30'000);
        QVERIFY(opens(180, u"mailto:a@b.example"_qs)); // and nothing before it
        QCOMPARE(view.url(), m_server.url(u"page"_qs));
        QVERIFY(view.isVisible()); // and not the notice of a failure
        const auto windows = QApplication::topLevelWidgets();
        QCOMPARE(std::count_if(windows.begin(), windows.end(), std::mem_fn(&QWidget::isVisible)), 1);
    }

    void scriptsOpenNothing()
    {
        m_opened.clear();
        m_server.answerWith("<a href='/second'>x</a><script>if (location.pathname === '/first')\n"
                            "setTimeout(() => { document.links[0].click() })</script>",
                            "200 OK\r\nContent-Type: text/html");
        BulletinWindow window(m_server.url(u"first"_qs), false);
        window.show();
        QTRY_COMPARE_WITH_TIMEOUT(window.findChild<QWebEngineView *>()->url(), m_server.url(u"second"_qs),
                                  60'000);
        QCOMPARE(m_opened, QStringList());
    }

    void storesNothing()
    {
        QStringList stored;
        QDirIterator files(m_folder.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext())
            if (const QString path = files.next(); !path.contains(u"shader"))
                stored.append(path);
        QCOMPARE(stored, QStringList());
    }

    void staysOnTheNet()
    {
        QVERIFY(writeFile(m_folder.path("secret.html"), "<title>secret</title>"));
        for (const QUrl &address : {QUrl::fromLocalFile(m_folder.path("secret.html")),
                                    QUrl(u"chrome://gpu"_qs), m_server.url(u"x"_qs, u"ftp"_qs)}) {
            BulletinWindow window(address, false);
            window.show();
            auto *const failure = window.findChild<QLabel *>(u"failure"_qs);
            QTRY_VERIFY2_WITH_TIMEOUT(failure->isVisible(), qPrintable(address.toString()), 30'000);
            QVERIFY(!window.findChild<QWebEngineView *>()->isVisible());
        }
    }

    void offersSuppression()
    {
        for (const auto &[allows, checks, byKey, expected] : {std::tuple(true, true, false, true),
                                                              {true, true, true, true},
                                                              {true, false, false, false},
                                                              {false, true, false, false}}) {
            BulletinWindow window(m_server.url(u"page"_qs), allows);
            window.show();
            QCOMPARE(window.size(), QSize(600, 350));
            QSignalSpy closed(&window, &BulletinWindow::closed);
            auto &box = *window.findChild<QCheckBox *>();
            QCOMPARE(box.isVisible(), allows);
            if (checks)
                box.setChecked(true);
            if (byKey)
                QTest::keyClick(&window, Qt::Key_Escape);
            else
                QTest::mouseClick(window.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Close),
                                  Qt::LeftButton);
            QVERIFY(!window.isVisible());
            QCOMPARE(closed.count(), 1);
            QCOMPARE(closed.at(0).at(0).toBool(), expected);
        }
    }

private:
    TestFolder m_folder;
    WebServer m_server;
    QStringList m_opened;
};

QTEST_MAIN(BulletinWindowTest)
#include "bulletinwindow_test.moc"
