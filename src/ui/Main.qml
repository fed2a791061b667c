import QtQuick
import QtQuick.Window
import Kairon

// The application's windows, side by side: the operator's, the two outputs that observe the
// same engine and the settings, each declared once and shown on demand by its identifier.
QtObject {
    id: app

    required property TimerEngine engine
    required property DisplayClock displayClock
    required property AppFlowState flow
    required property BrandAssets brand
    required property ToastCenter toasts
    required property ConsoleController consoleController
    // The project library on disk.
    required property SessionStore store
    // The displays, and the verb that puts an output window on one of them.
    required property ScreenManager screens
    // Where the stage and confidence windows open, park and come back.
    required property OutputWindows outputs
    // The preferences, the alert outputs and the remote control's status, for the settings.
    required property SettingsController settings
    // This machine as the backup of a main one.
    required property FollowController follow

    // Shows the window of an identifier: "main", "stage", "confidence" or "settings".
    function openWindow(identifier) {
        if (app.outputs.open(identifier))
            return;
        const window = { main: operatorWindow, stage: stageWindow, confidence: confidenceWindow,
                         settings: settingsWindow, about: aboutWindow }[identifier];
        if (window) {
            window.show();
            window.raise();
        }
    }

    property ShowCommands commands: ShowCommands {
        engine: app.engine
    }

    property ShellCommandTable commandTable: ShellCommandTable {
        commands: app.commands
        onSettingsRequested: app.openWindow("settings")
        onAboutRequested: app.openWindow("about")
        onQuitRequested: Qt.quit()
    }

    property OperatorWindow operatorWindow: OperatorWindow {
        engine: app.engine
        clock: app.displayClock
        flow: app.flow
        brand: app.brand
        toasts: app.toasts
        consoleController: app.consoleController
        screens: app.screens
        store: app.store
        commandTable: app.commandTable
        follow: app.follow
        visible: true
        onOpenOutput: identifier => app.openWindow(identifier)
        onSendOutput: (identifier, displayIndex) => app.outputs.sendTo(identifier, displayIndex)
        Component.onCompleted: {
            raise();
            requestActivate();
        }
    }

    property StageWindow stageWindow: StageWindow {
        engine: app.engine
        clock: app.displayClock
    }

    property ConfidenceWindow confidenceWindow: ConfidenceWindow {
        engine: app.engine
        clock: app.displayClock
    }

    property SettingsWindow settingsWindow: SettingsWindow {
        settings: app.settings
        follow: app.follow
        engine: app.engine
        brand: app.brand
    }

    property AboutWindow aboutWindow: AboutWindow {
        brand: app.brand
    }

    Component.onCompleted: outputs.attach(operatorWindow, stageWindow, confidenceWindow)
}
