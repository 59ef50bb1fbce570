// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/workingset.h"
#include "presets/savingpresetfields.h"
#include "support/programs.h"
#include "ui/editors/tokenmenu.h"
#include "ui/widgets/commandactions.h"
#include "ui/widgets/commandtable.h"
#include "ui/widgets/translations.h"
#include "ui/window/applicationservice.h"
#include "ui/window/desktopapplication.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

#include <algorithm>
#include <functional>
#include <map>
#include <set>

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

/// A catalog that records which texts of the program are asked for and absent.
class RecordingTranslator final : public QTranslator
{
public:
    QString translate(const char *context, const char *text, const char *comment, int n) const override
    {
        const QString translation = QTranslator::translate(context, text, comment, n);
        static const QRegularExpression contextOfQt(u"^Q[A-Z]"_qs);
        if (translation.isEmpty() && !QLatin1StringView(context).toString().contains(contextOfQt))
            absent.insert(QLatin1StringView(context) + u": "_qs + QString::fromUtf8(text));
        return translation;
    }

    mutable std::set<QString> absent;
};

/// One message of a catalog.
struct Message {
    QString source;
    QStringList forms; ///< one; those of a number have one for each kind of number
    bool isUnfinished = false;
};

QString catalogFile()
{
    return sourceFolder() + u"/resources/translations/plexa_de.ts"_qs;
}

QList<Message> messagesOf(const QString &path)
{
    QList<Message> messages;
    QXmlStreamReader xml(contentsOf(path));
    bool hasNumber = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == u"message")
            hasNumber = xml.attributes().hasAttribute(u"numerus"_qs);
        else if (xml.name() == u"source")
            messages.append({xml.readElementText(), {}, false});
        else if (xml.name() == u"translation")
            messages.last().isUnfinished = xml.attributes().hasAttribute(u"type"_qs);
        if (xml.name() == u"numerusform" || (xml.name() == u"translation" && !hasNumber))
            messages.last().forms.append(xml.readElementText());
    }
    return messages;
}

/// What a translation has to keep: places for values, and whether there is a mnemonic, an ellipsis, a final
/// mark, a blank at an end, a shortcut, a file filter.
QString skeletonOf(QString text)
{
    text.replace(u"..."_qs, u"…"_qs).replace(u"Strg+"_qs, u"Ctrl+"_qs);
    static const QRegularExpression kept(
        u"%L?[0-9n]|&(?=[\\p{L}\\p{N}])|…\\s*$|[.:!?]$|^\\s|\\s$|Ctrl\\+.|\\*\\.\\w+|\n"_qs);
    QStringList parts;
    for (const QRegularExpressionMatch &match : kept.globalMatch(text))
        parts.append(match.captured().trimmed());
    parts.sort(); // a sentence may name its values in another order
    return parts.join(u' ');
}

/// The letters that open the items of a menu, each once.
QString mnemonicsOf(const QStringList &texts)
{
    QString letters;
    for (QString text : texts) {
        text.remove(u"&&"_qs);
        letters += text.mid(text.indexOf(u'&') + 1, 1).toLower();
    }
    return letters;
}

QString withoutRepetition(const QString &letters)
{
    QString once;
    for (const QChar letter : letters)
        if (!once.contains(letter))
            once += letter;
    return once;
}

QStringList fileNameTokens()
{
    QStringList names;
    for (const TokenGroup &group : fileNameTokenGroups())
        names += group.names;
    return names;
}

