#include "displayclock.h"
#include "enginefixture.h"
#include "formatters.h"
#include "iconset.h"
#include "stagepresenter.h"
#include "theme.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>

#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;

// The rules behind the displays, without drawing them.
class TestDisplayLogic : public QObject
{
    Q_OBJECT

    static QDateTime paris(int h, int m, int s, int ms)
    {
        return QDateTime(QDate(2026, 11, 21), QTime(h, m, s, ms), QTimeZone("Europe/Paris"));
    }

private slots:
    void initTestCase()
    {
        Fmt::setLocale(QLocale(QLocale::French, QLocale::France));
        Fmt::setTimeZone(QTimeZone("Europe/Paris"));
    }

    void theTypefacesAndTheIconFontAreInstalled()
    {
        ThemeSingleton theme;
        IconSet icons;
        for (const QString &family : {theme.textFont(), theme.digitsFont(), icons.fontFamily()})
            QCOMPARE(QFontInfo(QFont(family)).family(), family);
        const QFontMetrics iconMetrics{QFont(icons.fontFamily())};
        QVERIFY(!IconSet::symbols().isEmpty());
        for (const QString &symbol : IconSet::symbols()) {
            const QString glyph = IconSet::glyph(symbol);
            QVERIFY2(!glyph.isEmpty() && iconMetrics.inFontUcs4(glyph.toUcs4().first()), qPrintable(symbol));
        }
        QVERIFY(IconSet::glyph(QStringLiteral("no.such.symbol")).isEmpty());
    }

    void theDigitsAllHaveTheSameWidth()
    {
        QFont digits(ThemeSingleton().digitsFont());
        digits.setBold(true);
        digits.setPixelSize(400);
        const QFontMetricsF metrics(digits);
        for (char c = '1'; c <= '9'; ++c)
            QCOMPARE(metrics.horizontalAdvance(QLatin1Char(c)), metrics.horizontalAdvance(QLatin1Char('0')));
    }

    void theWallClockMovesOnTheTrueSecond()
    {
        EngineFixture f(paris(20, 30, 15, 250));
        DisplayClock clock(f.clock);
        QSignalSpy changed(&clock, &DisplayClock::secondChanged);
        QCOMPARE(clock.timeText(), QStringLiteral("20:30:15"));
        QCOMPARE(clock.dateText(), QStringLiteral("samedi 21 novembre 2026"));
        f.clock.advance(749ms);
        QCOMPARE(clock.timeText(), QStringLiteral("20:30:15"));
        f.clock.advance(1ms);
        QCOMPARE(clock.timeText(), QStringLiteral("20:30:16"));
        QCOMPARE(changed.count(), 1);
        f.clock.advance(999ms);
        QCOMPARE(clock.timeText(), QStringLiteral("20:30:16"));
        f.clock.advance(1ms);
        QCOMPARE(clock.timeText(), QStringLiteral("20:30:17"));
        f.clock.advance(3600s);
        QCOMPARE(changed.count(), 3602); // once a second, never more
        QCOMPARE(clock.timeText(), QStringLiteral("21:30:17"));
    }

    void theWallClockFollowsAStepOfTheSystemTime()
    {
        EngineFixture f(paris(23, 59, 59, 0));
        DisplayClock clock(f.clock);
        f.clock.advance(1s);
        QCOMPARE(clock.timeText(), QStringLiteral("00:00:00"));
        QCOMPARE(clock.dateText(), QStringLiteral("dimanche 22 novembre 2026"));
        // Set by hand: seen at the next timer, at most a second later, then on the second again.
        f.clock.setWallClock(paris(12, 0, 0, 900).addDays(1));
        f.clock.advance(1s);
        QCOMPARE(clock.timeText(), QStringLiteral("12:00:01"));
        f.clock.advance(99ms);
        QCOMPARE(clock.timeText(), QStringLiteral("12:00:01"));
        f.clock.advance(1ms);
        QCOMPARE(clock.timeText(), QStringLiteral("12:00:02"));
    }

    void theModeRuleFirstMatchWins()
    {
        EngineFixture f;
        DisplayClock clock(f.clock);
        StagePresenter stage;
        stage.setEngine(&f.engine);
        stage.setClock(&clock);
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        QCOMPARE(stage.mode(), StagePresenter::Timer);
        f.engine.setClockMode(true);
        QCOMPARE(stage.mode(), StagePresenter::Clock);
        f.engine.startDoors(f.clock.now().addSecs(600));
        QCOMPARE(stage.mode(), StagePresenter::Doors);
        f.engine.setBlackout(true);
        QCOMPARE(stage.mode(), StagePresenter::Blackout);
        f.engine.setBlackout(false);
        f.engine.start(0); // doors give way to a running cue; clock mode is beneath doors only
        QCOMPARE(stage.mode(), StagePresenter::Clock);
        f.engine.setClockMode(false);
        QCOMPARE(stage.mode(), StagePresenter::Timer);
    }

    void theFlashOnlyTurnsInOvertimeOrWithAnUrgentMessage()
    {
        EngineFixture f;
        DisplayClock clock(f.clock);
        StagePresenter stage;
        stage.setEngine(&f.engine);
        stage.setClock(&clock);
        f.engine.loadSession(showOf({durationCue("Keynote", 5)}));
        f.engine.start(0);
        f.clock.advance(4800ms); // eight flash periods, calm
        QVERIFY(!stage.flash());
        f.engine.sendMessage(QStringLiteral("Vite"), false);
        f.clock.advance(600ms); // overtime from 5 s: one flip at 5.4 s
        QVERIFY(stage.flash());
        f.engine.stop();
        f.engine.sendMessage(QStringLiteral("Vite"), true);
        f.clock.advance(600ms);
        QVERIFY(!stage.flash());
        f.engine.sendMessage(std::nullopt, false);
        f.clock.advance(6s);
        QVERIFY(!stage.flash()); // left as it was
    }

    void theBlinkPhaseOnlyTurnsWhileBlinking()
    {
        EngineFixture f;
        DisplayClock clock(f.clock);
        StagePresenter stage;
        stage.setEngine(&f.engine);
        stage.setClock(&clock);
        f.clock.advance(1s);
        QVERIFY(!stage.blinkPhase());
        QVERIFY(!stage.blinkVisible());
        f.engine.triggerBlink(1);
        QVERIFY(stage.blinkVisible());
        QCOMPARE(stage.blinkColor(), QColor(Qt::white));
        f.clock.advance(150ms);
        QVERIFY(stage.blinkPhase());
        QCOMPARE(stage.blinkColor(), QColor(255, 107, 0));
        f.clock.advance(150ms);
        QVERIFY(!stage.blinkPhase());
    }

    void aBarWithoutPlannedLengthIsEmptyAndNothingIsAnnouncedTwice()
    {
        EngineFixture f;
        DisplayClock clock(f.clock);
        StagePresenter stage;
        stage.setEngine(&f.engine);
        stage.setClock(&clock);
        QCOMPARE(stage.progress(), 0.0);
        QSignalSpy changed(&stage, &StagePresenter::frameChanged);
        f.clock.advance(10s); // nothing runs: the phase timers fire, nothing changes
        QCOMPARE(changed.count(), 0);
        f.engine.setClockMode(true);
        f.engine.setClockMode(true);
        QCOMPARE(changed.count(), 1);
    }
};

QTEST_MAIN(TestDisplayLogic)
#include "tst_displaylogic.moc"
