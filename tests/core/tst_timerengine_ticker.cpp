#include "enginefixture.h"
#include "tickphase.h"

#include <QTest>

using namespace std::chrono_literals;

// The ticker under commands that re-arm it: a tick that is due always runs.
class TestTimerEngineTicker : public QObject
{
    Q_OBJECT

private slots:
    void aTickDueBeforeAnAdjustmentStillRuns()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        const qint64 startUs = f.clock.monotonicUs();
        f.engine.start();
        f.clock.advance(250ms);
        const qint64 due = f.clock.nextDeadline().value();

        // The tick falls due while the event loop is busy; an adjustment arrives before the
        // tick is dispatched.
        f.clock.stall(std::chrono::milliseconds(due - f.clock.monotonicMs() + 2));
        f.engine.adjust(30);
        QCOMPARE(f.clock.nextDeadline(), std::optional<qint64>(due)); // still armed, overdue
        f.clock.jump(0ms);
        const double elapsed = double(f.clock.monotonicUs() - startUs) / 1e6;
        QCOMPARE(f.engine.remaining(), 630 - elapsed); // computed by the tick, not the adjustment
        // Back on the phase of the displayed second: the next tick 0.1 s after the one due.
        QCOMPARE(f.clock.nextDeadline(), std::optional<qint64>(due + 100));
    }

    void anAdjustmentDoesNotPushBackTheComingTick()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.start();
        f.clock.advance(130ms);
        const qint64 due = f.clock.nextDeadline().value();
        // 0.52 s more moves the change of the displayed second 20 ms past the coming tick.
        f.engine.adjust(0.52);
        QCOMPARE(f.clock.nextDeadline(), std::optional<qint64>(due));
        f.clock.advance(std::chrono::milliseconds(due - f.clock.monotonicMs()));
        QCOMPARE(f.engine.remaining(), 600.52 - 0.201);
        // Then the ticks follow the new phase.
        QCOMPARE(f.clock.nextDeadline(), std::optional<qint64>(due + 20));
    }

    void aSecondThatChangedWhileTheViewsUpdatedIsShownAtOnce()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        // The views take 2 ms to follow the start: by the time the ticker is armed, the
        // countdown is past 599 while "10:00" is published.
        QObject::connect(&f.engine, &TimerEngine::activeCueChanged, [&] { f.clock.stall(2ms); });
        f.engine.start();
        QCOMPARE(f.engine.remaining(), 600.0);
        // A tick is due now, or already overdue.
        QVERIFY(f.clock.nextDeadline().value() <= f.clock.monotonicMs());
        f.clock.jump(0ms);
        QCOMPARE(TimerEngine::format(f.engine.remaining(), true), QStringLiteral("09:59"));
    }

    void theDisplayedSecondFollowsTheFormatter_data()
    {
        QTest::addColumn<double>("remaining");
        QTest::addColumn<qint64>("second");
        QTest::newRow("600") << 600.0 << qint64(600);
        QTest::newRow("599.999") << 599.999 << qint64(599);
        QTest::newRow("0.4") << 0.4 << qint64(0);
        QTest::newRow("0") << 0.0 << qint64(0);
        QTest::newRow("-0.4") << -0.4 << qint64(-1);
        QTest::newRow("-1") << -1.0 << qint64(-2);
        QTest::newRow("-1.5") << -1.5 << qint64(-2);
    }

    void theDisplayedSecondFollowsTheFormatter()
    {
        QFETCH(double, remaining);
        QFETCH(qint64, second);
        QCOMPARE(TickPhase::displayedSecond(remaining), second);
    }

    // A control surface sending adjustments without pause: every turn of the event loop
    // handles a batch of commands before the timers, and time goes on meanwhile.
    void aStreamOfCommandsNeverStarvesTheDisplay_data()
    {
        QTest::addColumn<int>("turnUs");
        QTest::addColumn<int>("commandsPerTurn");
        QTest::newRow("every 3 ms, 5 commands") << 3000 << 5;
        QTest::newRow("every 0.4 ms, 1 command") << 400 << 1;
        QTest::newRow("every 17 ms, 40 commands") << 17000 << 40;
    }

    void aStreamOfCommandsNeverStarvesTheDisplay()
    {
        QFETCH(int, turnUs);
        QFETCH(int, commandsPerTurn);
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Keynote", 3600)}));
        f.engine.start();
        qint64 lastTickUs = f.clock.monotonicUs();
        qint64 longestGapUs = 0;
        int ticks = 0;
        double shown = f.engine.remaining();
        while (f.clock.monotonicUs() - lastTickUs < 1'000'000 && ticks < 200) {
            f.clock.stall(std::chrono::microseconds(turnUs));
            for (int i = 0; i < commandsPerTurn; ++i)
                f.engine.adjust(i % 2 == 0 ? 1 : -1);
            if (commandsPerTurn % 2 == 1)
                f.engine.adjust(-1);
            f.clock.jump(0ms);
            // Only a tick recomputes the value: the adjustments cancel out.
            if (f.engine.remaining() != shown) {
                shown = f.engine.remaining();
                longestGapUs = std::max(longestGapUs, f.clock.monotonicUs() - lastTickUs);
                lastTickUs = f.clock.monotonicUs();
                ++ticks;
            }
        }
        QCOMPARE(ticks, 200);
        QVERIFY2(longestGapUs <= 100'000 + turnUs, qPrintable(QString::number(longestGapUs)));
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineTicker)
#include "tst_timerengine_ticker.moc"
