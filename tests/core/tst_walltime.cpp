#include "walltime.h"

#include <QTest>

namespace {

const QTimeZone paris("Europe/Paris");

QDateTime parisTime(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), paris);
}

QDateTime utc(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), Qt::UTC);
}

Cue hardOutAt(const QDateTime &end)
{
    Cue cue;
    cue.mode = TimerMode::HardOut;
    cue.hardOutTime = end;
    return cue;
}

} // namespace

class TestWallTime : public QObject
{
    Q_OBJECT

private slots:
    void buildsAnOrdinaryTimeOfDay()
    {
        QCOMPARE(WallTime::instantAt(QDate(2026, 11, 21), 14, 0, paris), utc(2026, 11, 21, 13, 0));
        QCOMPARE(WallTime::instantAt(QDate(2026, 7, 14), 14, 0, paris), utc(2026, 7, 14, 12, 0));
    }

    void aTimeSkippedBySpringForwardGivesTheFirstInstantAfterTheGap()
    {
        // 29 March 2026: 02:00 CET jumps to 03:00 CEST, at 01:00 UTC.
        QCOMPARE(WallTime::instantAt(QDate(2026, 3, 29), 2, 30, paris), utc(2026, 3, 29, 1, 0));
        QCOMPARE(WallTime::instantAt(QDate(2026, 3, 29), 2, 0, paris), utc(2026, 3, 29, 1, 0));
        QCOMPARE(WallTime::instantAt(QDate(2026, 3, 29), 3, 0, paris), utc(2026, 3, 29, 1, 0));
        QCOMPARE(WallTime::instantAt(QDate(2026, 3, 29), 1, 59, paris), utc(2026, 3, 29, 0, 59));
    }

    void aTimeThatOccursTwiceGivesTheFirstOccurrence()
    {
        // 25 October 2026: 03:00 CEST falls back to 02:00 CET, at 01:00 UTC; 02:30 happens at
        // 00:30 UTC and again at 01:30 UTC.
        QCOMPARE(WallTime::instantAt(QDate(2026, 10, 25), 2, 30, paris), utc(2026, 10, 25, 0, 30));
        QCOMPARE(WallTime::instantAt(QDate(2026, 10, 25), 3, 0, paris), utc(2026, 10, 25, 2, 0));
    }

    void anUnusableZoneGivesNothing()
    {
        QVERIFY(!WallTime::instantAt(QDate(2026, 3, 29), 2, 30, QTimeZone()));
    }

    void hardOutEndsAtItsTimeOfDayToday()
    {
        const Cue cue = hardOutAt(parisTime(2020, 1, 1, 14, 0, 45)); // its date and seconds don't count
        QCOMPARE(WallTime::resolveHardOut(cue, parisTime(2026, 11, 21, 13, 0), paris),
                 parisTime(2026, 11, 21, 14, 0));
    }

    void hardOutReadsTheHourAndMinuteInTheUsersCalendar()
    {
        // Stored as 13:00 UTC, which the user's calendar reads as 14:00.
        const Cue cue = hardOutAt(utc(2026, 1, 5, 13, 0));
        QCOMPARE(WallTime::resolveHardOut(cue, parisTime(2026, 11, 21, 9, 0), paris),
                 parisTime(2026, 11, 21, 14, 0));
    }

