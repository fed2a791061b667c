#include "enginefixture.h"
#include "testdata.h"

#include <QJsonDocument>
#include <QTest>

using namespace std::chrono_literals;

class TestTimerEngineHook : public QObject
{
    Q_OBJECT

private slots:
    // Start, pause, resume, adjust, message, freeze, auto-follow and stop, with one tick per
    // clock jump: the snapshots handed to the hook, in order, against a list written by hand.
    void aScriptedRunHandsTheHookTheGoldenSnapshots()
    {
        EngineFixture f;
        Cue a = durationCue("A", 10, 5, 2, true);
        a.speaker = QStringLiteral("Inès");
        Cue b = durationCue("B", 20);
        b.speaker = QStringLiteral("Zoë");
        f.engine.loadSession(showOf({a, b}));
        f.snapshots.clear();

        f.engine.start();
        f.clock.jump(1000ms);
        f.engine.pause();
        f.clock.jump(5000ms); // a paused tick: no snapshot
        f.engine.pause();
        f.engine.adjust(5);
        f.clock.jump(2000ms);
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), false);
        f.engine.toggleFreeze();
        f.clock.jump(10'000ms);
        f.engine.toggleFreeze();
        f.clock.jump(3000ms); // reaches zero: schedules the follow-on, no snapshot
        EngineFixture::runPostedJobs();
        f.clock.jump(4000ms);
        f.engine.stop();

        QList<TimerStateSnapshot> golden;
        const QList<QByteArray> lines =
            readTestData(QStringLiteral("engine-hook-sequence.jsonl")).trimmed().split('\n');
        for (const QByteArray &line : lines) {
            QString error;
            const auto s = TimerStateSnapshot::fromJson(QJsonDocument::fromJson(line).object(), &error);
            QVERIFY2(s, qPrintable(error));
            golden << *s;
        }
        QCOMPARE(f.snapshots.size(), golden.size());
        for (qsizetype i = 0; i < golden.size(); ++i) {
            if (!(f.snapshots[i] == golden[i]))
                QFAIL(qPrintable(QStringLiteral("snapshot %1 differs: %2").arg(i + 1).arg(
                    QString::fromUtf8(QJsonDocument(f.snapshots[i].toJson()).toJson(QJsonDocument::Compact)))));
        }

        // A went straight from 12 s (frozen display) to 2 s: its warning zone was jumped over.
        // B starts inside its danger zone (30 s of 20).
        QCOMPARE(f.sound.names(), (QStringList{"Ping", "Basso", "Ping"}));
        QCOMPARE(f.engine.completedCueLog(),
                 (QList<CueLogEntry>{{QStringLiteral("A"), 15, 16, 1}, {QStringLiteral("B"), 20, 4, 0}}));
        QCOMPARE(f.engine.totalOvertime(), 1.0);
    }
};

QTEST_GUILESS_MAIN(TestTimerEngineHook)
#include "tst_timerengine_hook.moc"
