// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "platform/fontnames.h"
#include "support/testenvironment.h"

#include <QPainterPath>
#include <QRawFont>
#include <QTextLayout>
#include <QtTest>

#include <vector>

using namespace plexa;

namespace
{

double textWidth(const SizedFont &font)
{
    QTextLayout layout(u"Hamburgefonstiv"_qs, font.font);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(1e6);
    layout.endLayout();
    return line.naturalTextWidth() * font.scale;
}

} // namespace

class FontCatalogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void everyInstalledFace_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("name");
        QTest::addColumn<FontCatalog::Face>("face");
        const QByteArray list = test::outputOf("fc-list :scalable=true:variable=false --format %1",
                                               "%{file}|%{postscriptname}|%{family[0]}|%{style[0]}\n");
        const QStringList lines = QString::fromUtf8(list).split(u'\n', Qt::SkipEmptyParts);
        QVERIFY2(lines.size() >= 4, "fc-list found no fonts");
        for (const QString &line : lines) {
            const QStringList parts = line.split(u'|');
            QCOMPARE(parts.size(), 4);
            if (parts[1].startsWith(QLatin1String("DejaVu")))
                QTest::newRow(qPrintable(parts[1]))
                    << parts[0] << parts[1] << FontCatalog::Face{parts[2], parts[3]};
        }
    }

    void everyInstalledFace()
    {
        QFETCH(QString, file);
        QFETCH(QString, name);
        QFETCH(FontCatalog::Face, face);

        QCOMPARE(m_catalog.face(name).family, face.family);
        QCOMPARE(m_catalog.face(name).style, face.style);
        QCOMPARE(m_catalog.postScriptName(face.family, face.style), name);

        const auto font = m_catalog.fontNamed(name, 40);
        QVERIFY(font);
        // The font's header differs in every file (it holds a checksum), so this is the very file.
        const QRawFont resolved = QRawFont::fromFont(font->font);
        const QRawFont expected(file, 40);
        QVERIFY(expected.isValid());
        QCOMPARE(resolved.fontTable("head"), expected.fontTable("head"));
        // No made-up boldness or slant on top of the face's own.
        QCOMPARE(resolved.pathForGlyph(resolved.glyphIndexesForString(u"R"_qs).first()).boundingRect(),
                 expected.pathForGlyph(expected.glyphIndexesForString(u"R"_qs).first()).boundingRect());
    }

    void defaultIsTheSystemsSansSerif()
    {
        const QByteArray match =
            test::outputOf(u"fc-match"_qs, {u"--format"_qs, u"%{postscriptname}"_qs, u"sans-serif"_qs});
        QVERIFY(!match.isEmpty());
        QCOMPARE(m_catalog.defaultFontName(), QString::fromUtf8(match));
        QCOMPARE(m_catalog.defaultFont(30).font, m_catalog.fontNamed(QString::fromUtf8(match), 30)->font);
    }

    void unknownNames()
    {
        for (const char *name : {"", "NoSuchFont-Bold", "dejavusans", "DejaVu Sans"})
            QVERIFY2(!m_catalog.fontNamed(QLatin1String(name), 12), name);
        QCOMPARE(m_catalog.face(u"NoSuchFont"_qs).family, QString());
        QCOMPARE(m_catalog.postScriptName(u"DejaVu Sans"_qs, u"Hairy"_qs), QString());
    }

    void familiesAndStyles()
    {
        const QStringList families = m_catalog.families();
        QVERIFY(families.indexOf(u"DejaVu Sans"_qs) >= 0);
        QVERIFY(families.indexOf(u"DejaVu Sans Mono"_qs) > families.indexOf(u"DejaVu Sans"_qs));
        QCOMPARE(m_catalog.styles(u"DejaVu Sans Mono"_qs),
                 QStringList({u"Book"_qs, u"Oblique"_qs, u"Bold"_qs, u"Bold Oblique"_qs}));
        QCOMPARE(m_catalog.styles(u"No Such Family"_qs), QStringList());
    }

    void alternativeFamilyName()
    {
        // fonts-dejavu-extra has the condensed faces, known under a family name of their own as well.
        if (m_catalog.face(u"DejaVuSansCondensed-Bold"_qs).family.isEmpty())
            QSKIP("the condensed faces are not installed");
        QCOMPARE(m_catalog.postScriptName(u"DejaVu Sans Condensed"_qs, u"bold"_qs),
                 u"DejaVuSansCondensed-Bold"_qs);
        QVERIFY(!m_catalog.families().contains(u"DejaVu Sans Condensed"_qs));
    }

    /// Beyond the layout sizes, whole and fractional.
    void sizes()
    {
        // Advances are rounded to 1/64 pixel of the layout size, at worst 0.1 % of a glyph's width.
        const double unit = textWidth(*m_catalog.fontNamed(u"DejaVuSans"_qs, 1000)) / 1000;
        for (const double pixelSize : {7.3, 40.0, 240.37, 12345.6}) {
            const auto font = m_catalog.fontNamed(u"DejaVuSans"_qs, pixelSize);
            QVERIFY(font && font->font.pixelSize() > 0);
            QCOMPARE(font->font.pixelSize() * font->scale, pixelSize);
            QVERIFY(std::abs(textWidth(*font) / pixelSize / unit - 1) < 0.001);
        }
    }

    void brokenNameTables()
    {
        const QByteArray table =
            QRawFont::fromFont(m_catalog.fontNamed(u"DejaVuSans"_qs, 12)->font).fontTable("name");
        QCOMPARE(postScriptNames(table), QStringList({u"DejaVuSans"_qs}));
        for (qsizetype size = 0; size < std::min<qsizetype>(table.size(), 600); ++size) {
            // A copy of exactly that size, so that a read beyond it is seen.
            const std::vector<char> cut(table.cbegin(), table.cbegin() + size);
            postScriptNames(QByteArray::fromRawData(cut.data(), size));
        }
        QByteArray wild(64, char(0xff));
        QCOMPARE(postScriptNames(wild), QStringList());
    }

private:
    FontCatalog m_catalog;
};

QTEST_MAIN(FontCatalogTest)
#include "fontcatalog_test.moc"
