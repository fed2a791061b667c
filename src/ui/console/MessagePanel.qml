import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Kairon

// The speaker message: what is on air, the preset messages, and a custom message sent plain
// or urgent; "Effacer" takes the message off the outputs.
PanelBackground {
    id: panel

    required property TimerEngine engine
    required property ConsoleController consoleController
    required property ConsolePresenter presenter

    implicitHeight: column.implicitHeight + 28

    Column {
        id: column
        x: 14
        y: 14
        width: parent.width - 28
        spacing: 10

        Row {
            spacing: 12
            width: parent.width
            Text {
                id: title
                text: "MESSAGE SPEAKER"
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.weight: Font.Bold
                font.pixelSize: 13
                font.letterSpacing: 1.5
            }
            Text {
                objectName: "onAirMessage"
                anchors.baseline: title.baseline
                width: parent.width - title.width - 12
                elide: Text.ElideRight
                visible: panel.engine.currentMessage !== undefined && panel.engine.currentMessage !== null
                text: visible ? panel.engine.currentMessage : ""
                color: panel.engine.messageUrgent ? AppTheme.stateDanger : AppTheme.accent
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 12
            }
        }

        Flow {
            width: parent.width
            spacing: 6
            Repeater {
                model: panel.presenter.presets
                delegate: AccentButtonStyle {
                    required property var modelData
                    required property int index
                    objectName: "preset" + index
                    text: modelData.text
                    labelColor: modelData.urgent ? AppTheme.stateDanger : AppTheme.textPrimary
                    leftPadding: 12
                    rightPadding: 12
                    onClicked: panel.consoleController.sendPreset(index)
                }
            }
        }

        RowLayout {
            width: parent.width
            spacing: 6
            TextField {
                id: field
                objectName: "customMessage"
                Layout.fillWidth: true
                placeholderText: "Message personnalisé…"
                placeholderTextColor: AppTheme.textMuted
                color: AppTheme.textPrimary
                font.family: AppTheme.textFont
                font.pixelSize: 13
                background: Rectangle {
                    radius: 8
                    color: AppTheme.bgInput
                    border.width: 1
                    border.color: field.activeFocus ? AppTheme.accent : "transparent"
                }
                onAccepted: send(false)
            }
            AccentButtonStyle { objectName: "sendMessage"; text: "Envoyer"; prominent: true; onClicked: panel.send(false) }
            AccentButtonStyle {
                objectName: "sendUrgent"
                symbol: "exclamationmark.triangle.fill"
                text: "Urgent"
                labelColor: AppTheme.stateDanger
                onClicked: panel.send(true)
            }
            AccentButtonStyle { objectName: "clearMessage"; text: "Effacer"; onClicked: panel.consoleController.clearMessage() }
        }
    }

    function send(urgent) {
        if (panel.consoleController.sendCustom(field.text, urgent))
            field.text = "";
    }
}
