import QtQuick
import Kairon

// The wall clock mode: the time of day to the second over the full date, kept above `bottomLimit`
// (the message banner), made smaller when it must.
Item {
    id: root

    required property DisplayClock clock
    property real bottomLimit: height

    readonly property real timeSize: root.width * 0.2
    readonly property real dateSize: Math.min(root.width * 0.025, 28)

    FontMetrics {
        id: timeMetrics
        font.family: AppTheme.digitsFont
        font.weight: Font.Bold
        font.pixelSize: Math.round(root.timeSize)
    }

    FontMetrics {
        id: dateMetrics
        font.family: AppTheme.textFont
        font.pixelSize: Math.round(root.dateSize)
    }

    FittedColumn {
        id: column
        bandBottom: root.bottomLimit
        textHeight: timeMetrics.height + dateMetrics.height

        FitText {
            objectName: "clockTime"
            width: parent.width
            text: root.clock.timeText
            color: "white"
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            size: column.scaled(root.timeSize)
        }

        Text {
            objectName: "clockDate"
            anchors.horizontalCenter: parent.horizontalCenter
            text: root.clock.dateText
            color: AppTheme.textMuted
            font.family: AppTheme.textFont
            font.pixelSize: Math.round(column.scaled(root.dateSize))
        }
    }
}
