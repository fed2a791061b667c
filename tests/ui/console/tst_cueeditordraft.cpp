#include "cuedraft.h"
#include "manualclock.h"

#include <QSignalSpy>
#include <QTest>

namespace {

const QTimeZone paris("Europe/Paris");

// Saturday 21 November 2026, 20:30:15 in Paris; the clock hands out UTC instants and keeps
// the user's calendar apart, as the real one does.
ManualClock parisClock()
{
    return ManualClock(QDateTime(QDate(2026, 11, 21), QTime(20, 30, 15), paris).toUTC(), paris);
}

QDateTime inParis(int hour, int minute, QDate day = QDate(2026, 11, 21))
{
    return QDateTime(day, QTime(hour, minute), paris);
}

} // namespace

// The cue editor's working copy: how a cue opens in the editor and what saving gives back.
class TestCueEditorDraft : public QObject
{
    Q_OBJECT

private slots:
    void aDurationOpensInWholeSecondsAndSavesAsShown_data()
    {
        QTest::addColumn<double>("duration");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<double>("saved");
        QTest::newRow("59.9 s") << 59.9 << 0 << 59 << 59.0;
        QTest::newRow("10 min") << 600.0 << 10 << 0 << 600.0;
        QTest::newRow("61 s") << 61.0 << 1 << 1 << 61.0;
        QTest::newRow("just under an hour") << 3599.999 << 59 << 59 << 3599.0;
        QTest::newRow("nothing") << 0.0 << 0 << 0 << 0.0;
    }

    void aDurationOpensInWholeSecondsAndSavesAsShown()
    {
        QFETCH(double, duration);
        QFETCH(int, minutes);
        QFETCH(int, seconds);
        QFETCH(double, saved);
        ManualClock clock = parisClock();
        Cue cue;
        cue.duration = duration;
        CueDraft draft;
        draft.load(cue, clock);
        QCOMPARE(draft.minutes(), minutes);
        QCOMPARE(draft.seconds(), seconds);
        QCOMPARE(draft.result().duration, saved);
    }

    void aLongCueOpensWholeAndItsMinutesCanOnlyGoDown()
    {
        ManualClock clock = parisClock();
        Cue cue;
        cue.duration = 302 * 60 + 5;
        CueDraft draft;
        draft.load(cue, clock);
        QCOMPARE(draft.minutes(), 302);
        draft.stepMinutes(+1);
        QCOMPARE(draft.minutes(), 302);
        draft.setMinutes(350);
        QCOMPARE(draft.minutes(), 302);
        draft.setMinutes(301);
        QCOMPARE(draft.minutes(), 301);
        draft.stepMinutes(-1);
        QCOMPARE(draft.minutes(), 300);
        draft.stepMinutes(+1);
        QCOMPARE(draft.minutes(), 300);
        draft.setMinutes(400);
        QCOMPARE(draft.minutes(), 300);
        QCOMPARE(draft.result().duration, 300 * 60 + 5.0);
    }

    void theDurationStepsKeepToTheirRanges()
    {
        ManualClock clock = parisClock();
        CueDraft draft;
        draft.load(Cue{}, clock); // 10 min 0 s
        draft.stepSeconds(-1);
        QCOMPARE(draft.seconds(), 0);
        draft.setSeconds(75);
        QCOMPARE(draft.seconds(), 59);
        draft.stepSeconds(+1);
        QCOMPARE(draft.seconds(), 59);
        draft.setMinutes(-4);
        QCOMPARE(draft.minutes(), 0);
        draft.stepMinutes(-1);
        QCOMPARE(draft.minutes(), 0);
        draft.setMinutes(299);
        draft.stepMinutes(+1);
        draft.stepMinutes(+1);
        QCOMPARE(draft.minutes(), 300);
        QCOMPARE(draft.result().duration, 300 * 60 + 59.0);
    }

    void thresholdsStepWithinAnHour_data()
    {
        QTest::addColumn<bool>("warning");
        QTest::addColumn<double>("from");
        QTest::addColumn<int>("direction");
        QTest::addColumn<double>("to");
        QTest::newRow("warning up by 30") << true << 120.0 << 1 << 150.0;
        QTest::newRow("warning down by 30") << true << 120.0 << -1 << 90.0;
        QTest::newRow("warning stops at 3600") << true << 3590.0 << 1 << 3600.0;
        QTest::newRow("warning stays at 3600") << true << 3600.0 << 1 << 3600.0;
        QTest::newRow("warning stops at 0") << true << 20.0 << -1 << 0.0;
        QTest::newRow("warning stays at 0") << true << 0.0 << -1 << 0.0;
        QTest::newRow("danger up by 15") << false << 30.0 << 1 << 45.0;
        QTest::newRow("danger down by 15") << false << 30.0 << -1 << 15.0;
        QTest::newRow("danger stops at 3600") << false << 3595.0 << 1 << 3600.0;
        QTest::newRow("danger stops at 0") << false << 10.0 << -1 << 0.0;
        QTest::newRow("a loaded 5000 only comes down") << false << 5000.0 << 1 << 5000.0;
        QTest::newRow("a loaded 5000 comes down to 3600") << true << 5000.0 << -1 << 3600.0;
        QTest::newRow("a loaded -20 only goes up") << true << -20.0 << -1 << -20.0;
        QTest::newRow("a loaded -20 comes up to 0") << false << -20.0 << 1 << 0.0;
    }

