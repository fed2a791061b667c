import QtQuick
import QtQuick.Controls
import Kairon

// An output's button ("Stage", "Confidence") opens its window; the arrow beside it lists the
// displays, and choosing one opens the window and, half a second later, puts it full screen
// there. The object names start with the output's identifier: "stageDisplays",
// "confidenceDisplay0"…
Row {
    id: root

    required property string identifier
    required property string text
    required property string symbol
    required property string help
    required property var displays
    signal open
    signal sendTo(int displayIndex)

    spacing: 2

    AccentButtonStyle {
        objectName: "open" + root.text
        symbol: root.symbol
        text: root.text
        help: root.help
        onClicked: root.open()
    }

    IconButton {
        id: more
        objectName: root.identifier + "Displays"
        side: 32
        width: 24
        symbol: "chevron.down"
        iconSize: 14
        fill: AppTheme.bgElevated
        // Under the arrow, its right edge on the arrow's: the window's edge is close.
        onClicked: displayMenu.popup(more, more.width - displayMenu.width, more.height + 4)
    }

    Menu {
        id: displayMenu
        objectName: root.identifier + "DisplayMenu"
        width: 320 // a display's whole name and "(principal)"
        margins: 8
        Instantiator {
            model: root.displays
            onObjectAdded: (index, item) => displayMenu.insertItem(index, item)
            onObjectRemoved: (index, item) => displayMenu.removeItem(item)
            delegate: MenuItem {
                required property var modelData
                objectName: root.identifier + "Display" + modelData.id
                text: ("Plein écran sur : " + modelData.name + (modelData.isMain ? " (principal)" : ""))
                      .replace(/&/g, "&&") // a "&" in a name is no key mnemonic
                onTriggered: root.sendTo(modelData.id)
            }
        }
    }
}
