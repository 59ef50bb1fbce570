// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "support/datarows.h"
#include "watermark/textwatermark.h"
#include "watermark/wpresetvalues.h"

#include <QFontDatabase>
#include <QPainterPath>
#include <QRawFont>
#include <QtTest>

#include <cmath>

using namespace plexa;
using namespace plexa::test;

namespace
{

constexpr QSize kPhoto(4000, 3000);

/// What is more than half covered.
QRect inkBox(const WatermarkBitmap &bitmap)
{
    QRect box;
    for (int y = 0; y < bitmap.ink.height(); ++y) {
        const QRgb *const row = reinterpret_cast<const QRgb *>(bitmap.ink.constScanLine(y));
        for (int x = 0; x < bitmap.ink.width(); ++x) {
            if (qAlpha(row[x]) > 127)
                box |= QRect(bitmap.inkAt.toPoint() + QPoint(x, y), QSize(1, 1));
        }
    }
    return box;
}

} // namespace

class TextWatermarkTest : public QObject
{
    Q_OBJECT

private:
    WatermarkBitmap bitmapOf(const WPresetValues &values, const QString &text, double width = 3920)
    {
        const auto bitmap = createTextWatermarkOfWidth(width, values, text, m_fonts, {kPhoto});
        return bitmap && *bitmap ? **bitmap : WatermarkBitmap{};
    }

    FontCatalog m_fonts;

private Q_SLOTS:
    void aLineIsThatPercentTall()
    {
        WPresetValues values;
        for (const auto &[size, unit, height] : {std::tuple(8, u"% of short edge"_qs, 240),
                                                 {8, u"% of long edge"_qs, 320},
                                                 {5, u"% of width"_qs, 200},
                                                 {5, u"% of height"_qs, 150}}) {
            values.fontSize = size;
            values.fontSizeUnit = unit;
            for (const QString &font :
                 {m_fonts.defaultFontName(), u"DejaVuSerif-Bold"_qs, u"No Such Font"_qs}) {
                values.font = font;
                QCOMPARE(bitmapOf(values, u"sample"_qs).size, QSize(3920, height));
            }
        }
    }

    void glyphsStandWhereTheFontSays()
    {
        WPresetValues values;
        values.font = m_fonts.defaultFontName();
        values.fontSize = 300;
        values.fontSizeUnit = u"Points"_qs;
        values.stroke = false;
        const SizedFont sized = m_fonts.defaultFont(300);
        const QRawFont font = QRawFont::fromFont(sized.font);
        for (const QChar letter : u"Hgx"_qs) {
            const QRectF outline =
                font.pathForGlyph(font.glyphIndexesForString(letter).first()).boundingRect();
            const QRectF box(outline.topLeft() * sized.scale, outline.size() * sized.scale);
            const QRect ink = inkBox(bitmapOf(values, letter));
            const double baseline = font.ascent() * sized.scale;
            QVERIFY2(std::abs(ink.left() - box.left()) < 1.5, qPrintable(QDebug::toString(ink)));
            QVERIFY2(std::abs(ink.width() - box.width()) < 1.5, qPrintable(QDebug::toString(ink)));
            QVERIFY2(std::abs(ink.top() - (baseline + box.top())) < 2, qPrintable(QDebug::toString(ink)));
            QVERIFY2(std::abs(ink.height() - box.height()) < 1.5, qPrintable(QDebug::toString(ink)));
        }
    }

