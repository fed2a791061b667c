#include "enginefixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace {
QDateTime paris(int y, int mo, int d, int h, int mi, int s = 0)
{
    return QDateTime(QDate(y, mo, d), QTime(h, mi, s), QTimeZone("Europe/Paris"));
}
} // namespace

class TestTimerEngineShowControls : public QObject
{
    Q_OBJECT

private slots:
    void anUrgentMessagePlaysGlassAndAPlainOneIsSilent()
    {
        EngineFixture f;
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
        QCOMPARE(f.engine.currentMessage(), QStringLiteral("Merci de conclure"));
        QVERIFY(f.engine.messageUrgent());
        QCOMPARE(f.snapshots.last().message, QStringLiteral("Merci de conclure"));
        QVERIFY(f.snapshots.last().messageUrgent);

        f.engine.sendMessage(QStringLiteral("Merci de conclure"), false);
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
        QVERIFY(!f.snapshots.last().messageUrgent);

        f.engine.setSoundsEnabled(false);
        f.engine.sendMessage(QStringLiteral("Temps écoulé"), true);
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
    }

    void clearingTheMessageSendsNoMessage()
    {
        EngineFixture f;
        f.engine.sendMessage(QStringLiteral("Dernière question"), false);
        f.engine.sendMessage(std::nullopt, false);
        QVERIFY(!f.engine.currentMessage());
        QVERIFY(!f.snapshots.last().message);
        QVERIFY(!f.snapshots.last().toJson().contains("message"));
        QVERIFY(!f.engine.property("currentMessage").isValid());
        f.engine.sendMessage(QString(), false); // an empty text is still a message
        QCOMPARE(f.snapshots.last().message, QString());
    }

    void freezeHoldsTheDisplayWhileTheLiveClockRuns()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Talk", 60, 20, 10)}));
        f.engine.start();
        f.clock.advance(17'900ms);
        f.engine.tick(); // 00:42
        f.engine.toggleFreeze();
        QVERIFY(f.engine.freeze());
        QCOMPARE(f.engine.frozenRemaining(), 42.1);
        QCOMPARE(f.snapshots.last().remaining, 42.1);
        QVERIFY(f.snapshots.last().freeze);

        f.clock.advance(45s); // the live clock passes zero underneath
        QCOMPARE(f.snapshots.last().remaining, 42.1);
        QVERIFY(f.snapshots.last().overtime);
        QVERIFY(f.engine.remaining() < 0);
        QCOMPARE(f.sound.names(), (QStringList{"Tink", "Ping", "Basso"})); // alerts still fire

        f.engine.toggleFreeze(); // released: the true time at once
        QVERIFY(!f.snapshots.last().freeze);
        QCOMPARE(f.snapshots.last().remaining, f.engine.remaining());
    }

    void aBlinkEndsOnItsOwnAfterItsDuration()
    {
        EngineFixture f;
        QSignalSpy blink(&f.engine, &TimerEngine::blinkActiveChanged);
        f.engine.triggerBlink(3.0);
        QVERIFY(f.engine.blinkActive());
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
        const int hooks = f.snapshots.size();
        f.clock.advance(2999ms);
        EngineFixture::runPostedJobs();
        QVERIFY(f.engine.blinkActive());
        f.clock.advance(1ms);
        QVERIFY(f.engine.blinkActive()); // the end is posted as a separate job
        EngineFixture::runPostedJobs();
        QVERIFY(!f.engine.blinkActive());
        QCOMPARE(f.snapshots.size(), hooks + 1);
        QCOMPARE(blink.count(), 2);
    }

    void aSecondBlinkEndsTheFirstAtOnceAndSilently()
    {
        EngineFixture f;
        f.engine.triggerBlink(3.0);
        f.clock.advance(200ms);
        f.engine.triggerBlink(3.0);
        QVERIFY(!f.engine.blinkActive());
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
        QCOMPARE(f.snapshots.size(), 2);
        f.clock.advance(5s); // the first blink's end was cancelled
        EngineFixture::runPostedJobs();
        QCOMPARE(f.snapshots.size(), 2);
        f.engine.setSoundsEnabled(false);
        f.engine.triggerBlink(1.0);
        QVERIFY(f.engine.blinkActive());
        QCOMPARE(f.sound.names(), QStringList{"Glass"});
    }

