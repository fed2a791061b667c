import QtQuick
import QtQuick.Controls
import Kairon

// The menu bar: built from the command table, each item showing its keys as this platform
// writes them.
MenuBar {
    id: bar

    required property ShellCommandTable table

    background: Rectangle {
        implicitHeight: 28
        color: AppTheme.bgPanel
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: AppTheme.separator
        }
    }

    delegate: MenuBarItem {
        id: menuBarItem
        contentItem: Text {
            text: menuBarItem.text
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.pixelSize: 13
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            color: menuBarItem.highlighted ? AppTheme.bgElevated : "transparent"
            radius: 4
        }
    }

    Instantiator {
        model: bar.table.menus
        delegate: AppMenu {
            required property var modelData
            title: modelData.title
            entries: modelData.items
        }
        onObjectAdded: (index, menu) => bar.insertMenu(index, menu)
        onObjectRemoved: (index, menu) => bar.removeMenu(menu)
    }
}
