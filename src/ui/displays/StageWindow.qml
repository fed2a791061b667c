import QtQuick
import QtQuick.Window
import Kairon

// The stage output: no title bar, never takes the keyboard focus from the operator's window.
Window {
    id: window

    required property TimerEngine engine
    required property DisplayClock clock

    title: "Kairon — Stage"
    flags: Qt.Window | Qt.FramelessWindowHint | Qt.WindowDoesNotAcceptFocus
    color: AppTheme.bgDeep
    width: 1280
    height: 720

    StageView {
        anchors.fill: parent
        engine: window.engine
        clock: window.clock
    }
}
