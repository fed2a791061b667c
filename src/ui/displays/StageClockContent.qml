import QtQuick
import Kairon

// The wall clock mode: the time of day to the second over the full date.
Item {
    id: root

    required property DisplayClock clock

    Column {
        anchors.centerIn: parent
        width: parent.width

        FitText {
            objectName: "clockTime"
            width: parent.width
            text: root.clock.timeText
            color: "white"
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            size: root.width * 0.2
        }

        Text {
            objectName: "clockDate"
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.clock.dateText
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: Math.round(Math.min(root.width * 0.025, 28))
        }
    }
}
