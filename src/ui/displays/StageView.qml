import QtQuick
import Kairon

// The speaker's screen: the background, the content of the current mode, the blink overlay and
// the message banner, in that order. Every size is a fraction of the window.
Item {
    id: root

    required property TimerEngine engine
    required property DisplayClock clock

    StagePresenter {
        id: presenter
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
        visible: presenter.mode === StagePresenter.Blackout
    }

    // Only the content of the current mode exists: hidden content would still redraw the
    // window when its texts change.
    Loader {
        anchors.fill: parent
        active: presenter.mode === StagePresenter.Doors
        sourceComponent: StageDoorsContent {
            stage: presenter
        }
    }

    Loader {
        anchors.fill: parent
        active: presenter.mode === StagePresenter.Clock
        sourceComponent: StageClockContent {
            clock: root.clock
        }
    }

    Loader {
        anchors.fill: parent
        active: presenter.mode === StagePresenter.Timer
        sourceComponent: StageTimerContent {
            stage: presenter
        }
    }

    Rectangle {
        objectName: "blinkOverlay"
        anchors.fill: parent
        visible: presenter.blinkVisible
        color: presenter.blinkColor
        opacity: 0.85
    }

    StageMessageBanner {
        anchors.fill: parent
        visible: presenter.bannerVisible
        stage: presenter
    }
}
