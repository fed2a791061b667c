#include "internetdate.h"

#include <QTest>
#include <QTimeZone>

class TestInternetDate : public QObject
{
    Q_OBJECT

private slots:
    void writesUtcToTheWholeSecondWithZ()
    {
        const QDateTime utc(QDate(2026, 11, 15), QTime(18, 20, 0), Qt::UTC);
        QCOMPARE(InternetDate::format(utc), QStringLiteral("2026-11-15T18:20:00Z"));
    }

    void writesAnyZoneAsUtc()
    {
        const QDateTime paris(QDate(2026, 11, 15), QTime(19, 20, 0), QTimeZone("Europe/Paris"));
        QCOMPARE(InternetDate::format(paris), QStringLiteral("2026-11-15T18:20:00Z"));
    }

    void dropsFractionalSecondsWithoutRounding()
    {
        const QDateTime utc(QDate(2026, 11, 15), QTime(18, 20, 0, 999), Qt::UTC);
        QCOMPARE(InternetDate::format(utc), QStringLiteral("2026-11-15T18:20:00Z"));
        const QDateTime beforeEpoch = QDateTime::fromMSecsSinceEpoch(-1500, Qt::UTC);
        QCOMPARE(InternetDate::format(beforeEpoch), QStringLiteral("1969-12-31T23:59:58Z"));
    }

    void readsTheFormItWrites()
    {
        const auto parsed = InternetDate::parse(QStringLiteral("2026-11-15T18:20:00Z"));
        QVERIFY(parsed);
        QCOMPARE(*parsed, QDateTime(QDate(2026, 11, 15), QTime(18, 20, 0), Qt::UTC));
    }

    void readsANumericOffsetAsTheSameInstant()
    {
        const auto parsed = InternetDate::parse(QStringLiteral("2026-11-15T19:20:00+01:00"));
        QVERIFY(parsed);
        QCOMPARE(*parsed, QDateTime(QDate(2026, 11, 15), QTime(18, 20, 0), Qt::UTC));
        const auto west = InternetDate::parse(QStringLiteral("2026-11-15T13:20:00-05:00"));
        QVERIFY(west);
        QCOMPARE(*west, QDateTime(QDate(2026, 11, 15), QTime(18, 20, 0), Qt::UTC));
    }

    void refusesEveryOtherForm_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("fractional seconds") << "2026-11-15T18:20:00.500Z";
        QTest::newRow("fractional seconds with offset") << "2026-11-15T18:20:00.5+01:00";
        QTest::newRow("no zone") << "2026-11-15T18:20:00";
        QTest::newRow("no seconds") << "2026-11-15T18:20Z";
        QTest::newRow("space separator") << "2026-11-15 18:20:00Z";
        QTest::newRow("lower-case z") << "2026-11-15T18:20:00z";
        QTest::newRow("lower-case t") << "2026-11-15t18:20:00Z";
        QTest::newRow("date only") << "2026-11-15";
        QTest::newRow("offset without colon") << "2026-11-15T18:20:00+0100";
        QTest::newRow("month 13") << "2026-13-15T18:20:00Z";
        QTest::newRow("30 February") << "2026-02-30T18:20:00Z";
        QTest::newRow("hour 24") << "2026-11-15T24:00:00Z";
        QTest::newRow("second 60") << "2026-11-15T18:20:60Z";
        QTest::newRow("signs in digits") << "2026-+1-15T18:20:00Z";
        QTest::newRow("letters for the year") << "abcd-11-15T18:20:00Z";
        QTest::newRow("signs for the year") << "+-+--12-31T21:00:00+01:00";
        QTest::newRow("sign before a three-digit year") << "-999-11-15T18:20:00Z";
        QTest::newRow("letters for the day") << "2026-11-1xT18:20:00Z";
        QTest::newRow("year 0000") << "0000-11-15T18:20:00Z";
        QTest::newRow("year 10000 in UTC") << "9999-12-31T23:59:59-00:01";
        QTest::newRow("year 0 in UTC") << "0001-01-01T00:30:00+01:00";
        QTest::newRow("five-digit year") << "10000-01-01T00:00:59Z";
        QTest::newRow("empty") << "";
        QTest::newRow("epoch number") << "1763230800";
    }

    void refusesEveryOtherForm()
    {
        QFETCH(QString, text);
        QVERIFY(!InternetDate::parse(text));
    }

    void everyDateReadIsWrittenBackInTheSameForm_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("written");
        QTest::newRow("last second of 9999") << "9999-12-31T23:59:59Z" << "9999-12-31T23:59:59Z";
        QTest::newRow("first second of 0001") << "0001-01-01T00:00:00Z" << "0001-01-01T00:00:00Z";
        QTest::newRow("offset that stays in 9999") << "9999-12-31T23:59:59+00:01"
                                                   << "9999-12-31T23:58:59Z";
        QTest::newRow("offset that stays in 0001") << "0001-01-01T00:30:00-01:00"
                                                   << "0001-01-01T01:30:00Z";
    }

    void everyDateReadIsWrittenBackInTheSameForm()
    {
        QFETCH(QString, text);
        QFETCH(QString, written);
        const auto parsed = InternetDate::parse(text);
        QVERIFY(parsed);
        QCOMPARE(InternetDate::format(*parsed), written);
        QCOMPARE(InternetDate::parse(written), parsed);
    }

    void roundTripDropsTheSubSecondPart()
    {
        const QDateTime precise(QDate(2027, 1, 1), QTime(0, 0, 59, 250), Qt::UTC);
        const auto back = InternetDate::parse(InternetDate::format(precise));
        QVERIFY(back);
        QCOMPARE(*back, QDateTime(QDate(2027, 1, 1), QTime(0, 0, 59), Qt::UTC));
    }
};

QTEST_GUILESS_MAIN(TestInternetDate)
#include "tst_internetdate.moc"
