import QtQuick
import Kairon

// The confidence output.
OutputWindow {
    id: window

    required property TimerEngine engine
    required property DisplayClock clock

    title: "Kairon — Confidence"

    ConfidenceView {
        anchors.fill: parent
        engine: window.engine
        clock: window.clock
    }
}
