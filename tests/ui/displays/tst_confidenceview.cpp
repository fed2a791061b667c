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
        // No start time, no schedule line.
        QVERIFY(!f.item("confidenceSchedule")->isVisible());
    }

    // A long message is shown whole, wrapped on up to three lines and then smaller, at the
    // bottom right; the time stays whole above it.
    void aLongMessageIsShownWholeAndNeverHidesTheTime_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QString>("message");
        const QString sixtyFive = QStringLiteral("Merci de conclure, il reste deux minutes avant la pause déjeuner");
        const QString hundredFifty = sixtyFive + QStringLiteral(
            " ; les lauréats sont attendus en coulisses pour la photographie officielle à 13 h 30 !");
        for (const QSize size : {QSize(1920, 1080), QSize(3840, 2160), QSize(1150, 750), QSize(844, 390),
                                 QSize(390, 844)}) {
            QTest::addRow("65 characters %dx%d", size.width(), size.height()) << size << sixtyFive;
            QTest::addRow("150 characters %dx%d", size.width(), size.height()) << size << hundredFifty;
        }
    }

    void aLongMessageIsShownWholeAndNeverHidesTheTime()
    {
        QFETCH(QSize, size);
        QFETCH(QString, message);
        DisplayFixture f("ConfidenceWindow.qml", size);
        runShow(f, 100s);
        f.engine.sendMessage(message, false);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, QStringLiteral("confidence-message-%1-%2x%3")
                                       .arg(message.size()).arg(size.width()).arg(size.height()));

        // Whole: every character laid out, nothing elided, inside its box and the window.
        QQuickItem *text = f.item("message");
        QCOMPARE(text->property("text").toString(), message);
        QVERIFY(!text->property("truncated").toBool());
        QVERIFY(text->property("contentWidth").toDouble() <= text->width() + 0.5);
        QVERIFY(text->property("contentHeight").toDouble() <= text->height() + 0.5);
        const int lines = text->property("lineCount").toInt();
        const int natural = text->property("naturalLines").toInt();
        QVERIFY(natural >= 2);
        // Up to three lines at its size, more only smaller.
        QCOMPARE(text->property("shrunk").toBool(), natural > 3);
        QCOMPARE(pixelSize(text), qRound(size.width() * 0.03));
        if (natural <= 3)
            QCOMPARE(lines, natural);

        // Drawn: the message's ink spans its lines, within the window.
        const double drawnHeight = text->property("drawnHeight").toDouble();
        const QRect box = sceneBounds(text);
        const QRect drawn(box.left(), qFloor(box.center().y() - drawnHeight / 2), box.width(), qCeil(drawnHeight));
        QVERIFY(drawn.top() >= 0 && drawn.bottom() < size.height() && box.left() >= 0 && box.right() < size.width());
        const QRect ink = inkOf(shot, drawn, toQColor(AppTheme::accent), 6);
        const double lineHeight = text->property("contentHeight").toDouble() / lines;
        QVERIFY2(ink.height() > (lines - 1) * lineHeight,
                 qPrintable(QStringLiteral("ink %1 high for %2 lines of %3").arg(ink.height()).arg(lines).arg(lineHeight)));

        // The time whole: under the wall clock, above the message, in the window.
        QQuickItem *time = f.item("confidenceTime");
        QCOMPARE(time->property("text").toString(), QStringLiteral("08:20"));
        const QRect timeRect = sceneBounds(time);
        QVERIFY2(timeRect.top() >= sceneBounds(f.item("wallClock")).bottom() && timeRect.bottom() < drawn.top(),
                 qPrintable(QStringLiteral("time %1..%2, message from %3").arg(timeRect.top()).arg(timeRect.bottom()).arg(drawn.top())));
        const QRect digits = inkOf(shot, timeRect, toQColor(AppTheme::stateNormal), 6);
        QVERIFY(digits.top() > timeRect.top() && digits.bottom() < timeRect.bottom());
        QVERIFY2(digits.width() > size.width() * 0.2, qPrintable(QString::number(digits.width())));
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

    // Under the wall clock, the show against its timetable in whole minutes, coloured as on the
    // console: on time, early in green, late in yellow from 2 min and red from 5.
    void theSpeakerReadsWhetherTheShowIsLate_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QTime>("plannedStart");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QColor>("colour");
        for (const QSize size : {QSize(1920, 1080), QSize(1280, 720)}) {
            const QByteArray tag = size.width() == 1920 ? "1080p" : "720p";
            // The cue starts at 20:30:15.
            QTest::newRow(tag + " on time") << size << QTime(20, 30) << QStringLiteral("Programme : à l'heure")
                                            << toQColor(AppTheme::textSecondary);
            QTest::newRow(tag + " late") << size << QTime(20, 26) << QStringLiteral("Programme : +4 min de retard")
                                         << toQColor(AppTheme::stateWarning);
            QTest::newRow(tag + " very late") << size << QTime(20, 24)
                                              << QStringLiteral("Programme : +6 min de retard")
                                              << toQColor(AppTheme::stateDanger);
            QTest::newRow(tag + " early") << size << QTime(20, 32, 15)
                                          << QStringLiteral("Programme : 2 min d'avance") << toQColor(AppTheme::success);
        }
    }

    void theSpeakerReadsWhetherTheShowIsLate()
    {
        QFETCH(QSize, size);
        QFETCH(QTime, plannedStart);
        QFETCH(QString, text);
        QFETCH(QColor, colour);
        DisplayFixture f("ConfidenceWindow.qml", size);
        TimerSession show = showOf({speakerCue("Ouverture", "Claire Martin", 600),
                                    speakerCue("Table ronde", "Invités", 1800)});
        show.scheduledStart = QDateTime(QDate(2026, 11, 21), plannedStart, QTimeZone("Europe/Paris"));
        f.engine.loadSession(show);
        f.engine.start(0);
        f.advance(20s);
        const QImage shot = f.grab();
        DisplayFixture::keep(shot, "confidence-schedule-" + QString::fromLatin1(QTest::currentDataTag()).replace(' ', '-'));

        QQuickItem *line = f.item("confidenceSchedule");
        QVERIFY(line->isVisible());
        QCOMPARE(line->property("text").toString(), text);
        QCOMPARE(pixelSize(line), qRound(size.width() * 0.03));
        const QRect rect = f.sceneRect(line);
        QCOMPARE(rect.left(), 30);
        QCOMPARE(rect.top(), f.sceneRect(f.item("wallClock")).bottom() + 1);
        KAIRON_COMPARE_COLOUR(dominantColour(shot, rect, bgDeep), colour);
        // The cue's name and time stay below it, whole.
        QVERIFY(f.sceneRect(f.item("cueName")).top() > rect.bottom());
        QVERIFY(QRect(QPoint(), size).contains(f.sceneRect(f.item("confidenceTime"))));
    }

    // Before the first cue, the show falls behind its start with every second of the clock.
    void theLineMovesWithTheClockBeforeTheFirstCue()
    {
        DisplayFixture f("ConfidenceWindow.qml", QSize(1920, 1080));
        TimerSession show = showOf({speakerCue("Ouverture", "Claire Martin", 600)});
        show.scheduledStart = QDateTime(QDate(2026, 11, 21), QTime(20, 25), QTimeZone("Europe/Paris"));
        f.engine.loadSession(show);
        QCoreApplication::processEvents();
        QQuickItem *line = f.item("confidenceSchedule");
        QCOMPARE(line->property("text").toString(), QStringLiteral("Programme : +5 min de retard"));
        f.advance(75s); // 6 min 30 s
        QCoreApplication::processEvents();
        QCOMPARE(line->property("text").toString(), QStringLiteral("Programme : +7 min de retard"));
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
