// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/applicationname.h"
#include "support/datarows.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QtTest>

#include <unistd.h>

using namespace plexa;
using namespace plexa::test;

namespace
{

struct Name {
    Text name;
    BundleInfo bundle;
    bool hasCompany;
    bool hasMajor;
    bool isFromBundle;
    Text expected;
};

struct InTheWay {
    Text name;
    Text file;
    QByteArray message;
};

struct FullName {
    Text name;
    Text comment;
    Text expected;
};

} // namespace

class ApplicationNameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names_data()
    {
        const BundleInfo full{u"Acme"_qs, u"Stamper"_qs, u"12.3.4"_qs};
        addRows<Name>({
            {"plain", full, false, false, false, "Plexa"},
            {"bundle", full, false, false, true, "Stamper"},
            {"all", full, true, true, true, "Acme Stamper 12"},
            {"version without bundle", full, true, true, false, "Quorvel Plexa 12"},
            {"empty bundle", {}, true, true, true, "Quorvel Plexa 1"},
            {"no company", {{}, u"Stamper"_qs, u"2"_qs}, true, true, true, "Quorvel Stamper 2"},
            {"empty component", {{}, {}, u".5"_qs}, false, true, true, "Plexa 1"},
        });
    }
    void names()
    {
        const auto row = currentRow<Name>();
        QCOMPARE(applicationNameWithCompany(row.hasCompany, row.hasMajor, row.isFromBundle, row.bundle),
                 row.expected);
    }

    void supportFolder_data()
    {
        addRows<InTheWay>({{"created", {}, {}},
                           {"a file has the name", "Quorvel/Plexa",
                            "ERROR: the application support directory exists, but is not a directory:  "},
                           {"a file has the maker's name", "Quorvel",
                            "ERROR: failed to create the application support directory:  "}});
    }
    void supportFolder()
    {
        const auto [row, file, message] = currentRow<InTheWay>();
        const TestFolder folder;
        const QString base = folder.path("XDG_DATA_HOME");
        const QString expected = base + u"/Quorvel/Plexa"_qs;
        if (!file.isEmpty()) {
            QVERIFY(writeFile(base + u'/' + file, {}));
            QTest::ignoreMessage(QtCriticalMsg, (message + expected.toUtf8()).constData());
        }
        QCOMPARE(applicationSupportSubdirectory(), expected);
        QCOMPARE(QFileInfo(expected).isDir(), file.isEmpty());
    }

    void fullNames_data()
    {
        addRows<FullName>({{"name alone", "Zo\u00eb Maier", "Zo\u00eb Maier"},
                           {"with room and telephone", "Zo\u00eb Maier,12,555-1,,", "Zo\u00eb Maier"},
                           {"login name inside", "& Maier", "Zoe Maier"},
                           {"no name", ",12", {}}});
    }
    void fullNames()
    {
        const auto [row, comment, expected] = currentRow<FullName>();
        QCOMPARE(fullNameInComment(comment, u"zoe"_qs), expected);
    }

    void userOfThisProcess()
    {
        const QByteArray entry = outputOf("getent passwd %1", QString::number(geteuid()));
        const QString comment = QString::fromUtf8(entry).section(u':', 4, 4);
        if (comment.section(u',', 0, 0).isEmpty() || comment.contains(u'&'))
            QSKIP("the user of this test has no plain full name");
        QCOMPARE(fullUserName(), comment.section(u',', 0, 0));
    }
};

QTEST_GUILESS_MAIN(ApplicationNameTest)
#include "applicationname_test.moc"