    void hardOutJustPassedStaysTodayWithinSixHours_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QDateTime>("end");
        QTest::newRow("ten minutes late") << parisTime(2026, 11, 21, 14, 10)
                                          << parisTime(2026, 11, 21, 14, 0);
        QTest::newRow("exactly six hours") << parisTime(2026, 11, 21, 20, 0)
                                           << parisTime(2026, 11, 21, 14, 0);
        QTest::newRow("just over six hours") << parisTime(2026, 11, 21, 20, 0, 1)
                                             << parisTime(2026, 11, 22, 14, 0);
        QTest::newRow("at its end") << parisTime(2026, 11, 21, 14, 0)
                                    << parisTime(2026, 11, 21, 14, 0);
    }

    void hardOutJustPassedStaysTodayWithinSixHours()
    {
        QFETCH(QDateTime, now);
        QFETCH(QDateTime, end);
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 14, 0));
        QCOMPARE(WallTime::resolveHardOut(cue, now, paris), end);
    }

    void hardOutAcrossMidnightMeansTomorrow()
    {
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 0, 30));
        const QDateTime now = parisTime(2026, 11, 21, 23, 0);
        const QDateTime end = WallTime::resolveHardOut(cue, now, paris);
        QCOMPARE(end, parisTime(2026, 11, 22, 0, 30));
        QCOMPARE(now.secsTo(end), 5400);
    }

    void hardOutOnTheSpringForwardNightUsesTheFirstInstantAfterTheGap()
    {
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 2, 30));
        const QDateTime now = parisTime(2026, 3, 29, 1, 0); // 00:00 UTC
        QCOMPARE(WallTime::resolveHardOut(cue, now, paris), utc(2026, 3, 29, 1, 0));
    }

    void hardOutOnTheFallBackNightUsesTheFirstOccurrence()
    {
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 2, 30));
        const QDateTime now = parisTime(2026, 10, 25, 1, 0); // 23:00 UTC the day before
        const QDateTime end = WallTime::resolveHardOut(cue, now, paris);
        QCOMPARE(end, utc(2026, 10, 25, 0, 30));
        QCOMPARE(now.secsTo(end), 5400);
    }

    void hardOutOverMidnightIntoTheSpringForwardGap()
    {
        // Chosen at 23:00 on the eve: tomorrow's 02:30 does not exist, so the cue ends when the
        // clocks jump to 03:00 CEST, three real hours later.
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 2, 30));
        const QDateTime now = parisTime(2026, 3, 28, 23, 0);
        QCOMPARE(WallTime::resolveHardOut(cue, now, paris), utc(2026, 3, 29, 1, 0));
        QCOMPARE(now.secsTo(utc(2026, 3, 29, 1, 0)), 3 * 3600);
    }

    void hardOutWithoutEndTimeLastsItsDuration()
    {
        Cue cue;
        cue.mode = TimerMode::HardOut;
        cue.duration = 900.5;
        const QDateTime now = parisTime(2026, 11, 21, 13, 0);
        QCOMPARE(WallTime::resolveHardOut(cue, now, paris), now.addMSecs(900500));
    }

    void hardOutFallsBackToNowWhenTheCalendarCannotPlaceIt()
    {
        const Cue cue = hardOutAt(parisTime(2026, 1, 1, 14, 0));
        const QDateTime now = utc(2026, 11, 21, 13, 0);
        QCOMPARE(WallTime::resolveHardOut(cue, now, QTimeZone()), now);
    }

    void doorsAheadToday()
    {
        const QDateTime now = parisTime(2026, 11, 21, 19, 0);
        QCOMPARE(WallTime::resolveDoorsTarget(parisTime(2026, 1, 1, 20, 30), now, paris),
                 parisTime(2026, 11, 21, 20, 30));
    }

    void doorsJustPassedMeanTomorrowWithoutGrace_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QDateTime>("target");
        QTest::newRow("one minute ago") << parisTime(2026, 11, 21, 20, 31)
                                        << parisTime(2026, 11, 22, 20, 30);
        QTest::newRow("right now") << parisTime(2026, 11, 21, 20, 30)
                                   << parisTime(2026, 11, 22, 20, 30);
        QTest::newRow("seconds after") << parisTime(2026, 11, 21, 20, 30, 5)
                                       << parisTime(2026, 11, 22, 20, 30);
    }

    void doorsJustPassedMeanTomorrowWithoutGrace()
    {
        QFETCH(QDateTime, now);
        QFETCH(QDateTime, target);
        QCOMPARE(WallTime::resolveDoorsTarget(parisTime(2026, 1, 1, 20, 30), now, paris), target);
    }

    void doorsAcrossTheFallBackDayCountTheLongerDay()
    {
        // From 20:30 on 24 October to 20:30 on 25 October is 25 hours.
        const QDateTime now = parisTime(2026, 10, 24, 20, 31);
        const QDateTime target =
            WallTime::resolveDoorsTarget(parisTime(2026, 1, 1, 20, 30), now, paris);
        QCOMPARE(target, parisTime(2026, 10, 25, 20, 30));
        QCOMPARE(now.secsTo(target), 25 * 3600 - 60);
    }
};

QTEST_GUILESS_MAIN(TestWallTime)
#include "tst_walltime.moc"
