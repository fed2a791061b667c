#include "confidencepresenter.h"
#include "consolefixture.h"
#include "fulldisk.h"
#include "pixels.h"
#include "projectdocument.h"
#include "settingssandbox.h"
#include "stagepresenter.h"
#include "theme.h"
#include "uuidtext.h"

#include <QDir>
#include <QSignalSpy>

using namespace std::chrono_literals;

// The console through the real operator window: clicks and keys on its items, a real engine on
// a hand-moved clock, real files in a temporary home.
class TestConsole : public QObject
{
    Q_OBJECT

    // Types ASCII text as key presses, as a person does.
    static void type(QWindow *window, const char *text)
    {
        for (const char *c = text; *c; ++c)
            QTest::keyClick(window, *c);
    }

    static Cue colouredCue(const QString &name, const QString &hex)
    {
        Cue cue = durationCue(name, 600);
        cue.colorHex = hex;
        return cue;
    }

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void anEmptyShowShowsTheHint()
    {
        Console c({});
        QVERIFY(c.item("emptyCueList")->isVisible());
        QCOMPARE(c.text("emptyCueHint"),
                 QStringLiteral("Ajoute un cue avec le bouton + ci-dessus\n(modèle ou cue vide)."));
        QCOMPARE(c.text("consoleCueName"), QStringLiteral("Aucun cue actif"));
        keepScreenshot(c.shot(), QStringLiteral("console-empty-preview"));
        c.click("addCue");
        QTRY_VERIFY(c.shown("addBlankCue"));
        keepScreenshot(c.shot(), QStringLiteral("console-add-menu-preview"));
        c.click("addBlankCue");
        QCOMPARE(c.engine.session().cues.size(), 1);
        QTRY_VERIFY(!c.item("emptyCueList")->isVisible());
        QCOMPARE(c.text("cueName0"), QStringLiteral("Nouveau cue"));
    }

    void theTemplatesAreInTheAddMenuWithTheirLength()
    {
        Console c({});
        c.click("addCue");
        QTRY_VERIFY(c.shown("addTemplate0"));
        const CueTemplate first = c.engine.templates().first();
        QCOMPARE(c.item("addTemplate0")->property("text").toString(),
                 first.name + " · " + TimerEngine::format(first.duration, false));
        c.click("addTemplate0");
        QCOMPARE(c.engine.session().cues.size(), 1);
        QCOMPARE(c.engine.session().cues[0].name, first.name);
        QCOMPARE(c.engine.session().cues[0].duration, first.duration);
    }

    // A "&" in a template's name is shown as such, not taken as a key mnemonic that would hide it.
    void anAmpersandInATemplateNameIsShownAsTyped()
    {
        Console c({});
        c.click("addCue");
        QTRY_VERIFY(c.shown("addTemplate2"));
        QCOMPARE(c.engine.templates()[2].name, QStringLiteral("Q&A 10 min"));
        QQuickItem *entry = c.item("addTemplate2");
        QCOMPARE(entry->property("text").toString(), QStringLiteral("Q&&A 10 min · 10:00"));
        // What the entry draws is as wide as the name written plainly in the same font: the
        // "&" is drawn, and no letter is taken for a mnemonic.
        QQuickItem *label = entry->property("contentItem").value<QQuickItem *>();
        QQmlComponent component(&c.qml);
        component.setData("import QtQuick\nText { textFormat: Text.PlainText }", QUrl());
        std::unique_ptr<QObject> plain(component.create());
        plain->setProperty("font", label->property("font"));
        plain->setProperty("text", QStringLiteral("Q&A 10 min · 10:00"));
        QVERIFY(qAbs(label->implicitWidth() - plain->property("implicitWidth").toDouble()) < 1);
    }

