// The application's keys while a sheet or a confirmation is open over the console: undo and
// redo are the sheet's own (a text field undoes its typing) and never reach the cue list behind
// it; the show's keys (Space, Ctrl+., Ctrl+→/←, Ctrl+B, Ctrl+L, Ctrl+F, Ctrl+K) keep running the
// show unless a text field has the focus. Real key presses on the real operator window.
#include "consolefixture.h"
#include "settingssandbox.h"

using namespace std::chrono_literals;

namespace {

bool typing(QQuickWindow *window)
{
    const QQuickItem *focus = window->activeFocusItem();
    return focus && (focus->inherits("QQuickTextInput") || focus->inherits("QQuickTextEdit"));
}

// Moves the focus with Tab until it leaves the text fields (at most 40 steps).
void tabOutOfTheTextFields(QQuickWindow *window)
{
    for (int i = 0; i < 40 && typing(window); ++i)
        QTest::keyClick(window, Qt::Key_Tab);
    QVERIFY(!typing(window));
}

} // namespace

class TestSheetKeys : public QObject
{
    Q_OBJECT

    // A show of three cues with one edit to undo.
    struct Show : Console {
        Show() : Console({durationCue("Accueil", 300), durationCue("Keynote", 1200)})
        {
            engine.addCue();
            QTRY_VERIFY(item("cueRow2"));
        }
        int cues() const { return int(engine.session().cues.size()); }
        // The sheet holding the item has closed (its items leave the window once hidden).
        bool gone(const char *name) const { return !item(name) || !item(name)->isVisible(); }
        void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
        {
            QTest::keyClick(operatorWindow, key, modifiers);
        }
        // Undo and redo leave the cue list alone.
        void undoIsTheSheets()
        {
            key(Qt::Key_Z, Qt::ControlModifier);
            QCOMPARE(cues(), 3);
            key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
            QCOMPARE(cues(), 3);
        }
        // With a text field focused, the show's keys act on the field or not at all.
        void showKeysAreTyping()
        {
            QVERIFY(typing(operatorWindow));
            key(Qt::Key_Space);
            key(Qt::Key_B, Qt::ControlModifier);
            key(Qt::Key_K, Qt::ControlModifier);
            key(Qt::Key_Right, Qt::ControlModifier);
            QVERIFY(!engine.isRunning());
            QVERIFY(!engine.blackout());
            QVERIFY(!engine.clockMode());
        }
        // Outside the text fields, the show's keys run the show, and the sheet stays open.
        void showKeysRunTheShow()
        {
            QVERIFY(!typing(operatorWindow));
            const int selected = engine.selectedCueIndex().value();
            key(Qt::Key_Space); // starts the selected cue
            QVERIFY(engine.isRunning());
            QCOMPARE(engine.activeCueIndex().value_or(-1), selected);
            key(Qt::Key_Right, Qt::ControlModifier);
            QCOMPARE(engine.activeCueIndex().value_or(-1), selected + 1);
            key(Qt::Key_B, Qt::ControlModifier);
            QVERIFY(engine.blackout());
            key(Qt::Key_F, Qt::ControlModifier);
            QVERIFY(engine.freeze());
            key(Qt::Key_K, Qt::ControlModifier);
            QVERIFY(engine.clockMode());
            key(Qt::Key_L, Qt::ControlModifier);
            QVERIFY(engine.blinkActive());
            key(Qt::Key_Period, Qt::ControlModifier);
            QVERIFY(!engine.isRunning());
        }
    };

private slots:
    void init() { m_settings = std::make_unique<SettingsSandbox>(); }
    void cleanup() { m_settings.reset(); }

    void underTheCueEditor()
    {
        Show c;
        c.click("cueName0");
        c.click("cueEdit0");
        QTRY_VERIFY(c.shown("cueNameField"));
        QTRY_VERIFY(typing(c.operatorWindow));
        // The name field undoes its own typing.
        c.key(Qt::Key_End);
        c.key(Qt::Key_X);
        QCOMPARE(c.text("cueNameField"), QStringLiteral("Accueilx"));
        c.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.text("cueNameField"), QStringLiteral("Accueil"));
        QCOMPARE(c.cues(), 3);
        c.undoIsTheSheets();
        c.showKeysAreTyping();
        keepScreenshot(c.shot(), "sheet-keys-cue-editor-typing");
        tabOutOfTheTextFields(c.operatorWindow);
        c.undoIsTheSheets();
        c.showKeysRunTheShow();
        QVERIFY(c.shown("cueEditorSave"));
        keepScreenshot(c.shot(), "sheet-keys-cue-editor-show-keys");
        // Closed, the keys are the console's again.
        c.click("cueEditorCancel");
        QTRY_VERIFY(c.gone("cueEditorSave"));
        c.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.cues(), 2);
    }

    void underTheProjectSheet()
    {
        Show c;
        c.click("projectInfoButton");
        QTRY_VERIFY(c.shown("sheetConfirm"));
        QTRY_VERIFY(typing(c.operatorWindow));
        c.undoIsTheSheets();
        c.showKeysAreTyping();
        tabOutOfTheTextFields(c.operatorWindow);
        c.undoIsTheSheets();
        c.showKeysRunTheShow();
        QVERIFY(c.shown("sheetConfirm"));
        keepScreenshot(c.shot(), "sheet-keys-project-sheet");
        c.click("sheetCancel");
        QTRY_VERIFY(c.gone("sheetConfirm"));
        c.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.cues(), 2);
    }

    void underTheDeleteConfirmation()
    {
        Show c;
        c.click("cueName1");
        c.click("cueDelete1");
        QTRY_VERIFY(c.shown("deleteCueConfirm"));
        c.undoIsTheSheets();
        c.showKeysRunTheShow();
        QVERIFY(c.shown("deleteCueConfirm"));
        keepScreenshot(c.shot(), "sheet-keys-delete-confirmation");
        c.click("deleteCueCancel");
        QTRY_VERIFY(c.gone("deleteCueConfirm"));
        QCOMPARE(c.cues(), 3);
        c.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.cues(), 2);
    }

    // Without a sheet, nothing changes: undo undoes the cue list.
    void withoutASheetUndoIsTheCueLists()
    {
        Show c;
        c.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(c.cues(), 2);
        c.key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(c.cues(), 3);
    }

private:
    std::unique_ptr<SettingsSandbox> m_settings;
};

QTEST_MAIN(TestSheetKeys)
#include "tst_sheetkeys.moc"
