import QtQuick
import QtQuick.Controls
import Kairon

// A square button showing one icon (or a short text), with its help text as a tooltip. As a
// toggle it is drawn in the accent while `on`.
Button {
    id: button

    property string symbol: ""
    property real iconSize: 16
    property color iconColor: AppTheme.textSecondary
    property color fill: AppTheme.bgInput
    property bool on: false
    property string help: ""
    property real side: 32

    implicitWidth: side
    implicitHeight: side
    padding: 0
    focusPolicy: Qt.StrongFocus
    opacity: enabled ? 1 : 0.4
    hoverEnabled: true

    ToolTip.visible: help !== "" && hovered
    ToolTip.text: help
    ToolTip.delay: 600

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            visible: button.symbol !== ""
            symbol: button.symbol
            size: button.iconSize
            color: button.on ? "white" : button.iconColor
        }
        Text {
            anchors.centerIn: parent
            visible: button.symbol === ""
            text: button.text
            color: button.on ? "white" : button.iconColor
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: button.iconSize
        }
    }

    background: Rectangle {
        radius: Math.min(10, button.side / 4)
        color: button.on ? AppTheme.accent
                         : button.down ? Qt.lighter(button.fill, 1.3)
                                       : button.hovered ? Qt.lighter(button.fill, 1.15) : button.fill
        border.width: button.visualFocus ? 1 : 0
        border.color: AppTheme.accent
    }
}
