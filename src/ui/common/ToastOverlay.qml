import QtQuick
import Kairon

// The current toast, 14 below the top of the window and centred: the kind's icon and the text
// on an elevated capsule outlined in the kind's colour. It springs in, eases out, and a click
// clears it. The capsule keeps the last text while it leaves.
Item {
    id: overlay

    required property ToastCenter center

    anchors.fill: parent
    z: 1000

    Rectangle {
        id: capsule
        objectName: "toast"
        readonly property bool shown: overlay.center.showing

        anchors.horizontalCenter: parent.horizontalCenter
        y: shown ? 14 : -height
        width: row.implicitWidth + 36
        height: row.implicitHeight + 22 // 11 above and below
        radius: height / 2
        color: AppTheme.bgElevated
        border.width: 1
        border.color: Qt.alpha(overlay.center.color, 0.4)
        opacity: shown ? 1 : 0
        visible: opacity > 0

        // A soft black shadow under the capsule.
        Rectangle {
            z: -1
            anchors.fill: parent
            anchors.topMargin: 3
            anchors.bottomMargin: -3
            radius: parent.radius
            color: Qt.rgba(0, 0, 0, 0.4)
        }

        Row {
            id: row
            anchors.centerIn: parent
            spacing: 8
            Icon {
                objectName: "toastIcon"
                anchors.verticalCenter: parent.verticalCenter
                symbol: overlay.center.symbol
                size: 16
                color: overlay.center.color
            }
            Text {
                objectName: "toastText"
                anchors.verticalCenter: parent.verticalCenter
                text: overlay.center.text
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 13
            }
        }

        MouseArea {
            anchors.fill: parent
            enabled: capsule.shown
            onClicked: overlay.center.dismiss()
        }

        // In: a spring of about 0.35 s that barely overshoots; out: 0.25 s easing out.
        Behavior on y {
            NumberAnimation {
                duration: capsule.shown ? 350 : 250
                easing.type: capsule.shown ? Easing.OutBack : Easing.OutCubic
                easing.overshoot: 0.8
            }
        }
        Behavior on opacity {
            NumberAnimation { duration: capsule.shown ? 200 : 250; easing.type: Easing.OutCubic }
        }
    }
}
