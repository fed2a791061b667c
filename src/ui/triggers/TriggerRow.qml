import QtQuick
import QtQuick.Controls
import Kairon

// One saved trigger: its moment, its name and what it sends, with "Envoyer maintenant", edit
// and delete; a trigger that cannot be sent as it stands says why under it.
Rectangle {
    id: row

    required property int index
    required property string moment
    required property string name
    required property string summary
    required property string problem
    required property string sending
    property bool busy: false // another trigger is in the form
    property bool canSend: true
    signal editRequested()
    signal removeRequested()
    signal sendRequested()

    objectName: "triggerRow" + index
    implicitHeight: lines.implicitHeight + 16
    radius: 6
    color: AppTheme.bgInput
    border.width: 1
    border.color: problem !== "" ? AppTheme.stateDanger : AppTheme.separator

    Column {
        id: lines
        x: 10
        y: 8
        width: row.width - 20
        spacing: 4

        Item {
            width: parent.width
            height: 26
            Rectangle {
                id: chip
                anchors.verticalCenter: parent.verticalCenter
                width: momentText.implicitWidth + 12
                height: 20
                radius: 4
                color: Qt.alpha(AppTheme.accent, 0.18)
                Text {
                    id: momentText
                    objectName: "triggerMoment" + row.index
                    anchors.centerIn: parent
                    text: row.moment
                    color: AppTheme.accent
                    font.family: AppTheme.textFont
                    font.weight: Font.DemiBold
                    font.pixelSize: 11
                }
            }
            ElidedText {
                objectName: "triggerName" + row.index
                anchors.left: chip.right
                anchors.leftMargin: 8
                anchors.right: tools.left
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                text: row.name
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: 13
            }
            Row {
                id: tools
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 4
                IconButton {
                    objectName: "triggerEdit" + row.index
                    side: 26
                    symbol: "pencil"
                    iconSize: 13
                    help: "Modifier le déclencheur"
                    enabled: !row.busy
                    onClicked: row.editRequested()
                }
                IconButton {
                    objectName: "triggerRemove" + row.index
                    side: 26
                    symbol: "trash"
                    iconSize: 13
                    help: "Supprimer le déclencheur"
                    enabled: !row.busy
                    onClicked: row.removeRequested()
                }
            }
        }
        Item {
            width: parent.width
            height: 24
            ElidedText {
                objectName: "triggerSummary" + row.index
                anchors.left: parent.left
                anchors.right: send.left
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                text: row.summary
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 12
            }
            TriggerSendButton {
                id: send
                objectName: "triggerSend" + row.index
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                visible: row.canSend
                width: visible ? implicitWidth : 0
                enabled: row.problem === ""
                onClicked: row.sendRequested()
            }
        }
        FieldReason {
            objectName: "triggerProblem" + row.index
            text: row.problem
        }
        SendOutcome {
            objectName: "triggerOutcome" + row.index
            width: parent.width
            state: row.sending
        }
    }
}