using Languages = Row<QStringList, Text>; // the user's, the catalog

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

    /// scripts/update-translations finds nothing to add to the German catalog, and nothing to remove.
    void catalogIsComplete()
    {
        const TestFolder folder;
        const QString updated = folder.path("plexa_de.ts");
        QVERIFY(QFile::copy(catalogFile(), updated));
        const ProgramRun run =
            runProgram(sourceFolder() + u"/scripts/update-translations"_qs, {folder.path("")});
        QVERIFY2(run.status == 0, run.err);
        QStringList missing;
        for (const Message &message : messagesOf(updated))
            if (message.isUnfinished || message.forms.contains(QString()))
                missing.append(message.source);
        QVERIFY2(missing.isEmpty(), qPrintable(u"not translated: "_qs + missing.join(u" | "_qs)));
        QVERIFY2(contentsOf(updated) == contentsOf(catalogFile()), "run scripts/update-translations");
    }

    void translationsKeepPlacesMarksAndMnemonics()
    {
        const QList<Message> messages = messagesOf(catalogFile());
        QVERIFY(messages.size() > 800);
        QStringList changed;
        for (const Message &message : messages)
            for (const QString &form : message.forms)
                if (skeletonOf(form) != skeletonOf(message.source))
                    changed.append(message.source + u" -> "_qs + form);
        QVERIFY2(changed.isEmpty(), qPrintable(changed.join(u'\n')));
    }

    void firstLanguageWithACatalogIsChosen_data()
    {
        addRows<Languages>({
            {"exactly", {u"de"_qs}, "plexa_de"},
            {"of another country", {u"de-Latn-AT"_qs, u"de"_qs, u"en"_qs}, "plexa_de"},
            {"after an unknown one", {u"fr-FR"_qs, u"fr"_qs, u"de-DE"_qs}, "plexa_de"},
            {"English before it", {u"en-US"_qs, u"en"_qs, u"de"_qs}, ""},
            {"unknown ones", {u"fr-FR"_qs, u"fr"_qs}, ""},
            {"system without a language", {u"C"_qs, u"de"_qs}, ""},
            {"none", {}, ""},
        });
    }
    void firstLanguageWithACatalogIsChosen()
    {
        const auto [name, languages, catalog] = currentRow<Languages>();
        QCOMPARE(catalogFor(languages), catalog);
    }

    /// The window of the program, not its command line, speaks the language of the system.
    void programsChooseTheirLanguage()
    {
        qputenv("LANGUAGE", "de");
        const QByteArray window = outputOf(builtProgram(u"plexa"_qs), {u"--help"_qs});
        const QByteArray command = outputOf(builtProgram(u"plexa-cli"_qs), {u"--help"_qs});
        qputenv("LANGUAGE", "en_US");
        QVERIFY(window.contains("Versieht Fotos stapelweise mit Wasserzeichen."));
        QVERIFY(window.contains("Optionen:")); // a text of Qt
        QCOMPARE(command, outputOf(builtProgram(u"plexa-cli"_qs), {u"--help"_qs}));
    }

    void menusHaveAMnemonicForEachItem_data() { addRows<Row<bool>>({{"English", false}, {"German", true}}); }
    void menusHaveAMnemonicForEachItem()
    {
        const auto [name, isGerman] = currentRow<Row<bool>>();
        QTranslator german;
        QVERIFY(german.load(catalogFor({u"de"_qs}), u":/translations"_qs));
        if (isGerman)
            QVERIFY(QCoreApplication::installTranslator(&german));
        std::map<MenuId, QStringList> menus;
        QStringList photoMenu;
        for (const CommandRow &row : commandTable()) {
            menus[row.menu].append(commandText(row));
            if (row.isInImageMenu)
                photoMenu.append(commandText(row));
        }
        QStringList titles;
        for (const auto &[menu, texts] : menus) {
            titles.append(menuTitle(menu));
            QCOMPARE(mnemonicsOf(texts), withoutRepetition(mnemonicsOf(texts)));
        }
        QCOMPARE(mnemonicsOf(titles), withoutRepetition(mnemonicsOf(titles)));
        QCOMPARE(mnemonicsOf(photoMenu), withoutRepetition(mnemonicsOf(photoMenu)));
    }

    /// The choice "top left" is at the top left in a window that is laid out from right to left, too.
    void placesOnAPhotoAreNeverMirrored()
    {
        QGuiApplication::setLayoutDirection(Qt::RightToLeft);
        WorkingSet files;
        ApplicationService service;
        DesktopApplication program(service, {});
        program.launch({files.photo("a.png")});
        QTRY_VERIFY(program.window().isVisible());
        for (const QString &name : words("anchorPointRadioButtons textAlignmentSegments")) {
            const auto all = program.window().findChildren<QWidget *>(name);
            const auto shown = std::find_if(all.begin(), all.end(), std::mem_fn(&QWidget::isVisible));
            QVERIFY(shown != all.end());
            const auto buttons = (*shown)->findChildren<QAbstractButton *>();
            QTRY_VERIFY(buttons.at(0)->x() < buttons.at(2)->x());
        }
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    /// German words are long.
    void germanButtonsShowTheirTextsInALargeFont()
    {
        QTranslator german;
        QVERIFY(german.load(catalogFor({u"de"_qs}), u":/translations"_qs) &&
                QCoreApplication::installTranslator(&german));
        const QFont font = QApplication::font();
        QApplication::setFont(QFont(font.family(), 14));
        WorkingSet files;
        ApplicationService service;
        DesktopApplication program(service, {});
        program.launch({files.photo("a.png")});
        QTRY_VERIFY(program.window().isVisible());
        for (const ActionId shown : {ActionId::SingleMode, ActionId::PresetsMode,
                                     ActionId::ToggleWatermarkPresets, ActionId::ToggleSavingPresets}) {
            program.window().actions().run(shown);
            QTest::qWait(50);
            for (const QWidget *const widget : QApplication::allWidgets())
                if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
                    QVERIFY2(!button->isVisible() || !button->parentWidget()->layout() ||
                                 button->width() >= button->minimumSizeHint().width(),
                             qPrintable(button->text()));
        }
        QApplication::setFont(font);
    }

    /// Texts that a class asks for under another name than the catalog has would stay English.
    void germanWindowIsGermanThroughout()
    {
        RecordingTranslator german;
        QVERIFY(german.load(catalogFor({u"de"_qs}), u":/translations"_qs) &&
                QCoreApplication::installTranslator(&german));
        WorkingSet files;
        ApplicationService service;
        DesktopApplication program(service, {});
        MainWindow &window = program.window();
        program.launch({files.photo("a.png")});
        QTRY_VERIFY(window.isVisible() && program.controller().imageSet().images()->size() == 1);
        for (const ActionId id : {ActionId::PresetsMode, ActionId::SelectAll, ActionId::ToggleMetadata,
                                  ActionId::ToggleWatermarkPresets, ActionId::ToggleSavingPresets})
            window.actions().run(id);
        QTest::qWait(100);
        const auto *const saveAll = window.findChild<QAbstractButton *>(u"saveAllButton"_qs);
        QVERIFY(saveAll);
        QCOMPARE(saveAll->text(), u"Alle speichern…"_qs);
        QCOMPARE(program.controller().presetsStore().wPresets().front()->name(), u"Dezentes Copyright"_qs);
        QStringList absent(german.absent.begin(), german.absent.end());
        QVERIFY2(absent.isEmpty(), qPrintable(absent.join(u" | "_qs)));
    }
};

QTEST_MAIN(TranslationsTest)
#include "translations_test.moc"
