// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "support/datarows.h"
#include "support/files.h"
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

struct ALineIsThatPercentTall {
    Text name;
    int size;
    Text unit;
    int height;
};

struct LineBreaks {
    Text name;
    Text text;
    int lines;
};

struct ExtremesFailOrVanish {
    Text name;
    int size;
    Text unit;
    double width;
    int repeats;
    Text outcome;
};

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
    void aLineIsThatPercentTall_data()
    {
        addRows<ALineIsThatPercentTall>({
            {"short edge", 8, "% of short edge", 240},
            {"long edge", 8, "% of long edge", 320},
            {"width", 5, "% of width", 200},
            {"height", 5, "% of height", 150},
        });
    }

    void aLineIsThatPercentTall()
    {
        const auto [name, size, unit, height] = currentRow<ALineIsThatPercentTall>();
        WPresetValues values;
        values.fontSize = size;
        values.fontSizeUnit = unit;
        for (const QString &name : {m_fonts.defaultFontName(), u"DejaVuSerif-Bold"_qs, u"No Such Font"_qs}) {
            values.font = name;
            const WatermarkBitmap bitmap = bitmapOf(values, u"sample"_qs);
            QCOMPARE(bitmap.size.width(), 3920);
            QCOMPARE(bitmap.size.height(), height);
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

    void theOutlineIsCenterdOnTheEdge()
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
    }

    void alignmentPlacesLines_data()
    {
        QTest::addColumn<int>("alignment");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("share"); // of the free width that is left of the ink
        for (const bool isHebrew : {false, true}) {
            const QString text = isHebrew ? QString::fromUtf8("שלום") : u"text"_qs;
            const char *const name = isHebrew ? "right to left" : "left to right";
            QTest::addRow("left, %s", name) << 0 << text << 0.0;
            QTest::addRow("centerd, %s", name) << 1 << text << 0.5;
            QTest::addRow("right, %s", name) << 2 << text << 1.0;
            QTest::addRow("unknown, %s", name) << 3 << text << 0.0;
        }
    }

    void alignmentPlacesLines()
    {
        QFETCH(int, alignment);
        QFETCH(QString, text);
        QFETCH(double, share);
        WPresetValues values;
        values.textAlignment = alignment;
        const QRect ink = inkBox(bitmapOf(values, text));
        QVERIFY(!ink.isEmpty());
        const double left = share * (3920 - ink.width());
        // Glyphs have room at their sides.
        QVERIFY2(std::abs(ink.left() - left) < 30, qPrintable(QDebug::toString(ink)));
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

    void lineBreaks_data()
    {
        addRows<LineBreaks>({
            {"none", "a b", 1},
            {"Unix", "a\nb", 2},
            {"DOS", "a\r\nb", 2},
            {"old Macintosh", "a\rb", 2},
            {"line separator", QString::fromUtf8("a\u2028b"), 2},
            {"paragraph separator", QString::fromUtf8("a\u2029b"), 2},
            {"an empty line between", "a\n\nb", 3},
            {"control characters", "a\x01\x1b b", 1},
        });
    }

    void lineBreaks()
    {
        const auto [name, text, lines] = currentRow<LineBreaks>();
        QCOMPARE(bitmapOf(WPresetValues(), text).size.height(), lines * 240);
    }

    void colorGlyphsKeepTheirColorsAndWidth()
    {
        if (!QFontDatabase::families().contains(u"Noto Color Emoji"_qs))
            QSKIP("There is no font of color glyphs.");
        // The second time, too: the text engine is known to mix its sizes up.
        for (int i = 0; i < 2; ++i) {
            const WatermarkBitmap bitmap = bitmapOf(WPresetValues(), QString::fromUtf8("🎉🎉🎉🎉"));
            const QRect ink = inkBox(bitmap);
            const double emInPixels = 240 / 1.2;
            QVERIFY2(ink.width() > 4 * emInPixels && ink.width() < 5.5 * emInPixels,
                     qPrintable(QDebug::toString(ink)));
            int colored = 0;
            for (int y = 0; y < bitmap.ink.height(); ++y) {
                for (int x = 0; x < bitmap.ink.width(); ++x)
                    colored +=
                        std::abs(qRed(bitmap.ink.pixel(x, y)) - qBlue(bitmap.ink.pixel(x, y))) > 60 ? 1 : 0;
            }
            QVERIFY2(colored > 20'000, qPrintable(QString::number(colored)));
        }
    }

    void longTextsTakeLittleMemory()
    {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
        QSKIP("A sanitizer takes memory of its own.");
#endif
        QFile status(u"/proc/self/clear_refs"_qs);
        if (!status.open(QIODevice::WriteOnly))
            QSKIP("The most memory that was taken cannot be told.");
        const auto peakMegabytes = [] {
            const QByteArray text = contentsOf(u"/proc/self/status"_qs);
            const QByteArray line = text.mid(text.indexOf("VmHWM:") + 6);
            return line.first(line.indexOf("kB")).trimmed().toInt() / 1000;
        };
        WPresetValues values;
        values.strokeWidth = 4;
        values.fontSize = 1;
        values.fontSizeUnit = u"Points"_qs;
        bitmapOf(values, u"warm"_qs);
        status.write("5");
        status.close();
        const int before = peakMegabytes();
        // All in one tile, and all in one place.
        QVERIFY(!bitmapOf(values, QString(10'000, u'&'), 64).ink.isNull());
        values.fontSize = 100;
        QVERIFY(!bitmapOf(values, u'a' + QString(9'999, QChar(0x0334))).ink.isNull());
        const int taken = peakMegabytes() - before;
        QVERIFY2(before > 0 && taken >= 0 && taken < 60, qPrintable(QString::number(taken)));
    }

    void extremesFailOrVanish_data()
    {
        addRows<ExtremesFailOrVanish>({
            {"no size", 0, "Points", 100.0, 1, "none"},
            {"negative size", -5, "% of width", 100.0, 1, "none"},
            {"no width", 10, "Points", 0.9, 1, "none"},
            {"tiny in a wide box", 1, "Pixels", 1e9, 1, "none"},
            {"endless width", 10, "Points", 1e30, 1, "failure"},
            {"huge glyphs", 2'000'000'000, "Points", 4e6, 1, "failure"},
            {"large glyphs in a huge box", 100'000, "Points", 1e6, 10, "failure"},
            {"tall column", 100, "Points", 60.0, 2000, "bitmap"},
            {"very long text", 10, "Points", 4000.0, 10'001, "failure"},
            {"long text", 10, "Points", 4000.0, 10'000, "bitmap"},
        });
    }

    void extremesFailOrVanish()
    {
        const auto [name, size, unit, width, repeats, outcome] = currentRow<ExtremesFailOrVanish>();
        WPresetValues values;
        values.fontSize = size;
        values.fontSizeUnit = unit;
        const auto bitmap =
            createTextWatermarkOfWidth(width, values, QString(repeats, u'W'), m_fonts, {kPhoto});
        if (repeats > 10'000)
            QVERIFY2(bitmap.error().text.contains(u"10000"), qPrintable(bitmap.error().text));
        const QString found = !bitmap ? u"failure"_qs : *bitmap ? u"bitmap"_qs : u"none"_qs;
        QCOMPARE(found, outcome);
        QVERIFY(bitmap || !bitmap.error().text.isEmpty());
    }
};

QTEST_MAIN(TextWatermarkTest)
#include "textwatermark_test.moc"
