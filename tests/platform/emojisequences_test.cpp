// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/emojisequences.h"

#include <QtTest>

using namespace plexa;

class EmojiSequencesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sequencesOfATextAreFound()
    {
        // "[...]" is an emoji, "(...)" one that fonts of text may show, too.
        for (const char *marked :
             {"© 2026 é 123 #", "a\ufe0f", "[©\ufe0f] ©", "☀ [☀\ufe0f] ☀\ufe0e 🎉\ufe0e", "(🎉)(🎉) \"x\"",
              "[👍🏽](👍)", "[👩\u200d👩\u200d👧]x", "[🏳\ufe0f\u200d🌈][🏳\u200d🌈]",
              "[🇩🇪][🇫🇷](🇫)", "1[1\ufe0f\u20e3]1\u20e3", "[🏴\U000e0067\U000e0062\U000e007f]"}) {
            const QString wanted = QString::fromUtf8(marked);
            QString text = wanted;
            text.remove(QRegularExpression(u"[][()]"_qs));
            const std::vector<EmojiSequence> sequences = emojiSequencesIn(text);
            for (auto found = sequences.rbegin(); found != sequences.rend(); ++found) {
                text.insert(found->at + found->length, found->isExplicit ? u']' : u')');
                text.insert(found->at, found->isExplicit ? u'[' : u'(');
            }
            QCOMPARE(text, wanted);
        }
    }
};

QTEST_APPLESS_MAIN(EmojiSequencesTest)
#include "emojisequences_test.moc"
