#include "enginefixture.h"

#include <QTest>

using namespace std::chrono_literals;

// The moments a cue's triggers answer, as the engine tells them on its hand-moved clock: the
// start, each threshold and zero once per crossing (armed again by a reset or an adjustment
// back above), and the cue left however it is left.
class TestTimerEngineTriggers : public QObject
{
    Q_OBJECT

    struct Moment {
        TriggerMoment moment;
        QString cue;
        int index;
        double remaining;
        bool operator==(const Moment &) const = default;
    };

    struct Recorder {
        explicit Recorder(TimerEngine &engine)
        {
            QObject::connect(&engine, &TimerEngine::cueMoment,
                             [this](TriggerMoment m, const Cue &cue, int index, double remaining) {
                                 seen.append({m, cue.name, index, remaining});
                             });
        }
        // The moments since the last call, without the remaining times.
        QList<std::pair<TriggerMoment, QString>> take()
        {
            QList<std::pair<TriggerMoment, QString>> out;
            for (const Moment &m : std::as_const(seen))
                out.append({m.moment, m.cue});
            seen.clear();
            return out;
        }
        QList<Moment> seen;
    };

    using M = TriggerMoment;
    static std::pair<M, QString> at(M moment, const char *cue) { return {moment, QString::fromUtf8(cue)}; }

private slots:
    void eachMomentOfACueOnceInTheOrderItHappens()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue(QStringLiteral("Keynote"), 200),
                                     durationCue(QStringLiteral("Débat"), 600)}));
        Recorder r(f.engine);
        f.engine.start(0);
        QCOMPARE(r.seen, (QList<Moment>{{M::Start, QStringLiteral("Keynote"), 0, 200}}));
        r.seen.clear();
        f.clock.advance(79s); // 121 s left: nothing yet
        QCOMPARE(r.take(), {});
        f.clock.advance(2s); // 119 s
        QCOMPARE(r.take(), QList{at(M::Warning, "Keynote")});
        f.clock.advance(60s); // 59 s, many ticks within the warning zone: still once
        QCOMPARE(r.take(), {});
        f.clock.advance(30s); // 29 s
        QCOMPARE(r.take(), QList{at(M::Danger, "Keynote")});
        f.clock.advance(30s); // -1 s
        QCOMPARE(r.seen.size(), 1);
        QCOMPARE(r.seen[0].moment, M::Zero);
        QVERIFY(r.seen[0].remaining <= 0 && r.seen[0].remaining > -0.2);
        r.seen.clear();
        f.clock.advance(10s); // overtime runs on: nothing
        QCOMPARE(r.take(), {});

        // Left by "next": its end with the overtime, then the next cue's start.
        f.engine.next();
        QCOMPARE(r.seen.size(), 2);
        QCOMPARE(r.seen[0].moment, M::End);
        QCOMPARE(r.seen[0].index, 0);
        QCOMPARE(r.seen[0].remaining, -11.0);
        QCOMPARE(r.seen[1], (Moment{M::Start, QStringLiteral("Débat"), 1, 600}));
        r.seen.clear();
        f.engine.stop();
        QCOMPARE(r.take(), QList{at(M::End, "Débat")});
        // A stopped cue is left already: stopping again, or pausing, tells nothing.
        f.engine.stop();
        f.engine.pause();
        QCOMPARE(r.take(), {});
    }

    void anAdjustmentBackAboveAThresholdArmsItAgain()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue(QStringLiteral("Keynote"), 200)}));
        Recorder r(f.engine);
        f.engine.start(0);
        f.clock.advance(171s); // 29 s: warning, then danger
        QCOMPARE(r.take(), (QList{at(M::Start, "Keynote"), at(M::Warning, "Keynote"), at(M::Danger, "Keynote")}));
        // +60 s: 89 s, above danger but still under warning: danger alone armed again.
        f.engine.adjust(60);
        f.clock.advance(1s);
        QCOMPARE(r.take(), {});
        f.clock.advance(60s); // 28 s
        QCOMPARE(r.take(), QList{at(M::Danger, "Keynote")});
        // +200 s: 228 s, above both.
        f.engine.adjust(200);
        f.clock.advance(110s); // 118 s
        QCOMPARE(r.take(), QList{at(M::Warning, "Keynote")});
        // A cut straight past a threshold into the next zone gives that zone's moment alone,
        // as the alert sounds do.
        f.engine.adjust(-100); // 18 s
        f.clock.advance(1s);
        QCOMPARE(r.take(), QList{at(M::Danger, "Keynote")});
    }

    void aResetArmsEverythingAgainWithoutAStart()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue(QStringLiteral("Keynote"), 100, 60, 20)}));
        Recorder r(f.engine);
        f.engine.start(0);
        f.clock.advance(101s);
        QCOMPARE(r.take(), (QList{at(M::Start, "Keynote"), at(M::Warning, "Keynote"), at(M::Danger, "Keynote"),
                                  at(M::Zero, "Keynote")}));
        f.engine.reset();
        QCOMPARE(r.take(), {});
        f.clock.advance(81s);
        QCOMPARE(r.take(), (QList{at(M::Warning, "Keynote"), at(M::Danger, "Keynote")}));
        // Paused, the clock stands and nothing crosses.
        f.engine.pause();
        f.clock.advance(60s);
        QCOMPARE(r.take(), {});
        f.engine.pause();
        f.clock.advance(20s);
        QCOMPARE(r.take(), QList{at(M::Zero, "Keynote")});
    }

    void aCueThatStartsInsideItsWarningZoneTellsItAtTheFirstTick()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue(QStringLiteral("Pause"), 60)})); // warning 120
        Recorder r(f.engine);
        f.engine.start(0);
        f.clock.advance(100ms);
        QCOMPARE(r.take(), (QList{at(M::Start, "Pause"), at(M::Warning, "Pause")}));
    }

    // A cue's triggers and the show's are edited like the cues: allowed while the show is
    // locked, each change an undo step.
    void editingTriggersIsAllowedWhileLockedAndUndone()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue(QStringLiteral("Keynote"), 200)}));
        f.engine.setShowLocked(true);
        const CueTrigger lights{TriggerMoment::Zero, QStringLiteral("Lumières"),
                                OscTriggerTarget{QStringLiteral("10.0.0.5"), 8000, QStringLiteral("/go"), {}}};
        Cue edited = f.engine.session().cues.first();
        edited.triggers = {lights};
        f.engine.updateCue(edited);
        QCOMPARE(f.engine.session().cues.first().triggers, QList<CueTrigger>{lights});

        TimerSession info = f.engine.session();
        info.triggers = {lights, lights};
        info.triggers[1].when = TriggerMoment::Start;
        f.engine.updateProjectInfo(info);
        QCOMPARE(f.engine.session().triggers, info.triggers);
        f.engine.updateProjectInfo(info); // the same project data again is no step

        f.engine.undo();
        QCOMPARE(f.engine.session().triggers, QList<CueTrigger>{});
        QCOMPARE(f.engine.session().cues.first().triggers, QList<CueTrigger>{lights});
        f.engine.undo();
        QVERIFY(f.engine.session().cues.first().triggers.isEmpty());
        QVERIFY(!f.engine.canUndo());
        f.engine.redo();
        f.engine.redo();
        QCOMPARE(f.engine.session().triggers, info.triggers);
        QCOMPARE(f.engine.session().cues.first().triggers, QList<CueTrigger>{lights});
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineTriggers)
#include "tst_timerengine_triggers.moc"
