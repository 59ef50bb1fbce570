// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/localeformat.h"
#include "support/datarows.h"

#include <QtTest>

#include <cmath>
#include <ctime>

using namespace plexa;
using namespace plexa::test;

namespace
{

using Style = LocaleFormat::Style;

void setZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

using Moment = Row<const char *, Style, Text, Text>; // locale, style, date, time

struct WallClock {
    Text name;
    const char *zone;
    QDate date = QDate(2024, 7, 1);
    QTime time = QTime(23, 30);
};

using Decimal = Row<const char *, double, Text>; // locale, value, expected
using Environment = Row<QByteArrayList, Text>;   // settings, expected

/// A Friday.
QDateTime afternoon()
{
    return QDateTime(QDate(2024, 2, 9), QTime(15, 4, 5));
}

} // namespace

class LocaleFormatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { setZone("Europe/Berlin"); }

    void dates_data()
    {
        addRows<Moment>(
            {{"en_US full", "en_US", Style::Full, "Friday, February 9, 2024",
              "3:04:05 PM Central European Standard Time"},
             {"en_US medium", "en_US", Style::Medium, "Feb 9, 2024", "3:04:05 PM"},
             {"en_US short", "en_US", Style::Short, "2/9/24", "3:04 PM"},
             {"de_DE.UTF-8 full", "de_DE.UTF-8", Style::Full, "Freitag, 9. Februar 2024",
              "15:04:05 Mitteleuropäische Normalzeit"},
             {"de_DE.UTF-8 long", "de_DE.UTF-8", Style::Long, "9. Februar 2024", "15:04:05 MEZ"},
             {"ja_JP full", "ja_JP", Style::Full, "2024年2月9日金曜日", "15時04分05秒 中央ヨーロッパ標準時"},
             {"sr_RS@latin long", "sr_RS@latin", Style::Long, "9. februar 2024.", "15:04:05 CET"}});
    }
    void dates()
    {
        const auto [row, locale, style, date, time] = currentRow<Moment>();
        const LocaleFormat format(QLatin1String{locale});
        QCOMPARE(format.date(afternoon(), style), date);
        // From CLDR 42 on a narrow no-break space stands before AM and PM.
        QCOMPARE(format.time(afternoon(), style).replace(QChar(0x202f), u' '), time);
    }

    void wallClock_data()
    {
        addRows<WallClock>({{"no zone", "UTC"},
                            {"daylight saving", "America/New_York"},
                            {"quarter hours", "Asia/Kathmandu"},
                            {"a rule instead of a name", "XYZ-3:30"},
                            {"long ago", "Europe/Berlin", QDate(1901, 1, 1), QTime(0, 0)}});
    }
    void wallClock()
    {
        const auto [row, zone, date, time] = currentRow<WallClock>();
        setZone(zone);
        const QDateTime local(date, time);
        const LocaleFormat german(u"de_DE"_qs);
        QCOMPARE(german.date(local, Style::Medium), date.toString(u"dd.MM.yyyy"_qs));
        QCOMPARE(german.time(local, Style::Medium), time.toString(u"HH:mm:ss"_qs));
        QCOMPARE(german.time(local.toUTC(), Style::Short), time.toString(u"HH:mm"_qs));
    }

    void decimals_data()
    {
        addRows<Decimal>({{"en_US 0.008", "en_US", 0.008, "0.008"},
                          {"en_US 0.03125", "en_US", 0.03125, "0.0312"},
                          {"en_US 0.09375", "en_US", 0.09375, "0.0938"},
                          {"de_DE 1234.5", "de_DE", 1234.5, "1.234,5"},
                          {"ar_EG 0.5", "ar_EG", 0.5, "٠٫٥"},
                          {"C 1234.5", "C", 1234.5, "1234.5"},
                          {"nonsense 0.5", "nonsense", 0.5, "0.5"}});
    }
    void decimals()
    {
        const auto [row, locale, value, expected] = currentRow<Decimal>();
        QCOMPARE(LocaleFormat(QLatin1String{locale}).decimal(value, 4), expected);
    }

    void environment_data()
    {
        addRows<Environment>(
            {{"nothing set", {}, "Feb 9, 2024 0.5"},
             {"LANG", {"LANG=de_DE.UTF-8"}, "09.02.2024 0,5"},
             {"split", {"LANG=C", "LC_TIME=de_DE.UTF-8", "LC_NUMERIC=en_GB.UTF-8"}, "09.02.2024 0.5"},
             {"LC_ALL wins", {"LANG=de_DE", "LC_TIME=de_DE", "LC_ALL=POSIX"}, "Feb 9, 2024 0.5"},
             {"empty is unset", {"LC_ALL=", "LANG=de_DE"}, "09.02.2024 0,5"}});
    }
    void environment()
    {
        const auto [row, settings, expected] = currentRow<Environment>();
        const QByteArray before = qgetenv("LC_ALL");
        for (const char *name : {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"})
            qunsetenv(name);
        for (const QByteArray &setting : settings)
            qputenv(setting.left(setting.indexOf('=')).constData(), setting.mid(setting.indexOf('=') + 1));
        const LocaleFormat format;
        qputenv("LC_ALL", before);
        QCOMPARE(format.date(afternoon(), Style::Medium) + u' ' + format.decimal(0.5, 4), expected);
    }

    void invalidTime()
    {
        const LocaleFormat format;
        QCOMPARE(format.date(QDateTime(), Style::Full), QString());
        QCOMPARE(format.time(QDateTime(), Style::Full), QString());
    }
};

QTEST_GUILESS_MAIN(LocaleFormatTest)
#include "localeformat_test.moc"
