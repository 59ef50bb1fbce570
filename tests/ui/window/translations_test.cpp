// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "presets/savingpresetfields.h"
#include "ui/editors/tokenmenu.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTranslator>

using namespace plexa;
using namespace plexa::test;

/// Marks each text that passes a translation.
class MarkingTranslator final : public QTranslator
{
public:
    QString translate(const char *, const char *text, const char *, int) const override
    {
        return QChar(0xab) + QString::fromUtf8(text) + QChar(0xbb);
    }
    bool isEmpty() const override { return false; }
};

QStringList fileNameTokens()
{
    QStringList names;
    for (const TokenGroup &group : fileNameTokenGroups())
        names += group.names;
    return names;
}

class TranslationsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Texts of the window, shown and hidden, that have a word and no mark. The names of tokens, formats,
    /// fonts and presets, and the values of colors, are the same in each language.
    void everyTextCanBeTranslated()
    {
        MarkingTranslator translator;
        QVERIFY(QCoreApplication::installTranslator(&translator));
        WorkingSet files;
        ApplicationService service;
        DesktopApplication program(service, {});
        program.launch({files.photo("a.png")});
        QTest::qWait(500);
        QStringList unmarked;
        const auto check = [&](const QObject *owner, const QString &text) {
            static const QRegularExpression word(QStringLiteral("\\p{L}{2,}"));
            static const QStringList names =
                fileNameTokens() + savingPresetField(SavingField::ImageFormat).limits().choices;
            static const QStringList dataOwners{u"fontFamilyPopUp"_qs, u"fontStylePopUp"_qs,
                                                u"savingPresetPopUp"_qs};
            if (names.contains(text) || dataOwners.contains(owner->objectName()) || text.startsWith(u'#'))
                return;
            if (text.contains(word) && !text.contains(QChar(0xab)))
                unmarked.append(
                    QStringLiteral("%1 %2: %3")
                        .arg(QLatin1StringView(owner->metaObject()->className()), owner->objectName(), text));
        };
        qsizetype count = 0;
        for (const QWidget *widget : QApplication::allWidgets()) {
            ++count;
            check(widget, widget->toolTip());
            check(widget, widget->accessibleName());
            check(widget, widget->accessibleDescription());
            check(widget, widget->whatsThis());
            if (const auto *label = qobject_cast<const QLabel *>(widget))
                check(label, label->text());
            if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
                check(button, button->text());
            if (const auto *box = qobject_cast<const QGroupBox *>(widget))
                check(box, box->title());
            if (const auto *line = qobject_cast<const QLineEdit *>(widget))
                check(line, line->placeholderText());
            if (const auto *box = qobject_cast<const QComboBox *>(widget))
                for (int i = 0; i < box->count(); ++i)
                    check(box, box->itemText(i));
            for (const QAction *action : widget->actions()) {
                check(action, action->text());
                check(action, action->toolTip());
            }
        }
        unmarked.removeDuplicates();
        QVERIFY(count > 100);
        for (const QString &text : unmarked)
            qWarning("%s", qPrintable(text));
        QVERIFY(unmarked.isEmpty());
    }
};

QTEST_MAIN(TranslationsTest)
#include "translations_test.moc"
