import QtQuick
import QtQuick.Controls
import Kairon

// The cue list's add menu: a blank cue, one entry per template with its length, then the cues
// of a spreadsheet.
Menu {
    id: menu

    required property ConsolePresenter presenter
    required property ConsoleController consoleController
    signal addFromSpreadsheet

    objectName: "addCueMenu"
    width: 260

    MenuItem {
        objectName: "addBlankCue"
        text: "Cue vide"
        onTriggered: menu.consoleController.addBlankCue()
    }
    MenuSeparator {}
    Instantiator {
        model: menu.presenter.templateLabels
        onObjectAdded: (index, item) => menu.insertItem(index + 2, item)
        onObjectRemoved: (index, item) => menu.removeItem(item)
        delegate: MenuItem {
            required property string modelData
            required property int index
            objectName: "addTemplate" + index
            text: modelData.replace(/&/g, "&&") // shown as typed, not as a key mnemonic ("Q&A")
            onTriggered: menu.consoleController.addCueFromTemplate(index)
        }
    }
    MenuSeparator {}
    MenuItem {
        objectName: "addFromSpreadsheet"
        text: "Ajouter depuis un tableur…"
        onTriggered: menu.addFromSpreadsheet()
    }
}
