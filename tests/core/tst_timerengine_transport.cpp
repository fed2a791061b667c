#include "enginefixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace {

QDateTime paris(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), QTimeZone("Europe/Paris"));
}

Cue hardOutCue(const QString &name, int hour, int minute, double duration = 600)
{
    Cue cue = durationCue(name, duration);
    cue.mode = TimerMode::HardOut;
    cue.hardOutTime = paris(2026, 1, 1, hour, minute);
    return cue;
}

} // namespace

class TestTimerEngineTransport : public QObject
{
    Q_OBJECT

private slots:
    // What the timetable reads of the show: the cue on air and when it began, else the cue last
    // left and when, found by its identity through edits of the list.
    void theShowPositionFollowsTheCuesRun()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Accueil", 60), durationCue("Keynote", 600),
                                     durationCue("Clôture", 300)}));
        const QDateTime t0 = f.clock.now();
        QVERIFY(!f.engine.showPosition().activeIndex && !f.engine.showPosition().lastEndedIndex);

        f.engine.start(1);
        f.clock.advance(20s);
        f.engine.pause(); // a pause keeps the start: the time paused counts as spent
        f.clock.advance(10s);
        QCOMPARE(f.engine.showPosition().activeIndex, std::optional(1));
        QCOMPARE(f.engine.showPosition().activeStartedAt, t0);
        f.engine.pause();
        QCOMPARE(f.engine.showPosition().activeRemaining, std::optional(580.0));
        f.engine.adjust(60); // an adjustment neither, but the cue now ends a minute later
        QCOMPARE(f.engine.showPosition().activeStartedAt, t0);
        QCOMPARE(f.engine.showPosition().activeRemaining, std::optional(640.0));
        f.engine.reset(); // a reset starts the cue over
        QCOMPARE(f.engine.showPosition().activeStartedAt, t0.addSecs(30));

        f.clock.advance(15s);
        f.engine.stop();
        ShowPosition position = f.engine.showPosition();
        QCOMPARE(position.activeIndex, std::nullopt);
        QCOMPARE(position.lastEndedIndex, std::optional(1));
        QCOMPARE(position.lastEndedAt, t0.addSecs(45));

        f.engine.moveCue(1, -1); // the cue left is now first
        QCOMPARE(f.engine.showPosition().lastEndedIndex, std::optional(0));
        f.engine.deleteCue(0);
        QCOMPARE(f.engine.showPosition().lastEndedIndex, std::nullopt);

        f.engine.start(0);
        f.engine.next();
        QCOMPARE(f.engine.showPosition().activeIndex, std::optional(1));
        f.engine.returnToIdle();
        position = f.engine.showPosition();
        QVERIFY(!position.activeIndex && !position.lastEndedIndex);
    }

    void startsWithAnEmptyShowNamedSession()
    {
        EngineFixture f;
        QCOMPARE(f.engine.session().name, QStringLiteral("Session"));
        QVERIFY(f.engine.session().cues.isEmpty());
        QCOMPARE(f.engine.session().createdAt, f.clock.now());
        QVERIFY(!f.engine.selectedCueIndex() && !f.engine.activeCueID());
        QVERIFY(!f.engine.isRunning() && !f.engine.isPaused());
        QCOMPARE(f.engine.remaining(), 0.0);
        QCOMPARE(f.engine.plannedDuration(), 0.0);
        QVERIFY(f.engine.soundsEnabled());
        QCOMPARE(f.engine.templates(), CueTemplate::defaults());
        QCOMPARE(f.engine.presetMessages(), PresetMessage::defaults());
        QVERIFY(!f.engine.isTickerRunning());
    }

    // The console goes back to the library: the clock stops (the cue is logged as by stop) and
    // nothing of the show stays on air; the show and its log stay.
    void returningToIdleLeavesNothingOnAir()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Accueil", 60), durationCue("Keynote", 600),
                                     durationCue("Clôture", 300)}));
        f.engine.start(1);
        f.clock.advance(5s);
        f.engine.tick();
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        f.engine.setBlackout(true);
        f.engine.toggleFreeze();
        f.engine.setClockMode(true);
        f.engine.triggerBlink(TimerEngine::blinkSeconds);
        f.engine.startDoorsAt(QTime(20, 0));
        QSignalSpy active(&f.engine, &TimerEngine::activeCueChanged);
        const qsizetype hooked = f.snapshots.size();

        f.engine.returnToIdle();
        QVERIFY(!f.engine.isRunning() && !f.engine.isPaused());
        QVERIFY(!f.engine.isTickerRunning());
        QVERIFY(!f.engine.activeCueIndex() && !f.engine.selectedCueIndex());
        QVERIFY(!f.engine.activeCue() && !f.engine.nextCue());
        QCOMPARE(f.engine.remaining(), 0.0);
        QCOMPARE(f.engine.elapsed(), 0.0);
        QVERIFY(!f.engine.currentMessage() && !f.engine.messageUrgent());
        QVERIFY(!f.engine.blackout() && !f.engine.freeze() && !f.engine.clockMode());
        QVERIFY(!f.engine.blinkActive() && !f.engine.doorsActive());
        QCOMPARE(active.count(), 1);
        // Remote control hears it once, idle.
        QCOMPARE(f.snapshots.size(), hooked + 1);
        const TimerStateSnapshot &idle = f.snapshots.last();
        QVERIFY(!idle.running && !idle.blackout && !idle.freeze && !idle.clockMode && !idle.message);
        QCOMPARE(idle.cueName, QStringLiteral("—"));
        QVERIFY(!idle.nextCueName);
        // The show, and the cue that ran, are kept.
        QCOMPARE(f.engine.session().cues.size(), 3);
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        QCOMPARE(f.engine.completedCueLog().first().cue, QStringLiteral("Keynote"));
        // The blink's end, later, changes nothing.
        f.clock.advance(5s);
        EngineFixture::runPostedJobs();
        QVERIFY(!f.engine.blinkActive());
    }

    void aDurationCueCountsDownAndResumesWhereItPaused()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.start();
        QCOMPARE(f.engine.remaining(), 600.0);
        QCOMPARE(f.engine.elapsed(), 0.0);
        QVERIFY(f.engine.isRunning());
        QVERIFY(f.engine.isTickerRunning());

        f.clock.advance(100ms);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 599.9);
        QCOMPARE(f.engine.elapsed(), 0.1);

        f.clock.advance(20'050ms);
        f.engine.pause();
        QVERIFY(f.engine.isPaused());
        QCOMPARE(f.engine.remaining(), 579.85); // the moment of the pause, not the last tick
        f.clock.advance(30s);
        QCOMPARE(f.engine.remaining(), 579.85);
        QCOMPARE(f.engine.elapsed(), 20.15);
        f.engine.pause();
        QVERIFY(!f.engine.isPaused());
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 579.85);
        f.clock.advance(1s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 578.85);
        QCOMPARE(f.engine.elapsed(), 21.15);
    }

    void startTakesTheSelectedThenTheActiveThenTheFirstCue()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60), durationCue("B", 60), durationCue("C", 60)}));
        f.engine.setSelectedCueIndex(2);
        f.engine.start();
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("C"));
        f.engine.setSelectedCueIndex(std::nullopt);
        f.engine.start();
        QCOMPARE(f.engine.activeCueIndex(), 2);
        QCOMPARE(f.engine.selectedCueIndex(), 2); // start selects the cue it starts

        EngineFixture g;
        g.engine.loadSession(showOf({durationCue("A", 60), durationCue("B", 60)}));
        g.engine.setSelectedCueIndex(std::nullopt);
        g.engine.start();
        QCOMPARE(g.engine.activeCue()->name, QStringLiteral("A"));
    }

    void startOutsideTheListDoesNothing()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.snapshots.clear();
        f.engine.start(1);
        f.engine.start(-1);
        QVERIFY(!f.engine.isRunning());
        QVERIFY(f.snapshots.isEmpty());
        EngineFixture empty;
        empty.engine.start();
        QVERIFY(!empty.engine.isRunning());
    }

    void startingAnotherCueLogsTheRunningOne()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 10), durationCue("B", 60)}));
        f.engine.start();
        f.clock.advance(12'500ms);
        f.engine.start(1);
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        const CueLogEntry entry = f.engine.completedCueLog()[0];
        QCOMPARE(entry, (CueLogEntry{QStringLiteral("A"), 10.0, 12.5, 2.5}));
        QCOMPARE(f.engine.session().cues[0].actualElapsed, 12.5);
        QCOMPARE(f.engine.session().cues[0].overtime, 2.5);
        QVERIFY(!f.engine.session().cues[1].actualElapsed);
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("B"));
        QCOMPARE(f.engine.remaining(), 60.0);
    }

    void aHardOutCueAlreadyPastStartsInOvertime()
    {
        EngineFixture f(paris(2026, 11, 21, 14, 10));
        f.engine.loadSession(showOf({hardOutCue("Clôture", 14, 0)}));
        f.engine.start();
        QCOMPARE(f.engine.plannedDuration(), 1.0);
        QCOMPARE(f.engine.remaining(), -600.0);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), -600.0);
        QCOMPARE(f.engine.snapshot().overtime, true);
        QCOMPARE(f.sound.names(), QStringList{"Basso"});
    }

    void aHardOutCueAcrossMidnightEndsTomorrow()
    {
        EngineFixture f(paris(2026, 11, 21, 23, 0));
        f.engine.loadSession(showOf({hardOutCue("Nuit", 0, 30)}));
        f.engine.start();
        QCOMPARE(f.engine.remaining(), 5400.0);
        QCOMPARE(f.engine.plannedDuration(), 5400.0);
        f.clock.advance(90min);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 0.0);
    }

    void aHardOutCueOverTheSpringForwardNightCountsRealTime()
    {
        // 01:00 CET on 29 March 2026; 02:30 does not exist that night, so the cue ends when the
        // clocks jump to 03:00 CEST, one real hour later.
        EngineFixture f(paris(2026, 3, 29, 1, 0));
        f.engine.loadSession(showOf({hardOutCue("Nuit blanche", 2, 30)}));
        f.engine.start();
        QCOMPARE(f.engine.remaining(), 3600.0);
        f.clock.advance(3600s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 0.0);
    }

    void aHardOutCueOnTheFallBackNightEndsAtTheFirstOccurrence()
    {
        // 01:00 CEST on 25 October 2026: 02:30 happens twice; the first is 90 minutes away.
        EngineFixture f(paris(2026, 10, 25, 1, 0));
        f.engine.loadSession(showOf({hardOutCue("Nuit", 2, 30)}));
        f.engine.start();
        QCOMPARE(f.engine.remaining(), 5400.0);
    }

    void aHardOutCueWithoutEndTimeRunsForItsDuration()
    {
        EngineFixture f;
        Cue cue = durationCue("Libre", 900);
        cue.mode = TimerMode::HardOut;
        f.engine.loadSession(showOf({cue}));
        f.engine.start();
        QCOMPARE(f.engine.plannedDuration(), 900.0);
        f.clock.advance(100s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 800.0);
    }

    void pausingAHardOutCueMovesItsEndLater()
    {
        EngineFixture f(paris(2026, 11, 21, 13, 0));
        f.engine.loadSession(showOf({hardOutCue("Table ronde", 14, 0)}));
        f.engine.start();
        f.clock.advance(10min);
        f.engine.pause();
        QCOMPARE(f.engine.remaining(), 3000.0);
        f.clock.advance(60s);
        f.engine.pause();
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 3000.0);
        f.clock.advance(3000s); // the end is now 14:01
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 0.0);
        QCOMPARE(f.clock.now(), paris(2026, 11, 21, 14, 1).toUTC());
    }

    void aLargeCutClampsThePlannedLengthButShowsItsRawValueForOneTick()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Talk", 600)}));
        f.engine.start();
        f.clock.advance(10s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 590.0);
        f.engine.adjust(-1000);
        QCOMPARE(f.engine.plannedDuration(), 1.0);
        QCOMPARE(f.engine.remaining(), -410.0);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), -9.0);
    }

    void adjustingAHardOutCueMovesItsEnd()
    {
        EngineFixture f(paris(2026, 11, 21, 13, 0));
        f.engine.loadSession(showOf({hardOutCue("Table ronde", 14, 0)}));
        f.engine.start();
        f.engine.adjust(-4000);
        QCOMPARE(f.engine.remaining(), -400.0);
        QCOMPARE(f.engine.plannedDuration(), 3600.0);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), -400.0);
        f.engine.adjust(60);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), -340.0);
    }

    void adjustWithoutAnActiveCueDoesNothing()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.snapshots.clear();
        f.engine.adjust(60);
        QCOMPARE(f.engine.remaining(), 0.0);
        QCOMPARE(f.engine.plannedDuration(), 0.0);
        QVERIFY(f.snapshots.isEmpty());
    }

    void eachAlertFiresOnceAtItsThreshold()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Pitch", 300, 60, 15)}));
        f.engine.start();
        const qint64 started = f.clock.monotonicMs();
        f.clock.advance(310s);
        QCOMPARE(f.sound.names(), (QStringList{"Tink", "Ping", "Basso"}));
        // Each on the first tick at or below its threshold: 1 ms after the boundary.
        QCOMPARE(f.sound.played[0].atMs - started, 240'001);
        QCOMPARE(f.sound.played[1].atMs - started, 285'001);
        QCOMPARE(f.sound.played[2].atMs - started, 300'001);
    }

    void adjustingBackAboveAThresholdDoesNotRefireItsAlert()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Pitch", 30, 20, 10)}));
        f.engine.start();
        f.clock.advance(31s);
        QCOMPARE(f.sound.names(), (QStringList{"Tink", "Ping", "Basso"}));
        f.engine.adjust(60);
        f.clock.advance(61s);
        QCOMPARE(f.sound.names(), (QStringList{"Tink", "Ping", "Basso"}));
        f.engine.reset();
        f.clock.advance(31s);
        QCOMPARE(f.sound.names().size(), 6);
    }

    void aZoneJumpedOverIsSkippedAndMayFireLater()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Talk", 600, 120, 30)}));
        f.engine.start();
        f.engine.adjust(-590); // planned 10: straight into the danger zone
        f.engine.tick();
        QCOMPARE(f.sound.names(), QStringList{"Ping"});
        f.engine.adjust(100); // back into the warning zone
        f.engine.tick();
        QCOMPARE(f.sound.names(), (QStringList{"Ping", "Tink"}));
    }

    void withSoundsOffNothingPlaysAndTheWarningComesBackOnTheNextTick()
    {
        EngineFixture f;
        f.engine.setSoundsEnabled(false);
        f.engine.loadSession(showOf({durationCue("Talk", 200, 120, 30)}));
        f.engine.start();
        f.clock.advance(100s);
        QVERIFY(f.sound.played.isEmpty());
        f.engine.setSoundsEnabled(true);
        f.engine.tick();
        QCOMPARE(f.sound.names(), QStringList{"Tink"});

        // Off again past zero: the zero latch is set silently and never fires afterwards.
        f.engine.setSoundsEnabled(false);
        f.clock.advance(101s);
        f.engine.setSoundsEnabled(true);
        f.clock.advance(1s);
        QCOMPARE(f.sound.names(), QStringList{"Tink"});
    }

    void autoFollowStartsTheNextCueOnTheNextTurnOfTheLoop()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 5, 2, 1, true), durationCue("B", 60)}));
        f.engine.start();
        f.clock.advance(4901ms);
        f.snapshots.clear();
        f.clock.advance(100ms); // the tick at 5.001 s reaches zero and schedules the follow-on
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("A"));
        QVERIFY(f.snapshots.isEmpty()); // no hook from the tick that schedules it
        EngineFixture::runPostedJobs();
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("B"));
        QCOMPARE(f.engine.remaining(), 60.0);
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        QCOMPARE(f.engine.completedCueLog()[0].cue, QStringLiteral("A"));
        QCOMPARE(f.engine.completedCueLog()[0].overtime, 0.001);
        QCOMPARE(f.engine.completedCueLog()[0].actual, 5.001);
        QCOMPARE(f.snapshots.size(), 1);
        QCOMPARE(f.snapshots[0].cueName, QStringLiteral("B"));
    }

    void aFollowOnScheduledTwiceStartsOnlyOneCue()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 1, 0, 0, true), durationCue("B", 60),
                                     durationCue("C", 60)}));
        f.engine.start();
        f.clock.advance(1500ms); // several ticks past zero before the loop turns
        EngineFixture::runPostedJobs();
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("B"));
    }

    void aFollowOnOutlivedByAManualStartDoesNothing()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 1, 0, 0, true), durationCue("B", 60),
                                     durationCue("C", 60)}));
        f.engine.start();
        f.clock.advance(1100ms);
        f.engine.start(2); // the operator was quicker than the event loop
        EngineFixture::runPostedJobs();
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("C"));
    }

    void theLastCueNeverFollowsOn()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Fin", 5, 2, 1, true)}));
        f.engine.start();
        f.clock.advance(20s);
        EngineFixture::runPostedJobs();
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.remaining(), -14.901); // the last tick, at 19.901 s
        QVERIFY(f.engine.completedCueLog().isEmpty());
    }

    void aFollowOnJobDoesNothingOnceTheEngineIsGone()
    {
        ManualClock clock(QDateTime(QDate(2026, 11, 21), QTime(12, 0), Qt::UTC),
                          QTimeZone("UTC"));
        RecordingAlertPlayer sound(clock);
        auto *engine = new TimerEngine(clock, sound);
        int calls = 0;
        engine->setOnStateChange([&](const TimerStateSnapshot &) { ++calls; });
        engine->loadSession(showOf({durationCue("A", 1, 0, 0, true), durationCue("B", 60)}));
        engine->start();
        clock.advance(1100ms);
        const int before = calls;
        delete engine;
        EngineFixture::runPostedJobs();
        QCOMPARE(calls, before);
        clock.advance(10s); // its timers died with it
    }

    void nextAndPreviousWalkTheList()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60), durationCue("B", 60)}));
        f.engine.setSelectedCueIndex(std::nullopt);
        f.engine.next(); // nothing active or selected: cue 1
        QCOMPARE(f.engine.activeCueIndex(), 0);
        f.engine.previous(); // no wrap-around, no restart
        QCOMPARE(f.engine.activeCueIndex(), 0);
        QCOMPARE(f.engine.completedCueLog().size(), 0);
        f.engine.next();
        QCOMPARE(f.engine.activeCueIndex(), 1);
        f.engine.previous();
        QCOMPARE(f.engine.activeCueIndex(), 0);
        f.engine.next();
        f.engine.next(); // after the last: stop
        QVERIFY(!f.engine.isRunning());
        QCOMPARE(f.engine.activeCueIndex(), 1);
        QCOMPARE(f.engine.completedCueLog().size(), 4);
    }

    void nextFromTheSelectionWhenNothingIsActive()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60), durationCue("B", 60), durationCue("C", 60)}));
        f.engine.setSelectedCueIndex(1);
        f.engine.next();
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("C"));
    }

    void stopKeepsTheStoppedCueOnTheDisplays()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.engine.start();
        f.clock.advance(15'250ms);
        f.engine.stop();
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.engine.isTickerRunning());
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("A"));
        QCOMPARE(f.engine.remaining(), 44.75);
        QCOMPARE(f.engine.elapsed(), 15.25);
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        f.clock.advance(10s);
        QCOMPARE(f.engine.remaining(), 44.75);
        f.engine.stop(); // not running: nothing more is logged
        QCOMPARE(f.engine.completedCueLog().size(), 1);
    }

    void stopWhilePausedLogsThePausedTime()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.engine.start();
        f.clock.advance(20s);
        f.engine.pause();
        f.clock.advance(5min);
        f.engine.stop();
        QCOMPARE(f.engine.completedCueLog()[0].actual, 20.0);
    }

    void totalOvertimeIsTheLoggedOvertimePlusTheLiveOne()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 10), durationCue("B", 10), durationCue("C", 10)}));
        f.engine.start();
        f.clock.advance(13s);
        f.engine.next(); // 3 s over
        f.clock.advance(11s);
        f.engine.next(); // 1 s over
        f.clock.advance(14'500ms);
        f.engine.tick(); // 4.5 s over, live
        QCOMPARE(f.engine.totalOvertime(), 3.0 + 1.0 + 4.5);
        double logged = 0;
        for (const CueLogEntry &e : f.engine.completedCueLog())
            logged += e.overtime;
        QCOMPARE(logged, 4.0);
        f.engine.stop();
        QCOMPARE(f.engine.totalOvertime(), 8.5);
    }

    void resetRestartsTheActiveCueFromFull()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.engine.start();
        f.clock.advance(30s);
        f.engine.pause();
        f.engine.reset();
        QVERIFY(f.engine.isRunning());
        QVERIFY(!f.engine.isPaused());
        QCOMPARE(f.engine.remaining(), 60.0);
        f.clock.advance(1s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 59.0);
        QVERIFY(f.engine.completedCueLog().isEmpty());
    }

    void resetOnAStoppedEngineShowsTheFullLengthWithoutStarting()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 90)}));
        f.engine.start();
        f.clock.advance(40s);
        f.engine.stop();
        f.engine.reset();
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.engine.isTickerRunning());
        QCOMPARE(f.engine.remaining(), 90.0);
        QCOMPARE(f.engine.elapsed(), 0.0);
        f.clock.advance(10s);
        QCOMPARE(f.engine.remaining(), 90.0);
    }

    void resetUsesTheCuesCurrentLength()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 90)}));
        f.engine.start();
        Cue longer = *f.engine.activeCue();
        longer.duration = 120;
        f.engine.updateCue(longer);
        QCOMPARE(f.engine.plannedDuration(), 90.0);
        f.engine.reset();
        QCOMPARE(f.engine.plannedDuration(), 120.0);
    }

    void loadingAShowClearsTheRunState()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 10)}));
        f.engine.start();
        f.clock.advance(12s);
        f.engine.sendMessage(QStringLiteral("Bravo"), true);
        f.engine.setBlackout(true);
        f.engine.toggleFreeze();
        f.engine.setClockMode(true);
        f.engine.setShowLocked(true);
        f.engine.setSoundsEnabled(false);
        f.engine.startDoors(f.clock.now().addSecs(3600));
        f.engine.triggerBlink(3);
        f.engine.undo();
        f.snapshots.clear();

        const TimerSession next = showOf({durationCue("X", 30), durationCue("Y", 30)});
        f.engine.loadSession(next);
        QCOMPARE(f.engine.session(), next);
        QVERIFY(!f.engine.isRunning() && !f.engine.activeCueID());
        QCOMPARE(f.engine.selectedCueIndex(), 0);
        QCOMPARE(f.engine.remaining(), 0.0);
        QCOMPARE(f.engine.elapsed(), 0.0);
        QCOMPARE(f.engine.totalOvertime(), 0.0);
        QVERIFY(f.engine.completedCueLog().isEmpty());
        QVERIFY(!f.engine.canUndo() && !f.engine.canRedo());
        QVERIFY(!f.engine.currentMessage());
        QVERIFY(!f.engine.messageUrgent() && !f.engine.blackout() && !f.engine.freeze());
        QVERIFY(!f.engine.clockMode() && !f.engine.blinkActive() && !f.engine.showLocked());
        QVERIFY(!f.engine.doorsActive());
        QVERIFY(!f.engine.soundsEnabled()); // kept
        // One notification, of the loaded show: the stop before it is part of the same change.
        QCOMPARE(f.snapshots.size(), 1);
        QCOMPARE(f.snapshots[0].cueName, QStringLiteral("—"));
        QCOMPARE(f.snapshots[0].nextCueName, QStringLiteral("Y"));

        f.engine.loadSession(showOf({}));
        QVERIFY(!f.engine.selectedCueIndex());
    }

    void aWallClockStepNeverMovesADurationCue()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        f.engine.start();
        f.clock.advance(100s);
        f.clock.setWallClock(f.clock.now().addSecs(3600));
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 500.0);
        f.clock.setWallClock(f.clock.now().addSecs(-7200));
        f.clock.advance(1s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 499.0);
        QCOMPARE(f.engine.elapsed(), 101.0);
    }

    void aWallClockStepMovesAHardOutCueLikeATimeOfDay()
    {
        EngineFixture f(paris(2026, 11, 21, 13, 0));
        f.engine.loadSession(showOf({hardOutCue("Table ronde", 14, 0)}));
        f.engine.start();
        f.clock.advance(100s);
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 3500.0);
        f.clock.setWallClock(f.clock.now().addSecs(3600));
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), -100.0);
        QCOMPARE(f.engine.elapsed(), 100.0); // the time it has run does not jump
        f.clock.setWallClock(f.clock.now().addSecs(-7200));
        f.engine.tick();
        QCOMPARE(f.engine.remaining(), 7100.0);
    }

    void aPauseIsMeasuredOnTheMonotonicClockEvenIfTheWallClockSteps()
    {
        EngineFixture f(paris(2026, 11, 21, 13, 0));
        f.engine.loadSession(showOf({hardOutCue("Table ronde", 14, 0)}));
        f.engine.start();
        f.engine.pause();
        f.clock.advance(60s);
        f.clock.setWallClock(f.clock.now().addSecs(-3600)); // an operator fixes the time
        f.engine.pause();
        f.engine.tick();
        // The end moved by the one real minute of pause, and the wall clock is an hour earlier.
        QCOMPARE(f.engine.remaining(), 3600.0 + 3600.0);
    }

    void theTickerLandsJustAfterEverySecondAndIsRephased()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        f.engine.start();
        const qint64 t0 = f.clock.monotonicMs();
        QCOMPARE(*f.clock.nextDeadline() - t0, 1);
        f.clock.advance(1s);
        QCOMPARE(*f.clock.nextDeadline() - t0, 1001);
        f.clock.advance(50ms);
        QCOMPARE(*f.clock.nextDeadline() - t0, 1101);

        f.engine.adjust(0.3); // remaining 599.25: the next change is 250 ms away
        QCOMPARE(*f.clock.nextDeadline() - t0, 1050 + 251 - 200);
        f.clock.advance(1000ms);
        QCOMPARE(f.engine.remaining(), 598.299); // the tick at 2001 ms

        f.engine.pause(); // at 598.25; the tick already armed still comes, then one every 100 ms
        QCOMPARE(*f.clock.nextDeadline() - f.clock.monotonicMs(), 51);
        f.clock.advance(777ms);
        f.engine.pause(); // resumed at 598.25: the next change is 250 ms away
        QCOMPARE(*f.clock.nextDeadline() - f.clock.monotonicMs(), 51);
        f.clock.advance(51ms);
        QCOMPARE(f.engine.remaining(), 598.199);
        QCOMPARE(*f.clock.nextDeadline() - f.clock.monotonicMs(), 100);
        f.clock.advance(200ms);
        QCOMPARE(f.engine.remaining(), 597.999);
    }

    void aClockReadBetweenTicksIsTheLiveValueAndAStandingClockThePublishedOne()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 600)}));
        f.engine.start();
        f.clock.advance(1000ms);
        f.engine.tick();
        // The event loop is busy elsewhere: no tick, yet the clock moves on.
        f.clock.stall(250ms);
        QCOMPARE(f.engine.remaining(), 599.0);
        QCOMPARE(f.engine.readClock().remaining, 598.75);
        QCOMPARE(f.engine.readClock().elapsed, 1.25);
        QVERIFY(f.engine.snapshot().remaining == 599.0); // reading has no side effect

        f.engine.toggleFreeze(); // freezing holds the displays, not the clock
        f.clock.stall(250ms);
        QCOMPARE(f.engine.readClock().remaining, 598.5);

        f.engine.pause();
        f.clock.stall(5000ms);
        QCOMPARE(f.engine.readClock().remaining, 598.5);
        QCOMPARE(f.engine.readClock().elapsed, 1.5);
        f.engine.stop();
        f.clock.stall(5000ms);
        QCOMPARE(f.engine.readClock().remaining, f.engine.remaining());
    }

    void anIdleTickCallsNoHook()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.snapshots.clear();
        f.engine.tick();
        f.engine.start();
        f.engine.stop();
        f.snapshots.clear();
        f.engine.tick();
        QVERIFY(f.snapshots.isEmpty());
    }

    void aPausedTickCallsNoHookAndChangesNothing()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        f.engine.start();
        f.engine.pause();
        f.snapshots.clear();
        QSignalSpy clock(&f.engine, &TimerEngine::clockChanged);
        f.clock.advance(5s);
        QVERIFY(f.snapshots.isEmpty());
        QCOMPARE(clock.count(), 0);
    }

    void remainingDayDurationAndProjectedEnd()
    {
        EngineFixture f;
        Cue hardOut = hardOutCue("Clôture", 23, 0, 1800);
        f.engine.loadSession(showOf({durationCue("A", 600), durationCue("B", 300), hardOut}));
        f.engine.setSelectedCueIndex(std::nullopt);
        QCOMPARE(f.engine.remainingDayDuration(), 2700.0); // every cue, by its duration field
        f.engine.setSelectedCueIndex(1);
        QCOMPARE(f.engine.remainingDayDuration(), 1800.0);
        QCOMPARE(f.engine.nextCue()->name, QStringLiteral("Clôture"));
        f.engine.start(0);
        f.clock.advance(100s);
        f.engine.tick();
        QCOMPARE(f.engine.remainingDayDuration(), 500.0 + 300 + 1800);
        QCOMPARE(f.engine.projectedDayEnd(), f.clock.now().addSecs(2600));
        f.clock.advance(600s);
        f.engine.tick(); // overtime counts as zero here
        QCOMPARE(f.engine.remainingDayDuration(), 2100.0);
        f.engine.stop();
        QCOMPARE(f.engine.remainingDayDuration(), 2100.0);
        f.engine.start(2);
        QVERIFY(!f.engine.nextCue());
    }

    void propertiesNotifyTheirChanges()
    {
        EngineFixture f;
        QSignalSpy run(&f.engine, &TimerEngine::runStateChanged);
        QSignalSpy clock(&f.engine, &TimerEngine::clockChanged);
        QSignalSpy active(&f.engine, &TimerEngine::activeCueChanged);
        QSignalSpy log(&f.engine, &TimerEngine::completedCueLogChanged);
        f.engine.loadSession(showOf({durationCue("A", 60)}));
        run.clear();
        active.clear();
        log.clear();
        f.engine.start();
        QCOMPARE(run.count(), 1);
        QVERIFY(active.count() >= 1);
        QCOMPARE(f.engine.property("isRunning").toBool(), true);
        QCOMPARE(f.engine.property("activeCueIndex").toInt(), 0);
        QCOMPARE(f.engine.property("activeCue").value<Cue>().name, QStringLiteral("A"));
        QVERIFY(!f.engine.property("nextCue").isValid());
        clock.clear();
        f.clock.advance(1s);
        QVERIFY(clock.count() >= 10);
        QCOMPARE(f.engine.property("remaining").toDouble(), 59.099); // the tick at 901 ms
        f.engine.stop();
        QCOMPARE(log.count(), 1);
        QCOMPARE(run.count(), 2);
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineTransport)
#include "tst_timerengine_transport.moc"