    void theOutlineIsCenteredOnTheEdge()
    {
        WPresetValues values;
        values.font = m_fonts.defaultFontName();
        values.fontSize = 500;
        values.fontSizeUnit = u"Points"_qs;
        values.textAlignment = 1;
        values.strokeWidth = 4;
        // A stem with straight sides: row by row the black on either side is the outline's width.
        const WatermarkBitmap bitmap = bitmapOf(values, u"I"_qs);
        values.stroke = false;
        const QRect stem = inkBox(bitmapOf(values, u"I"_qs));
        const QRgb *const row = reinterpret_cast<const QRgb *>(
            bitmap.ink.constScanLine(stem.center().y() - bitmap.inkAt.toPoint().y()));
        double black = 0;
        double atLeft = 0;
        double center = 0;
        for (int x = 0; x < bitmap.ink.width(); ++x) {
            const double share = (qAlpha(row[x]) - qRed(row[x])) / 255.0;
            black += share;
            if (bitmap.inkAt.toPoint().x() + x < stem.center().x()) {
                atLeft += share;
                center += share * (bitmap.inkAt.toPoint().x() + x + 0.5);
            }
        }
        QVERIFY2(std::abs(black - 2 * 20) < 0.5, qPrintable(QString::number(black)));
        QVERIFY2(std::abs(center / atLeft - stem.left()) < 0.75,
                 qPrintable(QString::number(center / atLeft)));
        // Inside there is the fill.
        QCOMPARE(row[stem.center().x() - bitmap.inkAt.toPoint().x()], qRgb(255, 255, 255));
    }

    void inkReachesBeyondTheFrame()
    {
        // The same text in the middle of a larger frame shows all of its ink.
        for (const auto &[font, text] : {std::pair("", "Å"),
                                         {"DejaVuSans-Bold", "J"},
                                         {"DejaVuSerif-Italic", "f"},
                                         {"C059-Italic", "fj"},
                                         {"DejaVuSans", "Ậ"},
                                         {"DejaVuSans", "ـر"}}) {
            WPresetValues values;
            values.font = QLatin1StringView(font);
            values.strokeWidth = 20;
            const QString single = QString::fromUtf8(text);
            const WatermarkBitmap bitmap = bitmapOf(values, single, 1000);
            values.textAlignment = 1;
            const WatermarkBitmap roomy = bitmapOf(values, u"\u00a0\n"_qs + single + u"\n\u00a0"_qs, 3000);
            QVERIFY2(bitmap.size.width() == 1000 && bitmap.size.height() <= roomy.size.height() / 2, text);
            QCOMPARE(inkBox(bitmap).size().height(), inkBox(roomy).size().height());
            QVERIFY2(std::abs(inkBox(bitmap).width() - inkBox(roomy).width()) <= 1, text);
        }
    }

    void touchingGlyphsAreOutlinedAsOne()
    {
        // The judge is the filled text: black within half a width of its edge, white deeper inside.
        constexpr int kHalf = 5;
        for (const auto &[font, text] : {std::pair("DejaVuSans", "ببل"), // a joined script
                                         {"DejaVuSansMono", "─┼─██▌┐"},  // edges that coincide
                                         {"DejaVuSans", "ç©%"},
                                         {"DejaVuSans-Oblique", "AVÅ fi"}}) {
            WPresetValues values;
            values.font = QLatin1StringView(font);
            values.fontSize = 200;
            values.fontSizeUnit = u"Points"_qs;
            values.strokeWidth = 5;
            const WatermarkBitmap outlined = bitmapOf(values, QString::fromUtf8(text));
            values.stroke = false;
            const WatermarkBitmap filled = bitmapOf(values, QString::fromUtf8(text));
            const QPoint offset = (outlined.inkAt - filled.inkAt).toPoint();
            const auto isText = [&](QPoint at) {
                const QPoint inFilled = at + offset;
                return filled.ink.rect().contains(inFilled) && qAlpha(filled.ink.pixel(inFilled)) > 127;
            };
            const auto isEdgeWithin = [&](QPoint at, int distance) {
                for (int y = -distance; y <= distance; ++y) {
                    for (int x = -distance; x <= distance; ++x) {
                        if (x * x + y * y <= distance * distance && isText(at + QPoint(x, y)) != isText(at))
                            return true;
                    }
                }
                return false;
            };
            for (int i = 0; i < outlined.ink.width() * outlined.ink.height(); ++i) {
                const QPoint at(i % outlined.ink.width(), i / outlined.ink.width());
                const QRgb found = outlined.ink.pixel(at);
                if (isEdgeWithin(at, kHalf - 2))
                    QVERIFY2(found == qRgb(0, 0, 0), text);
                else if (!isEdgeWithin(at, kHalf + 2))
                    QVERIFY2(found == (isText(at) ? qRgb(255, 255, 255) : 0), text);
            }
        }
    }

