// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/help/helpwindow.h"
#include "ui/widgets/helpbutton.h"

#include <QDesktopServices>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>

using namespace plexa;

/// Receives the addresses of help buttons.
class Receiver : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE void showPlace(const QUrl &place) { places.append(place.toString()); }
    QStringList places;
};

class HelpWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_window = std::make_unique<HelpWindow>();
        m_window->showPlace(u"saving.html#names"_qs);
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void showsThePlaceWithItsPictures()
    {
        QCOMPARE(place(), u"saving.html#names"_qs);
        QVERIFY(page().verticalScrollBar()->value() > 0);
        QCOMPARE(find<QTreeWidget>("contents").currentItem()->text(0), u"Names"_qs);
        const QVariant picture = page().document()->resource(
            QTextDocument::ImageResource, QUrl(u"qrc:/docs/guide/../images/save-panel.png"_qs));
        QVERIFY(!picture.value<QImage>().isNull() && picture.value<QImage>().width() <= 600);
        m_window->showPlace(u"nowhere.html"_qs);
        QCOMPARE(place(), u"index.html"_qs);
    }

    void backAndForward()
    {
        m_window->showPlace(u"look.html"_qs);
        QTest::keyClick(&page(), Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(place(), u"saving.html#names"_qs);
        find<QToolButton>("forwardButton").click();
        QCOMPARE(place(), u"look.html"_qs);
        find<QToolButton>("homeButton").click();
        QCOMPARE(place(), u"index.html"_qs);
    }

    /// By keys alone: the field, the first hit, the next one.
    void searchShowsItsHits()
    {
        QTest::keyClick(&page(), Qt::Key_F, Qt::ControlModifier);
        auto &field = find<QLineEdit>("search");
        QTRY_VERIFY(field.hasFocus());
        QTest::keyClicks(&field, u"blend"_qs);
        auto &hits = find<QListWidget>("hits");
        QVERIFY(hits.isVisible() && hits.count() > 0);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(place(), u"look.html#blending"_qs);
        QCOMPARE(page().textCursor().selectedText().toLower(), u"blend"_qs);
        // The last section of a page cannot be scrolled to the top; the word is in others, too.
        field.setText(u"photo padding"_qs);
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(place(), u"look.html#box"_qs);
        QVERIFY(page().textCursor().block().text().startsWith(u"A box is"));
        field.setText(u"qwertz"_qs);
        QCOMPARE(hits.count(), 1); // says that there is none
        QTest::keyClick(&field, Qt::Key_Return);
        QCOMPARE(place(), u"look.html#box"_qs);
        field.clear();
        QVERIFY(find<QTreeWidget>("contents").isVisible());
    }

    void contentsAndZoom()
    {
        auto &contents = find<QTreeWidget>("contents");
        contents.setFocus();
        contents.setCurrentItem(contents.topLevelItem(0));
        QCOMPARE(place(), u"index.html"_qs);
        const int size = page().font().pointSize();
        find<QToolButton>("largerButton").click();
        QVERIFY(page().font().pointSize() > size);
        for (int i = 0; i < 30; ++i)
            find<QToolButton>("smallerButton").click();
        QVERIFY(page().font().pointSize() > 4);
    }

    void buttonAsksForItsPlace()
    {
        Receiver receiver;
        QDesktopServices::setUrlHandler(kHelpScheme, &receiver, "showPlace");
        QWidget window;
        auto *const button = new HelpButton(u"look.html#shadow"_qs, {}, {}, &window);
        button->withKey()->click();
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QTest::keyClick(&window, Qt::Key_F1);
        QDesktopServices::unsetUrlHandler(kHelpScheme);
        QCOMPARE(receiver.places, QStringList(2, u"plexa-help:look.html#shadow"_qs));
    }

private:
    template<class Widget>
    Widget &find(const char *name)
    {
        return *m_window->findChild<Widget *>(QLatin1StringView(name));
    }
    QTextBrowser &page() { return find<QTextBrowser>("page"); }
    QString place() { return page().source().toString().remove(u"qrc:/docs/guide/"_qs); }

    std::unique_ptr<HelpWindow> m_window;
};

QTEST_MAIN(HelpWindowTest)
#include "helpwindow_test.moc"
