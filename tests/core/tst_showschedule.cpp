#include "projectdocument.h"
#include "showschedule.h"

#include <QTest>

// The show's timetable from its start, and how far the show runs ahead of it or behind, on
// hand-set moments in Paris: fixed starts, end times, midnight, cues started out of order.
class TestShowSchedule : public QObject
{
    Q_OBJECT

private:
    const QTimeZone paris{QByteArrayLiteral("Europe/Paris")};

    QDateTime at(int h, int m, int s = 0, int day = 26) const
    {
        return QDateTime(QDate(2026, 11, day), QTime(h, m, s), paris);
    }
    static Cue cue(const QString &name, double minutes)
    {
        Cue c;
        c.name = name;
        c.duration = minutes * 60;
        return c;
    }
    Cue hardOut(const QString &name, int h, int m) const
    {
        Cue c = cue(name, 10);
        c.mode = TimerMode::HardOut;
        c.hardOutTime = at(h, m, 0, 3); // another day: only the time of day counts
        return c;
    }
    Cue fixedAt(Cue c, int h, int m) const
    {
        c.fixedStart = at(h, m, 0, 3);
        return c;
    }
    TimerSession show(const QList<Cue> &cues, const QDateTime &start) const
    {
        TimerSession s;
        s.cues = cues;
        s.scheduledStart = start;
        return s;
    }
    // The gala: 20:00, 10 and 15 minutes, a hard-out at 21:00, 5 minutes.
    TimerSession gala() const
    {
        return show({cue("Accueil", 10), cue("Discours", 15), hardOut("Table ronde", 21, 0), cue("Clôture", 5)},
                    at(20, 0));
    }
    static QList<QDateTime> starts(const ShowPlan &plan)
    {
        QList<QDateTime> list;
        for (const PlannedCue &c : plan.cues)
            list << c.start;
        return list;
    }

private slots:
    void aShowWithoutStartHasNoPlan()
    {
        TimerSession s = gala();
        s.scheduledStart.reset();
        QCOMPARE(ShowSchedule::plan(s, paris), std::nullopt);
    }

    void eachCueFollowsTheOneBeforeAndAnEndTimeHolds()
    {
        const ShowPlan plan = *ShowSchedule::plan(gala(), paris);
        QCOMPARE(plan.start, at(20, 0));
        QCOMPARE(starts(plan), (QList<QDateTime>{at(20, 0), at(20, 10), at(20, 25), at(21, 0)}));
        QCOMPARE(plan.cues[2].end, at(21, 0));
        QCOMPARE(plan.end, at(21, 5));
        for (const PlannedCue &c : plan.cues) {
            QVERIFY(!c.endsBeforeStart);
            QCOMPARE(c.marginBefore, std::nullopt);
        }
    }

    void aFixedStartLeavesAMarginOrAShortfall()
    {
        TimerSession s = gala();
        s.cues[3] = fixedAt(cue("Clôture", 5), 21, 10);
        ShowPlan plan = *ShowSchedule::plan(s, paris);
        QCOMPARE(plan.cues[3].start, at(21, 10));
        QCOMPARE(plan.cues[3].marginBefore, std::optional(600.0));
        QCOMPARE(plan.end, at(21, 15));

        s.cues[1] = fixedAt(cue("Discours", 15), 20, 5); // five minutes before Accueil ends
        plan = *ShowSchedule::plan(s, paris);
        QCOMPARE(plan.cues[1].start, at(20, 5));
        QCOMPARE(plan.cues[1].marginBefore, std::optional(-300.0));
        QCOMPARE(plan.cues[1].end, at(20, 20));
    }

    void aShowCrossesMidnight()
    {
        const TimerSession s = show({cue("Concert", 45), cue("Rappel", 30), hardOut("Feu d'artifice", 0, 30),
                                     fixedAt(cue("Bal", 60), 0, 40)},
                                    at(23, 0));
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        QCOMPARE(starts(plan), (QList<QDateTime>{at(23, 0), at(23, 45), at(0, 15, 0, 27), at(0, 40, 0, 27)}));
        QCOMPARE(plan.cues[2].end, at(0, 30, 0, 27));
        QCOMPARE(plan.cues[3].marginBefore, std::optional(600.0));
        QCOMPARE(plan.end, at(1, 40, 0, 27));
    }