    // The time's colour at each threshold, read from the pixels of its digits.
    void theTimeTakesTheStateColour()
    {
        Console c({durationCue("Keynote", 300, 120, 30), colouredCue("Table ronde", "#3498DB")});
        const QColor panel(26, 26, 30);
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(112, 112, 120));
        c.engine.start(0);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("05:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(46, 204, 113));
        // Half-second steps: the last tick before each instant shows an unambiguous second.
        c.clock.advance(184500ms);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("01:55"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(241, 196, 15));
        keepScreenshot(c.shot(), QStringLiteral("console-warning-preview"));
        c.clock.advance(90s);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("00:25"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(231, 76, 60));
        c.clock.advance(31s);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("-00:05"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(255, 59, 48));
        c.engine.start(1);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("10:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("consoleTime", c.shot(), panel), QColor(0x34, 0x98, 0xDB));
    }

    void theContextLineFollowsTheShow()
    {
        Console c({durationCue("Ouverture", 60), durationCue("Keynote", 1200)});
        c.engine.start(0);
        c.clock.advance(90500ms); // 30.5 s over
        QTRY_COMPARE(c.text("consoleElapsed"), QStringLiteral("Écoulé : 01:30"));
        QCOMPARE(c.text("consoleNext"), QStringLiteral("Suivant : Keynote"));
        QCOMPARE(c.text("consoleDayEnd"),
                 QStringLiteral("Fin journée : ") + Fmt::hhmm().string(c.engine.projectedDayEnd()));
        c.engine.next(); // the overtime is now counted
        QTRY_COMPARE(c.text("consoleDrift"), QStringLiteral("(+00:30 de drift)"));
        QVERIFY(c.item("consoleDrift")->isVisible());
        QVERIFY(!c.item("consoleNext")->isVisible());
        QCOMPARE(c.text("totalOvertime"), QStringLiteral("Dépassement total : 00:30"));
        const QImage image = c.shot();
        KAIRON_COMPARE_COLOUR(c.colourOf("totalOvertime", image, QColor(26, 26, 30)), QColor(255, 59, 48));
        QCOMPARE(c.text("cueActual0"), QStringLiteral("Réel 01:30 · +00:30"));
    }

    void theFooterIsCalmWithoutOvertime()
    {
        Console c({durationCue("Ouverture", 60)});
        QCOMPARE(c.text("totalOvertime"), QStringLiteral("Dépassement total : 00:00"));
        KAIRON_COMPARE_COLOUR(c.colourOf("totalOvertime", c.shot(), QColor(26, 26, 30)),
                              QColor(184, 184, 192));
    }

    void theBadgesShowTheOutputStates()
    {
        Console c({durationCue("Keynote", 600)});
        for (const char *badge : {"badgeBLACKOUT", "badgeFREEZE", "badgeHORLOGE", "badgePAUSE"})
            QVERIFY(!c.item(badge)->isVisible());
        c.engine.start(0);
        c.click("toggleBlackout");
        c.click("toggleFreeze");
        c.click("toggleClock");
        c.click("transportPlay");
        QVERIFY(c.engine.blackout() && c.engine.freeze() && c.engine.clockMode() && c.engine.isPaused());
        for (const char *badge : {"badgeBLACKOUT", "badgeFREEZE", "badgeHORLOGE", "badgePAUSE"})
            QTRY_VERIFY(c.item(badge)->isVisible());
        QCOMPARE(c.item("toggleBlackout")->property("on").toBool(), true);
        QCOMPARE(c.item("transportPlay")->property("symbol").toString(), QStringLiteral("play.fill"));
        keepScreenshot(c.shot(), QStringLiteral("console-badges-preview"));
        // Blackout and clock mode also tell remote control at once.
        QVERIFY(c.snapshots.size() >= 2);
        c.click("transportPlay");
        QCOMPARE(c.item("transportPlay")->property("symbol").toString(), QStringLiteral("pause.fill"));
    }

    void theTransportAndAdjustmentsDriveTheEngine()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.click("transportPlay");
        QVERIFY(c.engine.isRunning());
        c.click("adjustPlus60");
        QCOMPARE(c.engine.remaining(), 660.0);
        c.click("adjustMinus10");
        QCOMPARE(c.engine.remaining(), 650.0);
        c.click("adjustPlus10");
        c.click("adjustMinus60");
        QCOMPARE(c.engine.remaining(), 600.0);
        c.click("transportNext");
        QCOMPARE(c.engine.activeCueIndex(), std::optional(1));
        c.click("transportPrevious");
        QCOMPARE(c.engine.activeCueIndex(), std::optional(0));
        c.clock.advance(5s);
        c.click("transportReset");
        QCOMPARE(c.engine.remaining(), 600.0);
        c.click("transportStop");
        QVERIFY(!c.engine.isRunning());
        c.click("toggleBlink");
        QVERIFY(c.engine.blinkActive());
    }

