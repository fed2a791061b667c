import QtQuick
import QtQuick.Controls
import Kairon

// Asks before a cue is deleted; the deletion can be undone.
Dialog {
    id: dialog

    required property TimerEngine engine
    property int cueIndex: -1

    objectName: "deleteCueDialog"
    modal: true
    anchors.centerIn: Overlay.overlay
    width: 380
    padding: 22
    closePolicy: Popup.CloseOnEscape

    function ask(index) {
        cueIndex = index;
        open();
    }

    background: Rectangle {
        radius: 12
        color: AppTheme.bgPanel
        border.color: AppTheme.separator
    }
    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }

    contentItem: Column {
        spacing: 10
        Text {
            text: "Supprimer ce cue ?"
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 16
        }
        Text {
            objectName: "deleteCueMessage"
            width: parent.width
            wrapMode: Text.WordWrap
            text: "Cette action peut être annulée avec " + KeyText.native("Ctrl+Z") + "."
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 13
        }
        Item { width: 1; height: 8 }
        Row {
            anchors.right: parent.right
            spacing: 8
            AccentButtonStyle { objectName: "deleteCueCancel"; text: "Annuler"; onClicked: dialog.reject() }
            AccentButtonStyle {
                id: confirm
                objectName: "deleteCueConfirm"
                text: "Supprimer"
                labelColor: "white"
                background: Rectangle {
                    radius: 8
                    color: confirm.down ? Qt.darker(AppTheme.stateDanger, 1.2) : AppTheme.stateDanger
                }
                onClicked: dialog.accept()
            }
        }
    }

    onOpened: confirm.forceActiveFocus()
    onAccepted: engine.deleteCue(cueIndex)
}
