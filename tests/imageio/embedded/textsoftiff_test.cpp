// SPDX-License-Identifier: GPL-3.0-or-later

#include "editedcopies.h"
#include "support/datarows.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;
using namespace Qt::Literals::StringLiterals;

/// Creator, copyright notice and caption of EXIF stand in for those of IPTC; exiftool writes the photos and
/// reads the copies.
class TextsOfTiffTest : public QObject
{
    Q_OBJECT

    using Read = Row<Text, Text, Text, Text>; // arguments of exiftool, creator, copyright, caption

    enum class Change { None, Creator, SameCreator, NoCreator, ClearedExif, ClearedIptc };
    struct Written {
        Text name;
        Change change;
        Text artist, byline, notice; ///< of the copy: EXIF, IPTC, IPTC
    };

    static void apply(Change change, ImageMetadata &metadata)
    {
        if (change == Change::Creator)
            metadata.setIptcCreator(u"Ada"_s);
        else if (change == Change::SameCreator)
            metadata.setTiffArtist(u"Bob"_s);
        else if (change == Change::NoCreator)
            metadata.setIptcCreator({});
        else if (change == Change::ClearedIptc)
            metadata.clearIptcDataKeepCopyright(true, false);
        else if (change == Change::ClearedExif)
            metadata.clearTiffDataKeepCopyright(true, false);
    }

    EditedCopies m_copies;

private Q_SLOTS:
    void initTestCase() { PLEXA_NEEDS_PROGRAMS("exiftool"); }

    void reading_data()
    {
        addRows<Read>({
            {"EXIF alone", "-EXIF:Artist=Bob -EXIF:Copyright=Mine -EXIF:ImageDescription=Sea", "Bob", "Mine",
             "Sea"},
            {"IPTC has its own", "-EXIF:Artist=Bob -EXIF:Copyright=Mine -IPTC:By-line=Ada", "Ada", "Mine",
             ""},
            {"XMP has its own", "-EXIF:Copyright=Mine -EXIF:ImageDescription=Sea -XMP-dc:Rights=Ours", "",
             "Ours", "Sea"},
            {"nothing", "-EXIF:Make=Any", "", "", ""},
        });
    }
    void reading()
    {
        const auto [name, arguments, creator, copyright, caption] = currentRow<Read>();
        const auto source = ImageSource::open(m_copies.sourceWith(EditedCopies::None, arguments.split(u' ')));
        QVERIFY(source);
        const ImageMetadata metadata(*source->properties());
        QCOMPARE(metadata.iptcCreator().toString(), creator);
        QCOMPARE(metadata.iptcCopyright().toString(), copyright);
        QCOMPARE(metadata.iptcDescription().toString(), caption);
    }

    void copies_data()
    {
        addRows<Written>({
            {"no edit", Change::None, "Bob", "", ""},
            {"the same value again", Change::SameCreator, "Bob", "", ""},
            {"another creator", Change::Creator, "Ada", "Ada", ""},
            {"no creator", Change::NoCreator, "", "", ""},
            {"IPTC cleared but the notice", Change::ClearedIptc, "Bob", "", ""},
            {"camera cleared: the creator stays, shown as IPTC's", Change::ClearedExif, "", "Bob", ""},
        });
    }
    void copies()
    {
        const Written row = currentRow<Written>();
        const QString source =
            m_copies.sourceWith(EditedCopies::None, words("-EXIF:Artist=Bob -EXIF:Copyright=Mine"));
        const auto edit = [&row](ImageMetadata &metadata) { apply(row.change, metadata); };
        for (const char *const type : {"image/jpeg", "image/tiff", "image/heic"}) {
            const QJsonObject copy = m_copies.recordOf(source, edit, type);
            QVERIFY2(!copy.isEmpty(), type);
            const bool hasIptc = qstrcmp(type, "image/heic") != 0;
            const QString byline = hasIptc ? u"IPTC:By-line"_s : u"XMP-dc:Creator"_s;
            const QString notice = hasIptc ? u"IPTC:CopyrightNotice"_s : u"XMP-dc:Rights"_s;
            QCOMPARE(comparable(copy[u"IFD0:Artist"_s]), row.artist);
            QCOMPARE(comparable(copy[byline]), row.byline);
            QCOMPARE(comparable(copy[notice]), row.notice);
            QCOMPARE(comparable(copy[u"IFD0:Copyright"_s]), u"Mine"_s);
        }
    }
};

QTEST_GUILESS_MAIN(TextsOfTiffTest)
#include "textsoftiff_test.moc"
