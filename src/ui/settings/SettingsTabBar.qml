import QtQuick
import QtQuick.Controls
import Kairon

// The settings' six tabs, each an icon over its label; the current one in the accent.
TabBar {
    id: bar

    readonly property var entries: [
        { label: "Général", symbol: "gearshape" },
        { label: "OSC", symbol: "network" },
        { label: "Web", symbol: "globe" },
        { label: "Secours", symbol: "lifepreserver" },
        { label: "Session", symbol: "folder" },
        { label: "À propos", symbol: "info.circle" }
    ]

    padding: 8
    spacing: 4
    background: Rectangle {
        color: AppTheme.bgPanel
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: AppTheme.separator
        }
    }

    Repeater {
        model: bar.entries
        delegate: TabButton {
            id: tab
            required property var modelData
            required property int index
            objectName: "settingsTab" + index
            text: modelData.label
            implicitHeight: 52
            focusPolicy: Qt.StrongFocus
            readonly property color tint: tab.checked ? AppTheme.accent : AppTheme.textSecondary

            background: Rectangle {
                radius: 8
                color: tab.checked ? AppTheme.bgElevated : "transparent"
                border.width: tab.visualFocus ? 1 : 0
                border.color: "white"
            }
            contentItem: Column {
                spacing: 2
                Icon {
                    anchors.horizontalCenter: parent.horizontalCenter
                    symbol: tab.modelData.symbol
                    size: 20
                    color: tab.tint
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: tab.text
                    color: tab.tint
                    font.family: AppTheme.textFont
                    font.pixelSize: 11
                    font.weight: Font.Medium
                }
            }
        }
    }
}
