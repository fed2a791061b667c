import QtQuick
import Kairon

// The menu commands' keys, live in every window of the application. A text field that has the
// focus keeps the printable keys it is typed (Space stays a space there). While a sheet or a
// confirmation is open, the editing keys (undo, redo) are the sheet's own and never reach the
// cue list behind it, and the show's keys act unless a text field of the sheet has the focus.
Item {
    id: root

    required property ShellCommandTable table
    property bool sheetOpen: false
    property bool typing: false // a text field of this window has the focus

    Repeater {
        model: root.table.keyed.length
        delegate: Item {
            required property int index
            Shortcut {
                sequence: root.table.keyed[index].keys
                context: Qt.ApplicationShortcut
                enabled: root.available(root.table.keyed[index].role)
                onActivated: root.table.keyed[index].run()
            }
        }
    }

    function available(role) {
        if (!sheetOpen)
            return true;
        if (role === "edit")
            return false;
        return role !== "show" || !typing;
    }
}
