import QtQuick
import QtQuick.Controls
import Kairon

// The console's top bar: back to the projects, the wordmark, the project's name and summary
// (which open its sheet), save, the show lock, the doors countdown and the three windows.
Rectangle {
    id: bar

    required property TimerEngine engine
    required property ConsoleController consoleController
    required property ConsolePresenter presenter
    required property var displays // the screens, for the outputs' menus
    signal openOutput(string identifier)
    // An output full screen on the display at `displayIndex`, chosen in its menu.
    signal sendOutput(string identifier, int displayIndex)
    signal editProject
    signal openDoors(Item anchor)

    implicitHeight: 56
    color: AppTheme.bgPanel

    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: AppTheme.separator
    }

    Row {
        id: left
        anchors.left: parent.left
        anchors.leftMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 16

        AccentButtonStyle {
            objectName: "backToProjects"
            anchors.verticalCenter: parent.verticalCenter
            leftPadding: 10
            symbol: "chevron.left"
            text: "Projets"
            enabled: !bar.engine.following
            help: "Retour aux projets (sauvegarde automatique)"
            onClicked: bar.consoleController.backToProjects()
        }

        Row {
            objectName: "wordmark"
            anchors.verticalCenter: parent.verticalCenter
            Text { text: "KAI"; color: "white"; font.family: AppTheme.textFont; font.weight: Font.Black; font.pixelSize: 20 }
            Text { text: "RON"; color: AppTheme.accent; font.family: AppTheme.textFont; font.weight: Font.Black; font.pixelSize: 20 }
        }

        Button {
            id: project
            objectName: "projectInfoButton"
            enabled: !bar.engine.following
            anchors.verticalCenter: parent.verticalCenter
            // As wide as the longer line, within what the right side leaves free.
            width: Math.min(Math.max(nameLine.implicitWidth, summaryLine.implicitWidth) + 16,
                            right.x - x - left.x - 24)
            leftPadding: 8
            rightPadding: 8
            hoverEnabled: true
            ToolTip.visible: hovered
            ToolTip.text: "Modifier la fiche projet (client, salle, opérateur…)"
            ToolTip.delay: 600
            background: Rectangle { radius: 6; color: project.hovered ? AppTheme.bgElevated : "transparent" }
            contentItem: Column {
                anchors.verticalCenter: parent.verticalCenter
                Text {
                    id: nameLine
                    objectName: "workspaceProjectName"
                    width: parent.width
                    text: bar.engine.sessionName
                    elide: Text.ElideRight
                    color: AppTheme.textSecondary
                    font.family: AppTheme.textFont
                    font.weight: Font.Medium
                    font.pixelSize: 14
                }
                Text {
                    id: summaryLine
                    objectName: "projectSummary"
                    visible: text !== ""
                    width: parent.width
                    text: bar.presenter.projectSummary
                    elide: Text.ElideRight
                    color: AppTheme.textMuted
                    font.family: AppTheme.textFont
                    font.pixelSize: 11
                }
            }
            onClicked: bar.editProject()
        }
    }

    Row {
        id: right
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 8

        IconButton {
            objectName: "saveProject"
            symbol: "square.and.arrow.down"
            enabled: !bar.engine.following
            help: "Sauvegarder le projet (" + saveKeys.nativeText + ")"
            onClicked: bar.consoleController.saveProject()
            Shortcut { id: saveKeys; sequence: "Ctrl+S"; onActivated: bar.consoleController.saveProject() }
        }
        IconButton {
            objectName: "showLock"
            symbol: bar.presenter.lockSymbol
            enabled: !bar.engine.following
            iconColor: bar.presenter.lockColor
            help: bar.presenter.lockHelp
            onClicked: bar.consoleController.toggleShowLock()
        }
        AccentButtonStyle {
            id: doors
            objectName: "doorsButton"
            symbol: "door.left.hand.open"
            enabled: !bar.engine.following
            text: bar.presenter.doorsLabel
            labelFont: AppTheme.digitsFont
            labelColor: bar.engine.doorsActive ? AppTheme.accent : AppTheme.textPrimary
            help: "Compte à rebours avant le début du show"
            onClicked: bar.openDoors(doors)
        }
        OutputButton {
            identifier: "stage"
            text: "Stage"
            symbol: "rectangle.on.rectangle"
            help: "Ouvrir la fenêtre Stage"
            displays: bar.displays
            onOpen: bar.openOutput(identifier)
            onSendTo: displayIndex => bar.sendOutput(identifier, displayIndex)
        }
        OutputButton {
            identifier: "confidence"
            text: "Confidence"
            symbol: "rectangle.inset.filled"
            help: "Ouvrir la fenêtre Confidence"
            displays: bar.displays
            onOpen: bar.openOutput(identifier)
            onSendTo: displayIndex => bar.sendOutput(identifier, displayIndex)
        }
        IconButton {
            objectName: "openSettings"
            symbol: "gearshape"
            help: "Réglages"
            onClicked: bar.openOutput("settings")
        }
    }
}
