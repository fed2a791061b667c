#include "cueeditorfixture.h"
#include "pixels.h"

#include <QSignalSpy>

// The cue editor sheet over the console, driven with the mouse and the keyboard.
class TestCueEditor : public QObject
{
    Q_OBJECT

private slots:
    void theBlocksComeInOrderUnderTheirLabels()
    {
        EditorFixture f;
        QVERIFY(f.open());
        QQuickItem *root = f.window->contentItem();
        const QStringList order{"Nom du cue", "Intervenant", "Mode", "10 min", "Début fixe", "Seuils d'alerte",
                                "Auto-follow : enchaîner automatiquement le cue suivant à zéro",
                                "Couleur du cue", "Automatique (vert / jaune / rouge selon les seuils)",
                                "Notes", "Annuler"};
        qreal previous = -1;
        for (const QString &text : order) {
            const QList<QQuickItem *> found = visibleTexts(root, text);
            QVERIFY2(found.size() == 1, qPrintable(text));
            QVERIFY2(sceneTop(found.first()) > previous, qPrintable(text));
            previous = sceneTop(found.first());
        }
        // "Enregistrer" on the right of "Annuler", on the same line.
        const QList<QQuickItem *> save = visibleTexts(root, "Enregistrer");
        QCOMPARE(save.size(), 1);
        QCOMPARE(sceneTop(save.first()), previous);
        QVERIFY(sceneRect(save.first()).left() > sceneRect(visibleTexts(root, "Annuler").first()).right());
        for (const QString &text : QStringList{"Durée", "Fin à heure fixe", "0 s", "120 s", "30 s"})
            QVERIFY2(visibleTexts(root, text).size() == 1, qPrintable(text));
        QVERIFY(visibleTexts(root, "Heure de fin (hard out)").isEmpty());
        QCOMPARE(f.item("cueSpeakerField")->property("placeholderText").toString(),
                 QStringLiteral("Nom de l'intervenant (affiché en confidence)"));
        QCOMPARE(f.item("cueNameField")->property("text").toString(), QStringLiteral("Nouveau cue"));

        keepScreenshot(f.window->grabWindow(), QStringLiteral("cueeditor-new-cue"));

        // 480 wide, centred in the window, with all of it in view.
        QQuickItem *sheet = f.editor->property("background").value<QQuickItem *>();
        const QRect box = sceneRect(sheet);
        QCOMPARE(box.width(), 480);
        QVERIFY(qAbs(box.left() + box.width() / 2.0 - f.window->width() / 2.0) <= 0.5);
        QVERIFY(box.top() > 0 && box.bottom() < f.window->height());
    }

    void theThresholdMarksAreTenPixelsInTheirColours()
    {
        EditorFixture f;
        QVERIFY(f.open());
        QQuickItem *warning = f.item("warningThresholdMark");
        QQuickItem *danger = f.item("dangerThresholdMark");
        QCOMPARE(warning->size(), QSizeF(10, 10));
        QCOMPARE(danger->size(), QSizeF(10, 10));
        const QImage shot = f.window->grabWindow();
        KAIRON_COMPARE_COLOUR(shot.pixelColor(sceneRect(warning).center()), QColor(241, 196, 15));
        KAIRON_COMPARE_COLOUR(shot.pixelColor(sceneRect(danger).center()), QColor(231, 76, 60));
    }

