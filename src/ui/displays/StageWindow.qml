import QtQuick
import Kairon

// The stage output.
OutputWindow {
    id: window

    required property TimerEngine engine
    required property DisplayClock clock

    title: "Kairon — Stage"

    StageView {
        anchors.fill: parent
        engine: window.engine
        clock: window.clock
    }
}
