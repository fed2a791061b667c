import QtQuick
import Kairon

// The countdown: the cue's name, the signed time in the state colour, the progress bar and the
// freeze badge, kept above `bottomLimit` (the message banner), made smaller when it must.
Item {
    id: root

    required property StagePresenter stage
    property real bottomLimit: height

    readonly property real nameSize: Math.min(root.width * 0.035, 44)
    readonly property real timeSize: root.width * 0.22

    FontMetrics {
        id: nameMetrics
        font.family: AppTheme.textFont
        font.weight: Font.DemiBold
        font.pixelSize: Math.round(root.nameSize)
    }

    FontMetrics {
        id: timeMetrics
        font.family: AppTheme.digitsFont
        font.weight: Font.Bold
        font.pixelSize: Math.round(root.timeSize)
    }

    FittedColumn {
        id: column
        objectName: "timerColumn"
        bandBottom: root.bottomLimit
        spacing: Math.round(root.height * 0.02)
        textHeight: (root.stage.hasCue ? nameMetrics.height : 0) + timeMetrics.height
        fixedHeight: progressBar.height + (root.stage.frozen ? badge.height + spacing : 0)
                     + spacing * (root.stage.hasCue ? 2 : 1)

        Text {
            objectName: "cueName"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(implicitWidth, parent.width * 0.94)
            visible: root.stage.hasCue
            text: root.stage.cueName
            color: AppTheme.textSecondary
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: Math.round(column.scaled(root.nameSize))
        }

        FitText {
            objectName: "stageTime"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.round(parent.width * 0.96)
            text: root.stage.timeText
            color: root.stage.stateColor
            opacity: root.stage.timeOpacity
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            size: column.scaled(root.timeSize)
        }

        Item {
            id: progressBar
            objectName: "progressBar"
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.round(root.width * 0.6)
            height: 10

            Rectangle {
                anchors.fill: parent
                radius: height / 2
                color: "white"
                opacity: 0.1
            }

            Rectangle {
                objectName: "progressFill"
                // Whole pixels: the bar redraws only when it grows by one.
                width: Math.round(parent.width * root.stage.progress)
                height: parent.height
                radius: height / 2
                color: root.stage.stateColor
                visible: width > 0
            }
        }

        Text {
            id: badge
            objectName: "freezeBadge"
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.stage.frozen
            text: "FREEZE"
            color: AppTheme.stateWarning
            font.family: AppTheme.textFont
            font.weight: Font.Black
            font.pixelSize: 18
            font.letterSpacing: 4
        }
    }
}
