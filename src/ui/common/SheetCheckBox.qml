import QtQuick
import QtQuick.Controls
import Kairon

// A check box of the project sheet: a rounded square, filled with the accent and ticked when on.
CheckBox {
    id: box

    spacing: 10
    padding: 2

    indicator: Rectangle {
        x: box.leftPadding
        anchors.verticalCenter: parent.verticalCenter
        implicitWidth: 18
        implicitHeight: 18
        radius: 5
        color: box.checked ? AppTheme.accent : AppTheme.bgInput
        border.width: 1
        border.color: box.checked ? AppTheme.accentHover
                                  : box.visualFocus ? AppTheme.accent : AppTheme.textMuted
        Icon {
            anchors.centerIn: parent
            visible: box.checked
            symbol: "checkmark"
            size: 14
            color: "white"
        }
    }

    contentItem: Text {
        leftPadding: box.indicator.width + box.spacing
        text: box.text
        color: AppTheme.textPrimary
        font.family: AppTheme.textFont
        font.pixelSize: 14
        verticalAlignment: Text.AlignVCenter
    }
}
