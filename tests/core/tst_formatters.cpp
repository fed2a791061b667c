#include "formatters.h"
#include "timerengine.h"
#include "timersession.h"

#include <QTest>

#include <limits>

namespace {
const QTimeZone paris("Europe/Paris");
const QLocale french(QLocale::French, QLocale::France);
const QLocale american(QLocale::English, QLocale::UnitedStates);
} // namespace

class TestFormatters : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        Fmt::setLocale(french);
        Fmt::setTimeZone(paris);
    }

    void countdownText_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<bool>("showSign");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << 0.0 << true << "00:00";
        QTest::newRow("just under a minute") << 59.99 << false << "00:59";
        QTest::newRow("minutes and seconds") << 307.0 << false << "05:07";
        QTest::newRow("last second under an hour") << 3599.0 << false << "59:59";
        QTest::newRow("one hour") << 3600.0 << false << "1:00:00";
        QTest::newRow("hours unpadded") << 3723.0 << false << "1:02:03";
        QTest::newRow("ten hours") << 36000.0 << false << "10:00:00";
        QTest::newRow("hundred hours") << 360000.0 << false << "100:00:00";
        QTest::newRow("negative with sign") << -75.0 << true << "-01:15";
        QTest::newRow("negative without sign") << -75.0 << false << "01:15";
        QTest::newRow("just past zero with sign") << -0.2 << true << "-00:00";
        QTest::newRow("magnitude rounds down") << -59.9 << true << "-00:59";
        QTest::newRow("negative hours") << -3661.5 << true << "-1:01:01";
        QTest::newRow("positive never signed") << 12.0 << true << "00:12";
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << true
                                      << "--:--";
        QTest::newRow("infinite") << -std::numeric_limits<double>::infinity() << true
                                  << "--:--";
    }

    void countdownText()
    {
        QFETCH(double, seconds);
        QFETCH(bool, showSign);
        QFETCH(QString, text);
        QCOMPARE(TimerEngine::format(seconds, showSign), text);
    }

    void clockFormattersShowTheTimeOfDayInTheDisplayZone()
    {
        // 13:05:09 UTC is 14:05:09 in Paris in November.
        const QDateTime instant(QDate(2026, 11, 21), QTime(13, 5, 9, 800), Qt::UTC);
        QCOMPARE(Fmt::hhmm().string(instant), QStringLiteral("14:05"));
        QCOMPARE(Fmt::hhmmss().string(instant), QStringLiteral("14:05:09"));
        Fmt::setTimeZone(QTimeZone("Asia/Tokyo"));
        QCOMPARE(Fmt::hhmmss().string(instant), QStringLiteral("22:05:09"));
    }

    void clockFormattersAlwaysUseTheTwentyFourHourClock()
    {
        Fmt::setLocale(american);
        const QDateTime instant(QDate(2026, 11, 21), QTime(22, 7, 0), paris);
        QCOMPARE(Fmt::hhmm().string(instant), QStringLiteral("22:07"));
        QCOMPARE(Fmt::hhmmss().string(instant), QStringLiteral("22:07:00"));
    }

    void clockFormattersAreBuiltOnceAndReused()
    {
        const DateFormatter *first = &Fmt::hhmm();
        QCOMPARE(&Fmt::hhmm(), first);
        QCOMPARE(Fmt::hhmm().pattern(), QStringLiteral("HH:mm"));
        QCOMPARE(Fmt::hhmmss().pattern(), QStringLiteral("HH:mm:ss"));
        Fmt::setTimeZone(QTimeZone("UTC"));
        QCOMPARE(&Fmt::hhmm(), first);
        QCOMPARE(Fmt::hhmm().timeZone(), QTimeZone("UTC"));
    }

    void mediumDateFollowsTheLocale()
    {
        const QDateTime evening(QDate(2026, 11, 20), QTime(20, 0), paris);
        QCOMPARE(Fmt::mediumDate(evening, french, paris), QStringLiteral("20 nov. 2026"));
        QCOMPARE(Fmt::mediumDate(evening, american, paris), QStringLiteral("Nov 20, 2026"));
        // Late in the evening in UTC is already the next day in Paris.
        const QDateTime late(QDate(2026, 11, 20), QTime(23, 30), Qt::UTC);
        QCOMPARE(Fmt::mediumDate(late, french, paris), QStringLiteral("21 nov. 2026"));
    }

    void metadataSummaryJoinsTheNonEmptyPieces()
    {
        TimerSession s;
        QCOMPARE(s.metadataSummary(), QString());
        s.client = QStringLiteral("Maison Lumière");
        QCOMPARE(s.metadataSummary(), QStringLiteral("Maison Lumière"));
        s.venue = QStringLiteral("Salle Pleyel");
        s.eventDate = QDateTime(QDate(2026, 11, 20), QTime(19, 0), Qt::UTC);
        QCOMPARE(s.metadataSummary(), QStringLiteral("Maison Lumière · Salle Pleyel · 20 nov. 2026"));
        s.client = QString();
        QCOMPARE(s.metadataSummary(), QStringLiteral("Salle Pleyel · 20 nov. 2026"));
        s.operatorName = QStringLiteral("Régie A");
        s.notes = QStringLiteral("notes");
        QCOMPARE(s.metadataSummary(), QStringLiteral("Salle Pleyel · 20 nov. 2026"));
        QCOMPARE(s.metadataSummary(american, paris), QStringLiteral("Salle Pleyel · Nov 20, 2026"));
    }
};

QTEST_GUILESS_MAIN(TestFormatters)
#include "tst_formatters.moc"
