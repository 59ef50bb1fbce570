// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/settings.h"
#include "platform/userdefaults.h"
#include "support/files.h"
#include "support/testenvironment.h"
#include "ui/help/licensedialog.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

using namespace plexa;
using namespace plexa::test;

/// The question in a real window is part of window_road_test.
class LicenseDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheWholeLicense()
    {
        const LicenseDialog dialog(LicenseDialog::Purpose::Reading);
        const auto *const text = dialog.findChild<QPlainTextEdit *>(u"licenseText"_qs);
        QVERIFY(text && text->isReadOnly());
        QCOMPARE(text->toPlainText().toUtf8(), contentsOf(sourceFolder() + u"/LICENSE"_qs));
    }

    void onlyTheFirstButtonAgrees()
    {
        for (const bool agrees : {true, false}) {
            LicenseDialog dialog(LicenseDialog::Purpose::Agreement);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            QTest::keyClick(&dialog, agrees ? Qt::Key_Return : Qt::Key_Escape);
            QTRY_VERIFY(!dialog.isVisible());
            QCOMPARE(dialog.result() == QDialog::Accepted, agrees);
        }
    }

    void neverAsksWithoutAScreen()
    {
        UserDefaults defaults(u"Quorvel"_qs, u"Plexa"_qs);
        QVERIFY(LicenseDialog::hasAgreement(defaults));
        QVERIFY(!defaults.isStored(settings::agreedLicense)); // the user is asked at a screen
    }
};

QTEST_MAIN(LicenseDialogTest)
#include "licensedialog_test.moc"
