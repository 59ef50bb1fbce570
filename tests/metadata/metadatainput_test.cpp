// SPDX-License-Identifier: GPL-3.0-or-later

#include "metadata/metadatainput.h"
#include "support/datarows.h"

#include <QTest>

using namespace plexa;
using namespace plexa::test;
using enum MetadataProperty;

/// Texts that people enter, and the texts that they see.
class MetadataInputTest : public QObject
{
    Q_OBJECT

    struct Entry {
        Text name; ///< what is entered
        MetadataProperty property;
        Text locale;
        QVariant value; ///< invalid: refused
        Text shown = {};
    };

private Q_SLOTS:
    void entries_data()
    {
        addRows<Entry>({
            {"1/8 SEC", exifExposureTime, "en", 0.125, "0.125 sec"},
            {"0,125s", exifExposureTime, "de", 0.125, "0,125 sec"},
            {"0.000125", exifExposureTime, "de", 0.000125, "0,000125 sec"},
            {"1/0", exifExposureTime, "en", {}},
            {"0,008", exifExposureTime, "en", {}},
            {"1.600", exifISOSpeed, "de", {}},
            {"5.600", exifFNumber, "de", 5.6, "5,6"},
            {"05", exifSubsecTimeOriginal, "en", QString(Text("05")), "05"},
            {"5 ms", exifSubsecTimeOriginal, "en", {}},
            {"-1", exifFNumber, "en", {}},
            {"-0.333333", exifExposureBias, "en", -0.333333, "-0.333333"},
            {"inf", exifFNumber, "en", {}},
            {"50 mm", exifFocalLength, "en", 50.0, "50 mm"},
            {"75mm", exifFocalLength35, "en", 75, "75 mm"},
            {"75.5", exifFocalLength35, "en", {}},
            {"65536", exifISOSpeed, "en", {}},
            {"1000", exifISOSpeed, "en", 1000, "1000"},
            {"70000", exifImageNumber, "en", 70000, "70000"},
            {"2024-2-31", exifDateTimeOriginalStr, "en", {}},
            {"2024-02-29 7:05", exifDateTimeOriginalStr, "en", QString(Text("2024:02:29 07:05:00")),
             "2024-02-29 07:05:00"},
            {"2024:02:29 24:00:00", exifDateTimeOriginalStr, "en", {}},
            {" b, a ,,b", iptcKeywords, "en", QVariantList{QString(Text("b")), QString(Text("a"))}, "b, a"},
            {"50 mm s", iptcTitle, "en", QString(Text("50 mm s")), "50 mm s"},
        });
    }
    void entries()
    {
        const Entry row = currentRow<Entry>();
        const QLocale locale(row.locale);
        const Result<QVariant> value = metadataOfText(row.property, row.name, locale);
        QCOMPARE(value.has_value(), row.value.isValid());
        if (!value)
            return;
        QCOMPARE(*value, row.value);
        QCOMPARE(textOfMetadata(row.property, *value, locale), QString(row.shown));
        QVERIFY(!metadataOfText(row.property, {}, locale)->isValid());
    }

    /// Texts of files that are no dates or numbers, and numbers that exceed a double.
    void otherTexts()
    {
        const QLocale locale(QLocale::English);
        QCOMPARE(textOfMetadata(exifDateTimeOriginalStr, QString(Text("0000:00:00 00:00:00")), locale),
                 QString(Text("0000:00:00 00:00:00")));
        QCOMPARE(textOfMetadata(exifLensID, Q_INT64_C(-7910804157571773682), locale),
                 QString(Text("-7910804157571773682")));
        QCOMPARE(textOfMetadata(exifFNumber, QVariant(), locale), QString());
    }
};

QTEST_GUILESS_MAIN(MetadataInputTest)
#include "metadatainput_test.moc"
