#include "enginefixture.h"

#include <QRandomGenerator>
#include <QTest>

using namespace std::chrono_literals;

// A twelve-hour show of 24 half-hour cues that follow on, driven by a ticker that is often
// late, sometimes misses ticks and sometimes gets an extra early one; and the cue list that a
// long show's saves share with the engine.
class TestTimerEngineLongRun : public QObject
{
    Q_OBJECT

private slots:
    void twelveHoursWithJitterStayExactAndAlertOnce()
    {
        EngineFixture f;
        QList<Cue> cues;
        for (int i = 0; i < 24; ++i)
            cues << durationCue(QStringLiteral("Cue %1").arg(i + 1), 1800, 300, 60, i < 23);
        f.engine.loadSession(showOf(cues));
        int hooks = 0;
        f.engine.setOnStateChange([&](const TimerStateSnapshot &s) {
            ++hooks;
            QCOMPARE(s.remaining, f.engine.remaining());
        });

        QRandomGenerator random(20261121);
        f.engine.start(0);
        const qint64 showStart = f.clock.monotonicMs();
        qint64 cueStart = showStart;
        QUuid activeId = *f.engine.activeCueID();
        int ticks = 0, late = 0, missed = 0, early = 0;

        while (f.clock.monotonicMs() - showStart < 12 * 3600'000LL + 600'000) {
            const qint64 untilDeadline = *f.clock.nextDeadline() - f.clock.monotonicMs();
            QVERIFY(untilDeadline >= 0 && untilDeadline <= 100);
            const quint32 roll = random.bounded(100);
            if (roll < 70) {
                f.clock.advance(std::chrono::milliseconds(untilDeadline));
            } else if (roll < 85) {
                f.clock.jump(std::chrono::milliseconds(untilDeadline + random.bounded(1, 501)));
                ++late;
            } else if (roll < 95) {
                f.clock.jump(std::chrono::milliseconds(untilDeadline + 100 * random.bounded(1, 4)
                                                       + random.bounded(0, 100)));
                ++missed;
            } else {
                f.clock.jump(std::chrono::milliseconds(random.bounded(0, int(untilDeadline) + 1)));
                if (f.clock.nextDeadline() && *f.clock.nextDeadline() > f.clock.monotonicMs())
                    f.engine.tick();
                ++early;
            }
            ++ticks;
            EngineFixture::runPostedJobs();

            if (*f.engine.activeCueID() != activeId) {
                activeId = *f.engine.activeCueID();
                cueStart = f.clock.monotonicMs();
            }
            const double elapsed = double(f.clock.monotonicMs() - cueStart) / 1000.0;
            if (std::abs(f.engine.elapsed() - elapsed) > 0.0005
                || std::abs(f.engine.remaining() - (1800 - elapsed)) > 0.0005)
                QFAIL(qPrintable(QStringLiteral("drift at %1 ms: elapsed %2 instead of %3")
                                     .arg(f.clock.monotonicMs() - showStart)
                                     .arg(f.engine.elapsed(), 0, 'f', 6)
                                     .arg(elapsed, 0, 'f', 6)));
        }

        qInfo("%d ticks: %d late, %d after missed ones, %d extra early; %d hook calls", ticks, late, missed, early, hooks);
        QVERIFY(late > 1000 && missed > 1000 && early > 1000);
        QVERIFY(hooks > ticks / 2);
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("Cue 24"));
        QVERIFY(f.engine.isRunning());
        QVERIFY(f.engine.remaining() < -500); // the last cue counts on into overtime

        QStringList expected;
        for (int i = 0; i < 24; ++i)
            expected << "Tink" << "Ping" << "Basso";
        QCOMPARE(f.sound.names(), expected);

        const QList<CueLogEntry> log = f.engine.completedCueLog();
        QCOMPARE(log.size(), 23);
        double logged = 0;
        for (const CueLogEntry &entry : log) {
            QCOMPARE(entry.planned, 1800.0);
            QVERIFY(entry.overtime >= 0 && entry.overtime < 1.0);
            QVERIFY(std::abs(entry.actual - entry.planned - entry.overtime) < 1e-9);
            logged += entry.overtime;
        }
        QVERIFY(std::abs(f.engine.totalOvertime() - (logged - f.engine.remaining())) < 1e-9);
    }

    // A save reads a copy that shares the engine's cue list on another thread. What only reads
    // the list (ticks, adjustments, show controls, the selection) must leave it shared: a
    // private copy of a 100,000-cue list costs the main thread some 60 ms.
    void readingTheListNeverCopiesIt()
    {
        EngineFixture f;
        QList<Cue> cues;
        for (int i = 0; i < 50; ++i)
            cues << durationCue(QStringLiteral("Cue %1").arg(i + 1), 600);
        f.engine.loadSession(showOf(cues));
        f.engine.start(20);
        const TimerSession saving = f.engine.session();
        f.clock.advance(5s);
        f.engine.adjust(30);
        f.engine.pause();
        f.engine.pause();
        f.engine.setBlackout(true);
        f.engine.sendMessage(QStringLiteral("Plus fort"), true);
        f.engine.setSelectedCueIndex(30);
        f.clock.advance(5s);
        QCOMPARE(f.engine.activeCueIndex(), 20);
        QCOMPARE(f.engine.session().cues.constData(), saving.cues.constData());
        // A real change copies it, and leaves the save's copy as it was.
        f.engine.next();
        QVERIFY(f.engine.session().cues.constData() != saving.cues.constData());
        QVERIFY(!saving.cues[20].actualElapsed);
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineLongRun)
#include "tst_timerengine_longrun.moc"
