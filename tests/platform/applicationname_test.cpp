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
    void names_data()
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
        QTest::newRow("plain") << full << false << false << false << u"Plexa"_qs;
        QTest::newRow("bundle") << full << false << false << true << u"Stamper"_qs;
        QTest::newRow("all") << full << true << true << true << u"Acme Stamper 12"_qs;
        QTest::newRow("version without bundle") << full << true << true << false << u"Quorvel Plexa 12"_qs;
        QTest::newRow("empty bundle") << BundleInfo() << true << true << true << u"Quorvel Plexa 1"_qs;
        QTest::newRow("no company") << info("", "Stamper", "2") << true << true << true
                                    << u"Quorvel Stamper 2"_qs;
        QTest::newRow("empty component") << info("", "", ".5") << false << true << true << u"Plexa 1"_qs;
    }

    void names()
    {
        QFETCH(BundleInfo, bundle);
        QFETCH(bool, company);
        QFETCH(bool, major);
        QFETCH(bool, fromBundle);
        QTEST(applicationNameWithCompany(company, major, fromBundle, bundle), "expected");
    }

    void supportFolder_data()
    {
        QTest::addColumn<QString>("fileInTheWay");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("created") << QString() << QByteArray();
        QTest::newRow("a file has the name")
            << u"Quorvel/Plexa"_qs
            << QByteArray("ERROR: the application support directory exists, but is not a directory:  ");
        QTest::newRow("a file has the maker's name")
            << u"Quorvel"_qs << QByteArray("ERROR: failed to create the application support directory:  ");
    }

    void supportFolder()
    {
        QFETCH(QString, fileInTheWay);
        QFETCH(QByteArray, message);
        const test::TestFolder folder;
        const QString base = folder.path("XDG_DATA_HOME");
        const QString expected = base + u"/Quorvel/Plexa"_qs;
        if (!fileInTheWay.isEmpty()) {
            QFile file(base + u'/' + fileInTheWay);
            QVERIFY(QDir().mkpath(QFileInfo(file).path()));
            QVERIFY(file.open(QIODevice::WriteOnly));
            QTest::ignoreMessage(QtCriticalMsg, (message + expected.toUtf8()).constData());
        }
        QCOMPARE(applicationSupportSubdirectory(), expected);
        QCOMPARE(QFileInfo(expected).isDir(), fileInTheWay.isEmpty());
    }

    void fullNames_data()
    {
        QTest::addColumn<QString>("comment");
        QTest::addColumn<QString>("expected");
        QTest::newRow("name alone") << u"Zo\u00eb Maier"_qs << u"Zo\u00eb Maier"_qs;
        QTest::newRow("with room and telephone") << u"Zo\u00eb Maier,12,555-1,,"_qs << u"Zo\u00eb Maier"_qs;
        QTest::newRow("login name inside") << u"& Maier"_qs << u"Zoe Maier"_qs;
        QTest::newRow("no name") << u",12"_qs << QString();
    }

    void fullNames()
    {
        QFETCH(QString, comment);
        QTEST(fullNameInComment(comment, u"zoe"_qs), "expected");
    }

    void userOfThisProcess()
    {
        const QByteArray entry = test::outputOf(u"getent"_qs, {u"passwd"_qs, QString::number(geteuid())});
        const QString comment = QString::fromUtf8(entry).section(u':', 4, 4);
        if (comment.section(u',', 0, 0).isEmpty() || comment.contains(u'&'))
            QSKIP("the user of this test has no plain full name");
        QCOMPARE(fullUserName(), comment.section(u',', 0, 0));
    }
};

QTEST_GUILESS_MAIN(ApplicationNameTest)
#include "applicationname_test.moc"
