import QtQuick
import Kairon

// The transport controls: previous, play/pause (the big one), stop, reset, next; the four
// adjustments; the output toggles blink, blackout, freeze and clock. The three groups wrap
// onto a second line when the panel is narrow.
Flow {
    id: bar

    required property TimerEngine engine
    required property ConsoleController consoleController
    required property ConsolePresenter presenter
    required property ShowCommands commands

    spacing: 18

    component Transport: IconButton {
        side: 54
        iconSize: 19
        iconColor: AppTheme.textPrimary
        anchors.verticalCenter: parent.verticalCenter
    }
    component Adjust: IconButton {
        required property int seconds
        side: 54
        width: 46
        iconSize: 11
        iconColor: AppTheme.textPrimary
        anchors.verticalCenter: parent.verticalCenter
        onClicked: bar.engine.adjust(seconds)
    }
    component Toggle: IconButton {
        side: 54
        iconSize: 18
        anchors.verticalCenter: parent.verticalCenter
    }

    Row {
    spacing: 8
    height: 72
    Transport { objectName: "transportPrevious"; symbol: "backward.end.fill"; help: "Précédent (" + keys.previous + ")"; onClicked: bar.engine.previous() }
    IconButton {
        objectName: "transportPlay"
        anchors.verticalCenter: parent.verticalCenter
        side: 72
        iconSize: 26
        symbol: bar.presenter.playSymbol
        iconColor: "white"
        fill: AppTheme.accent
        help: "Play/Pause (Espace)"
        onClicked: bar.consoleController.playPause()
    }
    Transport { objectName: "transportStop"; symbol: "stop.fill"; help: "Stop (" + keys.stop + ")"; onClicked: bar.engine.stop() }
    Transport { objectName: "transportReset"; symbol: "arrow.counterclockwise"; help: "Reset (" + keys.reset + ")"; onClicked: bar.engine.reset() }
    Transport { objectName: "transportNext"; symbol: "forward.end.fill"; help: "Suivant (" + keys.next + ")"; onClicked: bar.engine.next() }
    }

    Row {
    spacing: 8
    height: 72
    Adjust { objectName: "adjustMinus60"; text: "-1m"; seconds: -60; help: "Retirer une minute" }
    Adjust { objectName: "adjustMinus10"; text: "-10s"; seconds: -10; help: "Retirer 10 secondes" }
    Adjust { objectName: "adjustPlus10"; text: "+10s"; seconds: 10; help: "Ajouter 10 secondes" }
    Adjust { objectName: "adjustPlus60"; text: "+1m"; seconds: 60; help: "Ajouter une minute" }
    }

    Row {
    spacing: 8
    height: 72

    Toggle { objectName: "toggleBlink"; symbol: "bolt.fill"; on: bar.engine.blinkActive; help: "Blink — flash la sortie speaker (" + keys.blink + ")"; onClicked: bar.commands.blink() }
    Toggle { objectName: "toggleBlackout"; symbol: "eye.slash.fill"; on: bar.engine.blackout; help: "Blackout (" + keys.blackout + ")"; onClicked: bar.consoleController.toggleBlackout() }
    Toggle { objectName: "toggleFreeze"; symbol: "snowflake"; on: bar.engine.freeze; help: "Freeze (" + keys.freeze + ")"; onClicked: bar.engine.toggleFreeze() }
    Toggle { objectName: "toggleClock"; symbol: "clock.fill"; on: bar.engine.clockMode; help: "Mode horloge (" + keys.clock + ")"; onClicked: bar.consoleController.toggleClockMode() }
    }

    // The menu shortcuts as this platform writes them ("Ctrl+←" here, "⌘←" on macOS).
    QtObject {
        id: keys
        readonly property string previous: KeyText.native("Ctrl+Left")
        readonly property string next: KeyText.native("Ctrl+Right")
        readonly property string stop: KeyText.native("Ctrl+.")
        readonly property string reset: KeyText.native("Ctrl+R")
        readonly property string blink: KeyText.native("Ctrl+L")
        readonly property string blackout: KeyText.native("Ctrl+B")
        readonly property string freeze: KeyText.native("Ctrl+F")
        readonly property string clock: KeyText.native("Ctrl+K")
    }
}
