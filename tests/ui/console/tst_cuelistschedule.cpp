// The show's timetable in the console's cue list: each cue's planned start, the start now
// expected for the cues to come, the margin before a fixed start and an end time that falls
// before its cue's start. Everything follows the clock and every edit at once.
#include "consolefixture.h"

using namespace std::chrono_literals;

namespace {

const QColor listBackground(26, 26, 30);
const QColor warningYellow(241, 196, 15);
const QColor dangerRed(231, 76, 60);
const QColor successGreen(46, 204, 113);

const QTimeZone paris("Europe/Paris");

QDateTime at(QTime time, int day = 21)
{
    return QDateTime(QDate(2026, 11, day), time, paris);
}

void planFrom(Console &c, const QDateTime &start)
{
    TimerSession planned = c.engine.session();
    planned.scheduledStart = start;
    c.engine.updateProjectInfo(planned);
}

} // namespace

class TestCueListSchedule : public QObject
{
    Q_OBJECT

private slots:
    void eachCueShowsWhenItShouldStartAndWhenItNowWill()
    {
        Console c({durationCue("Accueil", 600), durationCue("Discours", 900), durationCue("Clôture", 300)});
        QVERIFY(!c.item("cuePlannedStart0")->isVisible()); // no start time, no timetable
        QVERIFY(!c.item("cueExpectedStart1")->isVisible());

        planFrom(c, at(QTime(14, 0)));
        QTRY_COMPARE(c.text("cuePlannedStart0"), QStringLiteral("14:00"));
        QCOMPARE(c.text("cuePlannedStart1"), QStringLiteral("14:10"));
        QCOMPARE(c.text("cuePlannedStart2"), QStringLiteral("14:25"));
        QVERIFY(c.item("cuePlannedStart0")->isVisible());
        for (const char *name : {"cueExpectedStart0", "cueExpectedStart1", "cueExpectedStart2"})
            QVERIFY2(!c.item(name)->isVisible(), name);

        // Accueil runs four minutes past its planned end: the cues to come move with it.
        c.engine.start(0);
        c.clock.advance(14min);
        QTRY_COMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:14"));
        QCOMPARE(c.text("cueExpectedStart2"), QStringLiteral("→ 14:29"));
        QVERIFY(c.item("cueExpectedStart1")->isVisible());
        QVERIFY(!c.item("cueExpectedStart0")->isVisible()); // it runs: no longer to come
        KAIRON_COMPARE_COLOUR(c.colourOf("cueExpectedStart1", c.shot(), listBackground), warningYellow);
        keepScreenshot(c.shot(), "cuelist-schedule-late");

        // A second later by the clock alone, and the list follows.
        c.clock.advance(60s);
        QTRY_COMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:15"));

        // Clôture moved up: the plan moves at once, and so do the expected starts.
        c.engine.moveCue(2, -1);
        QTRY_COMPARE(c.text("cuePlannedStart1"), QStringLiteral("14:10"));
        QCOMPARE(c.text("cueName1"), QStringLiteral("Clôture"));
        QCOMPARE(c.text("cuePlannedStart2"), QStringLiteral("14:15"));
        QCOMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:15"));
        QCOMPARE(c.text("cueExpectedStart2"), QStringLiteral("→ 14:20"));

        // Deleted, it leaves the plan.
        c.engine.deleteCue(1);
        QTRY_COMPARE(c.text("cueName1"), QStringLiteral("Discours"));
        QCOMPARE(c.text("cuePlannedStart1"), QStringLiteral("14:10"));
        QCOMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:15"));

        // Taken away, the start time takes the whole timetable with it.
        TimerSession unplanned = c.engine.session();
        unplanned.scheduledStart.reset();
        c.engine.updateProjectInfo(unplanned);
        QTRY_VERIFY(!c.item("cuePlannedStart0")->isVisible());
        QVERIFY(!c.item("cueExpectedStart1")->isVisible());
    }

