#include "displayfixture.h"
#include "theme.h"

#include <QFont>

using namespace std::chrono_literals;

namespace {

const QColor bgDeep = toQColor(AppTheme::bgDeep);

Cue speakerCue(const QString &name, const QString &speaker, double duration)
{
    Cue cue = durationCue(name, duration);
    cue.speaker = speaker;
    return cue;
}

} // namespace

// The confidence display, rendered offscreen at 1080p and 4K.
class TestConfidenceView : public QObject
{
    Q_OBJECT


    static void runShow(DisplayFixture &f, std::chrono::microseconds into)
    {
        f.engine.loadSession(showOf({speakerCue("Ouverture", "Claire Martin", 600),
                                     speakerCue("Table ronde", "Invités", 1800)}));
        f.engine.start(0);
        f.advance(into);
    }

private slots:
    void showsTheClockTheSpeakerTheCueAndWhatComesNext_data() { addDisplaySizes(); }
    void showsTheClockTheSpeakerTheCueAndWhatComesNext()
    {
        QFETCH(QSize, size);
        DisplayFixture f("ConfidenceWindow.qml", size);
        runShow(f, 500s);
        f.engine.sendMessage(QStringLiteral("Questions du public"), false);
        QCoreApplication::processEvents();
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "confidence-running-" + sizeTag(size));
        const int w = size.width();

        QQuickItem *clock = f.item("wallClock");
        QCOMPARE(clock->property("text").toString(), QStringLiteral("20:38:35"));
        QCOMPARE(pixelSize(clock), qRound(w * 0.05));
        QCOMPARE(f.sceneRect(clock).topLeft(), QPoint(30, 24));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(clock), bgDeep), toQColor(AppTheme::textSecondary));

        QQuickItem *speaker = f.item("speaker");
        QCOMPARE(speaker->property("text").toString(), QStringLiteral("Claire Martin"));
        QCOMPARE(pixelSize(speaker), qRound(w * 0.04));
        QCOMPARE(qRound(speaker->mapToScene(QPointF(speaker->width(), 0)).x()), w - 30);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(speaker), bgDeep), toQColor(AppTheme::accent));

        QQuickItem *name = f.item("cueName");
        QCOMPARE(name->property("text").toString(), QStringLiteral("Ouverture"));
        QCOMPARE(pixelSize(name), qRound(w * 0.035));

        QQuickItem *time = f.item("confidenceTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("01:40"));
        QCOMPARE(pixelSize(time), qRound(w * 0.16));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(time), bgDeep), toQColor(AppTheme::stateWarning));

        QQuickItem *next = f.item("nextText");
        QCOMPARE(next->property("text").toString(), QStringLiteral("Suivant : Table ronde"));
        QCOMPARE(pixelSize(next), qRound(w * 0.03));
        QCOMPARE(f.sceneRect(f.item("next")).left(), 30);
        QCOMPARE(qRound(f.item("next")->mapToScene(QPointF(0, f.item("next")->height())).y()),
                 size.height() - 24);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(next), bgDeep), toQColor(AppTheme::textMuted));
        QQuickItem *icon = f.item("nextIcon");
        QCOMPARE(icon->property("text").toString(), QString(QChar(0xEAAA)));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(icon), bgDeep), toQColor(AppTheme::textMuted));

        QQuickItem *message = f.item("message");
        QCOMPARE(message->property("text").toString(), QStringLiteral("Questions du public"));
        QCOMPARE(pixelSize(message), qRound(w * 0.03));
        QCOMPARE(message->property("font").value<QFont>().weight(), QFont::Bold);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(message), bgDeep), toQColor(AppTheme::accent));
    }

    void withoutACueThereIsNoNameNoSpeakerAndAMutedTime()
    {
        DisplayFixture f("ConfidenceWindow.qml", QSize(1920, 1080));
        f.engine.loadSession(showOf({speakerCue("Ouverture", "Claire Martin", 600)}));
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "confidence-idle-1080p");
        QVERIFY(!f.item("cueName")->isVisible());
        QVERIFY(!f.item("speaker")->isVisible());
        QCOMPARE(f.item("confidenceTime")->property("text").toString(), QStringLiteral("00:00"));
        KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(f.item("confidenceTime")), bgDeep),
                              toQColor(AppTheme::textMuted));
    }

    void atTheLastCueThereIsNoNextLabel()
    {
        DisplayFixture f("ConfidenceWindow.qml", QSize(1920, 1080));
        runShow(f, 1s);
        QVERIFY(f.item("next")->isVisible());
        f.engine.next();
        QCoreApplication::processEvents();
        QVERIFY(!f.item("next")->isVisible());
        DisplayFixture::keep(f.grab(), "confidence-last-cue-1080p");
    }

    void theStageBlackoutBlinkDoorsAndClockModeChangeNothingHere()
    {
        DisplayFixture f("ConfidenceWindow.qml", QSize(1920, 1080));
        runShow(f, 100s);
        const QImage before = f.grab();
        f.engine.setBlackout(true);
        f.engine.setClockMode(true);
        f.engine.startDoors(QDateTime(QDate(2026, 11, 21), QTime(22, 0), QTimeZone("Europe/Paris")));
        f.engine.triggerBlink(5);
        f.advance(150ms);
        const QImage during = f.grab();
        DisplayFixture::keep(during, "confidence-stage-blackout-1080p");
        QCOMPARE(f.item("confidenceTime")->property("text").toString(), QStringLiteral("08:19"));
        const QRect time = f.sceneRect(f.item("confidenceTime"));
        QCOMPARE(dominantColour(during, time, bgDeep), dominantColour(before, time, bgDeep));
        QCOMPARE(QColor(during.pixel(10, 500)), bgDeep);
    }

    void anUrgentMessageIsSteadyRedAndOvertimeIsRed()
    {
        DisplayFixture f("ConfidenceWindow.qml", QSize(1920, 1080));
        runShow(f, 612s);
        f.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        QCoreApplication::processEvents();
        const QColor red = toQColor(AppTheme::stateOvertime);
        for (int i = 0; i < 3; ++i) { // no pulse, whatever the time
            const QImage shot = f.grab();
            if (i == 0)
                DisplayFixture::keep(shot, "confidence-urgent-overtime-1080p");
            KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(f.item("message")), bgDeep), red);
            KAIRON_COMPARE_COLOUR(dominantColour(shot, f.sceneRect(f.item("confidenceTime")), bgDeep), red);
            QCOMPARE(f.item("message")->opacity(), 1.0);
            f.advance(600ms);
        }
        QCOMPARE(f.item("confidenceTime")->property("text").toString(), QStringLiteral("-00:13"));
    }
};

QTEST_MAIN(TestConfidenceView)
#include "tst_confidenceview.moc"
