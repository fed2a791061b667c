import QtQuick
import QtQuick.Controls
import Kairon

// "Stage" opens the stage window; the arrow beside it lists the displays, and choosing one
// opens the window and, half a second later, puts it full screen there.
Row {
    id: root

    required property ConsoleController console
    required property var displays
    signal openStage

    spacing: 2

    AccentButtonStyle {
        objectName: "openStage"
        symbol: "rectangle.on.rectangle"
        text: "Stage"
        help: "Ouvrir la fenêtre Stage"
        onClicked: root.openStage()
    }

    IconButton {
        id: more
        objectName: "stageDisplays"
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
        objectName: "stageDisplayMenu"
        width: 320 // a display's whole name and "(principal)"
        margins: 8
        Instantiator {
            model: root.displays
            onObjectAdded: (index, item) => displayMenu.insertItem(index, item)
            onObjectRemoved: (index, item) => displayMenu.removeItem(item)
            delegate: MenuItem {
                required property var modelData
                objectName: "stageDisplay" + modelData.id
                text: ("Plein écran sur : " + modelData.name + (modelData.isMain ? " (principal)" : ""))
                      .replace(/&/g, "&&") // a "&" in a name is no key mnemonic
                onTriggered: {
                    root.openStage();
                    root.console.sendStageTo(modelData.id);
                }
            }
        }
    }
}