    void anEndTimeBeforeTheCuesStartIsFlagged()
    {
        const TimerSession s = show({cue("Accueil", 30), hardOut("Discours", 20, 15), cue("Clôture", 5)}, at(20, 0));
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        QVERIFY(plan.cues[1].endsBeforeStart);
        QCOMPARE(plan.cues[1].start, at(20, 30));
        QCOMPARE(plan.cues[1].end, at(20, 30));
        QCOMPARE(plan.cues[2].start, at(20, 30));
    }

    void beforeTheFirstCueOnlyLatenessCounts()
    {
        const TimerSession s = gala();
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        ScheduleStatus status = ShowSchedule::status(plan, s.cues, {}, at(19, 50), paris);
        QCOMPARE(status.offsetSeconds, 0.0);
        QCOMPARE(status.expectedStarts[0], at(20, 0));
        QCOMPARE(status.projectedEnd, at(21, 5));

        status = ShowSchedule::status(plan, s.cues, {}, at(20, 3), paris);
        QCOMPARE(status.offsetSeconds, 180.0);
        QCOMPARE(status.expectedStarts[0], at(20, 3));
        QCOMPARE(status.expectedStarts[1], at(20, 13));
        QCOMPARE(status.expectedStarts[2], at(20, 28));
        QCOMPARE(status.expectedStarts[3], at(21, 0)); // the end time absorbs the lateness
        QCOMPARE(status.projectedEnd, at(21, 5));
    }

    void theActiveCueCountsItsLateStartAndItsOverrun()
    {
        const TimerSession s = gala();
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        // Accueil started four minutes late.
        ShowPosition position{0, at(20, 4), std::nullopt, {}};
        ScheduleStatus status = ShowSchedule::status(plan, s.cues, position, at(20, 6), paris);
        QCOMPARE(status.offsetSeconds, 240.0);
        QCOMPARE(status.expectedStarts[0], QDateTime());
        QCOMPARE(status.expectedStarts[1], at(20, 14));
        QCOMPARE(status.expectedStarts[2], at(20, 29));
        QCOMPARE(status.expectedStarts[3], at(21, 0));

        // On time, but running three minutes past its length (a pause counts as time spent).
        position = {0, at(20, 0), std::nullopt, {}};
        status = ShowSchedule::status(plan, s.cues, position, at(20, 13), paris);
        QCOMPARE(status.offsetSeconds, 180.0);
        QCOMPARE(status.expectedStarts[1], at(20, 13));
        status = ShowSchedule::status(plan, s.cues, position, at(20, 9, 30), paris);
        QCOMPARE(status.offsetSeconds, 0.0); // started on time, within its length
        QCOMPARE(ShowSchedule::offsetText(status.offsetSeconds), QStringLiteral("À l'heure"));

        // Given two more minutes at 20:06 (eight left on its clock): the offset is what was
        // spent, yet the cues to come now start two minutes later.
        position = {0, at(20, 0), std::nullopt, {}, 480.0};
        status = ShowSchedule::status(plan, s.cues, position, at(20, 6), paris);
        QCOMPARE(status.offsetSeconds, 0.0);
        QCOMPARE(status.expectedStarts[1], at(20, 14));
        // Paused for a while: at 20:09 with the same eight minutes left.
        status = ShowSchedule::status(plan, s.cues, position, at(20, 9), paris);
        QCOMPARE(status.expectedStarts[1], at(20, 17));
        // In overtime, the next cue can start now.
        position.activeRemaining = -30.0;
        status = ShowSchedule::status(plan, s.cues, position, at(20, 10, 30), paris);
        QCOMPARE(status.offsetSeconds, 30.0);
        QCOMPARE(status.expectedStarts[1], at(20, 10, 30));
    }

    void aCueStartedOutOfOrderIsMeasuredAgainstItsOwnStart()
    {
        const TimerSession s = gala();
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        // The table ronde brought forward to 20:20, planned at 20:25: five minutes early; its end
        // time holds the closing at 21:00.
        const ShowPosition position{2, at(20, 20), std::nullopt, {}};
        const ScheduleStatus status = ShowSchedule::status(plan, s.cues, position, at(20, 21), paris);
        QCOMPARE(status.offsetSeconds, -300.0);
        QCOMPARE(status.expectedStarts[3], at(21, 0));
        QCOMPARE(status.projectedEnd, at(21, 5));
    }

    void theLastCueInOvertimeEndsTheShowNow()
    {
        const TimerSession s = gala();
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        // Clôture started on time at 21:00 for five minutes, three minutes over at 21:08.
        const ShowPosition position{3, at(21, 0), std::nullopt, {}, -180.0};
        const ScheduleStatus status = ShowSchedule::status(plan, s.cues, position, at(21, 8), paris);
        QCOMPARE(status.offsetSeconds, 180.0);
        QCOMPARE(status.projectedEnd, at(21, 8));
        QCOMPARE(ShowSchedule::offsetText(status.offsetSeconds), QStringLiteral("Retard : +03:00"));
        QCOMPARE(ShowSchedule::offset(plan, s.cues, position, at(21, 8)), 180.0);
    }

