import QtQuick
import Kairon

// The operator's message, pinned 60 above the bottom edge: orange on translucent black, or
// white on red and pulsing when urgent. A long message wraps within the window on up to three
// lines, then gets smaller; the banner never rises above the lower half of the window, so that
// the content above it keeps room for its digits whatever the window's shape.
Item {
    id: root

    required property StagePresenter stage
    // Where the banner begins, from the top of the window.
    readonly property real bannerTop: banner.y

    Rectangle {
        id: banner
        objectName: "banner"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 60
        width: bannerText.drawnWidth + 80
        height: bannerText.drawnHeight + 40
        radius: 16
        color: root.stage.messageUrgent ? AppTheme.stateOvertime : Qt.rgba(0, 0, 0, 0.7)
        opacity: root.stage.bannerOpacity

        WrappedFitText {
            id: bannerText
            objectName: "bannerText"
            anchors.centerIn: parent
            maxWidth: root.width - 2 * 40 - 80
            maxHeight: root.height * 0.5 - 60 - 40
            lines: 3
            size: Math.min(root.width * 0.05, 64)
            text: root.stage.message
            color: root.stage.messageUrgent ? "white" : AppTheme.accent
            horizontalAlignment: Text.AlignHCenter
            font.family: AppTheme.textFont
            font.weight: Font.ExtraBold
        }
    }
}
