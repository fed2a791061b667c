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
        QTest::newRow("empty") << "";
        QTest::newRow("epoch number") << "1763230800";
    }

    void refusesEveryOtherForm()
    {
        QFETCH(QString, text);
        QVERIFY(!InternetDate::parse(text));
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