    void anEarlyShowSaysWhenTheNextCueNowComesInGreen()
    {
        Console c({durationCue("Accueil", 600), durationCue("Discours", 900)});
        planFrom(c, at(QTime(14, 5)));
        c.engine.start(0);
        c.clock.advance(2min);
        QTRY_COMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:10")); // if Accueil runs whole
        c.engine.stop(); // left at 14:02, planned to end at 14:15: the next cue can go now
        QTRY_COMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:02"));
        QCOMPARE(c.text("cuePlannedStart1"), QStringLiteral("14:15"));
        KAIRON_COMPARE_COLOUR(c.colourOf("cueExpectedStart1", c.shot(), listBackground), successGreen);
        // Waiting moves it on with the clock.
        c.clock.advance(3min);
        QTRY_COMPARE(c.text("cueExpectedStart1"), QStringLiteral("→ 14:05"));
    }

    // A fixed start: the cues before it leave a margin, or overrun it.
    void aFixedStartShowsTheMarginBeforeIt()
    {
        Cue dinner = durationCue("Dîner", 3600);
        dinner.fixedStart = at(QTime(15, 0));
        Console c({durationCue("Accueil", 1200), durationCue("Discours", 1800), dinner}, QSize(1920, 1080));
        planFrom(c, at(QTime(14, 0)));
        QTRY_COMPARE(c.text("cuePlannedStart2"), QStringLiteral("15:00"));
        QCOMPARE(c.text("cueMargin2"), QStringLiteral("Marge 10:00"));
        QVERIFY(c.item("cueMargin2")->isVisible());
        QVERIFY(!c.item("cueMargin1")->isVisible());
        KAIRON_COMPARE_COLOUR(c.colourOf("cueMargin2", c.shot(), listBackground), successGreen);

        // Discours planned 20 minutes longer: ten minutes over the dinner's start.
        Cue longer = c.engine.session().cues[1];
        longer.duration = 3000;
        c.engine.updateCue(longer);
        QTRY_COMPARE(c.text("cueMargin2"), QStringLiteral("Dépassement 10:00"));
        QCOMPARE(c.text("cuePlannedStart2"), QStringLiteral("15:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("cueMargin2", c.shot(), listBackground), dangerRed);
        keepScreenshot(c.shot(), "cuelist-schedule-shortfall-1920");
    }

    // A hard-out whose end falls before the cue's planned start; and a show across midnight.
    void anEndBeforeTheStartIsSaidAndMidnightIsCrossed()
    {
        Cue closing = durationCue("Clôture", 900);
        closing.mode = TimerMode::HardOut;
        closing.hardOutTime = at(QTime(23, 40));
        Console c({durationCue("Concert", 3600), closing, durationCue("After", 1800)});
        planFrom(c, at(QTime(23, 0)));
        QTRY_COMPARE(c.text("cuePlannedStart1"), QStringLiteral("00:00"));
        QVERIFY(c.item("cueEndsBeforeStart1")->isVisible());
        QCOMPARE(c.text("cueEndsBeforeStart1"), QStringLiteral("Fin avant le début"));
        KAIRON_COMPARE_COLOUR(c.colourOf("cueEndsBeforeStart1", c.shot(), listBackground), dangerRed);
        QVERIFY(!c.item("cueEndsBeforeStart0")->isVisible());
        QCOMPARE(c.text("cuePlannedStart2"), QStringLiteral("00:00"));
        keepScreenshot(c.shot(), "cuelist-schedule-ends-before-start");

        // Moved to 00:20, the end falls after the start: planned 00:00 to 00:20, then After.
        Cue edited = c.engine.session().cues[1];
        edited.hardOutTime = at(QTime(0, 20), 22);
        c.engine.updateCue(edited);
        QTRY_VERIFY(!c.item("cueEndsBeforeStart1")->isVisible());
        QCOMPARE(c.text("cuePlannedStart2"), QStringLiteral("00:20"));
    }
};

QTEST_MAIN(TestCueListSchedule)
#include "tst_cuelistschedule.moc"
