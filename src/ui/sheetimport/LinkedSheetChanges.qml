import QtQuick
import QtQuick.Controls
import Kairon

// "Voir": the linked spreadsheet's changes against the show, one line each (added, removed,
// changed with the fields that differ, moved), with "Mettre à jour" to take them.
Popup {
    id: sheet

    required property LinkedSheetMonitor monitor

    objectName: "linkedSheetChanges"
    parent: Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(parent.width - 60, 720)
    height: Math.min(parent.height - 60, 560)
    padding: 24
    modal: true
    focus: true
    closePolicy: Popup.CloseOnEscape

    // Nothing left to show once the show took the changes, or the file went back.
    Connections {
        target: sheet.monitor
        function onChanged() { if (!sheet.monitor.canUpdate) sheet.close(); }
    }

    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.55) }
    background: PanelBackground {
        border.width: 1
        border.color: AppTheme.separator
    }

    contentItem: Item {
        Column {
            id: top
            width: parent.width
            spacing: 6
            Text {
                text: "Changements du tableur"
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.weight: Font.Bold
                font.pixelSize: 20
            }
            Text {
                objectName: "linkedSheetChangesFile"
                width: parent.width
                text: sheet.monitor.fileName
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 14
                elide: Text.ElideMiddle
            }
        }

        Rectangle {
            anchors.top: top.bottom
            anchors.topMargin: 14
            anchors.bottom: footer.top
            anchors.bottomMargin: 14
            width: parent.width
            radius: 8
            color: AppTheme.bgDeep
            border.width: 1
            border.color: AppTheme.separator

            ListView {
                id: changes
                objectName: "linkedSheetChangeList"
                anchors.fill: parent
                anchors.margins: 1
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                model: sheet.monitor
                ScrollBar.vertical: ScrollBar {}

                delegate: Rectangle {
                    id: line
                    required property int index
                    required property string kind
                    required property string name
                    required property string fields

                    width: changes.width
                    height: 34
                    color: index % 2 ? "transparent" : Qt.rgba(1, 1, 1, 0.025)

                    Row {
                        x: 12
                        height: parent.height
                        spacing: 12
                        Text {
                            width: 86
                            height: parent.height
                            verticalAlignment: Text.AlignVCenter
                            text: line.kind
                            color: line.kind === "ajouté" ? AppTheme.success
                                 : line.kind === "supprimé" ? AppTheme.stateDanger
                                 : line.kind === "modifié" ? AppTheme.stateWarning : AppTheme.textSecondary
                            font.family: AppTheme.textFont
                            font.weight: Font.DemiBold
                            font.pixelSize: 13
                        }
                        Text {
                            width: Math.max(140, (changes.width - 86 - 48) * 0.5)
                            height: parent.height
                            verticalAlignment: Text.AlignVCenter
                            text: line.name
                            color: AppTheme.textPrimary
                            font.family: AppTheme.textFont
                            font.pixelSize: 13
                            elide: Text.ElideRight
                        }
                        Text {
                            width: Math.max(100, (changes.width - 86 - 48) * 0.5)
                            height: parent.height
                            verticalAlignment: Text.AlignVCenter
                            text: line.fields
                            color: AppTheme.textSecondary
                            font.family: AppTheme.textFont
                            font.pixelSize: 13
                            elide: Text.ElideRight
                        }
                    }
                }
            }
        }

        Item {
            id: footer
            anchors.bottom: parent.bottom
            width: parent.width
            height: 36

            Text {
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                text: sheet.monitor.text
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 14
                width: parent.width - buttons.width - 16
                elide: Text.ElideRight
            }
            Row {
                id: buttons
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 12
                AccentButtonStyle {
                    objectName: "linkedSheetChangesClose"
                    text: "Fermer"
                    onClicked: sheet.close()
                }
                AccentButtonStyle {
                    objectName: "linkedSheetChangesUpdate"
                    prominent: true
                    text: "Mettre à jour"
                    onClicked: sheet.monitor.update()
                }
            }
        }
    }
}
