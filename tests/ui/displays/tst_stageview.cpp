#include "displayfixture.h"
#include "stagepresenter.h"
#include "theme.h"

#include <QFont>

using namespace std::chrono_literals;

namespace {

const QColor bgDeep = toQColor(AppTheme::bgDeep);

Cue cueWithColour(const QString &name, double duration, const QString &hex)
{
    Cue cue = durationCue(name, duration);
    cue.colorHex = hex;
    return cue;
}

} // namespace

// Every visual state of the stage display, rendered offscreen at 1080p and 4K.
class TestStageView : public QObject
{
    Q_OBJECT


    // The colour of the big digits, and that their text is `text`.
    static QColor timeColour(DisplayFixture &f, const QImage &shot, const QString &text)
    {
        QQuickItem *time = f.item("stageTime");
        if (time->property("text").toString() != text)
            qWarning() << "time shows" << time->property("text").toString();
        return dominantColour(shot, f.sceneRect(time), bgDeep);
    }

    // Starts a 10-minute cue and brings it to `remaining` seconds exactly.
    static void runTo(DisplayFixture &f, double remaining, const Cue &cue = durationCue("Keynote", 600))
    {
        f.engine.loadSession(showOf({cue, durationCue("Table ronde", 1200)}));
        f.engine.start();
        f.advance(std::chrono::microseconds(qint64((cue.duration - remaining) * 1e6)));
        f.engine.tick();
        QCoreApplication::processEvents();
    }

private slots:
    void blackoutShowsOnlyBlackEvenWithAMessageAndTheClock_data() { addDisplaySizes(); }
    void blackoutShowsOnlyBlackEvenWithAMessageAndTheClock()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 300);
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        f.engine.setClockMode(true);
        f.engine.setBlackout(true);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-blackout-" + sizeTag(size));
        for (int y = 0; y < shot.height(); y += 7)
            for (int x = 0; x < shot.width(); x += 7)
                QCOMPARE(QColor(shot.pixel(x, y)), QColor(Qt::black));

        // The blink overlay still shows over it.
        f.engine.triggerBlink(3);
        f.advance(150ms);
        const QImage blink = f.grab();
        KAIRON_COMPARE_COLOUR(QColor(blink.pixel(10, 10)), blend(toQColor(AppTheme::accent), 0.85, Qt::black));
    }

    void doorsShowTheCountdownToTheShow_data() { addDisplaySizes(); }
    void doorsShowTheCountdownToTheShow()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        f.engine.loadSession(showOf({durationCue("Keynote", 600)}));
        f.engine.setClockMode(true); // beneath doors
        f.engine.startDoors(QDateTime(QDate(2026, 11, 21), QTime(20, 45), QTimeZone("Europe/Paris")));
        f.advance(50ms); // 14:44.700 to go
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-doors-" + sizeTag(size));
        QQuickItem *title = f.item("doorsTitle");
        QVERIFY(title->isVisible());
        QCOMPARE(title->property("text").toString(), QStringLiteral("LE SHOW COMMENCE DANS"));
        QCOMPARE(pixelSize(title), qRound(std::min(size.width() * 0.03, 36.0)));
        QCOMPARE(title->property("font").value<QFont>().letterSpacing(), 6.0);
        QQuickItem *time = f.item("doorsTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("14:44"));
        QCOMPARE(pixelSize(time), qRound(size.width() * 0.18));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(time), bgDeep), toQColor(AppTheme::accent));
        QVERIFY(!f.hasItem("stageTime") && !f.hasItem("clockTime"));

        // A cue started: the timer at once.
        f.engine.setClockMode(false);
        f.engine.start(0);
        QCoreApplication::processEvents();
        QVERIFY(!f.hasItem("doorsTime"));
        QVERIFY(f.item("stageTime")->isVisible());
    }

    void clockModeShowsTheTimeOfDayAndTheFullDate_data() { addDisplaySizes(); }
    void clockModeShowsTheTimeOfDayAndTheFullDate()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        f.engine.setClockMode(true);
        QCoreApplication::processEvents();
        QQuickItem *time = f.item("clockTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("20:30:15"));
        QCOMPARE(pixelSize(time), qRound(size.width() * 0.2));
        QQuickItem *date = f.item("clockDate");
        QCOMPARE(date->property("text").toString(), QStringLiteral("samedi 21 novembre 2026"));
        QCOMPARE(pixelSize(date), 28);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-clock-" + sizeTag(size));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(time), bgDeep), QColor(Qt::white));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(date), bgDeep), toQColor(AppTheme::textMuted));
        // On the true second, not up to a second late.
        f.advance(749ms);
        QCOMPARE(time->property("text").toString(), QStringLiteral("20:30:15"));
        f.advance(1ms);
        QCOMPARE(time->property("text").toString(), QStringLiteral("20:30:16"));
    }

    void withoutACueTheTimeIsMutedAndUnnamed_data() { addDisplaySizes(); }
    void withoutACueTheTimeIsMutedAndUnnamed()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-idle-" + sizeTag(size));
        QVERIFY(!f.item("cueName")->isVisible());
        QCOMPARE(f.item("stageTime")->property("text").toString(), QStringLiteral("00:00"));
        KAIRON_COMPARE_COLOUR(timeColour(f, shot, "00:00"), toQColor(AppTheme::textMuted));
        QVERIFY(!f.item("progressFill")->isVisible());
        QVERIFY(!f.item("freezeBadge")->isVisible());
    }

    void aCalmCueIsGreenWithItsNameAndBar_data() { addDisplaySizes(); }
    void aCalmCueIsGreenWithItsNameAndBar()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 450);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-calm-" + sizeTag(size));
        QQuickItem *name = f.item("cueName");
        QCOMPARE(name->property("text").toString(), QStringLiteral("Keynote"));
        QCOMPARE(pixelSize(name), qRound(std::min(size.width() * 0.035, 44.0)));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(name), bgDeep), toQColor(AppTheme::textSecondary));
        QQuickItem *time = f.item("stageTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("07:30"));
        QCOMPARE(pixelSize(time), qRound(size.width() * 0.22));
        KAIRON_COMPARE_COLOUR(timeColour(f, shot, "07:30"), toQColor(AppTheme::stateNormal));
        QVERIFY(time->property("opacity").toDouble() == 1.0);

        QQuickItem *bar = f.item("progressBar");
        QCOMPARE(bar->width(), qRound(size.width() * 0.6));
        QCOMPARE(bar->height(), 10.0);
        QQuickItem *fill = f.item("progressFill");
        QCOMPARE(fill->width(), double(qRound(size.width() * 0.6 * 0.25)));
        const QRect filled = f.sceneRect(fill);
        KAIRON_COMPARE_COLOUR(QColor(shot.pixel(filled.center())), toQColor(AppTheme::stateNormal));
        const QRect track = f.sceneRect(bar);
        KAIRON_COMPARE_COLOUR(QColor(shot.pixel(track.right() - 20, track.center().y())),
                              blend(Qt::white, 0.1, bgDeep));
    }

    void thresholdsAreReachedAtTheirExactValue_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<double>("remaining");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QColor>("colour");
        for (const QSize size : {QSize(1920, 1080), QSize(3840, 2160)}) {
            const QString t = sizeTag(size);
            QTest::addRow("warning at 120 %s", qPrintable(t)) << size << 120.0 << "02:00" << toQColor(AppTheme::stateWarning);
            QTest::addRow("calm at 120.1 %s", qPrintable(t)) << size << 120.1 << "02:00" << toQColor(AppTheme::stateNormal);
            QTest::addRow("danger at 30 %s", qPrintable(t)) << size << 30.0 << "00:30" << toQColor(AppTheme::stateDanger);
            QTest::addRow("danger at 0 %s", qPrintable(t)) << size << 0.0 << "00:00" << toQColor(AppTheme::stateDanger);
        }
    }

    void thresholdsAreReachedAtTheirExactValue()
    {
        QFETCH(QSize, size);
        QFETCH(double, remaining);
        QFETCH(QString, text);
        QFETCH(QColor, colour);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, remaining);
        QCOMPARE(f.engine.remaining(), remaining);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("stage-at-%1-%2").arg(remaining).arg(sizeTag(size)));
        QCOMPARE(f.item("stageTime")->property("text").toString(), text);
        KAIRON_COMPARE_COLOUR(timeColour(f, shot, text), colour);
        KAIRON_COMPARE_COLOUR(QColor(shot.pixel(f.sceneRect(f.item("progressFill")).center())), colour);
    }

    void overtimePulsesOnTheFlashPhase_data() { addDisplaySizes(); }
    void overtimePulsesOnTheFlashPhase()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, -0.1);
        auto *stage = f.window->findChild<StagePresenter *>("stagePresenter");
        QCOMPARE(f.item("stageTime")->property("text").toString(), QStringLiteral("-00:00"));
        const QColor red = toQColor(AppTheme::stateOvertime);
        // The flash phase flips every 0.6 s while in overtime; read it, then the next one.
        for (int i = 0; i < 2; ++i) {
            const bool flash = stage->flash();
            const QImage shot = f.grab();
            DisplayFixture::keep(shot, QStringLiteral("stage-overtime-%1-%2").arg(flash ? "bright" : "dim", sizeTag(size)));
            KAIRON_COMPARE_COLOUR(timeColour(f, shot, "-00:00"), flash ? red : blend(red, 0.35, bgDeep));
            QCOMPARE(f.item("stageTime")->property("opacity").toDouble(), flash ? 1.0 : 0.35);
            f.advance(600ms);
            QCOMPARE(stage->flash(), !flash);
        }
    }

    void theFlashPhaseIsLeftWhereItWasWhenOvertimeEnds()
    {
        DisplayFixture f("StageWindow.qml", QSize(1920, 1080));
        runTo(f, -1);
        auto *stage = f.window->findChild<StagePresenter *>("stagePresenter");
        const qint64 startMs = f.clock.monotonicMs();
        while (!stage->flash())
            f.advance(100ms);
        QVERIFY(f.clock.monotonicMs() - startMs <= 1200);
        f.engine.adjust(60); // out of overtime with the phase at true
        f.advance(3s);
        QVERIFY(stage->flash());
        f.engine.adjust(-120);
        f.advance(1ms);
        QCOMPARE(f.item("stageTime")->property("opacity").toDouble(), 1.0);
    }

    void freezeInOvertimeHoldsTheValueWithTheBadge_data() { addDisplaySizes(); }
    void freezeInOvertimeHoldsTheValueWithTheBadge()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, -5.3);
        f.engine.toggleFreeze();
        f.advance(7s);
        auto *stage = f.window->findChild<StagePresenter *>("stagePresenter");
        if (!stage->flash())
            f.advance(600ms);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "stage-freeze-overtime-" + sizeTag(size));
        QCOMPARE(f.item("stageTime")->property("text").toString(), QStringLiteral("-00:05"));
        KAIRON_COMPARE_COLOUR(timeColour(f, shot, "-00:05"), toQColor(AppTheme::stateOvertime));
        QQuickItem *badge = f.item("freezeBadge");
        QVERIFY(badge->isVisible());
        QCOMPARE(badge->property("text").toString(), QStringLiteral("FREEZE"));
        QCOMPARE(pixelSize(badge), 18);
        QCOMPARE(badge->property("font").value<QFont>().letterSpacing(), 4.0);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(badge), bgDeep), toQColor(AppTheme::stateWarning));
        f.advance(600ms);
        QCOMPARE(f.item("stageTime")->property("opacity").toDouble(), 0.35); // still pulsing
    }

    void aCueColourShowsWhileCalmThenTheWarningWins_data() { addDisplaySizes(); }
    void aCueColourShowsWhileCalmThenTheWarningWins()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 121, cueWithColour("Keynote", 600, QStringLiteral(" #2F80ED ")));
        const QImage calm = f.grab();
        DisplayFixture::keep(calm, "stage-cue-colour-" + sizeTag(size));
        KAIRON_COMPARE_COLOUR(timeColour(f, calm, "02:01"), QColor(0x2F, 0x80, 0xED));
        f.advance(1s);
        f.engine.tick();
        const QImage warning = f.grab();
        KAIRON_COMPARE_COLOUR(timeColour(f, warning, "02:00"), toQColor(AppTheme::stateWarning));
    }

    void anUnreadableCueColourFallsBackToGreen()
    {
        DisplayFixture f("StageWindow.qml", QSize(1920, 1080));
        runTo(f, 400, cueWithColour("Keynote", 600, QStringLiteral("#2F80E")));
        KAIRON_COMPARE_COLOUR(timeColour(f, f.grab(), "06:40"), toQColor(AppTheme::stateNormal));
    }

    void aNormalMessageIsAnOrangeBannerThatNeverPulses_data() { addDisplaySizes(); }
    void aNormalMessageIsAnOrangeBannerThatNeverPulses()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 300);
        f.engine.sendMessage(QStringLiteral("Il reste 5 minutes"), false);
        QCoreApplication::processEvents();
        QQuickItem *banner = f.item("banner");
        QQuickItem *text = f.item("bannerText");
        QCOMPARE(text->property("text").toString(), QStringLiteral("Il reste 5 minutes"));
        QCOMPARE(pixelSize(text), qRound(std::min(size.width() * 0.05, 64.0)));
        QCOMPARE(banner->property("radius").toDouble(), 16.0);
        const QRect area = f.sceneRect(banner);
        QCOMPARE(area.bottom() + 1, size.height() - 60);
        QCOMPARE(banner->width(), text->width() + 80);
        QCOMPARE(banner->height(), text->height() + 40);
        for (int phase = 0; phase < 2; ++phase) {
            const QImage shot = f.grab();
            DisplayFixture::keep(shot, QStringLiteral("stage-message-%1-%2").arg(phase).arg(sizeTag(size)));
            const QColor background = blend(Qt::black, 0.7, bgDeep);
            KAIRON_COMPARE_COLOUR(QColor(shot.pixel(area.left() + 20, area.center().y())), background);
            KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(text), background), toQColor(AppTheme::accent));
            QCOMPARE(banner->opacity(), 1.0);
            f.advance(600ms);
        }
    }

    void anUrgentMessageIsARedBannerPulsingEvenWhenCalm_data() { addDisplaySizes(); }
    void anUrgentMessageIsARedBannerPulsingEvenWhenCalm()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 300);
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        QCoreApplication::processEvents();
        auto *stage = f.window->findChild<StagePresenter *>("stagePresenter");
        QQuickItem *banner = f.item("banner");
        const QRect area = f.sceneRect(banner);
        const QColor red = toQColor(AppTheme::stateOvertime);
        for (int i = 0; i < 2; ++i) {
            const bool flash = stage->flash();
            const QImage shot = f.grab();
            DisplayFixture::keep(shot, QStringLiteral("stage-urgent-%1-%2").arg(flash ? "bright" : "dim", sizeTag(size)));
            const double opacity = flash ? 1.0 : 0.5;
            QCOMPARE(banner->opacity(), opacity);
            const QColor background = blend(red, opacity, bgDeep);
            KAIRON_COMPARE_COLOUR(QColor(shot.pixel(area.left() + 20, area.center().y())), background);
            // The opacity applies to each layer of the banner, the text over its background.
            KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(f.item("bannerText")), background),
                                  blend(Qt::white, opacity, background));
            f.advance(600ms);
        }
    }

    void blinkStrobesOrangeAndWhite_data() { addDisplaySizes(); }
    void blinkStrobesOrangeAndWhite()
    {
        QFETCH(QSize, size);
        DisplayFixture f("StageWindow.qml", size);
        runTo(f, 300);
        f.engine.triggerBlink(2);
        auto *stage = f.window->findChild<StagePresenter *>("stagePresenter");
        for (int i = 0; i < 2; ++i) {
            f.advance(150ms);
            const bool orange = stage->blinkPhase();
            const QImage shot = f.grab();
            DisplayFixture::keep(shot, QStringLiteral("stage-blink-%1-%2").arg(orange ? "orange" : "white", sizeTag(size)));
            const QColor overlay = orange ? toQColor(AppTheme::accent) : QColor(Qt::white);
            KAIRON_COMPARE_COLOUR(QColor(shot.pixel(10, 10)), blend(overlay, 0.85, bgDeep));
        }
        f.advance(2s);
        f.runPostedJobs();
        QVERIFY(!f.item("blinkOverlay")->isVisible());
    }

    void digitsKeepTheirWidthAsTheyChange()
    {
        DisplayFixture f("StageWindow.qml", QSize(1920, 1080));
        runTo(f, 671);
        QQuickItem *time = f.item("stageTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("11:11"));
        const double ones = time->property("contentWidth").toDouble();
        f.advance(std::chrono::seconds(671));
        f.engine.tick();
        QCOMPARE(time->property("text").toString(), QStringLiteral("00:00"));
        QCOMPARE(time->property("contentWidth").toDouble(), ones);
    }

    void longValuesShrinkToFitOnOneLine()
    {
        DisplayFixture f("StageWindow.qml", QSize(1280, 720));
        runTo(f, 36000 - 1, durationCue("Marathon", 36000));
        QQuickItem *time = f.item("stageTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("9:59:59"));
        QCOMPARE(time->property("lineCount").toInt(), 1);
        QVERIFY(time->property("contentWidth").toDouble() <= time->width());
        DisplayFixture::keep(f.grab(), "stage-long-720p");
    }
};

QTEST_MAIN(TestStageView)
#include "tst_stageview.moc"
