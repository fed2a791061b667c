import QtQuick
import QtQuick.Controls
import Kairon

// An on/off switch of a sheet with its text on the right, which wraps when it is long.
Switch {
    id: control

    implicitWidth: parent ? parent.width : 400
    padding: 0
    spacing: 10
    font.family: AppTheme.textFont
    font.pixelSize: 13

    indicator: Rectangle {
        x: control.leftPadding
        y: (control.height - height) / 2
        width: 34
        height: 20
        radius: 10
        color: control.checked ? AppTheme.accent : AppTheme.bgInput
        border.width: 1
        border.color: control.visualFocus ? "white" : (control.checked ? AppTheme.accent : AppTheme.separator)

        Rectangle {
            x: control.checked ? parent.width - width - 3 : 3
            anchors.verticalCenter: parent.verticalCenter
            width: 14
            height: 14
            radius: 7
            color: "white"
            Behavior on x { NumberAnimation { duration: 120; easing.type: Easing.OutCubic } }
        }
    }

    contentItem: Text {
        leftPadding: control.indicator.width + control.spacing
        text: control.text
        color: AppTheme.textPrimary
        font: control.font
        wrapMode: Text.WordWrap
        verticalAlignment: Text.AlignVCenter
    }
}
