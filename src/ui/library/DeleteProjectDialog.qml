import QtQuick
import QtQuick.Controls
import Kairon

// The confirmation before a project goes to the Trash. It shows while the library holds a
// project waiting for deletion; closing it any other way than "Mettre à la corbeille" keeps
// the project.
Popup {
    id: dialog

    required property ProjectLibrary library

    parent: Overlay.overlay
    anchors.centerIn: parent
    width: 420
    padding: 24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape
    visible: library.deletionPending
    onClosed: library.cancelDelete()

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
    background: PanelBackground {
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: Column {
        spacing: 12

        Icon {
            symbol: "trash"
            size: 28
            color: AppTheme.stateDanger
        }
        Text {
            objectName: "deleteTitle"
            width: parent.width
            text: "Supprimer ce projet ?"
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 17
            wrapMode: Text.Wrap
        }
        Text {
            objectName: "deleteMessage"
            width: parent.width
            text: dialog.library.deletionMessage
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.pixelSize: 13
            wrapMode: Text.Wrap
        }
        Item { width: 1; height: 6 }
        Row {
            anchors.right: parent.right
            spacing: 10
            AccentButtonStyle {
                objectName: "cancelDelete"
                text: "Annuler"
                onClicked: dialog.close()
            }
            AccentButtonStyle {
                id: trash
                objectName: "confirmDelete"
                text: "Mettre à la corbeille"
                contentItem: Text {
                    text: trash.text
                    color: "white"
                    font.family: AppTheme.textFont
                    font.weight: Font.DemiBold
                    font.pixelSize: 13
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                }
                background: Rectangle {
                    radius: 8
                    color: trash.down ? Qt.darker(AppTheme.stateDanger, 1.2) : AppTheme.stateDanger
                }
                onClicked: dialog.library.confirmDelete()
            }
        }
    }
}