    void doorsJustPassedCountDownAlmostADay()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 31));
        f.engine.startDoors(paris(2026, 11, 21, 19, 30));
        QVERIFY(f.engine.doorsActive());
        QCOMPARE(f.engine.doorsTarget(), paris(2026, 11, 22, 19, 30).toUTC());
        QCOMPARE(f.engine.doorsRemaining(), 86400.0 - 60);
        QVERIFY(f.engine.isTickerRunning());
        QCOMPARE(f.snapshots.size(), 1);
    }

    void doorsAtZeroWithAnEmptyShowOnlySoundAndClear()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 0));
        f.engine.startDoors(paris(2026, 11, 21, 19, 1));
        f.clock.advance(30s);
        QCOMPARE(f.engine.doorsRemaining(), 30.099); // the tick at 29.901 s
        f.clock.advance(31s);
        EngineFixture::runPostedJobs();
        QVERIFY(!f.engine.doorsActive());
        QCOMPARE(f.sound.names(), QStringList{"Basso"});
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.snapshots.isEmpty());
        // The ticker keeps running but calls no hook any more.
        const int hooks = f.snapshots.size();
        f.clock.advance(2s);
        QCOMPARE(f.snapshots.size(), hooks);
    }

    void doorsAtZeroStartCueOneAsASeparateJob()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 59));
        f.engine.loadSession(showOf({durationCue("Ouverture", 600), durationCue("Keynote", 1200)}));
        f.engine.setSelectedCueIndex(1);
        f.engine.startDoors(paris(2026, 1, 1, 20, 0));
        f.clock.advance(60'001ms);
        QVERIFY(!f.engine.doorsActive());
        QVERIFY(!f.engine.isRunning()); // not from inside the tick
        QCOMPARE(f.snapshots.last().running, false);
        EngineFixture::runPostedJobs();
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("Ouverture"));
        QCOMPARE(f.sound.names(), QStringList{"Basso"});
    }

    void doorsWithSoundsOffStartSilently()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 59));
        f.engine.loadSession(showOf({durationCue("Ouverture", 600)}));
        f.engine.setSoundsEnabled(false);
        f.engine.startDoors(paris(2026, 1, 1, 20, 0));
        f.clock.advance(61s);
        EngineFixture::runPostedJobs();
        QVERIFY(f.engine.isRunning());
        QVERIFY(f.sound.played.isEmpty());
    }

    void theDoorsTickCallsTheHookOncePerTick()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 0));
        f.engine.loadSession(showOf({durationCue("Avant", 6000)}));
        f.engine.start();
        f.engine.startDoors(paris(2026, 11, 21, 20, 0));
        f.snapshots.clear();
        f.engine.tick();
        QCOMPARE(f.snapshots.size(), 1);
        f.engine.pause();
        f.snapshots.clear();
        f.engine.tick(); // paused: the doors alone call the hook
        QCOMPARE(f.snapshots.size(), 1);
    }

    void stoppingTheEngineFreezesAPendingDoorsCountdown()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 0));
        f.engine.startDoors(paris(2026, 11, 21, 20, 0));
        f.clock.advance(10s);
        QCOMPARE(f.engine.doorsRemaining(), 3590.099); // the tick at 9.901 s
        f.engine.stop();
        QVERIFY(!f.engine.isTickerRunning());
        f.clock.advance(10s);
        QCOMPARE(f.engine.doorsRemaining(), 3590.099);
        QVERIFY(f.engine.doorsActive());
        f.engine.startDoors(paris(2026, 11, 21, 20, 0)); // the ticker runs again
        QCOMPARE(f.engine.doorsRemaining(), 3580.0);
    }

    void cancellingTheDoorsClearsTheTargetAndNotifies()
    {
        EngineFixture f(paris(2026, 11, 21, 19, 0));
        f.engine.startDoors(paris(2026, 11, 21, 20, 0));
        f.snapshots.clear();
        f.engine.cancelDoors();
        QVERIFY(!f.engine.doorsActive());
        QVERIFY(!f.engine.property("doorsTarget").isValid());
        QCOMPARE(f.snapshots.size(), 1);
        f.engine.cancelDoors();
        QCOMPARE(f.snapshots.size(), 1);
    }

    void flagsAreSetDirectlyWithoutTheHook()
    {
        EngineFixture f;
        QSignalSpy blackout(&f.engine, &TimerEngine::blackoutChanged);
        QSignalSpy clockMode(&f.engine, &TimerEngine::clockModeChanged);
        QSignalSpy locked(&f.engine, &TimerEngine::showLockedChanged);
        QSignalSpy sounds(&f.engine, &TimerEngine::soundsEnabledChanged);
        f.engine.setBlackout(true);
        f.engine.setBlackout(true);
        f.engine.setClockMode(true);
        f.engine.setShowLocked(true);
        f.engine.setSoundsEnabled(false);
        QCOMPARE(blackout.count(), 1);
        QCOMPARE(clockMode.count(), 1);
        QCOMPARE(locked.count(), 1);
        QCOMPARE(sounds.count(), 1);
        QVERIFY(f.snapshots.isEmpty());
        const TimerStateSnapshot s = f.engine.snapshot();
        QVERIFY(s.blackout && s.clockMode);
        QVERIFY(f.engine.setProperty("blackout", false));
        QVERIFY(!f.engine.blackout());
    }

    void flagsCombineFreely()
    {
        EngineFixture f;
        f.engine.setClockMode(true);
        f.engine.toggleFreeze();
        f.engine.setBlackout(true);
        f.engine.sendMessage(QStringLiteral("Pause"), false);
        const TimerStateSnapshot s = f.engine.snapshot();
        QVERIFY(s.clockMode && s.freeze && s.blackout);
        QCOMPARE(s.message, QStringLiteral("Pause"));
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineShowControls)
#include "tst_timerengine_showcontrols.moc"
