import QtQuick
import Kairon

// "Session": renaming and saving the open show without going back to the projects.
SettingsPage {
    id: tab

    required property SettingsController settings

    SettingsGroup {
        title: "Nom du projet"
        Row {
            spacing: 8
            SheetTextField {
                objectName: "sessionNameField"
                implicitWidth: 300
                placeholderText: "Nom du projet"
                text: tab.settings.sessionName
                onTextEdited: tab.settings.sessionName = text
                onAccepted: tab.settings.renameSession()
            }
            AccentButtonStyle {
                objectName: "renameSession"
                text: "Renommer"
                onClicked: tab.settings.renameSession()
            }
        }
    }

    SettingsGroup {
        AccentButtonStyle {
            objectName: "saveProject"
            text: "Sauvegarder le projet (.orvprjct)"
            symbol: "square.and.arrow.down"
            onClicked: tab.settings.saveProject()
        }
        Text {
            objectName: "saveResult"
            visible: text !== ""
            width: parent.width
            text: tab.settings.saveResult
            color: text.startsWith("Erreur") ? AppTheme.stateDanger : AppTheme.success
            font.family: AppTheme.textFont
            font.pixelSize: 12
            wrapMode: Text.WrapAnywhere
        }
    }

    SettingsNote {
        text: "La gestion complète des projets (ouvrir, dupliquer, importer, exporter) se fait "
              + "depuis la page Projets — bouton ← Projets dans la régie."
    }
}