    void theDoorsButtonCountsDown()
    {
        Console c({durationCue("Keynote", 600)});
        QCOMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors"));
        c.console.startDoors(14, 10); // ten minutes from 14:00 in Paris
        QTRY_COMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors 10:00"));
        c.clock.advance(61s);
        QTRY_COMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors 08:59"));
        c.console.cancelDoors();
        QTRY_COMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors"));
    }

    void theDoorsPopoverStartsAndCancelsTheCountdown()
    {
        Console c({durationCue("Keynote", 600)}); // 14:00:00 in Paris
        c.click("doorsButton");
        QTRY_VERIFY(c.shown("launchDoors"));
        QVERIFY(!c.shown("cancelDoors"));
        // The next quarter of an hour at least five minutes away.
        QTRY_COMPARE(c.console.doorsHour(), 14);
        QCOMPARE(c.console.doorsMinute(), 15);
        QTRY_COMPARE(c.item("hourWheel")->property("currentIndex").toInt(), 14);
        QTRY_COMPARE(c.item("minuteWheel")->property("currentIndex").toInt(), 15);
        keepScreenshot(c.shot(), QStringLiteral("console-doors-popover-preview"));
        c.console.setDoorsTime(14, 30); // as the wheels do
        c.click("launchDoors");
        QVERIFY(c.engine.doorsActive());
        QTRY_VERIFY(!c.shown("launchDoors"));
        QTRY_COMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors 30:00"));
        c.click("doorsButton");
        QTRY_VERIFY(c.shown("cancelDoors"));
        // Once the row has made room for it beside "Lancer".
        QTRY_VERIFY(c.item("launchDoors")->x() >= c.item("cancelDoors")->width());
        QTRY_COMPARE(c.console.doorsMinute(), 30); // the running countdown's time
        QTRY_COMPARE(c.item("minuteWheel")->property("currentIndex").toInt(), 30);
        const int before = c.snapshots.size();
        c.click("cancelDoors");
        QVERIFY(!c.engine.doorsActive());
        QCOMPARE(c.snapshots.size(), before + 1);
        QTRY_COMPARE(c.item("doorsButton")->property("text").toString(), QStringLiteral("Doors"));
    }

    void theCueEditorOpensFromThePencilAndFromEnter()
    {
        Cue keynote = durationCue("Keynote", 1200);
        keynote.speaker = QStringLiteral("Claire Martin");
        Console c({durationCue("Intro", 600), keynote});
        c.click("cueName1");
        c.click("cueEdit1");
        QTRY_VERIFY(c.shown("cueEditorSave"));
        QCOMPARE(c.item("cueNameField")->property("text").toString(), QStringLiteral("Keynote"));
        keepScreenshot(c.shot(), QStringLiteral("console-cue-editor-preview"));
        QTest::keyClick(c.operatorWindow, Qt::Key_Escape);
        QTRY_VERIFY(!c.item("cueEditorSave")); // faded out and gone, with its dimmed backdrop
        QCOMPARE(c.engine.session().cues[1], keynote);

        c.click("cueName0");
        QTest::keyClick(c.operatorWindow, Qt::Key_Return);
        QTRY_VERIFY(c.shown("cueNameField"));
        QCOMPARE(c.item("cueNameField")->property("text").toString(), QStringLiteral("Intro"));
        type(c.operatorWindow, "Accueil"); // the name is selected as the editor opens
        QTest::keyClick(c.operatorWindow, Qt::Key_Return);
        QTRY_VERIFY(!c.shown("cueEditorSave"));
        QCOMPARE(c.engine.session().cues[0].name, QStringLiteral("Accueil"));
        QTRY_COMPARE(c.text("cueName0"), QStringLiteral("Accueil"));
        QVERIFY(!c.engine.isRunning());
    }

