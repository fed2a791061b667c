import QtQuick
import QtQuick.Layouts
import Kairon

// "OSC": receiving commands and sending the state (each second, and on request at each change
// of state), applied together by one button, with the listener's status and the addresses
// understood and sent.
SettingsPage {
    id: tab

    required property SettingsController settings

    SettingsGroup {
        SheetSwitch {
            objectName: "oscListenSwitch"
            text: "Recevoir des commandes OSC (QLab, Companion…)"
            checked: tab.settings.oscListenEnabled
            onToggled: tab.settings.oscListenEnabled = checked
        }
        LabelledRow {
            label: "Port"
            PortField {
                objectName: "oscListenPort"
                port: tab.settings.oscListenPort
                onPortEdited: port => tab.settings.oscListenPort = port
            }
        }
    }

    SettingsGroup {
        SheetSwitch {
            objectName: "oscSendSwitch"
            text: "Émettre l'état en OSC"
            checked: tab.settings.oscSendEnabled
            onToggled: tab.settings.oscSendEnabled = checked
        }
        LabelledRow {
            label: "Hôte"
            SheetTextField {
                objectName: "oscSendHost"
                implicitWidth: 180
                text: tab.settings.oscSendHost
                onTextEdited: tab.settings.oscSendHost = text
            }
            Text {
                Layout.leftMargin: 6
                text: "Port"
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
            PortField {
                objectName: "oscSendPort"
                port: tab.settings.oscSendPort
                onPortEdited: port => tab.settings.oscSendPort = port
            }
        }
        SheetSwitch {
            objectName: "oscStateChangesSwitch"
            text: "Émettre aussi chaque changement d'état"
            checked: tab.settings.oscSendStateChanges
            onToggled: tab.settings.oscSendStateChanges = checked
        }
    }

    AccentButtonStyle {
        objectName: "applyOsc"
        text: "Appliquer la configuration OSC"
        prominent: true
        onClicked: tab.settings.applyOSCSettings()
    }

    SettingsStatusLine {
        objectName: "oscStatus"
        visible: tab.settings.oscListenEnabled
        ok: tab.settings.oscStatusOk
        text: tab.settings.oscStatusText
    }

    Column {
        objectName: "oscHelp"
        width: parent.width
        spacing: 3
        Repeater {
            model: ["Adresses : /kairon/play · /pause · /stop · /next · /prev · /reset",
                    "/kairon/blackout · /kairon/blink · /kairon/message <s> · /kairon/adjust <±s>",
                    "Émis : /kairon/remaining <f> · /kairon/running <i> · /kairon/cue <s>",
                    "À chaque changement : /kairon/state <iiisiii> · /kairon/message <si>"]
            delegate: SettingsNote {
                required property string modelData
                text: modelData
                font.family: AppTheme.digitsFont
            }
        }
    }
}
