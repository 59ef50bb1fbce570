// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/localeformat.h"

#include <QtTest>

#include <cmath>
#include <ctime>

using namespace plexa;

Q_DECLARE_METATYPE(plexa::LocaleFormat::Style)

namespace
{

using Style = LocaleFormat::Style;

void setZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

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
        QTest::addColumn<QString>("locale");
        QTest::addColumn<Style>("style");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("time");
        const auto row = [](const char *locale, Style style, const char *date, const char *time) {
            QTest::addRow("%s %d", locale, int(style))
                << QString::fromLatin1(locale) << style << QString::fromUtf8(date) << QString::fromUtf8(time);
        };
        row("en_US", Style::Full, "Friday, February 9, 2024", "3:04:05 PM Central European Standard Time");
        row("en_US", Style::Long, "February 9, 2024", "3:04:05 PM GMT+1");
        row("en_US", Style::Medium, "Feb 9, 2024", "3:04:05 PM");
        row("en_US", Style::Short, "2/9/24", "3:04 PM");
        row("de_DE.UTF-8", Style::Full, "Freitag, 9. Februar 2024", "15:04:05 Mitteleuropäische Normalzeit");
        row("de_DE.UTF-8", Style::Long, "9. Februar 2024", "15:04:05 MEZ");
        row("de_DE.UTF-8", Style::Medium, "09.02.2024", "15:04:05");
        row("de_DE.UTF-8", Style::Short, "09.02.24", "15:04");
        row("ja_JP", Style::Full, "2024年2月9日金曜日", "15時04分05秒 中央ヨーロッパ標準時");
        row("ja_JP", Style::Medium, "2024/02/09", "15:04:05");
        row("fr_FR", Style::Long, "9 février 2024", "15:04:05 UTC+1");
        row("sr_RS@latin", Style::Long, "9. februar 2024.", "15:04:05 CET");
    }

    void dates()
    {
        QFETCH(QString, locale);
        QFETCH(Style, style);
        const LocaleFormat format(locale);
        QTEST(format.date(afternoon(), style), "date");
        // From CLDR 42 on a narrow no-break space stands before AM and PM.
        QTEST(format.time(afternoon(), style).replace(QChar(0x202f), u' '), "time");
    }

    void wallClock_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDateTime>("when");
        const QDateTime summer(QDate(2024, 7, 1), QTime(23, 30));
        QTest::newRow("no zone") << QByteArray("UTC") << summer;
        QTest::newRow("daylight saving") << QByteArray("America/New_York") << summer;
        QTest::newRow("quarter hours") << QByteArray("Asia/Kathmandu") << summer;
        QTest::newRow("a rule instead of a name") << QByteArray("XYZ-3:30") << summer;
        QTest::newRow("long ago") << QByteArray("Europe/Berlin") << QDateTime(QDate(1901, 1, 1), QTime(0, 0));
    }

    void wallClock()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDateTime, when);
        const QDate date = when.date();
        const QTime time = when.time();
        setZone(zone.constData());
        // Made anew: a QDateTime of local time keeps the moment that it meant in the zone of its making.
        const QDateTime local(date, time);
        const LocaleFormat german(u"de_DE"_qs);
        QCOMPARE(german.date(local, Style::Medium), date.toString(u"dd.MM.yyyy"_qs));
        QCOMPARE(german.time(local, Style::Medium), time.toString(u"HH:mm:ss"_qs));
        QCOMPARE(german.time(local.toUTC(), Style::Short), time.toString(u"HH:mm"_qs));
    }

    void decimals_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *locale, double value, const char *expected) {
            QTest::addRow("%s %g", locale, value)
                << QString::fromLatin1(locale) << value << QString::fromUtf8(expected);
        };
        row("en_US", 0.008, "0.008");
        row("en_US", 1.0 / 3, "0.3333");
        row("en_US", 30, "30");
        row("en_US", 0.00002, "0");
        row("en_US", 0.03125, "0.0312");
        row("en_US", 0.09375, "0.0938");
        row("en_US", 1234.5, "1,234.5");
        row("de_DE", 1234.5, "1.234,5");
        row("ar_EG", 0.5, "٠٫٥");
        row("C", 1234.5, "1234.5");
        row("nonsense", 0.5, "0.5");
    }

    void decimals()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        QTEST(LocaleFormat(locale).decimal(value, 4), "expected");
    }

    void environment_data()
    {
        QTest::addColumn<QByteArrayList>("settings");
        QTest::addColumn<QString>("expected");
        QTest::newRow("nothing set") << QByteArrayList() << u"Feb 9, 2024 0.5"_qs;
        QTest::newRow("LANG") << QByteArrayList{"LANG=de_DE.UTF-8"} << u"09.02.2024 0,5"_qs;
        QTest::newRow("split") << QByteArrayList{"LANG=C", "LC_TIME=de_DE.UTF-8", "LC_NUMERIC=en_GB.UTF-8"}
                               << u"09.02.2024 0.5"_qs;
        QTest::newRow("LC_ALL wins") << QByteArrayList{"LANG=de_DE", "LC_TIME=de_DE", "LC_ALL=POSIX"}
                                     << u"Feb 9, 2024 0.5"_qs;
        QTest::newRow("empty is unset") << QByteArrayList{"LC_ALL=", "LANG=de_DE"} << u"09.02.2024 0,5"_qs;
    }

    void environment()
    {
        QFETCH(QByteArrayList, settings);
        const QByteArray before = qgetenv("LC_ALL");
        for (const char *name : {"LC_ALL", "LC_TIME", "LC_NUMERIC", "LANG"})
            qunsetenv(name);
        for (const QByteArray &setting : settings)
            qputenv(setting.left(setting.indexOf('=')).constData(), setting.mid(setting.indexOf('=') + 1));
        const LocaleFormat format;
        qputenv("LC_ALL", before);
        QTEST(format.date(afternoon(), Style::Medium) + u' ' + format.decimal(0.5, 4), "expected");
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
