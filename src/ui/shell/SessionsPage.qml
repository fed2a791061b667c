import QtQuick
import Kairon

// The project library's page (its list comes next; the way to the console is already here).
Rectangle {
    id: root

    required property AppFlowState flow

    color: AppTheme.bgMain

    Column {
        anchors.centerIn: parent
        spacing: 16

        Text {
            objectName: "sessionsTitle"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "Projets"
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 22
        }

        AccentButtonStyle {
            objectName: "openConsole"
            anchors.horizontalCenter: parent.horizontalCenter
            prominent: true
            text: "Console"
            onClicked: root.flow.stage = AppFlowState.Workspace
        }
    }
}
