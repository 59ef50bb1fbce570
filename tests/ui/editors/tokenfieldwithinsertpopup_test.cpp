// SPDX-License-Identifier: GPL-3.0-or-later

#include "saving/namingtokens.h"
#include "support/datarows.h"
#include "support/realpointer.h"
#include "ui/editors/tokenfieldpill.h"
#include "ui/editors/tokenfieldwithinsertpopup.h"
#include "watermark/texttokens.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHelpEvent>
#include <QMimeData>
#include <QPushButton>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTimer>
#include <QToolTip>
#include <QVBoxLayout>

#include <array>
#include <cmath>
#include <functional>

using namespace plexa;
using namespace plexa::test;

namespace
{

/// A list of pieces as one text: "|" between the pieces, "/" for a line break.
QStringList list(QString text)
{
    return text.isEmpty() ? QStringList() : text.replace(u'/', u'\n').split(u'|');
}

/// A shown field with its button, 300 wide; keys go to it as from the keyboard.
struct Field {
    explicit Field(const QStringList &tokens = {})
    {
        window.resize(300, 200);
        auto *const layout = new QVBoxLayout(&window);
        layout->addWidget(&field);
        layout->addWidget(&button);
        field.setVocabulary(watermarkTokenGroups());
        field.setInsertPopUpButton(&button);
        field.setTextTokens(tokens);
        window.show();
        window.activateWindow();
        active = QTest::qWaitForWindowActive(&window);
        field.setFocus();
    }

    /// To the popup that is open, else to the field.
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QWidget *const popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup : &field, key, modifiers);
    }

    void type(const QString &text)
    {
        const QHash<QChar, Qt::Key> keys{{u'\r', Qt::Key_Return},
                                         {u'\t', Qt::Key_Tab},
                                         {u'\x1b', Qt::Key_Escape},
                                         {u'\b', Qt::Key_Backspace}};
        for (const QChar character : text) {
            QWidget *const popup = QApplication::activePopupWidget();
            QTest::sendKeyEvent(QTest::Click, popup ? popup : &field, keys.value(character, Qt::Key_unknown),
                                QString(character), {});
        }
    }

    /// From the start of the text.
    void moveCaret(int steps, Qt::KeyboardModifiers modifiers = {})
    {
        key(Qt::Key_Home, Qt::ControlModifier);
        for (int i = 0; i < steps; ++i)
            key(Qt::Key_Right, modifiers);
    }

    /// Of the caret, in the viewport.
    QPoint placeOf(int position)
    {
        QTextCursor cursor(field.document());
        cursor.setPosition(position);
        return field.cursorRect(cursor).center();
    }

    QAction *item(const QString &name)
    {
        for (const QAction *const submenu : button.menu()->actions()) {
            for (QAction *const action : submenu->menu()->actions()) {
                if (action->text() == name)
                    return action;
            }
        }
        return nullptr;
    }

    QWidget window;
    QPushButton button;
    TokenFieldWithInsertPopup field;
    QSignalSpy edits{&field, &TokenFieldWithInsertPopup::textTokensChanged};
    bool active = false;
};

} // namespace

using Script = std::function<void(Field &f)>;

/// Events, the list before and after them, and the number of signals.
struct Edit {
    Text name;
    Text before;
    Script script;
    Text after;
};

/// A click beside the caret before the only pill.
struct PillClick {
    Text name;
    Text tokens;
    int position = 0; // of the pill
    int dx = 0;
    bool isOnPill = true;
};

class TokenFieldWithInsertPopupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void edits_data()
    {
        const auto typed = [](int steps, const char *text) {
            return Script([=](Field &f) {
                f.moveCaret(steps);
                f.type(QString::fromUtf8(text));
            });
        };
        const auto keyed = [](int steps, Qt::Key key) {
            return Script([=](Field &f) {
                f.moveCaret(steps);
                f.key(key);
            });
        };
        addRows<Edit>({
            {"before a pill", "a|city|b", typed(1, "x"), "ax|city|b"},
            {"a pill is one character", "a|city|b", typed(2, "x"), "a|city|xb"},
            {"between equal pills", "city|city", typed(1, "x"), "city|x|city"},
            {"after a pill on its own line", "a/|city", typed(3, "x"), "a/|city|x"},
            {"pill before right-to-left text", "שלום|city|עולם", typed(0, "x"), "xשלום|city|עולם"},
            {"backspace removes a pill", "a|city|b", keyed(2, Qt::Key_Backspace), "ab"},
            {"delete joins pills", "city| |country", keyed(1, Qt::Key_Delete), "city|country"},
            {"a line", "a|city|b", keyed(2, Qt::Key_Return), "a|city|/b"},
            {"the whole text is a name", "", typed(0, "title"), "title"},
            {"a name in a text", "", typed(0, "title: "), "title: "},
            {"other case", "", typed(0, "City"), "City"},
            {"given in parts, not a token", "ci|ty|title", typed(5, "x"), "c|ity|title|x"},
            {"a selected pill is replaced", "a|city|b",
             [](Field &f) {
                 f.moveCaret(1);
                 f.key(Qt::Key_Right, Qt::ShiftModifier);
                 f.type(u"xy"_qs);
             },
             "axyb"},
            {"undo", "a|city|b",
             [](Field &f) {
                 f.moveCaret(2);
                 f.key(Qt::Key_Backspace);
                 f.item(u"country"_qs)->trigger();
                 f.key(Qt::Key_Z, Qt::ControlModifier);
                 f.key(Qt::Key_Z, Qt::ControlModifier);
                 f.type(u"x"_qs);
             },
             "a|city|xb"},
            {"redo", "a",
             [](Field &f) {
                 f.item(u"city"_qs)->trigger();
                 f.key(Qt::Key_Z, Qt::ControlModifier);
                 f.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
             },
             "a|city"},
        });
        addRows<Edit>({
            {"menu, in a text", "Shot in Rome",
             [](Field &f) {
                 f.moveCaret(5);
                 f.item(u"city"_qs)->trigger();
             },
             "Shot |city|in Rome"},
            {"menu, replaces", "a|city|bc",
             [](Field &f) {
                 f.moveCaret(3, Qt::ShiftModifier);
                 f.item(u"camera serial #"_qs)->trigger();
                 f.type(u"x"_qs);
             },
             "camera serial #|xc"},
            {"menu, without the focus", "a|city",
             [](Field &f) {
                 f.button.setFocusPolicy(Qt::StrongFocus);
                 f.button.setFocus();
                 f.field.setTextTokens(list(u"b|city"_qs));
                 f.item(u"country"_qs)->trigger();
             },
             "b|city|country"},
            {"completion, Enter", "a", typed(1, "{ci\r"), "a|city"},
            {"completion, any part of a name, Tab", "a", typed(1, "{SERIAL\t"), "a|camera serial #"},
            {"completion, arrow", "",
             [](Field &f) {
                 f.type(u"{ci"_qs);
                 f.key(Qt::Key_Down);
                 f.key(Qt::Key_Enter);
             },
             "creator city"},
            {"completion, names with a value first", "",
             [](Field &f) {
                 f.field.setValueOnPhoto([](const QString &token) {
                     return token == u"country" ? std::optional(u"Italy"_qs) : std::nullopt;
                 });
                 f.type(u"{\r {c\r"_qs);
             },
             "country| |country"},
            {"completion, Escape", "a", typed(1, "{ci\x1b\rx"), "a{ci/x"},
            {"completion, closing brace", "", typed(0, "{city}x"), "city|x"},
            {"completion, no such name", "", typed(0, "{zzz}\rx"), "{zzz}/x"},
            {"completion, corrected", "", typed(0, "{cx\bi\r"), "city"},
            {"two braces, after Escape", "", typed(0, "{\x1b{ci\r"), "{{ci/"},
            {"two braces", "", typed(0, "{{ci\r"), "{{ci/"},
        });
    }
    void edits()
    {
        const auto [name, before, script, after] = currentRow<Edit>();
        Field f(list(before));
        QVERIFY(f.active);
        QCOMPARE(f.field.textTokens(), list(before));
        QCOMPARE(f.edits.count(), 0);
        script(f);
        QCOMPARE(f.field.textTokens(), list(after));
        QCOMPARE(f.edits.last().at(0).toStringList(), list(after));
        QVERIFY(!QApplication::activePopupWidget() && f.field.hasFocus());
    }

    void keepsCaretAndHistoryWithItsOwnEdit()
    {
        Field f(list(u"abc|city"_qs));
        connect(&f.field, &TokenFieldWithInsertPopup::textTokensChanged, &f.field, [&f] {
            // As a model that stores a list in another form.
            QStringList tokens = f.field.textTokens();
            tokens.insert(1, {});
            f.field.setTextTokens(tokens);
        });
        f.moveCaret(1);
        f.type(u"xy"_qs);
        QCOMPARE(f.field.textTokens(), list(u"axybc||city"_qs));
        f.key(Qt::Key_Z, Qt::ControlModifier);
        f.type(u"z"_qs);
        QCOMPARE(f.field.textTokens(), list(u"azbc||city"_qs));
    }

    /// The keys are the window's while the field has no history.
    void sharesUndoWithTheWindow()
    {
        Field f(list(u"abc"_qs));
        QAction undo;
        undo.setShortcut(QKeySequence::Undo);
        f.window.addAction(&undo);
        const QSignalSpy undone(&undo, &QAction::triggered);
        f.type(u"x"_qs);
        for (int i = 0; i < 2; ++i) // to undo the text, then nothing
            f.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.field.textTokens(), list(u"abc"_qs));
        QCOMPARE(undone.size(), 0);
        f.field.setTextTokens(list(u"abcd"_qs));
        f.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(undone.size(), 1);
    }

    void showsWhatTheModelMakesOfAnEdit()
    {
        Field f(list(u"abc"_qs));
        connect(&f.field, &TokenFieldWithInsertPopup::textTokensChanged, &f.field,
                [&f](const QStringList &tokens) { f.field.setTextTokens({tokens.value(0).left(4)}); });
        f.moveCaret(1);
        f.type(u"xy"_qs);
        f.key(Qt::Key_Return);
        QCOMPARE(f.field.textTokens(), list(u"axy/"_qs));
        QApplication::clipboard()->setText(u"123456789"_qs);
        f.key(Qt::Key_V, Qt::ControlModifier);
        f.key(Qt::Key_Backspace);
        QCOMPARE(f.field.textTokens(), list(u"axy"_qs));
    }

    void readsBackWhatItShows()
    {
        Field f;
        QRandomGenerator random(4);
        const QStringList literals{u" "_qs, u"©"_qs,          u"\n"_qs,   u"a\n\nb "_qs, u"שלום"_qs,
                                   u"{"_qs, u"\U0001F4F7"_qs, u"a\tb"_qs, u"city "_qs,   u"e\u0301"_qs};
        for (int round = 0; round < 60; ++round) {
            QStringList tokens;
            QStringList joined;
            for (int i = random.bounded(12); i >= 0; --i) {
                const bool isToken = random.bounded(2) == 0;
                const QStringList &from = isToken ? tokenNames() : literals;
                const QString piece = from[random.bounded(static_cast<int>(from.size()))];
                if (!isToken && !tokens.isEmpty() && literals.contains(tokens.back()))
                    joined.back() += piece;
                else
                    joined << piece;
                tokens << piece;
            }
            f.field.setTextTokens(tokens);
            QCOMPARE(f.field.textTokens(), tokens);
            f.key(Qt::Key_End, Qt::ControlModifier);
            f.type(u"x"_qs); // read from the document from now on
            f.key(Qt::Key_Backspace);
            QCOMPARE(f.field.textTokens(), joined);
        }
    }

    void copies()
    {
        Field f(list(u"a {b|city|/c|title"_qs));
        f.key(Qt::Key_A, Qt::ControlModifier);
        f.key(Qt::Key_X, Qt::ControlModifier);
        QCOMPARE(f.field.textTokens(), QStringList());
        QCOMPARE(QApplication::clipboard()->text(), u"a {b{city}\nc{title}"_qs);
        f.key(Qt::Key_V, Qt::ControlModifier);
        f.key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(f.field.textTokens(), list(u"a {b|city|/c|title|a {b|city|/c|title"_qs));
        // A field for other texts does not know these tokens.
        f.field.setVocabulary({{{}, {u"title"_qs}}});
        f.field.setTextTokens({});
        f.key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(f.field.textTokens(), list(u"a {b{city}/c|title"_qs));
    }

    void pastesHostileTexts_data()
    {
        using Paste = Row<QByteArray, QString, QString>; // MIME type, data, literal text between two pills
        addRows<Paste>({
            {"reserved characters", "text/plain", u"a\uFFFC\uFFFDb\uFDD0\x01\x7f"_qs + QString(QChar(0xd800)),
             u"ab"_qs},
            {"kinds of line breaks", "text/plain", u"a\r\nb\rc\u2028d\u2029e\fg"_qs, u"a\nb\nc\nd\ne\ng"_qs},
            {"long", "text/plain", QString(100'000, u'm'), QString(100'000, u'm')},
            {"many lines", "text/plain", QString(100'000, u'\n'), QString(100'000, u'\n')},
            {"files", "text/uri-list", u"file:///tmp/a.jpg"_qs, {}},
            {"markup", "text/plain", u"<b>x</b>"_qs, u"<b>x</b>"_qs},
            {"own form, broken", "application/x-plexa-text-tokens",
             uR"([{"token":7},"\ufffcx",null,[["y"]],{"token":"nothing"}])"_qs, u"{}x{nothing}"_qs},
            {"own form, not a list", "application/x-plexa-text-tokens", u"{\"token\":\"city\"}"_qs, {}},
        });
    }
    void pastesHostileTexts()
    {
        const auto [name, type, data, pasted] = currentRow<Row<QByteArray, QString, QString>>();
        Field f(list(u"city|country"_qs));
        auto *const mime = new QMimeData;
        mime->setData(QString::fromLatin1(type), data.toUtf8());
        if (type == "text/plain")
            mime->setText(data);
        QApplication::clipboard()->setMimeData(mime);
        f.moveCaret(1);
        f.key(Qt::Key_V, Qt::ControlModifier);
        QStringList expected{u"city"_qs, u"country"_qs};
        if (!pasted.isEmpty())
            expected.insert(1, pasted);
        QCOMPARE(f.field.textTokens(), expected);
        f.window.grab();
    }

    void clicksOnPills_data()
    {
        addRows<PillClick>({
            {"left to right", "one |city| two", 4, 10},
            {"last of the text", "one |city", 4, 35},
            {"beside it", "one |city| two", 4, -4, false},
            {"right to left", "שלום |city| עולם", 5, -10},
            {"beside it, right to left", "שלום |city| עולם", 5, 4, false},
            {"between directions", "one |city| עולם", 4, 10},
            {"between directions, right to left", "שלום |city| one", 5, -10},
            {"second line", "a//b|country", 4, 20},
        });
    }
    void clicksOnPills()
    {
        const auto [name, tokens, position, dx, isOnPill] = currentRow<PillClick>();
        Field f(list(tokens));
        f.field.setValueOnPhoto([](const QString &token) { return token + u"!"_qs; });
        const QPoint at = f.placeOf(position) + QPoint(dx, 0);
        QWidget &view = *f.field.viewport();
        QTest::mouseClick(&view, Qt::LeftButton, {}, at);
        QCOMPARE(f.field.textCursor().hasSelection(), isOnPill);
        QHelpEvent help(QEvent::ToolTip, at, view.mapToGlobal(at));
        QApplication::sendEvent(&view, &help);
        if (isOnPill) {
            QCOMPARE(f.field.textCursor().selectionStart(), position);
            QCOMPARE(f.field.textCursor().selectionEnd(), position + 1);
            QVERIFY(QToolTip::text().contains(list(tokens)[1] + u"!"_qs));
        }
        f.type(u"x"_qs);
        QCOMPARE(f.field.textTokens().contains(u"city"_qs) || f.field.textTokens().contains(u"country"_qs),
                 !isOnPill);
    }

    void movesAPillByThePointer()
    {
        Field f(list(u"one |city| two |country"_qs));
        QWidget &view = *f.field.viewport();
        const auto at = [&](int position, int dx) {
            return view.mapToGlobal(f.placeOf(position) + QPoint(dx, 0));
        };
        QVERIFY(QTest::qWaitForWindowExposed(&f.window));
        RealPointer pointer;
        pointer.moveTo(at(4, 15)); // on the first one
        pointer.press();
        pointer.moveTo(at(4, 25));
        pointer.moveTo(at(4, 35));
        pointer.waitFor([&] { return f.field.findChild<QDrag *>(); });
        pointer.moveTo(at(1, 0));
        pointer.moveTo(at(0, 0));
        pointer.waitFor([&] { return f.field.findChild<QDrag *>()->target() == &view; });
        pointer.release();
        QVERIFY(pointer.play());
        QTRY_COMPARE(f.field.textTokens(), list(u"city|one  two |country"_qs));
    }

    void menuHasAllTokensWithTheirValues()
    {
        const auto sorted = [](const TokenGroups &groups) {
            QStringList names;
            for (const TokenGroup &group : groups)
                names += group.names;
            names.sort();
            return names;
        };
        QStringList names = tokenNames();
        names.sort();
        QCOMPARE(sorted(watermarkTokenGroups()), names);
        names += namingTokenNames();
        names.sort();
        QCOMPARE(sorted(fileNameTokenGroups()), names);

        Field f;
        f.field.setValueOnPhoto([](const QString &name) {
            return name == u"city" ? std::optional(u"Bad & Breakfast\n"_qs + QString(99, u'x'))
                                   : std::nullopt;
        });
        QAction *const city = f.item(u"city"_qs);
        QMenu &menu = *qobject_cast<QMenu *>(city->parent());
        menu.popup({});
        QVERIFY(city->text().startsWith(u"city\tBad && Breakfast xxx") && city->text().size() < 60);
        QVERIFY(menu.actions().constFirst()->text().endsWith(u"\t–"));
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(city).center());
        QCOMPARE(f.field.textTokens(), QStringList(u"city"_qs));

        f.field.setVocabulary({{{}, {u"title"_qs}}, {u"A & B"_qs, {u"city"_qs}}});
        f.button.menu()->popup({});
        QCOMPARE(f.button.menu()->actions().constFirst()->text(), u"title\t–"_qs);
        QCOMPARE(f.button.menu()->actions().constLast()->text(), u"A && B"_qs);
        f.button.menu()->close();

        f.type(u"{"_qs);
        auto *const list = qobject_cast<QAbstractItemView *>(QApplication::activePopupWidget());
        QVERIFY(list);
        const QModelIndex first = list->model()->index(0, 0); // the only one with a value
        QVERIFY(first.data(Qt::UserRole).toString().startsWith(u"Bad & Breakfast xxx"));
        QVERIFY(list->visualRect(first).width() > 250);
    }

    void namesOfFilesHaveOneLine()
    {
        Field f;
        const int height = f.field.sizeHint().height();
        f.field.setAcceptsLineBreaks(false);
        QVERIFY(f.field.sizeHint().height() < height);
        f.type(u"a\rb"_qs);
        f.key(Qt::Key_Return, Qt::ShiftModifier);
        QApplication::clipboard()->setText(u"c\r\nd"_qs);
        f.key(Qt::Key_V, Qt::ControlModifier);
        QInputMethodEvent event;
        event.setCommitString(u"e\nf"_qs);
        QCoreApplication::sendEvent(&f.field, &event);
        f.type(u"{city\r"_qs);
        QCOMPARE(f.field.textTokens(), list(u"abc de f|city"_qs));
    }

    void marksWhatIsExpanded()
    {
        Field f;
        const auto pixels = [&f](const QColor &color) {
            const QImage image = f.field.grab().toImage();
            int count = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x)
                    count += image.pixelColor(x, y).rgb() == color.rgb() ? 1 : 0;
            }
            return count;
        };
        const PillColors pill = pillColors(f.field.palette(), QPalette::Active, false);
        const PillColors selected = pillColors(f.field.palette(), QPalette::Active, true);
        f.type(u"tit"_qs);
        QCOMPARE(pixels(pill.fill), 0);
        f.type(u"le"_qs); // a token without a pill
        QVERIFY(pixels(pill.fill) > 100);
        f.type(u":"_qs);
        QCOMPARE(pixels(pill.fill), 0);
        f.item(u"city"_qs)->trigger();
        QVERIFY(pixels(pill.fill) > 100);
        // The name of a selected pill is not covered.
        f.key(Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(pixels(pill.fill), 0);
        QVERIFY(pixels(selected.fill) > 200 && pixels(selected.text) > 20);
        f.field.setTextTokens(list(u"city|city"_qs));
        f.moveCaret(1, Qt::ShiftModifier);
        QVERIFY(pixels(pill.fill) > 100 && pixels(selected.fill) > 200);
    }

    void readsPillsByTheirNames()
    {
        Field f(list(u"a|city|/b"_qs));
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(&f.field);
        QAccessibleTextInterface *const text = accessible->textInterface();
        QCOMPARE(accessible->text(QAccessible::Value), u"a{city}\nb"_qs);
        QVERIFY(accessible->state().editable && accessible->state().focused && accessible->state().multiLine);
        QCOMPARE(text->text(2, 6), u"city"_qs);
        QCOMPARE(text->characterCount(), 9);
        const std::array offsets{0, 1, 7, 8, 9}; // of the five positions of the caret
        for (int i = 0; i < 5; ++i) {
            f.moveCaret(i);
            QCOMPARE(text->cursorPosition(), offsets[static_cast<std::size_t>(i)]);
        }
        text->setSelection(0, 1, 4); // ends inside the pill
        QCOMPARE(f.field.textCursor().selectedText().size(), 1);
        int start = 0;
        int end = 0;
        text->selection(0, &start, &end);
        QCOMPARE(start, 1);
        QCOMPARE(end, 7);
        QVERIFY(text->characterRect(1).width() > 3 * text->characterRect(8).width());
        QCOMPARE(text->offsetAtPoint(text->characterRect(1).center() - QPoint(9, 0)), 1);
        accessible->editableTextInterface()->replaceText(1, 7, u"x"_qs);
        QCOMPARE(f.field.textTokens(), list(u"ax/b"_qs));
    }

    void insertsByTheContextMenu()
    {
        Field f(list(u"a"_qs));
        QTimer::singleShot(0, &f.field, [] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QAction *const insert = menu->actions().constLast();
            insert->menu()->actions().constFirst()->menu()->actions().constFirst()->trigger();
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, f.field.mapToGlobal(QPoint()));
        QApplication::sendEvent(f.field.viewport(), &event);
        QCOMPARE(f.field.textTokens(), list(u"a|copyright"_qs));
    }

    /// Against the formula of WCAG 2.1, in 8 bits.
    void pillsAreReadable()
    {
        const auto luminance = [](const QColor &color) {
            const auto part = [](int sample) {
                const double c = sample / 255.0;
                return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * part(color.red()) + 0.7152 * part(color.green()) + 0.0722 * part(color.blue());
        };
        for (const QRgb base : {0xffffffU, 0xff202020U, 0xff808080U}) {
            for (const QRgb highlight : {0xff3b78b4U, 0xff308cc6U, 0xffffe000U, 0xff000000U, 0xff7a7a7aU}) {
                QPalette palette;
                palette.setColor(QPalette::Base, base);
                palette.setColor(QPalette::Text, qGray(base) > 100 ? Qt::black : Qt::lightGray);
                palette.setColor(QPalette::Highlight, highlight);
                for (const bool isSelected : {false, true}) {
                    const PillColors pill = pillColors(palette, QPalette::Active, isSelected);
                    const double a = luminance(pill.fill) + 0.05;
                    const double b = luminance(pill.text) + 0.05;
                    QVERIFY2(std::max(a, b) / std::min(a, b) > 4.4, qPrintable(QColor(highlight).name()));
                }
                QVERIFY(pillColors(palette, QPalette::Active, true).fill !=
                        pillColors(palette, QPalette::Active, false).fill);
            }
        }
    }
};

int main(int argc, char **argv)
{
    return runOnXServer<TokenFieldWithInsertPopupTest>(argc, argv);
}

#include "tokenfieldwithinsertpopup_test.moc"
