#include "manualclock.h"
#include "systemclock.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace std::chrono_literals;

namespace {
const QDateTime start(QDate(2026, 11, 21), QTime(19, 0), Qt::UTC);
}

class TestManualClock : public QObject
{
    Q_OBJECT

private slots:
    void advanceMovesWallAndMonotonicTogether()
    {
        ManualClock clock(start, QTimeZone("Europe/Paris"));
        const qint64 origin = clock.monotonicMs();
        clock.advance(1500ms);
        QCOMPARE(clock.monotonicMs() - origin, 1500);
        QCOMPARE(clock.now(), start.addMSecs(1500));
        QCOMPARE(clock.timeZone(), QTimeZone("Europe/Paris"));
    }

    void subMillisecondStepsAddUpOnTheWallClock()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        const qint64 origin = clock.monotonicUs();
        for (int i = 0; i < 4; ++i)
            clock.advance(250us);
        QCOMPARE(clock.monotonicUs() - origin, 1000);
        QCOMPARE(clock.now(), start.addMSecs(1));
        clock.advance(999us);
        QCOMPARE(clock.now(), start.addMSecs(1));
    }

    void aWallClockStepLeavesMonotonicTimeAlone()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        const qint64 origin = clock.monotonicMs();
        clock.setWallClock(start.addSecs(-3600));
        QCOMPARE(clock.monotonicMs(), origin);
        QCOMPARE(clock.now(), start.addSecs(-3600));
    }

    void advanceFiresEachTimerAtItsDeadline()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        const qint64 origin = clock.monotonicMs();
        QList<qint64> firedAt;
        std::unique_ptr<ClockTimer> repeating;
        repeating = clock.createTimer([&] {
            firedAt << clock.monotonicMs() - origin;
            repeating->start(100);
        });
        repeating->start(30);
        clock.advance(350ms);
        QCOMPARE(firedAt, (QList<qint64>{30, 130, 230, 330}));
        QCOMPARE(clock.monotonicMs() - origin, 350);
        QCOMPARE(clock.nextDeadline(), origin + 430);
    }

    void jumpFiresADueTimerOnceAndLate()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        const qint64 origin = clock.monotonicMs();
        QList<qint64> firedAt;
        std::unique_ptr<ClockTimer> repeating;
        repeating = clock.createTimer([&] {
            firedAt << clock.monotonicMs() - origin;
            repeating->start(100);
        });
        repeating->start(100);
        clock.jump(450ms);
        QCOMPARE(firedAt, (QList<qint64>{450}));
        QCOMPARE(clock.nextDeadline(), origin + 550);
    }

    void timersFireInDeadlineOrderAndStopCancels()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        QStringList fired;
        auto a = clock.createTimer([&] { fired << "a"; });
        auto b = clock.createTimer([&] { fired << "b"; });
        auto c = clock.createTimer([&] { fired << "c"; });
        a->start(50);
        b->start(20);
        c->start(10);
        c->stop();
        QVERIFY(!c->isActive());
        QVERIFY(a->isActive());
        clock.advance(100ms);
        QCOMPARE(fired, (QStringList{"b", "a"}));
        QVERIFY(!a->isActive());
    }

    void aDestroyedTimerNeverFires()
    {
        ManualClock clock(start, QTimeZone("UTC"));
        bool fired = false;
        auto timer = clock.createTimer([&] { fired = true; });
        timer->start(10);
        timer.reset();
        clock.advance(1s);
        QVERIFY(!fired);
        QVERIFY(!clock.nextDeadline());
    }

    void systemClockGivesUtcWallTimeAndARunningMonotonicClock()
    {
        SystemClock clock;
        const QDateTime before = QDateTime::currentDateTimeUtc();
        const QDateTime now = clock.now();
        QCOMPARE(now.timeSpec(), Qt::UTC);
        QVERIFY(qAbs(before.msecsTo(now)) < 5000);
        const qint64 a = clock.monotonicUs();
        QVERIFY(clock.monotonicUs() >= a);
        QCOMPARE(clock.timeZone(), QTimeZone::systemTimeZone());
    }

    void systemClockTimerFiresFromTheEventLoop()
    {
        SystemClock clock;
        int fired = 0;
        auto timer = clock.createTimer([&] { ++fired; });
        timer->start(1);
        QVERIFY(timer->isActive());
        QTRY_COMPARE(fired, 1);
        QVERIFY(!timer->isActive());
    }
};

QTEST_GUILESS_MAIN(TestManualClock)
#include "tst_manualclock.moc"