    void theProjectSheetEditsTheOpenShowAndSavesIt()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.engine.start(1);
        c.click("projectInfoButton");
        QTRY_VERIFY(c.shown("sheetConfirm"));
        QCOMPARE(c.text("sheetTitle"), QStringLiteral("Fiche projet"));
        QVERIFY(!c.shown("sheetStarterCue"));
        c.click("sheetClient");
        type(c.operatorWindow, "Orchestre");
        c.click("sheetConfirm");
        QTRY_VERIFY(!c.item("sheetConfirm"));
        QCOMPARE(c.engine.session().client, std::optional(QStringLiteral("Orchestre")));
        QCOMPARE(c.engine.session().name, QStringLiteral("Gala des lumières"));
        QVERIFY(c.engine.isRunning()); // the show goes on
        QCOMPARE(c.engine.activeCueIndex(), std::optional(1));
        QTRY_COMPARE(c.toasts.text(), QStringLiteral("Fiche projet mise à jour")); // once written
        QCOMPARE(c.store.read(c.savedFile())->client, std::optional(QStringLiteral("Orchestre")));
        QTRY_VERIFY(c.text("projectSummary").startsWith(QStringLiteral("Orchestre")));
    }

    void onlyBlanksSendNothingAndASentMessageEmptiesTheField()
    {
        Console c({durationCue("Keynote", 600)});
        c.click("customMessage");
        type(c.operatorWindow, "   ");
        QCOMPARE(c.text("customMessage"), QStringLiteral("   "));
        QVERIFY(!c.engine.isRunning()); // the spaces went into the field, not to play
        c.click("sendMessage");
        QVERIFY(!c.engine.currentMessage());
        QCOMPARE(c.text("customMessage"), QStringLiteral("   "));

        c.click("customMessage");
        type(c.operatorWindow, "Merci de conclure ");
        c.click("sendUrgent");
        QCOMPARE(c.engine.currentMessage(), std::optional(QStringLiteral("   Merci de conclure").trimmed()));
        QVERIFY(c.engine.messageUrgent());
        QCOMPARE(c.text("customMessage"), QString());
        QTRY_COMPARE(c.text("onAirMessage"), QStringLiteral("Merci de conclure"));
        KAIRON_COMPARE_COLOUR(c.item("onAirMessage")->property("color").value<QColor>(), QColor(231, 76, 60));
        keepScreenshot(c.shot(), QStringLiteral("console-urgent-message-preview"));

        const int before = c.snapshots.size();
        c.click("clearMessage");
        QVERIFY(!c.engine.currentMessage());
        QVERIFY(!c.engine.messageUrgent());
        QCOMPARE(c.snapshots.size(), before + 1);
        QVERIFY(!c.snapshots.last().message);
    }

    void aPresetSendsItsText()
    {
        Console c({durationCue("Keynote", 600)});
        const PresetMessage preset = c.engine.presetMessages().first();
        QCOMPARE(c.item("preset0")->property("text").toString(), preset.text);
        c.click("preset0");
        QCOMPARE(c.engine.currentMessage(), std::optional(preset.text));
        QCOMPARE(c.engine.messageUrgent(), preset.urgent);
    }

    void deletingAsksFirstAndUndoRestoresTheCue()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        QVERIFY(!c.item("cueDelete1")->isVisible()); // the controls show on the chosen row
        c.click("cueName1");
        c.click("cueDelete1");
        QTRY_VERIFY(c.shown("deleteCueConfirm"));
        QCOMPARE(c.engine.session().cues.size(), 2);
        QCOMPARE(c.text("deleteCueMessage"), QStringLiteral("Cette action peut être annulée avec Ctrl+Z."));
        keepScreenshot(c.shot(), QStringLiteral("console-delete-confirmation-preview"));
        c.click("deleteCueCancel");
        QTRY_VERIFY(!c.shown("deleteCueConfirm"));
        QCOMPARE(c.engine.session().cues.size(), 2);

        c.click("cueDelete1");
        QTRY_VERIFY(c.shown("deleteCueConfirm"));
        c.click("deleteCueConfirm");
        QCOMPARE(c.engine.session().cues.size(), 1);
        QTRY_VERIFY(!c.item("cueRow1"));
        QTest::keyClick(c.operatorWindow, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.engine.session().cues.size(), 2);
        QTRY_COMPARE(c.text("cueName1"), QStringLiteral("Keynote"));
    }

    void aClickSelectsAndADoubleClickStarts()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.click("cueName1");
        QCOMPARE(c.engine.selectedCueIndex(), std::optional(1));
        QVERIFY(!c.engine.isRunning());
        QTRY_VERIFY(c.item("cueRow1")->property("selected").toBool());
        c.doubleClick("cueName1");
        QVERIFY(c.engine.isRunning());
        QCOMPARE(c.engine.activeCueIndex(), std::optional(1));
        QTRY_VERIFY(c.item("cueRow1")->property("active").toBool());
    }

    void theKeyboardMovesThroughTheListAndAsksToDelete()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900), durationCue("Clôture", 300)});
        c.click("cueName0");
        QTest::keyClick(c.operatorWindow, Qt::Key_Down);
        QTest::keyClick(c.operatorWindow, Qt::Key_Down);
        QCOMPARE(c.engine.selectedCueIndex(), std::optional(2));
        QTest::keyClick(c.operatorWindow, Qt::Key_Up);
        QCOMPARE(c.engine.selectedCueIndex(), std::optional(1));
        QTest::keyClick(c.operatorWindow, Qt::Key_Delete);
        QTRY_VERIFY(c.shown("deleteCueConfirm"));
        QTest::keyClick(c.operatorWindow, Qt::Key_Escape);
        QTRY_VERIFY(!c.shown("deleteCueConfirm"));
        QCOMPARE(c.engine.session().cues.size(), 3);
    }

    // Without the mouse: Tab walks from the cue list through the controls to the message field.
    void tabReachesEveryControl()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.click("cueName0");
        QStringList reached;
        for (int i = 0; i < 60 && !reached.contains("customMessage"); ++i) {
            QTest::keyClick(c.operatorWindow, Qt::Key_Tab);
            if (QQuickItem *focused = c.operatorWindow->activeFocusItem())
                reached << focused->objectName();
        }
        for (const char *control : {"transportPlay", "toggleBlackout", "preset0", "customMessage"})
            QVERIFY2(reached.contains(control), qPrintable(reached.join(", ")));
        QTest::keyClick(c.operatorWindow, Qt::Key_Space); // a space in the field, not play
        QVERIFY(!c.engine.isRunning());
        QCOMPARE(c.text("customMessage"), QStringLiteral(" "));
    }

    void aLockedShowHidesWhatTheEngineRefuses()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        QCOMPARE(c.item("showLock")->property("help").toString(), QStringLiteral("Verrouiller l'édition (mode show)"));
        c.click("showLock");
        QVERIFY(c.engine.showLocked());
        QCOMPARE(c.item("showLock")->property("symbol").toString(), QStringLiteral("lock.fill"));
        QCOMPARE(c.item("showLock")->property("help").toString(), QStringLiteral("Mode show verrouillé — édition bloquée"));
        KAIRON_COMPARE_COLOUR(c.item("showLock")->property("iconColor").value<QColor>(), QColor(231, 76, 60));
        QTRY_VERIFY(!c.item("addCue")->isVisible());
        c.click("cueName1");
        QTRY_VERIFY(c.item("cueEdit1")->isVisible()); // a typo can still be fixed
        for (const char *hidden : {"cueUp1", "cueDown1", "cueDelete1"})
            QVERIFY2(!c.item(hidden)->isVisible(), hidden);
        keepScreenshot(c.shot(), QStringLiteral("console-locked-preview"));
    }

    void movingACueKeepsEveryOtherRow()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900), durationCue("Clôture", 300)});
        c.click("cueName0");
        c.click("cueDown0");
        QCOMPARE(c.engine.session().cues[1].name, QStringLiteral("Intro"));
        QTRY_COMPARE(c.text("cueName0"), QStringLiteral("Keynote"));
        QCOMPARE(c.text("cueName1"), QStringLiteral("Intro"));
        c.click("cueName1");
        c.click("cueUp1");
        QTRY_COMPARE(c.text("cueName0"), QStringLiteral("Intro"));
    }

    void leavingWhileACueRunsSavesFirstThenStops()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.engine.start(1);
        c.clock.advance(5s);
        c.click("backToProjects");
        QCOMPARE(c.flow.stage(), AppFlowState::Sessions);
        QVERIFY(!c.engine.isRunning());
        // Written in the background: the toast tells when it is on disk.
        QTRY_COMPARE(c.toasts.text(), QStringLiteral("Projet sauvegardé"));
        const std::optional<TimerSession> saved = c.store.read(c.savedFile());
        QVERIFY(saved);
        QCOMPARE(saved->cues.size(), 2);
        // Saved while the cue ran: it had not been left yet, so it holds no actual time.
        QVERIFY(!saved->cues[1].actualElapsed);
        QVERIFY(c.engine.session().cues[1].actualElapsed); // logged by the stop that followed
    }

    void saveReportsAFailure()
    {
        Console c({durationCue("Intro", 600)});
        c.click("saveProject");
        QTRY_COMPARE(c.toasts.text(), QStringLiteral("Projet sauvegardé"));
        QVERIFY(QFileInfo::exists(c.savedFile()));
        QVERIFY(QFile::remove(c.savedFile()));
        QVERIFY(QDir().mkpath(c.savedFile())); // a folder where the file goes
        c.toasts.dismiss();
        QTest::keyClick(c.operatorWindow, Qt::Key_S, Qt::ControlModifier);
        QTRY_VERIFY(c.toasts.current());
        QCOMPARE(c.toasts.current()->kind, ToastMessage::Error);
        QVERIFY2(c.toasts.text().startsWith(QStringLiteral("Échec de sauvegarde : ")), qPrintable(c.toasts.text()));
        QVERIFY(c.toasts.text().size() > QStringLiteral("Échec de sauvegarde : ").size());
    }

    // Ctrl+S with the projects on a real file system filled to the last byte: the toast says
    // why in red, never "Projet sauvegardé", and the project keeps its bytes.
    void aSaveOnAFullDiskSaysWhyAndKeepsTheProject()
    {
        Console c({durationCue("Intro", 600)});
        FullDisk disk(c.store.folder());
        FULL_DISK_OR_SKIP(disk);
        QTest::keyClick(c.operatorWindow, Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(c.toasts.text(), QStringLiteral("Projet sauvegardé"));
        QFile file(c.savedFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray before = file.readAll();
        file.close();
        disk.fill();

        QStringList toasts;
        connect(&c.toasts, &ToastCenter::currentChanged, &c.toasts, [&] { toasts << c.toasts.text(); });
        c.engine.addCue();
        QTest::keyClick(c.operatorWindow, Qt::Key_S, Qt::ControlModifier);
        const QString failure = QStringLiteral("Échec de sauvegarde : impossible d'écrire « %1 » "
                                               "(plus d'espace libre sur le disque)").arg(c.savedFile());
        QTRY_COMPARE(toasts, QStringList{failure}); // once the write failed, in the background
        QCOMPARE(c.toasts.current()->kind, ToastMessage::Error);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), before);
        file.close();
        QCOMPARE(disk.files(), QStringList{QFileInfo(c.savedFile()).fileName()});

        disk.makeRoom();
        QTest::keyClick(c.operatorWindow, Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(c.toasts.text(), QStringLiteral("Projet sauvegardé"));
        QCOMPARE(c.store.read(c.savedFile())->cues.size(), 2);
    }

    void theAutosaveFollowsTheShowSilently()
    {
        Console c({durationCue("Intro", 600)});
        c.engine.addCue();
        c.clock.advance(999ms);
        QVERIFY(!QFileInfo::exists(c.savedFile()));
        c.clock.advance(1ms); // a second after the change, written in the background
        QTRY_VERIFY(QFileInfo::exists(c.savedFile()));
        QTRY_COMPARE(c.store.read(c.savedFile())->cues.size(), 2);
        QVERIFY(!c.toasts.showing());
        // A burst of edits is saved a second after its first, then once more for the rest.
        c.engine.addCue();
        c.clock.advance(600ms);
        c.engine.addCue();
        c.clock.advance(400ms);
        QTRY_COMPARE(c.store.read(c.savedFile())->cues.size(), 4);
        c.engine.addCue();
        c.clock.advance(1s);
        QTRY_COMPARE(c.store.read(c.savedFile())->cues.size(), 5);
        // The times written back when a cue is left are saved the same way.
        c.engine.start(0);
        c.clock.advance(2s);
        c.engine.stop();
        c.clock.advance(1s);
        QTRY_VERIFY(c.store.read(c.savedFile())->cues[0].actualElapsed);
        QTRY_VERIFY(!c.console.isSaving()); // the file is there a moment before the outcome
        // Away from the console, nothing more is written.
        c.flow.setStage(AppFlowState::Sessions);
        c.engine.addCue();
        c.clock.advance(60s);
        QVERIFY(!c.console.isSaving());
        QCOMPARE(c.store.read(c.savedFile())->cues.size(), 5);
    }

    void theExportsLandInTheReportsFolder()
    {
        Console c({durationCue("Intro", 60)});
        c.engine.start(0);
        c.clock.advance(70s);
        c.engine.stop();
        c.click("exportReport");
        QCOMPARE(c.toasts.text(), QStringLiteral("Rapport CSV exporté"));
        QCOMPARE(c.revealed.size(), 1);
        QVERIFY(QFileInfo(c.revealed[0]).fileName().startsWith("Rapport_Gala des lumières_"));
        QCOMPARE(QFileInfo(c.revealed[0]).absolutePath(), c.home.file("Documents/Kairon/Reports"));
        c.click("exportRundown");
        QCOMPARE(c.toasts.text(), QStringLiteral("Rundown PDF exporté"));
        QCOMPARE(c.revealed.size(), 2);
        QVERIFY(QFileInfo(c.revealed[1]).fileName().startsWith("Rundown_Gala des lumières_"));
        QVERIFY(QFileInfo(c.revealed[1]).size() > 1000);
    }

    void aFailedExportSaysWhy()
    {
        Console c({durationCue("Intro", 60)});
        c.home.blockWithAFile("Documents/Kairon/Reports");
        c.click("exportReport");
        QCOMPARE(c.toasts.current()->kind, ToastMessage::Error);
        QVERIFY2(c.toasts.text().startsWith(QStringLiteral("Erreur export : ")), qPrintable(c.toasts.text()));
        QVERIFY(c.toasts.text().size() > 20);
        c.click("exportRundown");
        QVERIFY2(c.toasts.text().startsWith(QStringLiteral("Erreur export PDF : ")), qPrintable(c.toasts.text()));
        QVERIFY(c.revealed.isEmpty());
    }

    void aDisplayChosenInAnOutputsMenuOpensTheWindowThenMovesIt_data()
    {
        QTest::addColumn<QString>("output");
        QTest::newRow("stage") << QStringLiteral("stage");
        QTest::newRow("confidence") << QStringLiteral("confidence");
    }

    // The same menu beside "Stage" and "Confidence": the window opens, then goes full screen
    // on the display half a second later, which it remembers.
    void aDisplayChosenInAnOutputsMenuOpensTheWindowThenMovesIt()
    {
        QFETCH(QString, output);
        Console c({durationCue("Intro", 60)});
        QQuickWindow *window = c.window(qPrintable(output + "Window"));
        c.click(qPrintable(output + "Displays"));
        QTRY_VERIFY(c.shown(qPrintable(output + "Display0")));
        const QString name = c.screens.displays().first().name;
        QCOMPARE(c.text(qPrintable(output + "Display0")),
                 QStringLiteral("Plein écran sur : ") + name + QStringLiteral(" (principal)"));
        c.click(qPrintable(output + "Display0"));
        QTRY_VERIFY(window->isVisible());
        QVERIFY(window->visibility() != QWindow::FullScreen);
        c.clock.advance(499ms);
        QVERIFY(window->visibility() != QWindow::FullScreen);
        c.clock.advance(1ms);
        QTRY_COMPARE(window->visibility(), QWindow::FullScreen);
        const QScreen *screen = QGuiApplication::screens().first();
        QCOMPARE(Preferences::outputDisplay(output).value(),
                 (Preferences::OutputDisplay{screen->name(), screen->geometry()}));
        window->close();
    }

    // "Projets" leaves nothing of the show on the outputs: no cue, message, blackout or freeze.
    void leavingTheShowLeavesTheOutputsIdle()
    {
        Console c({durationCue("Intro", 600), durationCue("Keynote", 900)});
        c.engine.start(0);
        c.clock.advance(5s);
        c.engine.sendMessage(QStringLiteral("Merci de conclure"), false);
        c.click("toggleBlackout");
        c.click("toggleFreeze");
        QVERIFY(c.outputs.open("stage"));
        QVERIFY(c.outputs.open("confidence"));
        auto *stage = c.window("stageWindow")->findChild<StagePresenter *>("stagePresenter");
        auto *confidence = c.window("confidenceWindow")->findChild<ConfidencePresenter *>("confidencePresenter");
        QVERIFY(stage && confidence);
        QCOMPARE(stage->mode(), StagePresenter::Blackout);
        QVERIFY(confidence->hasMessage());

        c.click("backToProjects");
        QCOMPARE(c.flow.stage(), AppFlowState::Sessions);
        QTRY_COMPARE(stage->mode(), StagePresenter::Timer);
        QVERIFY(!stage->hasCue() && !stage->frozen() && !stage->bannerVisible());
        QCOMPARE(stage->timeText(), QStringLiteral("00:00"));
        QCOMPARE(stage->stateColor(), toQColor(AppTheme::textMuted));
        QVERIFY(!confidence->hasCue() && !confidence->hasMessage() && !confidence->hasNext());
        QCOMPARE(confidence->timeText(), QStringLiteral("00:00"));
        QVERIFY(c.window("stageWindow")->isVisible()); // the outputs stay open, idle
    }

    void onANarrowPanelTheTimeShrinksFromItsFloorOf120()
    {
        Console c({durationCue("Keynote", 36000)}, QSize(1150, 750));
        c.engine.start(0);
        QQuickItem *time = c.item("consoleTime");
        QTRY_COMPARE(time->property("text").toString(), QStringLiteral("10:00:00"));
        QCOMPARE(time->property("size").toDouble(), std::round(c.item("operatorTimer")->width() * 0.22 * 100) / 100);
        c.item("operatorTimer")->setWidth(400); // as narrow as a panel gets on a small screen
        QCOMPARE(time->property("size").toDouble(), 120.0); // 0.22 × 400 is less
        QVERIFY(pixelSize(time) < 120);
        QVERIFY(pixelSize(time) >= 24);
        QTRY_VERIFY(time->property("contentWidth").toDouble() <= time->width());
        keepScreenshot(c.shot(), QStringLiteral("console-long-time-preview"));
    }

    void screenshotsAtTheOperatorsSizes_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("preview") << QSize(1150, 750);
        QTest::newRow("1080p") << QSize(1920, 1080);
        QTest::newRow("4k") << QSize(3840, 2160);
    }

    void screenshotsAtTheOperatorsSizes()
    {
        QFETCH(QSize, size);
        const QString tag = QTest::currentDataTag();
        Cue keynote = durationCue("Keynote d'ouverture", 1200, 180, 60, true);
        keynote.speaker = QStringLiteral("Claire Martin");
        Cue round = colouredCue("Table ronde : l'avenir des salles", "#3498DB");
        round.speaker = QStringLiteral("Invités");
        Console c({durationCue("Accueil", 300), keynote, round, durationCue("Pause café", 900),
                   durationCue("Remise des prix", 1800), durationCue("Clôture", 600)}, size);
        c.engine.start(0);
        c.clock.advance(330s); // 30 s over
        c.engine.start(1);
        c.clock.advance(1040s);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("02:40"));
        keepScreenshot(c.shot(), "console-warning-" + tag);
        c.clock.advance(170500ms);
        c.engine.sendMessage(QStringLiteral("Merci de conclure"), true);
        QTRY_COMPARE(c.text("consoleTime"), QStringLiteral("-00:10"));
        keepScreenshot(c.shot(), "console-overtime-message-" + tag);
        c.engine.stop();
        c.engine.sendMessage(std::nullopt, false);
        c.engine.reset();
        keepScreenshot(c.shot(), "console-idle-" + tag);
    }

    // A long show: scrolling, an edit and an undo keep the selection and the place in the list.
    void aLongShowKeepsItsPlaceThroughEditsAndUndo()
    {
        QList<Cue> cues;
        for (int i = 0; i < 2000; ++i)
            cues << durationCue(QStringLiteral("Cue %1").arg(i + 1), 300);
        Console c(cues);
        auto *list = qobject_cast<QQuickItem *>(c.item("cueList"));
        QVERIFY(list);
        c.engine.setSelectedCueIndex(1500);
        QTRY_VERIFY(c.item("cueRow1500"));
        const double place = list->property("contentY").toDouble();
        QVERIFY(place > 1000);
        QSignalSpy resets(list->property("model").value<QAbstractItemModel *>(), &QAbstractItemModel::modelReset);
        Cue edited = c.engine.session().cues[1500];
        edited.name = QStringLiteral("Renommé");
        c.engine.updateCue(edited);
        QTRY_COMPARE(c.text("cueName1500"), QStringLiteral("Renommé"));
        QCOMPARE(list->property("contentY").toDouble(), place);
        c.engine.undo();
        QTRY_COMPARE(c.text("cueName1500"), QStringLiteral("Cue 1501"));
        QCOMPARE(list->property("contentY").toDouble(), place);
        QCOMPARE(c.engine.selectedCueIndex(), std::optional(1500));
        c.engine.start(1500);
        c.clock.advance(3s);
        QCOMPARE(list->property("contentY").toDouble(), place);
        QCOMPARE(resets.count(), 0);
    }

private:
    std::unique_ptr<SettingsSandbox> m_settings;
};

QTEST_MAIN(TestConsole)
#include "tst_console.moc"
