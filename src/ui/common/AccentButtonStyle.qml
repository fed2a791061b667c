import QtQuick
import QtQuick.Controls
import Kairon

// The interface's button: a medium 13-pixel label padded 18 at the sides on a rounded
// rectangle, with an optional icon before it and its help text as a tooltip. A prominent button
// is filled with the accent (darker while pressed) under a white label; the others sit on the
// elevated grey with a thin accent outline.
Button {
    id: button

    property bool prominent: false
    property string symbol: ""
    property string help: ""
    property color labelColor: prominent ? "white" : AppTheme.textPrimary
    property string labelFont: AppTheme.textFont

    implicitHeight: 32
    leftPadding: 18
    rightPadding: 18
    topPadding: 7
    bottomPadding: 7
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.4

    ToolTip.visible: help !== "" && hovered
    ToolTip.text: help
    ToolTip.delay: 600

    contentItem: Row {
        spacing: 6
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol !== ""
            symbol: button.symbol
            size: 16
            color: button.labelColor
        }
        Text {
            objectName: button.objectName + "Label"
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: button.labelColor
            font.family: button.labelFont
            font.weight: Font.Medium
            font.pixelSize: 13
        }
    }

    background: Rectangle {
        radius: 8
        color: button.prominent ? (button.down ? AppTheme.accentLogo
                                               : button.hovered ? AppTheme.accentHover : AppTheme.accent)
                                : (button.down ? AppTheme.bgInput : AppTheme.bgElevated)
        border.width: 1
        border.color: button.prominent ? AppTheme.accentHover
                                       : button.visualFocus ? AppTheme.accent : AppTheme.accentBorder
    }
}
