import QtQuick
import Kairon

// The maker's large logo on the splash, pulsing gently.
Item {
    id: root

    implicitWidth: logo.implicitWidth
    implicitHeight: logo.implicitHeight

    Text {
        id: logo
        anchors.centerIn: parent
        text: "KAIRON"
        color: AppTheme.accent
        font.family: AppTheme.textFont
        font.weight: Font.Black
        font.pixelSize: 48
    }

    SequentialAnimation on scale {
        loops: Animation.Infinite
        NumberAnimation { to: 1.04; duration: 1200; easing.type: Easing.InOutSine }
        NumberAnimation { to: 1.0; duration: 1200; easing.type: Easing.InOutSine }
    }
}
