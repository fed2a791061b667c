import QtQuick
import QtQuick.Controls
import Kairon

// One menu of the menu bar: its entries' titles on the left, their keys on the right.
Menu {
    id: menu

    property var entries: []

    background: Rectangle {
        implicitWidth: 260
        color: AppTheme.bgElevated
        border.color: AppTheme.separator
        radius: 6
    }

    Instantiator {
        model: menu.entries
        delegate: MenuItem {
            id: item
            required property var modelData
            objectName: "menuItem:" + text
            text: typeof modelData.title === "function" ? modelData.title() : modelData.title
            onTriggered: modelData.run()
            contentItem: Item {
                implicitWidth: title.implicitWidth + keys.implicitWidth + 40
                implicitHeight: 24
                Text {
                    id: title
                    anchors.left: parent.left
                    anchors.verticalCenter: parent.verticalCenter
                    text: item.text
                    color: AppTheme.textPrimary
                    font.family: AppTheme.textFont
                    font.pixelSize: 13
                }
                Text {
                    id: keys
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    text: item.modelData.keys === "" ? "" : nativeKeys.nativeText
                    color: AppTheme.textMuted
                    font.family: AppTheme.textFont
                    font.pixelSize: 12
                }
                // Only to write the keys as this platform does ("Ctrl+B", or "⌘B" on macOS).
                Shortcut {
                    id: nativeKeys
                    sequence: item.modelData.keys
                    enabled: false
                }
            }
            background: Rectangle {
                color: item.highlighted ? AppTheme.accent : "transparent"
                radius: 4
            }
        }
        onObjectAdded: (index, entry) => menu.insertItem(index, entry)
        onObjectRemoved: (index, entry) => menu.removeItem(entry)
    }
}