    void betweenCuesTheOffsetCountsFromTheLastEnd()
    {
        const TimerSession s = gala();
        const ShowPlan plan = *ShowSchedule::plan(s, paris);
        // Accueil left at 20:12, two minutes past its planned end; the operator waits.
        const ShowPosition position{std::nullopt, {}, 0, at(20, 12)};
        ScheduleStatus status = ShowSchedule::status(plan, s.cues, position, at(20, 12), paris);
        QCOMPARE(status.offsetSeconds, 120.0);
        QCOMPARE(status.expectedStarts[1], at(20, 12));
        status = ShowSchedule::status(plan, s.cues, position, at(20, 14, 30), paris);
        QCOMPARE(status.offsetSeconds, 270.0);
        QCOMPARE(status.expectedStarts[1], at(20, 14, 30));

        // Left five minutes early, at 20:05: the next cue can go at once, and each minute
        // waited makes the show a minute less early.
        const ShowPosition early{std::nullopt, {}, 0, at(20, 5)};
        status = ShowSchedule::status(plan, s.cues, early, at(20, 5), paris);
        QCOMPARE(status.offsetSeconds, -300.0);
        QCOMPARE(status.expectedStarts[1], at(20, 5));
        status = ShowSchedule::status(plan, s.cues, early, at(20, 7), paris);
        QCOMPARE(status.offsetSeconds, -180.0);
        QCOMPARE(status.expectedStarts[1], at(20, 7));

        // The last cue left: the show's final offset.
        const ShowPosition over{std::nullopt, {}, 3, at(21, 8)};
        status = ShowSchedule::status(plan, s.cues, over, at(21, 30), paris);
        QCOMPARE(status.offsetSeconds, 180.0);
        QCOMPARE(status.projectedEnd, at(21, 8));
    }

    void theLinesSayItInWords()
    {
        QCOMPARE(ShowSchedule::offsetText(252), QStringLiteral("Retard : +04:12"));
        QCOMPARE(ShowSchedule::offsetText(-90), QStringLiteral("Avance : \u221201:30"));
        QCOMPARE(ShowSchedule::offsetText(29.4), QStringLiteral("À l'heure"));
        QCOMPARE(ShowSchedule::offsetText(-29.4), QStringLiteral("À l'heure"));
        QCOMPARE(ShowSchedule::offsetText(149.999), QStringLiteral("Retard : +02:30"));
        QCOMPARE(ShowSchedule::offsetText(30), QStringLiteral("Retard : +00:30"));
        QCOMPARE(ShowSchedule::offsetText(3725), QStringLiteral("Retard : +1:02:05"));
        QCOMPARE(ShowSchedule::speakerText(240), QStringLiteral("Programme : +4 min de retard"));
        QCOMPARE(ShowSchedule::speakerText(40), QStringLiteral("Programme : +1 min de retard"));
        QCOMPARE(ShowSchedule::speakerText(-100), QStringLiteral("Programme : 2 min d'avance"));
        QCOMPARE(ShowSchedule::speakerText(10), QStringLiteral("Programme : à l'heure"));
    }

    void theStartsAreKeptInTheProjectOnlyWhenSet()
    {
        TimerSession s = gala();
        s.cues[3] = fixedAt(cue("Clôture", 5), 21, 10);
        const QDateTime now(QDate(2026, 11, 26), QTime(8, 0), Qt::UTC);
        s.createdAt = s.updatedAt = now;
        const QByteArray bytes = ProjectDocument::encode(s).value();
        QVERIFY(bytes.contains("  \"scheduledStart\" : \"2026-11-26T19:00:00Z\",\n"));
        QVERIFY(bytes.contains("      \"fixedStart\" : \"2026-11-03T20:10:00Z\",\n"));
        QCOMPARE(ProjectDocument::decode(bytes, now).value(), s);

        s.scheduledStart.reset();
        s.cues[3].fixedStart.reset();
        const QByteArray without = ProjectDocument::encode(s).value();
        QVERIFY(!without.contains("scheduledStart"));
        QVERIFY(!without.contains("fixedStart"));
    }
};

QTEST_GUILESS_MAIN(TestShowSchedule)
#include "tst_showschedule.moc"
