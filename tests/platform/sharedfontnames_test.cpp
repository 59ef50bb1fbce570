// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/fontcatalog.h"
#include "support/files.h"
#include "support/testenvironment.h"

#include <QGuiApplication>
#include <QRawFont>
#include <QtEndian>
#include <QtTest>

using namespace plexa;
using namespace plexa::test;

namespace
{

quint32 u16(const QByteArray &bytes, qsizetype at)
{
    return qFromBigEndian<quint16>(bytes.constData() + at);
}

/// Cuts the font's PostScript names (name 6) after `letters` letters.
void cutPostScriptNames(QByteArray &font, int letters)
{
    qsizetype table = 0;
    for (qsizetype entry = 12; entry < 12 + 16 * qsizetype(u16(font, 4)); entry += 16) {
        if (font.mid(entry, 4) == "name")
            table = qFromBigEndian<quint32>(font.constData() + entry + 8);
    }
    for (qsizetype record = table + 6; record < table + 6 + 12 * qsizetype(u16(font, table + 2));
         record += 12) {
        const int bytesPerLetter = u16(font, record) == 1 ? 1 : 2;
        if (u16(font, record + 6) == 6)
            qToBigEndian(quint16(letters * bytesPerLetter), font.data() + record + 8);
    }
}

QString installedFile(const QString &postScriptName)
{
    return QString::fromUtf8(outputOf("fc-list :postscriptname=%1 --format %{file}", postScriptName));
}

} // namespace

/// Two styles under one PostScript name, as variable fonts have them.
class SharedFontNamesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothStylesCanBeChosen()
    {
        const FontCatalog catalog;
        const QString family = u"DejaVu Sans"_qs;
        QCOMPARE(catalog.styles(family), QStringList({u"Book"_qs, u"Bold"_qs}));
        QStringList names;
        for (const QString &style : catalog.styles(family)) {
            const QString name = catalog.postScriptName(family, style);
            names.append(name);
            QCOMPARE(catalog.face(name).style, style);
            const auto font = catalog.fontNamed(name, 20);
            QVERIFY(font);
            QCOMPARE(QRawFont::fromFont(font->font).styleName(), style);
        }
        QCOMPARE(names, QStringList({u"DejaVuSans"_qs, u"DejaVuSans-Bold"_qs}));
        QCOMPARE(catalog.defaultFontName(), u"DejaVuSans"_qs);
    }
};

int main(int argc, char **argv)
{
    // The fonts must be there before anything asks fontconfig.
    const TestFolder folder;
    const QString book = installedFile(u"DejaVuSans"_qs);
    QByteArray bold = contentsOf(installedFile(u"DejaVuSans-Bold"_qs));
    if (book.isEmpty() || bold.isEmpty()) {
        qCritical("the DejaVu fonts are not installed");
        return 1;
    }
    cutPostScriptNames(bold, int(qstrlen("DejaVuSans")));
    const QString config = folder.path("fonts.conf");
    const QString text = u"<fontconfig><dir>%1</dir><cachedir>%1/cache</cachedir></fontconfig>"_qs;
    if (!QFile::copy(book, folder.path("a.ttf")) || !writeFile(folder.path("b.ttf"), bold) ||
        !writeFile(config, text.arg(folder.path()).toUtf8()))
        return 1;
    qputenv("FONTCONFIG_FILE", config.toUtf8());
    QGuiApplication application(argc, argv);
    SharedFontNamesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "sharedfontnames_test.moc"
