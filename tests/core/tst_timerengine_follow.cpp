// The engine of a backup machine: the main's show and state taken in one change, every command
// from outside refused while following, the engine's own work going on; and the estimate of the
// main's clock from ping round trips.
#include "enginefixture.h"
#include "mainclockoffset.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

class TestTimerEngineFollow : public QObject
{
    Q_OBJECT

    // The live state of a main whose cue `index` has run `elapsed` seconds at `atMs`.
    static LiveState mainRunning(const TimerSession &show, int index, double elapsed, qint64 atMs)
    {
        LiveState state;
        state.sessionID = show.id;
        state.activeCueID = show.cues.at(index).id;
        state.activeCueIndex = index;
        state.selectedCueIndex = index;
        state.running = true;
        state.elapsed = elapsed;
        state.plannedDuration = show.cues.at(index).duration;
        state.remaining = state.plannedDuration - elapsed;
        state.capturedAtMs = atMs;
        return state;
    }

private slots:
    void theFastestRoundTripSaysTheOffset()
    {
        MainClockOffset offset;
        QCOMPARE(offset.offsetMs(), std::nullopt);
        QVERIFY(offset.addRoundTrip(1000, 4010, 1020)); // 20 ms there and back: 3000
        QCOMPARE(offset.offsetMs(), std::optional<double>(3000));
        QVERIFY(!offset.addRoundTrip(2000, 5090, 2100)); // slower: ignored
        QCOMPARE(offset.offsetMs(), std::optional<double>(3000));
        QVERIFY(offset.addRoundTrip(3000, 6005, 3002)); // faster: taken
        QCOMPARE(offset.offsetMs(), std::optional<double>(3004));
        QVERIFY(!offset.addRoundTrip(4000, 0, 3999)); // back in time: ignored
        // Ten are kept: the fast one ages out.
        for (int i = 0; i < MainClockOffset::keptSamples; ++i)
            offset.addRoundTrip(10'000 + i * 100, 13'010 + i * 100, 10'010 + i * 100);
        QCOMPARE(offset.offsetMs(), std::optional<double>(3005));
        offset.reset();
        QCOMPARE(offset.offsetMs(), std::nullopt);
    }

    void theMainsInstantsArePutOnThisClock()
    {
        MainClockOffset offset;
        offset.addRoundTrip(0, 3000, 0);
        LiveState state;
        state.capturedAtMs = 10'000;
        state.pausedSinceMs = 9'000;
        state.doorsTargetMs = 20'000;
        state.hardOutTargetMs = 30'000;
        const LiveState local = offset.toLocal(state);
        QCOMPARE(local.capturedAtMs, 7'000);
        QCOMPARE(local.pausedSinceMs, std::optional<qint64>(6'000));
        QCOMPARE(local.doorsTargetMs, std::optional<qint64>(17'000));
        QCOMPARE(local.hardOutTargetMs, std::optional<qint64>(27'000));
    }

    void theMainsShowAndStateComeInOneChange()
    {
        EngineFixture f;
        const TimerSession show = showOf({durationCue("A", 600), durationCue("B", 300)});
        const qint64 now = f.clock.now().toMSecsSinceEpoch();
        QSignalSpy notified(&f.engine, &TimerEngine::aboutToNotify);
        f.snapshots.clear();
        f.engine.setFollowing(true);
        f.engine.mirror(&show, mainRunning(show, 1, 42.5, now - 500), 0);
        QCOMPARE(notified.size(), 1);
        QCOMPARE(f.snapshots.size(), 1); // the state hook once, with the resumed clock
        QCOMPARE(f.snapshots.first().remaining, 300 - 43.0);
        QCOMPARE(f.engine.session().cues, show.cues);
        QCOMPARE(f.engine.activeCueIndex(), std::optional<int>(1));
        QCOMPARE(f.engine.remaining(), 300 - 43.0);
        QVERIFY(f.sound.names().isEmpty());
        // A blink on the main: started for what is left of it, then ended when the main ends it.
        f.engine.mirror(nullptr, mainRunning(show, 1, 43.5, now + 500), 1.25);
        QVERIFY(f.engine.blinkActive());
        QCOMPARE(f.engine.blinkSecondsLeft(), 1.25);
        f.engine.mirror(nullptr, mainRunning(show, 1, 43.6, now + 600), 0);
        QVERIFY(!f.engine.blinkActive());
    }

    void whileFollowingOnlyTheEnginesOwnWorkMovesTheShow()
    {
        EngineFixture f;
        const TimerSession show = showOf({durationCue("A", 2, 1, 1, true), durationCue("B", 300)});
        f.engine.setFollowing(true);
        f.engine.mirror(&show, mainRunning(show, 0, 0, f.clock.now().toMSecsSinceEpoch()), 0);
        f.engine.start(1);
        f.engine.stop();
        f.engine.adjust(60);
        f.engine.addCue();
        f.engine.undo();
        f.engine.toggleFreeze();
        f.engine.triggerBlink(3);
        f.engine.startDoorsAt(QTime(23, 0));
        f.engine.setShowLocked(true);
        f.engine.returnToIdle();
        QCOMPARE(f.engine.activeCueIndex(), std::optional<int>(0));
        QCOMPARE(f.engine.plannedDuration(), 2.0);
        QCOMPARE(f.engine.session().cues.size(), 2);
        QVERIFY(!f.engine.freeze() && !f.engine.blinkActive() && !f.engine.doorsActive() && !f.engine.showLocked());
        // The cue reaches zero: the engine follows on by itself, as the main does.
        f.clock.advance(2100ms);
        EngineFixture::runPostedJobs();
        QCOMPARE(f.engine.activeCueIndex(), std::optional<int>(1));
        QVERIFY(f.engine.isRunning());
        // Following no more: the commands work again.
        QSignalSpy changed(&f.engine, &TimerEngine::followingChanged);
        f.engine.setFollowing(false);
        QCOMPARE(changed.size(), 1);
        f.engine.pause();
        QVERIFY(f.engine.isPaused());
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineFollow)
#include "tst_timerengine_follow.moc"
