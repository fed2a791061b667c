import QtQuick
import Kairon

// The speaker's screen: the background, the content of the current mode, the blink overlay and
// the message banner, in that order. Every size is a fraction of the window.
Item {
    id: root

    required property TimerEngine engine
    required property DisplayClock clock

    // The content stays above the message banner, a gap away from it, so that neither the
    // digits nor the bar are ever hidden under it.
    readonly property real contentBottom: banner.visible ? banner.bannerTop - Math.round(height * 0.02) : height

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
            bottomLimit: root.contentBottom
        }
    }

    Loader {
        anchors.fill: parent
        active: presenter.mode === StagePresenter.Clock
        sourceComponent: StageClockContent {
            clock: root.clock
            bottomLimit: root.contentBottom
        }
    }

    Loader {
        anchors.fill: parent
        active: presenter.mode === StagePresenter.Timer
        sourceComponent: StageTimerContent {
            stage: presenter
            bottomLimit: root.contentBottom
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
        id: banner
        anchors.fill: parent
        visible: presenter.bannerVisible
        stage: presenter
    }
}
