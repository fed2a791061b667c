import QtQuick
import Kairon

// The menu commands' keys, as this platform writes them, beside what they do.
Column {
    id: list

    // "Ctrl+" here, "⌘" on macOS: the command key written before another key.
    readonly property string command: KeyText.native("Ctrl+A").slice(0, -1)
    readonly property var entries: [
        { keys: "Espace", action: "Play / Pause" },
        { keys: KeyText.native("Ctrl+."), action: "Stop" },
        { keys: KeyText.native("Ctrl+R"), action: "Reset" },
        { keys: command + "→ / " + command + "←", action: "Cue suivant / précédent" },
        { keys: KeyText.native("Ctrl+B"), action: "Blackout" },
        { keys: KeyText.native("Ctrl+F"), action: "Freeze" },
        { keys: KeyText.native("Ctrl+K"), action: "Mode horloge" },
        { keys: KeyText.native("Ctrl+L"), action: "Blink — flash speaker" }
    ]

    spacing: 4

    Repeater {
        model: list.entries
        delegate: Row {
            required property var modelData
            required property int index
            objectName: "shortcut" + index
            spacing: 12
            Rectangle {
                width: 150
                height: 24
                radius: 5
                color: AppTheme.bgInput
                Text {
                    objectName: "keys"
                    anchors.verticalCenter: parent.verticalCenter
                    x: 8
                    text: modelData.keys
                    color: AppTheme.textPrimary
                    font.family: AppTheme.textFont
                    font.pixelSize: 12
                    font.weight: Font.Medium
                }
            }
            Text {
                objectName: "action"
                anchors.verticalCenter: parent.verticalCenter
                text: modelData.action
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 12
            }
        }
    }
}
