import QtQuick
import QtQuick.Controls
import Kairon

// The trigger being added or edited, in place of its row: when it fires, its name, and what it
// sends (OSC: host, port, address, typed arguments; HTTP: method, URL, body), each refused
// value's reason under its field. "OK" (also Return) takes it into the list and is refused
// while a field has a reason; "Annuler" (also Escape) leaves the list as it was. Neither key
// reaches the sheet around it.
Rectangle {
    id: view

    required property TriggerList list
    readonly property TriggerForm form: list.form

    objectName: "triggerForm"
    implicitHeight: content.implicitHeight + 24
    radius: 6
    color: AppTheme.bgElevated
    border.width: 1
    border.color: AppTheme.accent

    Keys.onReturnPressed: view.list.applyEdit()
    Keys.onEnterPressed: view.list.applyEdit()
    Keys.onEscapePressed: view.list.cancelEdit()
    // Escape is the form's, not the sheet's that closes on it.
    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape
    Component.onCompleted: nameField.input.forceActiveFocus()

    Column {
        id: content
        x: 12
        y: 12
        width: view.width - 24
        spacing: 10

        SegmentedChoice {
            objectName: "triggerMomentChoice"
            options: ["Début", "Warning", "Danger", "Zéro", "Fin"]
            // The five side by side across the form.
            minimumSegmentWidth: Math.floor((view.width - 24 - 6 - 4 * 2) / 5)
            labelPadding: 16
            currentIndex: view.form.moment
            onActivated: index => view.form.moment = index
        }
        TriggerField {
            id: nameField
            objectName: "triggerNameField"
            width: parent.width
            label: "Nom"
            text: view.form.name
            placeholderText: "Lumières, son, mélangeur…"
            onEdited: text => view.form.name = text
        }
        SegmentedChoice {
            objectName: "triggerKindChoice"
            options: ["OSC", "HTTP"]
            currentIndex: view.form.http ? 1 : 0
            onActivated: index => view.form.http = index === 1
        }

        Column {
            visible: !view.form.http
            width: parent.width
            spacing: 10
            Row {
                spacing: 8
                TriggerField {
                    objectName: "triggerHostField"
                    width: content.width - 8 - 96
                    label: "Hôte"
                    text: view.form.host
                    placeholderText: "192.168.1.50"
                    problem: view.form.hostProblem
                    onEdited: text => view.form.host = text
                }
                TriggerField {
                    objectName: "triggerPortField"
                    width: 96
                    label: "Port"
                    text: view.form.port
                    problem: view.form.portProblem
                    onEdited: text => view.form.port = text
                }
            }
            TriggerField {
                objectName: "triggerAddressField"
                width: parent.width
                label: "Adresse OSC"
                text: view.form.address
                placeholderText: "/go"
                problem: view.form.addressProblem
                onEdited: text => view.form.address = text
            }
            OscArgumentList {
                width: parent.width
                form: view.form
            }
        }

        Column {
            visible: view.form.http
            width: parent.width
            spacing: 10
            SegmentedChoice {
                objectName: "triggerMethodChoice"
                options: ["GET", "POST"]
                currentIndex: view.form.post ? 1 : 0
                onActivated: index => view.form.post = index === 1
            }
            TriggerField {
                objectName: "triggerUrlField"
                width: parent.width
                label: "URL"
                text: view.form.url
                placeholderText: "http://192.168.1.60/go?cue={index}"
                problem: view.form.urlProblem
                onEdited: text => view.form.url = text
            }
            TriggerField {
                objectName: "triggerBodyField"
                visible: view.form.post
                width: parent.width
                label: "Corps (facultatif)"
                text: view.form.body
                onEdited: text => view.form.body = text
            }
        }

        Text {
            width: parent.width
            text: "Remplacés à l'envoi : {cue}, {speaker}, {index}, {remaining}"
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: 11
            wrapMode: Text.Wrap
        }

        Item {
            width: parent.width
            height: 32
            TriggerSendButton {
                objectName: "triggerFormSend"
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                visible: view.list.canSend
                enabled: view.form.acceptable
                onClicked: view.list.sendForm()
            }
            Row {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8
                AccentButtonStyle {
                    objectName: "triggerFormCancel"
                    text: "Annuler"
                    onClicked: view.list.cancelEdit()
                }
                AccentButtonStyle {
                    objectName: "triggerFormApply"
                    prominent: true
                    text: "OK"
                    enabled: view.form.acceptable
                    onClicked: view.list.applyEdit()
                }
            }
        }
        SendOutcome {
            objectName: "triggerFormOutcome"
            width: parent.width
            state: view.list.formSending
        }
    }
}
