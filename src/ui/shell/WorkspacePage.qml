import QtQuick
import Kairon

// The console's page: the way back to the projects and the two outputs (the console itself
// comes next).
Rectangle {
    id: root

    required property AppFlowState flow
    required property TimerEngine engine
    signal openOutput(string identifier)

    color: AppTheme.bgMain

    AccentButtonStyle {
        objectName: "backToProjects"
        anchors.left: parent.left
        anchors.top: parent.top
        anchors.margins: 16
        text: "\u2190 Projets"
        onClicked: {
            root.engine.stop();
            root.flow.stage = AppFlowState.Sessions;
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 16

        Text {
            objectName: "workspaceProjectName"
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.engine.sessionName
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 22
        }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 12
            AccentButtonStyle { objectName: "openStage"; text: "Stage"; onClicked: root.openOutput("stage") }
            AccentButtonStyle { objectName: "openConfidence"; text: "Confidence"; onClicked: root.openOutput("confidence") }
        }
    }
}