    void thresholdsStepWithinAnHour()
    {
        QFETCH(bool, warning);
        QFETCH(double, from);
        QFETCH(int, direction);
        QFETCH(double, to);
        ManualClock clock = parisClock();
        Cue cue;
        (warning ? cue.warningThreshold : cue.dangerThreshold) = from;
        CueDraft draft;
        draft.load(cue, clock);
        if (warning)
            draft.stepWarningThreshold(direction);
        else
            draft.stepDangerThreshold(direction);
        QCOMPARE(warning ? draft.warningThreshold() : draft.dangerThreshold(), to);
        QCOMPARE(warning ? draft.result().warningThreshold : draft.result().dangerThreshold, to);
    }

    // The two thresholds are never checked against each other or against the duration.
    void thresholdsAreNotCheckedAgainstEachOther()
    {
        ManualClock clock = parisClock();
        Cue cue;
        cue.duration = 60;
        CueDraft draft;
        draft.load(cue, clock);
        draft.setWarningThreshold(30);
        draft.setDangerThreshold(900);
        draft.setWarningThreshold(4000);
        QCOMPARE(draft.result().warningThreshold, 3600.0);
        QCOMPARE(draft.result().dangerThreshold, 900.0);
        QCOMPARE(draft.result().duration, 60.0);
    }

    void theHardOutTimeStaysWhenTheCueGoesBackToDuration()
    {
        ManualClock clock = parisClock();
        Cue cue;
        cue.mode = TimerMode::HardOut;
        cue.hardOutTime = inParis(22, 15);
        CueDraft draft;
        draft.load(cue, clock);
        QCOMPARE(draft.hardOutHour(), 22);
        QCOMPARE(draft.hardOutMinute(), 15);
        draft.setHardOutMode(false);
        Cue saved = draft.result();
        QCOMPARE(saved.mode, TimerMode::Duration);
        QCOMPARE(saved.hardOutTime, inParis(22, 15));

        // A time picked before going back to duration is kept too: the picker writes at once.
        draft.setHardOutMode(true);
        draft.setHardOutTimeOfDay(23, 5);
        draft.setHardOutMode(false);
        saved = draft.result();
        QCOMPARE(saved.mode, TimerMode::Duration);
        QCOMPARE(saved.hardOutTime, inParis(23, 5));
    }

    void aCueWithoutEndTimeStartsThePickerAtNow()
    {
        ManualClock clock = parisClock();
        CueDraft draft;
        draft.load(Cue{}, clock);
        QCOMPARE(draft.hardOut(), clock.now());
        QCOMPARE(draft.hardOutHour(), 20);
        QCOMPARE(draft.hardOutMinute(), 30);
        // Untouched in duration mode, the cue still has no end time.
        QVERIFY(!draft.result().hardOutTime);
        draft.setHardOutMode(true);
        const Cue saved = draft.result();
        QCOMPARE(saved.mode, TimerMode::HardOut);
        QCOMPARE(saved.hardOutTime, clock.now());
    }

    void thePickerWritesTheEndTimeAtOnce()
    {
        ManualClock clock = parisClock();
        CueDraft draft;
        draft.load(Cue{}, clock);
        QSignalSpy changes(&draft, &CueDraft::hardOutChanged);
        draft.setHardOutTimeOfDay(21, 45);
        QCOMPARE(changes.count(), 1);
        QCOMPARE(draft.result().hardOutTime, inParis(21, 45));
        draft.setHardOutHour(7);
        QCOMPARE(draft.result().hardOutTime, inParis(7, 45));
        draft.setHardOutMinute(0);
        QCOMPARE(draft.result().hardOutTime, inParis(7, 0));
        const QDateTime elsewhere = inParis(9, 10, QDate(2026, 12, 24));
        draft.setHardOut(elsewhere);
        QCOMPARE(draft.result().hardOutTime, elsewhere);
        QCOMPARE(draft.hardOutHour(), 9);
    }

