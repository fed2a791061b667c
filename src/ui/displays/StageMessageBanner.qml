import QtQuick
import Kairon

// The operator's message, pinned 60 above the bottom edge: orange on translucent black, or
// white on red and pulsing when urgent. A long message wraps within the window.
Item {
    id: root

    required property StagePresenter stage

    Rectangle {
        objectName: "banner"
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 60
        width: bannerText.width + 80
        height: bannerText.height + 40
        radius: 16
        color: root.stage.messageUrgent ? AppTheme.stateOvertime : Qt.rgba(0, 0, 0, 0.7)
        opacity: root.stage.bannerOpacity

        Text {
            id: bannerText
            objectName: "bannerText"
            anchors.centerIn: parent
            width: Math.min(implicitWidth, root.width - 2 * 40 - 80)
            text: root.stage.message
            color: root.stage.messageUrgent ? "white" : AppTheme.accent
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            font.family: AppTheme.textFont
            font.weight: Font.ExtraBold
            font.pixelSize: Math.round(Math.min(root.width * 0.05, 64))
        }
    }
}