    void anOutlineAloneLeavesTheGlyphOpen()
    {
        WPresetValues values;
        values.strokeWidth = -1;
        values.strokeColor = QColor(255, 0, 0, 128);
        const WatermarkBitmap bitmap = bitmapOf(values, u"MMMM"_qs);
        // Half transparent strokes that meet in corners are not doubled there.
        int highest = 0;
        for (int y = 0; y < bitmap.ink.height(); ++y) {
            for (int x = 0; x < bitmap.ink.width(); ++x) {
                const QRgb pixel = bitmap.ink.pixel(x, y);
                QCOMPARE(qGreen(pixel), 0);
                highest = std::max(highest, qAlpha(pixel));
            }
        }
        QCOMPARE(highest, 128);
        // A stored width of any size is drawn at once.
        values.strokeWidth = -kWidestStroke;
        const QImage widest = bitmapOf(values, u"MMMM"_qs).ink;
        values.strokeWidth = -100'000;
        QCOMPARE(bitmapOf(values, u"MMMM"_qs).ink, widest);
    }

    void alignmentPlacesLines()
    {
        WPresetValues values;
        for (const QString &text : {u"text"_qs, QString::fromUtf8("שלום")}) {
            // The share of the free width that is left of the ink; the last alignment is unknown.
            const double shares[] = {0, 0.5, 1, 0};
            for (int alignment = 0; alignment < 4; ++alignment) {
                values.textAlignment = alignment;
                const QRect ink = inkBox(bitmapOf(values, text));
                QVERIFY(!ink.isEmpty());
                // Glyphs have room at their sides.
                QVERIFY2(std::abs(ink.left() - shares[alignment] * (3920 - ink.width())) < 30,
                         qPrintable(QDebug::toString(ink)));
            }
        }
    }

    void wordsWrapAtTheWidth()
    {
        WPresetValues values;
        values.strokeWidth = 0;
        const int oneWord = inkBox(bitmapOf(values, u"wonder"_qs)).width();
        const WatermarkBitmap words = bitmapOf(values, u"wonder wonder wonder"_qs, oneWord * 1.5);
        QCOMPARE(words.size, QSize(static_cast<int>(oneWord * 1.5), 3 * 240));
        QVERIFY(std::abs(inkBox(words).width() - oneWord) < 3);
        // A word that is too wide breaks inside; nothing is lost at the right.
        const WatermarkBitmap pieces = bitmapOf(values, u"wonder"_qs, oneWord * 0.6);
        QCOMPARE(pieces.size.height(), 2 * 240);
    }

    void lineBreaks()
    {
        for (const auto &[text, lines] : {std::pair("a b", 1),
                                          {"a\nb", 2},
                                          {"a\r\nb", 2},
                                          {"a\rb", 2},
                                          {"a\u2028b", 2},
                                          {"a\u2029b", 2},
                                          {"a\n\nb", 3},
                                          {"a\x01\x1b b", 1}})
            QCOMPARE(bitmapOf(WPresetValues(), Text(text)).size.height(), lines * 240);
    }

