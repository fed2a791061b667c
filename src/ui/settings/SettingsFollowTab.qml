import QtQuick
import QtQuick.Layouts
import Kairon

// "Secours": this machine as the backup of a main one. The switch, the main's address, its web
// port and its access code are applied together by one button; under it, where the following
// stands, or why it was refused.
SettingsPage {
    id: tab

    required property FollowController follow
    // What the button refused to store (an empty address, a port out of range, the disk).
    property string refusal: ""

    SettingsGroup {
        SheetSwitch {
            id: enabledSwitch
            objectName: "followSwitch"
            text: "Suivre une régie principale"
            checked: tab.follow.followEnabled
        }
        LabelledRow {
            label: "Adresse"
            labelWidth: 90
            SheetTextField {
                id: hostField
                objectName: "followHost"
                implicitWidth: 160
                placeholderText: "192.168.1.20"
                text: tab.follow.followHost
            }
            Text {
                Layout.leftMargin: 6
                text: "Port web"
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
            PortField {
                id: portField
                objectName: "followPort"
                port: tab.follow.followPort
            }
        }
        LabelledRow {
            label: "Code d'accès"
            labelWidth: 90
            SheetTextField {
                id: codeField
                objectName: "followAccessCode"
                implicitWidth: 180
                text: tab.follow.followAccessCode
                font.family: AppTheme.digitsFont
                font.capitalization: Font.AllUppercase
                maximumLength: 8
                inputMethodHints: Qt.ImhUppercaseOnly | Qt.ImhNoPredictiveText
            }
        }
    }

    AccentButtonStyle {
        objectName: "applyFollow"
        text: "Appliquer"
        prominent: true
        onClicked: tab.refusal = tab.follow.apply(enabledSwitch.checked, hostField.text,
                                                  portField.acceptableInput ? Number(portField.text) : 0,
                                                  codeField.text)
    }

    SettingsStatusLine {
        objectName: "followStatus"
        visible: text !== ""
        ok: tab.refusal === "" && !tab.follow.statusIsError
        pending: tab.refusal === "" && !tab.follow.statusIsError && !tab.follow.following
        wide: true
        text: tab.refusal !== "" ? tab.refusal : tab.follow.statusText
    }

    SettingsNote {
        objectName: "followHelp"
        text: "La régie principale doit avoir le contrôle web activé : son adresse, son port et son code d'accès se lisent dans son onglet Web. Cette machine montre alors son show et son horloge\u00A0; si la régie principale se tait, le show continue ici et « Prendre la main » (Ctrl+Shift+T) en fait la régie principale."
    }
}
