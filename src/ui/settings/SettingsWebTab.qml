import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Kairon

// "Web": the server that shows the stage and confidence displays in a browser and lets control
// software drive the show with the access code. Its switch, port and interface are applied
// together by one button; the access code changes at once. Below, the server's status and,
// while it serves, each page's address with its QR code.
SettingsPage {
    id: tab

    required property WebSettingsController web

    SettingsGroup {
        SheetSwitch {
            objectName: "webSwitch"
            text: "Activer le serveur web (écrans dans un navigateur, pilotage par l'API web)"
            checked: tab.web.webEnabled
            onToggled: tab.web.webEnabled = checked
        }
        LabelledRow {
            label: "Port"
            PortField {
                objectName: "webPort"
                port: tab.web.webPort
                onPortEdited: port => tab.web.webPort = port
            }
            Text {
                Layout.leftMargin: 6
                text: "Interface"
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
            ChoiceMenu {
                objectName: "webInterfaceMenu"
                Layout.fillWidth: true
                model: tab.web.interfaceChoices
                textRole: "label"
                valueRole: "address"
                currentIndex: tab.web.interfaceIndex
                onActivated: index => tab.web.webInterface = valueAt(index)
            }
        }
    }

    SettingsGroup {
        title: "Code d'accès"
        note: "À donner au logiciel de régie qui pilote le show par l'API web ; les pages "
              + "s'ouvrent sans code. Un nouveau code remplace l'ancien aussitôt."
        Row {
            spacing: 12
            AccessCodeField {
                objectName: "webAccessCode"
                web: tab.web
            }
            AccentButtonStyle {
                objectName: "newAccessCode"
                anchors.verticalCenter: parent.verticalCenter
                text: "Nouveau code"
                symbol: "arrow.clockwise"
                onClicked: tab.web.newAccessCode()
            }
        }
    }

    AccentButtonStyle {
        objectName: "applyWeb"
        text: "Appliquer la configuration web"
        prominent: true
        onClicked: tab.web.apply()
    }

    SettingsStatusLine {
        objectName: "webStatus"
        visible: tab.web.statusShown
        ok: !tab.web.failed
        pending: !tab.web.serving && !tab.web.failed
        text: tab.web.statusText
    }

    SettingsGroup {
        objectName: "webAddresses"
        visible: tab.web.serving
        title: "Adresses des pages"
        SettingsNote {
            text: "Visez un code avec l'appareil photo d'un téléphone pour ouvrir sa page ; le "
                  + "téléphone doit être sur le même réseau que cet ordinateur."
        }
        Repeater {
            model: tab.web.pageHosts
            delegate: Column {
                id: host
                required property var modelData
                required property int index
                width: parent.width
                spacing: 12
                topPadding: 6
                SettingsHeading {
                    text: host.modelData.interfaceName === "" ? host.modelData.address
                          : host.modelData.interfaceName + " — " + host.modelData.address
                }
                Repeater {
                    model: host.modelData.pages
                    delegate: WebPageLink {
                        required property var modelData
                        required property int index
                        objectName: "webPage" + host.index + "_" + index
                        title: modelData.title
                        detail: modelData.detail
                        url: modelData.url
                        onCopyRequested: url => tab.web.copyToClipboard(url)
                    }
                }
            }
        }
    }

    // A cable plugged in or a new address from the network shows without reopening the window.
    Timer {
        interval: 5000
        repeat: true
        running: tab.visible && tab.Window.window !== null && tab.Window.window.visible
        onTriggered: tab.web.refreshInterfaces()
    }
}
