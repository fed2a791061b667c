import QtQuick
import QtQuick.Window
import Kairon

// The confidence output: no title bar, never takes the keyboard focus from the operator's window.
Window {
    id: window

    required property TimerEngine engine
    required property DisplayClock clock

    title: "Kairon — Confidence"
    flags: Qt.Window | Qt.FramelessWindowHint | Qt.WindowDoesNotAcceptFocus
    color: AppTheme.bgDeep
    width: 1280
    height: 720

    ConfidenceView {
        anchors.fill: parent
        engine: window.engine
        clock: window.clock
    }
}