    void theSheetLooksRightInBothModes_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("hardOut");
        QTest::newRow("preview-duration") << QSize(1150, 750) << false;
        QTest::newRow("preview-hardout") << QSize(1150, 750) << true;
        QTest::newRow("1080p-duration") << QSize(1920, 1080) << false;
        QTest::newRow("1080p-hardout") << QSize(1920, 1080) << true;
    }

    // The whole sheet fits without scrolling, nothing sticks out of it, and the dim covers
    // the console behind.
    void theSheetLooksRightInBothModes()
    {
        QFETCH(QSize, size);
        QFETCH(bool, hardOut);
        Cue cue = hardOut ? hardOutCue() : Cue{};
        cue.speaker = QStringLiteral("Camille Dubois");
        cue.colorHex = QStringLiteral("#3498DB");
        cue.notes = QStringLiteral("Micro HF 2, slides sur la régie");
        EditorFixture f(cue, size);
        QVERIFY(f.open());
        QQuickItem *sheet = f.editor->property("background").value<QQuickItem *>();
        const QRect box = sceneRect(sheet);
        QVERIFY(box.top() >= 16 && box.bottom() <= size.height() - 16);
        for (const char *name : {"cueNameField", "cueSpeakerField", "cueModeSegment", "warningThreshold",
                                 "dangerThreshold", "autoFollowSwitch", "colourAutomatic", "colourSwatch7",
                                 "cueNotesField", "cueEditorCancel", "cueEditorSave"}) {
            const QRect r = sceneRect(f.item(name));
            QVERIFY2(box.contains(r.adjusted(-12, -4, 12, 4)), name);
        }
        if (hardOut) {
            QVERIFY(f.item("hardOutPicker")->isVisible());
            QVERIFY(!f.item("minutesStepper")->isVisible());
            QVERIFY(box.contains(sceneRect(f.item("hardOutPicker"))));
        } else {
            QVERIFY(!f.item("hardOutPicker")->isVisible());
            QVERIFY(box.contains(sceneRect(f.item("secondsStepper"))));
        }
        const QImage shot = f.window->grabWindow();
        keepScreenshot(shot, QStringLiteral("cueeditor-") + QTest::currentDataTag());
        // The console behind is dimmed: its grey darkened by the 60 % black veil.
        KAIRON_COMPARE_COLOUR(shot.pixelColor(8, 8), blend(QColor(0, 0, 0), 0.6, QColor(18, 18, 20)));
        KAIRON_COMPARE_COLOUR(shot.pixelColor(box.left() + 6, box.center().y()), QColor(26, 26, 30));
    }

    // In a window too short for the whole sheet the fields scroll under the buttons, which stay
    // in view, and Tab brings each field it reaches into view.
    void aShortWindowScrollsTheFields()
    {
        EditorFixture f(hardOutCue(), QSize(900, 480));
        QVERIFY(f.open());
        QQuickItem *sheet = f.editor->property("background").value<QQuickItem *>();
        const QRect box = sceneRect(sheet);
        QVERIFY(box.top() >= 16 && box.bottom() <= 480 - 16);
        QVERIFY(box.contains(sceneRect(f.item("cueEditorSave"))));
        QVERIFY(box.contains(sceneRect(f.item("cueEditorCancel"))));
        QTRY_COMPARE(f.focusName(), QStringLiteral("cueNameField"));
        for (int i = 0; i < 30 && f.focusName() != QStringLiteral("cueNotesField"); ++i)
            QTest::keyClick(f.window.get(), Qt::Key_Tab);
        QCOMPARE(f.focusName(), QStringLiteral("cueNotesField"));
        f.window->grabWindow();
        const QRect notes = sceneRect(f.item("cueNotesField"));
        QVERIFY(notes.top() >= box.top() && notes.bottom() < sceneRect(f.item("cueEditorSave")).top());
        keepScreenshot(f.window->grabWindow(), QStringLiteral("cueeditor-short-window"));
        for (int i = 0; i < 30 && f.focusName() != QStringLiteral("cueNameField"); ++i)
            QTest::keyClick(f.window.get(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(f.focusName(), QStringLiteral("cueNameField"));
        f.window->grabWindow();
        QVERIFY(sceneRect(f.item("cueNameField")).top() >= box.top());
    }

    // Everything an operator does with the mouse and the keyboard reaches the cue that the
    // console receives on "Enregistrer", and the Space typed in a name stays in it.
    void editingWithMouseAndKeysGivesTheEditedCue()
    {
        Cue cue;
        cue.duration = 59.9;
        EditorFixture f(cue);
        QVERIFY(f.open());
        QTRY_COMPARE(f.focusName(), QStringLiteral("cueNameField"));
        QCOMPARE(f.item("cueNameField")->property("selectedText").toString(), QStringLiteral("Nouveau cue"));
        f.type(QStringLiteral("Keynote d'ouverture"));
        f.click("cueSpeakerField");
        f.type(QStringLiteral("Léa Martin"));
        QCOMPARE(f.window->property("transportKeys").toInt(), 0);

        QCOMPARE(f.item("minutesStepperText")->property("text").toString(), QStringLiteral("0 min"));
        QCOMPARE(f.item("secondsStepperText")->property("text").toString(), QStringLiteral("59 s"));
        f.click("minutesStepperUp");
        f.click("minutesStepperUp");
        f.click("secondsStepperDown");
        QCOMPARE(f.item("minutesStepperText")->property("text").toString(), QStringLiteral("2 min"));
        QCOMPARE(f.item("secondsStepperText")->property("text").toString(), QStringLiteral("58 s"));
        f.click("warningThresholdStepperUp");
        f.click("dangerThresholdStepperDown");
        QCOMPARE(f.item("warningThresholdStepperText")->property("text").toString(), QStringLiteral("150 s"));
        QCOMPARE(f.item("dangerThresholdStepperText")->property("text").toString(), QStringLiteral("15 s"));
        f.click("autoFollowSwitch");
        f.click("colourSwatch3");
        f.click("cueNotesField");
        f.type(QStringLiteral("Micro HF 2"));
        QCOMPARE(f.window->property("transportKeys").toInt(), 0);
        f.click("cueEditorSave");

        QCOMPARE(f.catcher.saved.size(), 1);
        const Cue saved = f.catcher.saved.first();
        QCOMPARE(saved.name, QStringLiteral("Keynote d'ouverture"));
        QCOMPARE(saved.speaker, QStringLiteral("Léa Martin"));
        QCOMPARE(saved.mode, TimerMode::Duration);
        QCOMPARE(saved.duration, 2 * 60 + 58.0);
        QCOMPARE(saved.hardOutTime, std::nullopt);
        QCOMPARE(saved.warningThreshold, 150.0);
        QCOMPARE(saved.dangerThreshold, 15.0);
        QVERIFY(saved.autoFollow);
        QCOMPARE(saved.colorHex, std::optional<QString>(QStringLiteral("#3498DB")));
        QCOMPARE(saved.notes, QStringLiteral("Micro HF 2"));
        QCOMPARE(saved.id, cue.id);
        QTRY_VERIFY(!f.editor->property("visible").toBool());
    }

    void aCueOfFiftyNineSecondsAndAHalfSavesAsFiftyNine()
    {
        Cue cue;
        cue.duration = 59.9;
        EditorFixture f(cue);
        QVERIFY(f.open());
        QCOMPARE(f.item("minutesStepperText")->property("text").toString(), QStringLiteral("0 min"));
        QCOMPARE(f.item("secondsStepperText")->property("text").toString(), QStringLiteral("59 s"));
        f.click("cueEditorSave");
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().duration, 59.0);
    }

    void aLongCueShowsItsMinutesAndOnlyLowersThem()
    {
        Cue cue;
        cue.duration = 301 * 60;
        EditorFixture f(cue);
        QVERIFY(f.open());
        QCOMPARE(f.item("minutesStepperText")->property("text").toString(), QStringLiteral("301 min"));
        QVERIFY(!f.item("minutesStepperUp")->isEnabled());
        f.click("minutesStepperUp");
        QCOMPARE(f.draft.minutes(), 301);
        f.click("minutesStepperDown");
        QCOMPARE(f.item("minutesStepperText")->property("text").toString(), QStringLiteral("300 min"));
        QVERIFY(!f.item("minutesStepperUp")->isEnabled());
    }

    void theHardOutPickerWritesTheEndTime()
    {
        EditorFixture f; // a duration cue: the picker starts at now, 20:30
        QVERIFY(f.open());
        f.click("cueModeSegment1");
        QVERIFY(f.draft.hardOutMode());
        QVERIFY(!visibleTexts(f.window->contentItem(), "Heure de fin (hard out)").isEmpty());
        QVERIFY(!f.item("minutesStepper")->isVisible());
        QQuickItem *hours = f.item("hourWheel");
        QQuickItem *minutes = f.item("minuteWheel");
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 20);
        QTRY_COMPARE(minutes->property("currentIndex").toInt(), 30);

        // The keyboard turns a wheel: Tab to the hours, Down twice.
        hours->forceActiveFocus();
        QTest::keyClick(f.window.get(), Qt::Key_Down);
        QTest::keyClick(f.window.get(), Qt::Key_Down);
        QTRY_COMPARE(f.draft.hardOutHour(), 22);
        QCOMPARE(f.draft.result().hardOutTime, QDateTime(QDate(2026, 11, 21), QTime(22, 30), paris));
        // A click on the number under the chosen one picks it.
        const QPointF below = minutes->mapToScene(QPointF(minutes->width() / 2, minutes->height() * 5 / 6));
        QTest::mouseClick(f.window.get(), Qt::LeftButton, {}, below.toPoint());
        QTRY_COMPARE(f.draft.hardOutMinute(), 31);
        QTRY_COMPARE(minutes->property("currentIndex").toInt(), 31);

        // The mouse wheel: one notch towards the operator is the next hour, a notch away the
        // one before, and a touchpad's small steps count once they add up to a notch.
        const auto roll = [&](QQuickItem *wheel, int delta) {
            const QPointF at = wheel->mapToScene(QPointF(wheel->width() / 2, wheel->height() / 2));
            QWheelEvent event(at, f.window->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(f.window.get(), &event);
        };
        roll(hours, -120);
        QTRY_COMPARE(f.draft.hardOutHour(), 23);
        roll(hours, -120);
        QTRY_COMPARE(f.draft.hardOutHour(), 0); // round past midnight
        roll(hours, 60);
        QCOMPARE(f.draft.hardOutHour(), 0);
        roll(hours, 60);
        QTRY_COMPARE(f.draft.hardOutHour(), 23);
        roll(hours, 120);
        QTRY_COMPARE(f.draft.hardOutHour(), 22);
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 22);

        // Back to the duration: the end time stays in the saved cue.
        f.click("cueModeSegment0");
        QVERIFY(f.item("minutesStepper")->isVisible());
        QTest::keyClick(f.window.get(), Qt::Key_Return);
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().mode, TimerMode::Duration);
        QCOMPARE(f.catcher.saved.first().hardOutTime, QDateTime(QDate(2026, 11, 21), QTime(22, 31), paris));
    }

    // "Début fixe": unticked, the cue follows the one before it; ticked, it starts at the
    // wheels' time of day in the show's timetable.
    void theFixedStartIsATimeOfDayOnItsOwnWheels()
    {
        EditorFixture f; // the wheels start at now, 20:30
        QVERIFY(f.open());
        QQuickItem *picker = f.item("cueFixedStart");
        QVERIFY(!f.item("cueHasFixedStart")->property("checked").toBool());
        QCOMPARE(picker->opacity(), 0.4);
        QVERIFY(!picker->isEnabled());
        f.click("cueHasFixedStart");
        QVERIFY(f.draft.hasFixedStart());
        QCOMPARE(picker->opacity(), 1.0);
        QCOMPARE(f.draft.result().fixedStart, QDateTime(QDate(2026, 11, 21), QTime(20, 30), paris));

        QQuickItem *hours = findQuickItem(picker, QStringLiteral("hourWheel"));
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 20);
        hours->forceActiveFocus();
        QTest::keyClick(f.window.get(), Qt::Key_Down);
        QTRY_COMPARE(f.draft.fixedStartHour(), 21);
        QCOMPARE(f.draft.result().hardOutTime, std::nullopt); // the end time's wheels stay apart
        keepScreenshot(f.window->grabWindow(), QStringLiteral("cueeditor-fixed-start"));
        QTest::keyClick(f.window.get(), Qt::Key_Return);
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().fixedStart, QDateTime(QDate(2026, 11, 21), QTime(21, 30), paris));

        // Loaded with its fixed start, then unticked: the cue follows the one before again.
        f.draft.load(f.catcher.saved.first(), f.clock);
        QTRY_VERIFY(f.item("cueHasFixedStart")->property("checked").toBool());
        QTRY_COMPARE(hours->property("currentIndex").toInt(), 21);
        f.click("cueHasFixedStart");
        QCOMPARE(f.draft.result().fixedStart, std::nullopt);
    }

    void aLoadedEndTimeShowsOnTheWheels()
    {
        EditorFixture f(hardOutCue());
        QVERIFY(f.open());
        QVERIFY(f.item("hardOutPicker")->isVisible());
        QTRY_COMPARE(f.item("hourWheel")->property("currentIndex").toInt(), 22);
        QTRY_COMPARE(f.item("minuteWheel")->property("currentIndex").toInt(), 45);
        // Another cue loaded into the same draft moves the wheels with it.
        Cue other = hardOutCue();
        other.hardOutTime = QDateTime(QDate(2026, 11, 21), QTime(6, 5), paris);
        f.draft.load(other, f.clock);
        QTRY_COMPARE(f.item("hourWheel")->property("currentIndex").toInt(), 6);
        QTRY_COMPARE(f.item("minuteWheel")->property("currentIndex").toInt(), 5);
        QCOMPARE(f.draft.hardOutHour(), 6);
        QCOMPARE(f.draft.hardOutMinute(), 5);
    }

    void swatchesNameTheirColourAndRingTheChoice()
    {
        Cue cue;
        cue.colorHex = QStringLiteral("#FF6B00");
        EditorFixture f(cue);
        QVERIFY(f.open());
        const QStringList names{"Vert", "Orange Orv", "Blanc", "Bleu", "Cyan", "Violet", "Rose", "Jaune"};
        for (int i = 0; i < names.size(); ++i) {
            QQuickItem *swatch = f.item(QStringLiteral("colourSwatch%1").arg(i));
            QCOMPARE(swatch->size(), QSizeF(26, 26));
            QCOMPARE(swatch->property("helpText").toString(), names[i]);
            QCOMPARE(swatch->property("selected").toBool(), i == 1);
        }
        QVERIFY(!f.item("colourAutomatic")->property("selected").toBool());

        // Hovering shows the name.
        QQuickItem *cyan = f.item("colourSwatch4");
        QTest::mouseMove(f.window.get(), f.centreOf(cyan));
        QObject *tip = cyan->findChild<QObject *>("colourSwatchTip4");
        QVERIFY(tip);
        QTRY_VERIFY(tip->property("visible").toBool());
        QCOMPARE(tip->property("text").toString(), QStringLiteral("Cyan"));

        // The chosen swatch is ringed in white.
        f.click("colourSwatch4");
        QCOMPARE(f.draft.colorHex(), QStringLiteral("#1ABC9C"));
        QTest::mouseMove(f.window.get(), QPoint(5, 5));
        QTRY_VERIFY(!tip->property("visible").toBool());
        const QImage shot = f.window->grabWindow();
        const QRect r = sceneRect(cyan);
        KAIRON_COMPARE_COLOUR(shot.pixelColor(r.center().x(), r.top() - 3), QColor(Qt::white));
        KAIRON_COMPARE_COLOUR(shot.pixelColor(r.center()), QColor(0x1A, 0xBC, 0x9C));
        const QRect orange = sceneRect(f.item("colourSwatch1"));
        KAIRON_COMPARE_COLOUR(shot.pixelColor(orange.center().x(), orange.top() - 3), QColor(26, 26, 30));

        f.click("colourAutomatic");
        QCOMPARE(f.draft.colorHex(), QString());
        QVERIFY(f.item("colourAutomatic")->property("selected").toBool());
        f.click("cueEditorSave");
        QCOMPARE(f.catcher.saved.first().colorHex, std::nullopt);
    }

    void escapeCancelsWithoutSaving()
    {
        EditorFixture f;
        QSignalSpy cancelled(f.editor, SIGNAL(cancelled()));
        QVERIFY(f.open());
        QTRY_COMPARE(f.focusName(), QStringLiteral("cueNameField"));
        f.type(QStringLiteral(" bis"));
        QTest::keyClick(f.window.get(), Qt::Key_Escape);
        QCOMPARE(cancelled.count(), 1);
        QVERIFY(f.catcher.saved.isEmpty());
        QTRY_VERIFY(!f.editor->property("visible").toBool());
    }

    void theCancelButtonOnlyCloses()
    {
        EditorFixture f;
        QSignalSpy cancelled(f.editor, SIGNAL(cancelled()));
        QVERIFY(f.open());
        f.click("cueEditorCancel");
        QCOMPARE(cancelled.count(), 1);
        QVERIFY(f.catcher.saved.isEmpty());
        QTRY_VERIFY(!f.editor->property("visible").toBool());
    }

    void enterSavesFromAField_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("Return") << int(Qt::Key_Return);
        QTest::newRow("Enter") << int(Qt::Key_Enter);
    }

    void enterSavesFromAField()
    {
        QFETCH(int, key);
        EditorFixture f;
        QSignalSpy cancelled(f.editor, SIGNAL(cancelled()));
        QVERIFY(f.open());
        f.click("cueNotesField");
        f.type(QStringLiteral("Régie son"));
        QTest::keyClick(f.window.get(), Qt::Key(key));
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().notes, QStringLiteral("Régie son"));
        QCOMPARE(cancelled.count(), 0);
        QTRY_VERIFY(!f.editor->property("visible").toBool());
    }

    // Tab walks through the fields in their order. Space is typed in a text field; anywhere
    // else in the sheet it is the show's key (play and pause), as in every window: the sheet's
    // own controls are for the pointer, Return saves and Escape cancels.
    void tabWalksTheFieldsAndSpaceIsTheShowsOutsideTheTextFields()
    {
        EditorFixture f;
        QVERIFY(f.open());
        QTRY_COMPARE(f.focusName(), QStringLiteral("cueNameField"));
        const QStringList order{"cueSpeakerField", "cueModeSegment0", "cueModeSegment1", "minutesStepper",
                                "secondsStepper", "cueHasFixedStart", "warningThresholdStepper", "dangerThresholdStepper",
                                "autoFollowSwitch", "colourAutomatic"};
        for (const QString &next : order) {
            QTest::keyClick(f.window.get(), Qt::Key_Tab);
            QCOMPARE(f.focusName(), next);
            if (next == "minutesStepper") {
                QTest::keyClick(f.window.get(), Qt::Key_Up);
                QCOMPARE(f.draft.minutes(), 11);
            }
            if (next == "autoFollowSwitch") {
                QTest::keyClick(f.window.get(), Qt::Key_Space);
                QVERIFY(!f.draft.autoFollow());
                QCOMPARE(f.window->property("transportKeys").toInt(), 1);
            }
        }
        for (int i = 0; i < 8; ++i) {
            QTest::keyClick(f.window.get(), Qt::Key_Tab);
            QCOMPARE(f.focusName(), QStringLiteral("colourSwatch%1").arg(i));
        }
        for (const QString &next : QStringList{"cueNotesField", "triggerAdd", "cueEditorCancel", "cueEditorSave"}) {
            QTest::keyClick(f.window.get(), Qt::Key_Tab);
            QCOMPARE(f.focusName(), next);
            if (next == "cueNotesField") {
                QTest::keyClick(f.window.get(), Qt::Key_Space); // typed
                QCOMPARE(f.window->property("transportKeys").toInt(), 1);
            }
        }
        QTest::keyClick(f.window.get(), Qt::Key_Space);
        QCOMPARE(f.window->property("transportKeys").toInt(), 2);
        QCOMPARE(f.catcher.saved.size(), 0);
        QTest::keyClick(f.window.get(), Qt::Key_Return);
        QCOMPARE(f.catcher.saved.size(), 1);
        QCOMPARE(f.catcher.saved.first().notes, QStringLiteral(" "));
    }
};

QTEST_MAIN(TestCueEditor)
#include "tst_cueeditor.moc"
