// What the operator reads on the console: the overtime as it shows, the cue list growing with
// the window so that long names show whole, a hard-out cue's end time, and every cut name whole
// under the pointer.
#include "consolefixture.h"
#include "settingssandbox.h"


using namespace std::chrono_literals;

namespace {

const QColor panel(26, 26, 30);
const QColor secondary(184, 184, 192);
const QColor overtimeRed(255, 59, 48);
const QColor warningYellow(241, 196, 15);
const QColor dangerRed(231, 76, 60);
const QColor successGreen(46, 204, 113);

QList<Cue> gala(int count)
{
    QList<Cue> cues;
    for (int i = 1; i <= count; ++i) {
        Cue cue = durationCue(QStringLiteral("Intervention %1 — table ronde des partenaires").arg(i), 600);
        cue.speaker = QStringLiteral("Intervenant %1").arg(i);
        cues << cue;
    }
    return cues;
}

Cue hardOutAt(const QString &name, QTime end)
{
    Cue cue = durationCue(name, 900);
    cue.mode = TimerMode::HardOut;
    cue.hardOutTime = QDateTime(QDate(2026, 11, 21), end, QTimeZone("Europe/Paris"));
    return cue;
}

// A property of an item's attached ToolTip (the object QML attaches to it).
QVariant toolTip(QQuickItem *item, const char *property)
{
    for (QObject *child : item->children())
        if (qstrcmp(child->metaObject()->className(), "QQuickToolTipAttached") == 0)
            return child->property(property);
    return {};
}

} // namespace

