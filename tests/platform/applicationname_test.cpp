// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <unistd.h>

using namespace plexa;

class ApplicationNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void supportFolder()
    {
        struct Way {
            QString fileInTheWay;
            QByteArray message;
        };
        for (const auto &[fileInTheWay, message] :
             {Way{}, Way{u"Quorvel/Plexa"_qs, "exists, but is not a directory:  "},
              Way{u"Quorvel"_qs, "failed to create the application support directory:  "}}) {
            const test::TestFolder folder;
            const QString base = folder.path("XDG_DATA_HOME");
            const QString expected = base + u"/Quorvel/Plexa"_qs;
            if (!fileInTheWay.isEmpty()) {
                QVERIFY(test::writeFile(base + u'/' + fileInTheWay, {}));
                const QString pattern = QString::fromUtf8(message) + QRegularExpression::escape(expected);
                QTest::ignoreMessage(QtCriticalMsg, QRegularExpression(pattern));
            }
            QCOMPARE(applicationSupportSubdirectory(), expected);
            QCOMPARE(QFileInfo(expected).isDir(), fileInTheWay.isEmpty());
        }
    }

    void fullNames()
    {
        QCOMPARE(fullNameInComment(u"Zo\u00eb Maier,12,555-1,,"_qs, u"zoe"_qs), u"Zo\u00eb Maier"_qs);
        QCOMPARE(fullNameInComment(u"& Maier"_qs, u"zoe"_qs), u"Zoe Maier"_qs);
        QCOMPARE(fullNameInComment(u",12"_qs, u"zoe"_qs), QString());
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
