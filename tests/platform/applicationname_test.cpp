// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <unistd.h>

using namespace plexa;

Q_DECLARE_METATYPE(plexa::BundleInfo)

class ApplicationNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_data();
    void names();
    void ownName();
    void supportFolder_data();
    void supportFolder();
    void fullNames_data();
    void fullNames();
    void userOfThisProcess();
};

void ApplicationNameTest::names_data()
{
    QTest::addColumn<BundleInfo>("bundle");
    QTest::addColumn<bool>("company");
    QTest::addColumn<bool>("major");
    QTest::addColumn<bool>("fromBundle");
    QTest::addColumn<QString>("expected");
    const auto info = [](const char *company, const char *name, const char *version) {
        return BundleInfo{QString::fromLatin1(company), QString::fromLatin1(name),
                          QString::fromLatin1(version)};
    };
    const BundleInfo full = info("Acme", "Stamper", "12.3.4");
    QTest::newRow("plain") << full << false << false << false << QStringLiteral("Plexa");
    QTest::newRow("bundle") << full << false << false << true << QStringLiteral("Stamper");
    QTest::newRow("all") << full << true << true << true << QStringLiteral("Acme Stamper 12");
    QTest::newRow("version without bundle")
        << full << true << true << false << QStringLiteral("Quorvel Plexa 12");
    QTest::newRow("empty bundle") << BundleInfo() << true << true << true
                                  << QStringLiteral("Quorvel Plexa 1");
    QTest::newRow("no company") << info("", "Stamper", "2") << true << true << true
                                << QStringLiteral("Quorvel Stamper 2");
    QTest::newRow("empty component") << info("", "", ".5") << false << true << true
                                     << QStringLiteral("Plexa 1");
}

void ApplicationNameTest::names()
{
    QFETCH(BundleInfo, bundle);
    QFETCH(bool, company);
    QFETCH(bool, major);
    QFETCH(bool, fromBundle);
    QTEST(applicationNameWithCompany(company, major, fromBundle, bundle), "expected");
}

void ApplicationNameTest::ownName()
{
    QCOMPARE(applicationNameWithCompany(true, false, true), QStringLiteral("Quorvel Plexa"));
}

void ApplicationNameTest::supportFolder_data()
{
    QTest::addColumn<QString>("fileInTheWay");
    QTest::addColumn<QByteArray>("message");
    QTest::newRow("created") << QString() << QByteArray();
    QTest::newRow("a file has the name")
        << QStringLiteral("Quorvel/Plexa")
        << QByteArray("ERROR: the application support directory exists, but is not a directory:  ");
    QTest::newRow("a file has the maker's name")
        << QStringLiteral("Quorvel")
        << QByteArray("ERROR: failed to create the application support directory:  ");
}

void ApplicationNameTest::supportFolder()
{
    QFETCH(QString, fileInTheWay);
    QFETCH(QByteArray, message);
    const test::TestFolder folder;
    const QString base = folder.path(QStringLiteral("XDG_DATA_HOME"));
    const QString expected = base + QStringLiteral("/Quorvel/Plexa");
    if (!fileInTheWay.isEmpty()) {
        QFile file(base + QLatin1Char('/') + fileInTheWay);
        QVERIFY(QDir().mkpath(QFileInfo(file).path()));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QTest::ignoreMessage(QtCriticalMsg, (message + expected.toUtf8()).constData());
    }
    QCOMPARE(applicationSupportSubdirectory(), expected);
    QCOMPARE(QFileInfo(expected).isDir(), fileInTheWay.isEmpty());
}

void ApplicationNameTest::fullNames_data()
{
    QTest::addColumn<QString>("comment");
    QTest::addColumn<QString>("expected");
    QTest::newRow("name alone") << QStringLiteral("Zo\u00eb Maier") << QStringLiteral("Zo\u00eb Maier");
    QTest::newRow("with room and telephone")
        << QStringLiteral("Zo\u00eb Maier,12,555-1,,") << QStringLiteral("Zo\u00eb Maier");
    QTest::newRow("login name inside") << QStringLiteral("& Maier") << QStringLiteral("Zoe Maier");
    QTest::newRow("no name") << QStringLiteral(",12") << QString();
}

void ApplicationNameTest::fullNames()
{
    QFETCH(QString, comment);
    QTEST(fullNameInComment(comment, QStringLiteral("zoe")), "expected");
}

void ApplicationNameTest::userOfThisProcess()
{
    const QByteArray entry =
        test::outputOf(QStringLiteral("getent"), {QStringLiteral("passwd"), QString::number(geteuid())});
    const QString comment = QString::fromUtf8(entry).section(QLatin1Char(':'), 4, 4);
    if (comment.section(QLatin1Char(','), 0, 0).isEmpty() || comment.contains(QLatin1Char('&')))
        QSKIP("the user of this test has no plain full name");
    QCOMPARE(fullUserName(), comment.section(QLatin1Char(','), 0, 0));
}

QTEST_GUILESS_MAIN(ApplicationNameTest)
#include "applicationname_test.moc"