class TestConsoleReadout : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void anOnTimeAutoFollowIsNoOvertime()
    {
        QList<Cue> cues{durationCue("Ouverture", 60, 20, 10, true), durationCue("Keynote", 60),
                        durationCue("Clôture", 60)};
        Console c(cues);
        c.engine.start(0);
        c.clock.advance(60016ms); // handed over 16 ms past zero
        QTRY_COMPARE(c.engine.activeCueIndex(), 1);
        QCOMPARE(c.engine.completedCueLog().size(), 1);
        QVERIFY(c.engine.totalOvertime() > 0.0159 && c.engine.totalOvertime() < 0.0161);
        QTRY_COMPARE(c.text("totalOvertime"), QStringLiteral("Dépassement total : 00:00"));
        QVERIFY(!c.item("consoleDrift")->isVisible());
        KAIRON_COMPARE_COLOUR(c.colourOf("totalOvertime", c.shot(), panel), secondary);
        keepScreenshot(c.shot(), "console-overtime-16ms");

        // One whole second over, on the next cue: now it shows, and in red.
        c.clock.advance(60984ms);
        c.engine.next();
        QTRY_COMPARE(c.text("totalOvertime"), QStringLiteral("Dépassement total : 00:01"));
        QCOMPARE(c.text("consoleDrift"), QStringLiteral("(+00:01 de drift)"));
        QVERIFY(c.item("consoleDrift")->isVisible());
        KAIRON_COMPARE_COLOUR(c.colourOf("totalOvertime", c.shot(), panel), overtimeRed);
        keepScreenshot(c.shot(), "console-overtime-1s");
    }

    // Beside "Fin journée", how the show runs against its planned start: nothing without one,
    // "À l'heure" within 30 s, late in yellow from 2 min and red from 5, early in green.
    void theConsoleSaysWhetherTheShowIsLate()
    {
        const QColor &bg = panel; // the timer's panel
        Console c({durationCue("Accueil", 600), durationCue("Discours", 900), durationCue("Clôture", 300)});
        QVERIFY(!c.item("consoleSchedule")->isVisible());

        TimerSession planned = c.engine.session();
        planned.scheduledStart = c.clock.now().addSecs(60); // 14:01
        c.engine.updateProjectInfo(planned);
        QTRY_COMPARE(c.text("consoleSchedule"), QStringLiteral("À l'heure"));
        QVERIFY(c.item("consoleSchedule")->isVisible());
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleSchedule", c.shot(), bg), secondary);

        // Started a minute early: green.
        c.engine.start(0);
        QTRY_COMPARE(c.text("consoleSchedule"), QStringLiteral("Avance : \u221201:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleSchedule", c.shot(), bg), successGreen);
        keepScreenshot(c.shot(), "console-schedule-early");

        // Accueil runs to 14:13:30, three and a half minutes past its planned end (14:11): yellow.
        c.clock.advance(13min + 30s);
        QTRY_COMPARE(c.text("consoleSchedule"), QStringLiteral("Retard : +02:30"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleSchedule", c.shot(), bg), warningYellow);
        keepScreenshot(c.shot(), "console-schedule-late");

        // Left at 14:16: five minutes late, red, and so it stays while the operator waits.
        c.clock.advance(2min + 30s);
        c.engine.stop();
        QTRY_COMPARE(c.text("consoleSchedule"), QStringLiteral("Retard : +05:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleSchedule", c.shot(), bg), dangerRed);
        keepScreenshot(c.shot(), "console-schedule-very-late");
        c.clock.advance(1min);
        QTRY_COMPARE(c.text("consoleSchedule"), QStringLiteral("Retard : +06:00"));
    }

    void theListGrowsWithTheWindow_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("listWidth");
        QTest::newRow("1150") << QSize(1150, 750) << 380;
        QTest::newRow("1440") << QSize(1440, 900) << 513;
        QTest::newRow("1920") << QSize(1920, 1080) << 768;
        QTest::newRow("3840") << QSize(3840, 2160) << 800;
    }

    void theListGrowsWithTheWindow()
    {
        QFETCH(QSize, size);
        QFETCH(int, listWidth);
        QList<Cue> cues = gala(20);
        cues[3] = hardOutAt(QStringLiteral("Discours de clôture du président"), QTime(23, 30));
        Console c(cues, size);
        c.engine.start(8);
        QCOMPARE(qRound(c.item("cueListPanel")->width()), listWidth);
        if (size.width() >= 1920) {
            // Every name and the next cue whole.
            for (int row = 0; row < 20; ++row) {
                const QByteArray name = "cueName" + QByteArray::number(row);
                if (c.item(name))
                    QVERIFY2(!c.item(name)->property("truncated").toBool(), name);
            }
            QCOMPARE(c.text("consoleNext"), QStringLiteral("Suivant : Intervention 10 — table ronde des partenaires"));
            QVERIFY(!c.item("consoleNext")->property("truncated").toBool());
        }
        keepScreenshot(c.shot(), QStringLiteral("console-long-names-") + QTest::currentDataTag());
    }

    void aHardOutRowShowsWhenItEnds()
    {
        Console c({durationCue("Accueil", 300), hardOutAt(QStringLiteral("Clôture"), QTime(23, 30))});
        QCOMPARE(c.text("cueEnd1"), QStringLiteral("→ 23:30"));
        QVERIFY(c.item("cueEnd1")->isVisible());
        QVERIFY(!c.item("cueEnd0")->isVisible());
        // The end follows an edit of the cue.
        Cue edited = c.engine.session().cues[1];
        edited.hardOutTime = QDateTime(QDate(2026, 11, 21), QTime(0, 15), QTimeZone("Europe/Paris"));
        c.engine.updateCue(edited);
        QTRY_COMPARE(c.text("cueEnd1"), QStringLiteral("→ 00:15"));
    }

    void aCutNameShowsWholeUnderThePointer()
    {
        const QString longName = QStringLiteral("Hommage à Geneviève Œttinger (1932–2024), par ses élèves et amis du conservatoire");
        QList<Cue> cues{durationCue(longName, 600), durationCue(longName + QStringLiteral(" — suite"), 600)};
        Console c(cues);
        QQuickItem *name = c.item("cueName0");
        QVERIFY(name->property("truncated").toBool());
        QVERIFY(!toolTip(name, "visible").toBool());
        QTest::mouseMove(c.operatorWindow, Console::centre(name));
        QTRY_VERIFY(toolTip(name, "visible").toBool());
        QCOMPARE(toolTip(name, "text").toString(), longName);
        keepScreenshot(c.shot(), "console-cut-name-tooltip");

        // What comes next, cut in the timer's context line, likewise; and it stays in its panel.
        QQuickItem *next = c.item("consoleNext");
        QVERIFY(next->property("truncated").toBool());
        const QRectF box = next->mapRectToScene(QRectF(0, 0, next->width(), next->height()));
        const QQuickItem *panelItem = c.item("consoleTime");
        const QRectF timerBox = panelItem->mapRectToScene(QRectF(0, 0, panelItem->width(), panelItem->height()));
        QVERIFY2(box.right() <= timerBox.right() + 1, qPrintable(QString::number(box.right())));
        QTest::mouseMove(c.operatorWindow, Console::centre(next));
        QTRY_VERIFY(toolTip(next, "visible").toBool());
        QCOMPARE(toolTip(next, "text").toString(), QStringLiteral("Suivant : ") + cues[1].name);
        // A name that fits has no tooltip.
        QQuickItem *elapsed = c.item("consoleElapsed");
        QTest::mouseMove(c.operatorWindow, Console::centre(elapsed));
        QTRY_VERIFY(!toolTip(next, "visible").toBool());
    }

private:
    std::unique_ptr<SettingsSandbox> m_settings;
};

QTEST_MAIN(TestConsoleReadout)
#include "tst_consolereadout.moc"
