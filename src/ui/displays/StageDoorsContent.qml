import QtQuick
import Kairon

// The pre-show countdown: "LE SHOW COMMENCE DANS" over the time left.
Item {
    id: root

    required property StagePresenter stage

    Column {
        anchors.centerIn: parent
        width: parent.width
        spacing: Math.round(root.height * 0.04)

        Text {
            objectName: "doorsTitle"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "LE SHOW COMMENCE DANS"
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: Math.round(Math.min(root.width * 0.03, 36))
            font.letterSpacing: 6
        }

        FitText {
            objectName: "doorsTime"
            width: parent.width
            text: root.stage.doorsText
            color: AppTheme.accent
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            size: root.width * 0.18
        }
    }
}
