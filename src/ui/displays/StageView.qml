import QtQuick
import Kairon

// The speaker's screen: the background, the content of the current mode, the blink overlay and
// the message banner, in that order. Every size is a fraction of the window.
Item {
    id: root

    required property TimerEngine engine
    required property DisplayClock clock

    StagePresenter {
        id: stage
        objectName: "stagePresenter"
        engine: root.engine
        clock: root.clock
    }

    Rectangle {
        anchors.fill: parent
        color: AppTheme.bgDeep
    }

    Rectangle {
        objectName: "blackout"
        anchors.fill: parent
        color: "black"
        visible: stage.mode === StagePresenter.Blackout
    }

    StageDoorsContent {
        anchors.fill: parent
        visible: stage.mode === StagePresenter.Doors
        stage: stage
    }

    StageClockContent {
        anchors.fill: parent
        visible: stage.mode === StagePresenter.Clock
        clock: root.clock
    }

    StageTimerContent {
        anchors.fill: parent
        visible: stage.mode === StagePresenter.Timer
        stage: stage
    }

    Rectangle {
        objectName: "blinkOverlay"
        anchors.fill: parent
        visible: stage.blinkVisible
        color: stage.blinkColor
        opacity: 0.85
    }

    StageMessageBanner {
        anchors.fill: parent
        visible: stage.bannerVisible
        stage: stage
    }
}
