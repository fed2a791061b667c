#include "enginefixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

namespace {

QStringList names(const TimerEngine &engine)
{
    QStringList list;
    for (const Cue &cue : engine.session().cues)
        list << cue.name;
    return list;
}

TimerSession abcd()
{
    return showOf({durationCue("A", 60), durationCue("B", 60), durationCue("C", 60),
                   durationCue("D", 60)});
}

} // namespace

class TestTimerEngineEditing : public QObject
{
    Q_OBJECT

private slots:
    void addingAppendsAndTouchesTheShow()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.clock.advance(5s);
        f.snapshots.clear();
        f.engine.addCue(durationCue("E", 30));
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D", "E"}));
        QCOMPARE(f.engine.session().updatedAt, f.clock.now());
        QCOMPARE(f.engine.selectedCueIndex(), 0); // selection untouched
        QVERIFY(f.engine.canUndo());
        QVERIFY(f.snapshots.isEmpty());
    }

    void addCueWithoutArgumentAddsAFreshCue()
    {
        EngineFixture f;
        f.engine.addCue();
        f.engine.addCue();
        QCOMPARE(f.engine.session().cues.size(), 2);
        const Cue &cue = f.engine.session().cues[0];
        QCOMPARE(cue.name, QStringLiteral("Nouveau cue"));
        QCOMPARE(cue.duration, 600.0);
        QVERIFY(f.engine.session().cues[0].id != f.engine.session().cues[1].id);
    }

    void addingFromATemplateTakesItsNameLengthAndThresholds()
    {
        EngineFixture f;
        const CueTemplate &keynote = CueTemplate::defaults()[0];
        f.engine.addCue(keynote);
        f.engine.addCue(keynote);
        const Cue &cue = f.engine.session().cues[0];
        QCOMPARE(cue.name, QStringLiteral("Keynote 20 min"));
        QCOMPARE(cue.duration, 1200.0);
        QCOMPARE(cue.warningThreshold, 180.0);
        QCOMPARE(cue.dangerThreshold, 60.0);
        QCOMPARE(cue.mode, TimerMode::Duration);
        QCOMPARE(cue.speaker, QString());
        QVERIFY(!cue.autoFollow && !cue.colorHex && !cue.hardOutTime);
        QVERIFY(cue.id != keynote.id);
        QVERIFY(f.engine.session().cues[1].id != cue.id);
    }

    void sixtyEditsFiftyUndosAndNoMore()
    {
        EngineFixture f;
        QList<QStringList> after; // the list after each edit
        for (int i = 1; i <= 60; ++i) {
            f.engine.addCue(durationCue(QString::number(i), 60));
            after << names(f.engine);
        }
        for (int i = 0; i < 50; ++i)
            f.engine.undo();
        QCOMPARE(names(f.engine), after[9]); // as it was after the 10th edit
        QVERIFY(!f.engine.canUndo());
        f.engine.undo();
        QCOMPARE(names(f.engine), after[9]);
        for (int i = 0; i < 50; ++i)
            f.engine.redo();
        QCOMPARE(names(f.engine), after[59]);
        QVERIFY(!f.engine.canRedo());
    }

    void undoAndRedoAreNotTrimmedWhenMovingBetweenStacks()
    {
        EngineFixture f;
        for (int i = 1; i <= 55; ++i)
            f.engine.addCue(durationCue(QString::number(i), 60));
        for (int i = 0; i < 50; ++i)
            f.engine.undo();
        for (int i = 0; i < 50; ++i)
            f.engine.redo();
        for (int i = 0; i < 50; ++i)
            f.engine.undo();
        QCOMPARE(f.engine.session().cues.size(), 5);
    }

    void anEditAfterAnUndoEmptiesTheRedoStack()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.deleteCue(0);
        f.engine.undo();
        QVERIFY(f.engine.canRedo());
        f.engine.moveCue(0, 1);
        QVERIFY(!f.engine.canRedo());
        f.engine.redo();
        QCOMPARE(names(f.engine), (QStringList{"B", "A", "C", "D"}));
    }

    void undoAndRedoTouchTheShow()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.deleteCue(3);
        f.clock.advance(10s);
        f.engine.undo();
        QCOMPARE(f.engine.session().updatedAt, f.clock.now());
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
    }

    void movingExchangesTwoPlaces()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.moveCue(0, 2);
        QCOMPARE(names(f.engine), (QStringList{"C", "B", "A", "D"}));
        f.engine.moveCue(3, -1);
        QCOMPARE(names(f.engine), (QStringList{"C", "B", "D", "A"}));
        QCOMPARE(f.engine.selectedCueIndex(), 0); // not adjusted
    }

    void movingOffTheEndsDoesNothingAndRecordsNothing()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.moveCue(0, -1);
        f.engine.moveCue(3, 1);
        f.engine.moveCue(4, -1);
        f.engine.moveCue(-1, 1);
        f.engine.moveCue(1, std::numeric_limits<int>::max());
        f.engine.moveCue(2, 0);
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
        QVERIFY(!f.engine.canUndo());
    }

    void deletingTheRunningCueStopsAndLogsIt()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(1);
        f.clock.advance(70s);
        f.snapshots.clear();
        f.engine.deleteCue(1);
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.engine.activeCueID());
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        QCOMPARE(f.engine.completedCueLog()[0], (CueLogEntry{QStringLiteral("B"), 60, 70, 10}));
        QCOMPARE(f.engine.totalOvertime(), 10.0);
        QCOMPARE(names(f.engine), (QStringList{"A", "C", "D"}));
        QCOMPARE(f.snapshots.size(), 1);
        QCOMPARE(f.snapshots[0].cueName, QStringLiteral("—"));
        QCOMPARE(f.snapshots[0].running, false);
    }

    void deletingAnotherCueKeepsTheClockOnTheSameCue()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(2);
        f.clock.advance(10s);
        f.engine.deleteCue(0);
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.activeCueIndex(), 1);
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("C"));
        f.clock.advance(5s);
        QCOMPARE(f.engine.remaining(), 45.099); // the tick at 14.901 s
    }

    void deletingTheSelectedLastCueSelectsTheNewLast()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.setSelectedCueIndex(3);
        f.engine.deleteCue(3);
        QCOMPARE(f.engine.selectedCueIndex(), 2);
        EngineFixture g;
        g.engine.loadSession(showOf({durationCue("Seul", 60)}));
        g.engine.deleteCue(0);
        QVERIFY(!g.engine.selectedCueIndex());
        QVERIFY(g.engine.session().cues.isEmpty());
        g.engine.deleteCue(0);
        QCOMPARE(g.engine.session().cues.size(), 0);
    }

    void aLockedShowRefusesAddMoveAndDeleteButNotUpdate()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.setShowLocked(true);
        f.engine.addCue();
        f.engine.addCue(CueTemplate::defaults()[0]);
        f.engine.moveCue(0, 1);
        f.engine.deleteCue(0);
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
        QVERIFY(!f.engine.canUndo());

        Cue renamed = f.engine.session().cues[2];
        renamed.name = QStringLiteral("C bis");
        f.engine.updateCue(renamed);
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C bis", "D"}));
        QVERIFY(f.engine.canUndo());
        f.engine.undo(); // undo is not refused either
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
    }

    void replacingTheRunningOrderIsOneUndoStep()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.clock.advance(5s);
        QSignalSpy changed(&f.engine, &TimerEngine::sessionChanged);
        f.engine.replaceCues({durationCue("X", 30), durationCue("Y", 40)});
        QCOMPARE(names(f.engine), (QStringList{"X", "Y"}));
        QCOMPARE(f.engine.session().updatedAt, f.clock.now());
        QCOMPARE(changed.size(), 1);
        f.engine.undo();
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
        QVERIFY(!f.engine.canUndo());
        f.engine.redo();
        QCOMPARE(names(f.engine), (QStringList{"X", "Y"}));
    }

    void replacingKeepsTheRunningCueThatIsStillThereAndItsClock()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(2);
        f.clock.advance(10s);
        QList<Cue> cues = f.engine.session().cues;
        Cue longer = cues[2];
        longer.duration = 600; // applies from its next start
        f.engine.replaceCues({durationCue("Nouveau", 30), longer});
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.activeCueIndex(), 1);
        QCOMPARE(f.engine.activeCue()->duration, 600.0);
        f.clock.advance(5s);
        QCOMPARE(f.engine.remaining(), 45.099); // still the 60 s it started with
    }

    void replacingWithoutTheRunningCueLogsItAndStops()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(1);
        f.clock.advance(70s);
        f.engine.replaceCues({durationCue("X", 30)});
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.engine.activeCueID());
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        QCOMPARE(f.engine.completedCueLog()[0], (CueLogEntry{QStringLiteral("B"), 60, 70, 10}));
    }

    void aLockedShowRefusesAReplacement()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.setShowLocked(true);
        f.engine.replaceCues({durationCue("X", 30)});
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
        QVERIFY(!f.engine.canUndo());
    }

    void updatingMatchesByIdAndNotifies()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(0);
        Cue a = *f.engine.activeCue();
        a.speaker = QStringLiteral("Zoë");
        f.snapshots.clear();
        f.engine.updateCue(a);
        QCOMPARE(f.snapshots.size(), 1);
        QCOMPARE(f.snapshots[0].speaker, QStringLiteral("Zoë"));
        f.engine.updateCue(durationCue("Inconnu", 5)); // unknown id
        QCOMPARE(f.snapshots.size(), 1);
        QCOMPARE(f.engine.session().cues.size(), 4);
    }

    void updatedThresholdsApplyFromTheNextTick()
    {
        EngineFixture f;
        f.engine.loadSession(showOf({durationCue("Talk", 600, 120, 30)}));
        f.engine.start();
        f.clock.advance(10s);
        QVERIFY(f.sound.played.isEmpty());
        Cue cue = *f.engine.activeCue();
        cue.warningThreshold = 595;
        cue.duration = 1000;
        f.engine.updateCue(cue);
        QCOMPARE(f.engine.plannedDuration(), 600.0);
        f.engine.tick();
        QCOMPARE(f.sound.names(), QStringList{"Tink"});
    }

    void undoThatRemovesTheRunningCueStopsTheEngine()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.addCue(durationCue("E", 20));
        f.engine.start(4);
        f.clock.advance(25s);
        f.engine.undo();
        QVERIFY(!f.engine.isRunning());
        QVERIFY(!f.engine.activeCueID());
        QCOMPARE(names(f.engine), (QStringList{"A", "B", "C", "D"}));
        QCOMPARE(f.engine.completedCueLog().size(), 1);
        QCOMPARE(f.engine.completedCueLog()[0].cue, QStringLiteral("E"));
        QCOMPARE(f.engine.selectedCueIndex(), 3); // clamped to the new last cue
    }

    void undoKeepsARunningCueThatIsStillThere()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        f.engine.start(3);
        f.engine.moveCue(3, -3);
        QCOMPARE(f.engine.activeCueIndex(), 0);
        f.engine.undo();
        QVERIFY(f.engine.isRunning());
        QCOMPARE(f.engine.activeCueIndex(), 3);
        QCOMPARE(f.engine.activeCue()->name, QStringLiteral("D"));
    }

    void editsNotifyTheListAndTheActiveCue()
    {
        EngineFixture f;
        f.engine.loadSession(abcd());
        QSignalSpy session(&f.engine, &TimerEngine::sessionChanged);
        QSignalSpy undo(&f.engine, &TimerEngine::undoStateChanged);
        QSignalSpy active(&f.engine, &TimerEngine::activeCueChanged);
        f.engine.moveCue(0, 1);
        QCOMPARE(session.count(), 1);
        QCOMPARE(undo.count(), 1);
        QVERIFY(active.count() >= 1);
        QVERIFY(f.engine.property("canUndo").toBool());
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineEditing)
#include "tst_timerengine_editing.moc"
