#include "tickphase.h"
#include "timerengine.h"

#include <QTest>

#include <cmath>
#include <limits>

class TestTickPhase : public QObject
{
    Q_OBJECT

private slots:
    void delayLandsJustAfterTheNextChangeOfTheShownSecond_data()
    {
        QTest::addColumn<double>("remaining");
        QTest::addColumn<qint64>("delay");
        // On a whole second the next change is immediate: the value falls below it at once.
        QTest::newRow("cue just started") << 600.0 << qint64(1);
        QTest::newRow("right after a change") << 599.999 << qint64(100);
        QTest::newRow("mid period") << 599.95 << qint64(51);
        QTest::newRow("half a millisecond early") << 599.0005 << qint64(1);
        QTest::newRow("sub-millisecond") << 599.0095 << qint64(10);
        QTest::newRow("lead crosses a millisecond") << 599.0099 << qint64(10);
        QTest::newRow("lead crosses into the next") << 599.00995 << qint64(11);
        QTest::newRow("half a second") << 10.5 << qint64(1);
        QTest::newRow("zero") << 0.0 << qint64(1);
        // Below zero the text changes when the magnitude reaches the next whole second.
        QTest::newRow("just past zero") << -0.001 << qint64(100);
        QTest::newRow("overtime mid period") << -0.95 << qint64(51);
        QTest::newRow("overtime on a whole second") << -3.0 << qint64(1);
        QTest::newRow("overtime just before a change") << -3.9995 << qint64(1);
        QTest::newRow("noise below a millisecond") << 599.1 + 1e-12 << qint64(1);
    }

    void delayLandsJustAfterTheNextChangeOfTheShownSecond()
    {
        QFETCH(double, remaining);
        QFETCH(qint64, delay);
        QCOMPARE(TickPhase::delayUntilNextTickMs(remaining), delay);
    }

    void everyDelayKeepsTheCadence()
    {
        for (int micros = -3'000'000; micros <= 3'000'000; micros += 137) {
            const qint64 delay = TickPhase::delayUntilNextTickMs(micros / 1e6);
            QVERIFY(delay >= 1 && delay <= TickPhase::periodMs);
        }
    }

    void followingTheDelaysShowsEverySecondWithinTwoMilliseconds()
    {
        // A 600-second countdown followed from its start to three seconds of overtime: every
        // new text is first seen by a tick at most two milliseconds after it appears.
        auto textAt = [](qint64 ms) { return TimerEngine::format(600.0 - ms / 1000.0, true); };
        qint64 nowMs = 0;
        QString shown = textAt(0);
        QStringList seen{shown};
        while (nowMs < 603'000) {
            const qint64 delay = TickPhase::delayUntilNextTickMs(600.0 - nowMs / 1000.0);
            QVERIFY(delay >= 1 && delay <= 100);
            nowMs += delay;
            if (textAt(nowMs) != shown) {
                QCOMPARE(textAt(nowMs - 2), shown);
                shown = textAt(nowMs);
                seen << shown;
            }
        }
        // 10:00 … 00:00, then -00:00, -00:01, -00:02, -00:03: no text skipped.
        QCOMPARE(seen.size(), 601 + 4);
        QCOMPARE(seen[1], QStringLiteral("09:59"));
        QCOMPARE(seen[600], QStringLiteral("00:00"));
        QCOMPARE(seen[601], QStringLiteral("-00:00"));
        QCOMPARE(seen.last(), QStringLiteral("-00:03"));
    }

    void unusableValuesFallBackToThePeriod()
    {
        QCOMPARE(TickPhase::delayUntilNextTickMs(std::numeric_limits<double>::quiet_NaN()),
                 TickPhase::periodMs);
        QCOMPARE(TickPhase::delayUntilNextTickMs(std::numeric_limits<double>::infinity()),
                 TickPhase::periodMs);
    }
};

QTEST_GUILESS_MAIN(TestTickPhase)
#include "tst_tickphase.moc"
