import QtQuick
import Kairon

// A button of the library page: the interface's button with an icon before its label, in a
// 15-pixel semibold face.
AccentButtonStyle {
    id: button

    property string symbol: ""

    implicitHeight: 36
    leftPadding: 14
    rightPadding: 16

    contentItem: Row {
        spacing: 7
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol !== ""
            symbol: button.symbol
            size: 18
            color: button.prominent ? "white" : AppTheme.accent
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: button.prominent ? "white" : AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: 15
        }
    }
}