    // The machine runs in Los Angeles during the tests: the hour must come from the calendar
    // the draft is given.
    void timesOfDayAreReadInTheUsersCalendar_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<int>("hour");
        QTest::addColumn<QDate>("day");
        QTest::newRow("Paris") << QByteArray("Europe/Paris") << 21 << QDate(2026, 11, 21);
        QTest::newRow("Tokyo") << QByteArray("Asia/Tokyo") << 5 << QDate(2026, 11, 22);
        QTest::newRow("Montreal") << QByteArray("America/Montreal") << 15 << QDate(2026, 11, 21);
    }

    void timesOfDayAreReadInTheUsersCalendar()
    {
        QFETCH(QByteArray, zone);
        QFETCH(int, hour);
        QFETCH(QDate, day);
        const QDateTime instant(QDate(2026, 11, 21), QTime(20, 0), Qt::UTC);
        Cue cue;
        cue.mode = TimerMode::HardOut;
        cue.hardOutTime = instant;
        CueDraft draft{QTimeZone(zone)};
        draft.load(cue, instant);
        QCOMPARE(draft.hardOutHour(), hour);
        QCOMPARE(draft.hardOutMinute(), 0);
        draft.setHardOutMinute(40);
        QCOMPARE(*draft.result().hardOutTime, QDateTime(day, QTime(hour, 40), QTimeZone(zone)));
    }

    void theAutomaticColourIsNoColour()
    {
        ManualClock clock = parisClock();
        Cue cue;
        cue.colorHex = QStringLiteral("#FF6B00");
        CueDraft draft;
        draft.load(cue, clock);
        QCOMPARE(draft.colorHex(), QStringLiteral("#FF6B00"));
        draft.setColorHex(QString());
        QCOMPARE(draft.colorHex(), QString());
        QCOMPARE(draft.result().colorHex, std::nullopt);
        draft.setColorHex(QStringLiteral("#3498DB"));
        QCOMPARE(draft.result().colorHex, std::optional<QString>(QStringLiteral("#3498DB")));
    }

    void thePaletteHasEightColoursInOrder()
    {
        const QList<QPair<QString, QString>> expected{
            {"Vert", "#2ECC71"},  {"Orange Orv", "#FF6B00"}, {"Blanc", "#FFFFFF"},
            {"Bleu", "#3498DB"},  {"Cyan", "#1ABC9C"},       {"Violet", "#9B59B6"},
            {"Rose", "#FF2D78"},  {"Jaune", "#F1C40F"},
        };
        const auto &palette = CueDraft::palette();
        QCOMPARE(palette.size(), size_t(expected.size()));
        CueDraft draft;
        const QVariantList forViews = draft.paletteList();
        QCOMPARE(forViews.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            QCOMPARE(palette[i].name, expected[i].first);
            QCOMPARE(palette[i].hex, expected[i].second);
            QCOMPARE(forViews[i].toMap().value("name").toString(), expected[i].first);
            QCOMPARE(forViews[i].toMap().value("hex").toString(), expected[i].second);
        }
    }

    void textIsKeptAsTyped()
    {
        ManualClock clock = parisClock();
        CueDraft draft;
        draft.load(Cue{}, clock);
        draft.setName(QStringLiteral("  Gala  "));
        draft.setSpeaker(QStringLiteral(" "));
        draft.setName(draft.name()); // no change, no signal needed
        draft.setNotes(QStringLiteral("\tmicro HF 2\n"));
        const Cue saved = draft.result();
        QCOMPARE(saved.name, QStringLiteral("  Gala  "));
        QCOMPARE(saved.speaker, QStringLiteral(" "));
        QCOMPARE(saved.notes, QStringLiteral("\tmicro HF 2\n"));
        draft.setName(QString());
        QCOMPARE(draft.result().name, QString());
    }

    // Everything the editor does not show (identity, what the cue did when it ran) passes
    // through, and a cue of whole seconds comes back equal.
    void anUntouchedCueComesBackUnchanged()
    {
        ManualClock clock = parisClock();
        Cue cue;
        cue.name = QStringLiteral("Table ronde");
        cue.speaker = QStringLiteral("Léa Martin");
        cue.mode = TimerMode::HardOut;
        cue.duration = 1805;
        cue.hardOutTime = inParis(21, 30);
        cue.warningThreshold = 300;
        cue.dangerThreshold = 60;
        cue.autoFollow = true;
        cue.notes = QStringLiteral("Micro main");
        cue.colorHex = QStringLiteral("#9B59B6");
        cue.actualElapsed = 1700.5;
        cue.overtime = 0;
        CueDraft draft;
        draft.load(cue, clock);
        QCOMPARE(draft.result(), cue);
    }

    void loadingAnnouncesEveryField()
    {
        ManualClock clock = parisClock();
        CueDraft draft;
        QSignalSpy names(&draft, &CueDraft::nameChanged);
        QSignalSpy minutes(&draft, &CueDraft::minutesChanged);
        QSignalSpy colours(&draft, &CueDraft::colorHexChanged);
        QSignalSpy hardOut(&draft, &CueDraft::hardOutChanged);
        draft.load(Cue{}, clock);
        QCOMPARE(names.count(), 1);
        QCOMPARE(minutes.count(), 1);
        QCOMPARE(colours.count(), 1);
        QCOMPARE(hardOut.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCueEditorDraft)
#include "tst_cueeditordraft.moc"
