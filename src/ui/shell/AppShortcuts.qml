import QtQuick
import Kairon

// The menu commands' keys, live in every window of the application. A text field that has the
// focus keeps the printable keys it is typed (Space stays a space there).
Item {
    id: root

    required property ShellCommandTable table

    Repeater {
        model: root.table.keyed.length
        delegate: Item {
            required property int index
            Shortcut {
                sequence: root.table.keyed[index].keys
                context: Qt.ApplicationShortcut
                onActivated: root.table.keyed[index].run()
            }
        }
    }
}