    void colorGlyphsKeepTheirColorsAndWidth()
    {
        if (!QFontDatabase::families().contains(u"Noto Color Emoji"_qs))
            QSKIP("There is no font of color glyphs.");
        // The second time, too: the text engine is known to mix its sizes up.
        for (const auto &[text, count] : {std::pair("🎉🎉🎉🎉", 4),
                                          {"🎉🎉🎉🎉", 4},
                                          {"☀\ufe0f©\ufe0f❤\ufe0f", 3},
                                          {"1\ufe0f\u20e3👍🏽❤\ufe0f\u200d🔥🇩🇪", 4}}) {
            WPresetValues values;
            values.fillColor.setAlpha(160);
            const WatermarkBitmap bitmap = bitmapOf(values, QString::fromUtf8(text));
            const QRect ink = inkBox(bitmap);
            const double emsWide = ink.width() / (240 / 1.2);
            QVERIFY2(emsWide > count && emsWide < 1.375 * count, qPrintable(QDebug::toString(ink)));
            QVERIFY(bitmap.notices.isEmpty());
            int colored = 0;
            for (int y = 0; y < bitmap.ink.height(); ++y) {
                for (int x = 0; x < bitmap.ink.width(); ++x) {
                    const QRgb pixel = bitmap.ink.pixel(x, y);
                    QVERIFY(qAlpha(pixel) <= 161);
                    colored += std::abs(qRed(pixel) - qBlue(pixel)) > 30 ? 1 : 0;
                }
            }
            QVERIFY2(colored > 4'000 * count, qPrintable(QString::number(colored)));
        }
    }

    void missingCharactersAreReported()
    {
        // No font has the private characters.
        for (const auto &[text, notice] : {std::pair("plain, \u00e9\n\t\u200d\u00ad", ""),
                                           {"a\ue123b\ue123", "\ue123"},
                                           {"\ue124\u200d\ue124", "U+e124"},
                                           {"\U0010fffd", "U+10fffd"}}) {
            const QStringList notices = bitmapOf(WPresetValues(), QString::fromUtf8(text)).notices;
            QCOMPARE(notices.size(), notice[0] ? 1 : 0);
            QVERIFY2(!notice[0] ||
                         (notices[0].count(QString::fromUtf8(notice)) == 1 && notices[0].count(u"U+") == 1),
                     text);
        }
        WPresetValues type1; // Type 1, where it is installed; such fonts have no tables
        type1.font = u"NimbusRoman-Bold"_qs;
        QVERIFY(bitmapOf(type1, u"plain"_qs).notices.isEmpty());
        const bool hasHindi = !QFontDatabase::families(QFontDatabase::Devanagari).isEmpty();
        QCOMPARE(bitmapOf(type1, u"\u0905"_qs).notices.isEmpty(), hasHindi);
        // The selector of emoji is no character of its own.
        QCOMPARE(bitmapOf(WPresetValues(), u"a\ufe0f"_qs).ink, bitmapOf(WPresetValues(), u"a"_qs).ink);
        QVERIFY(bitmapOf(WPresetValues(), u"\u00a9\ufe0f"_qs).notices.isEmpty());
    }

    void extremesFailOrVanish()
    {
        using Row = std::tuple<int, Text, double, int, Text>;
        for (const auto &[size, unit, width, repeats, outcome] :
             std::initializer_list<Row>{{0, "Points", 100.0, 1, "none"},
                                        {-5, "% of width", 100.0, 1, "none"},
                                        {10, "Points", 0.9, 1, "none"},
                                        {1, "Pixels", 1e9, 1, "none"},
                                        {10, "Points", 1e30, 1, "notice"},
                                        {2'000'000'000, "Points", 4e6, 1, "notice"},
                                        {100'000, "Points", 1e6, 10, "notice"},
                                        {100, "Points", 60.0, 2000, "bitmap"},
                                        {10, "Points", 4000.0, 10'001, "failure"},
                                        {10, "Points", 4000.0, 10'000, "bitmap"}}) {
            WPresetValues values;
            values.fontSize = size;
            values.fontSizeUnit = unit;
            const auto bitmap =
                createTextWatermarkOfWidth(width, values, QString(repeats, u'W'), m_fonts, {kPhoto});
            if (repeats > 10'000)
                QVERIFY2(bitmap.error().text.contains(u"10000"), qPrintable(bitmap.error().text));
            const QString found = !bitmap                        ? u"failure"_qs
                                  : !*bitmap                     ? u"none"_qs
                                  : (*bitmap)->notices.isEmpty() ? u"bitmap"_qs
                                                                 : u"notice"_qs;
            QCOMPARE(found, outcome);
            QVERIFY(found != u"notice" || (*bitmap)->size.isEmpty());
            QVERIFY(bitmap || !bitmap.error().text.isEmpty());
        }
    }
};

QTEST_MAIN(TextWatermarkTest)
#include "textwatermark_test.moc"
