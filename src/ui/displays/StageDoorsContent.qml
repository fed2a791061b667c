import QtQuick
import Kairon

// The pre-show countdown: "LE SHOW COMMENCE DANS" over the time left, kept above `bottomLimit` (the
// message banner), made smaller when it must.
Item {
    id: root

    required property StagePresenter stage
    property real bottomLimit: height

    readonly property real titleSize: Math.min(root.width * 0.03, 36)
    readonly property real timeSize: root.width * 0.18

    FontMetrics {
        id: titleMetrics
        font.family: AppTheme.textFont
        font.weight: Font.Bold
        font.pixelSize: Math.round(root.titleSize)
    }

    FontMetrics {
        id: timeMetrics
        font.family: AppTheme.digitsFont
        font.weight: Font.Bold
        font.pixelSize: Math.round(root.timeSize)
    }

    FittedColumn {
        id: column
        bandBottom: root.bottomLimit
        spacing: Math.round(root.height * 0.04)
        textHeight: titleMetrics.height + timeMetrics.height
        fixedHeight: spacing

        Text {
            objectName: "doorsTitle"
            anchors.horizontalCenter: parent.horizontalCenter
            text: "LE SHOW COMMENCE DANS"
            color: AppTheme.textSecondary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: Math.round(column.scaled(root.titleSize))
            font.letterSpacing: 6
        }

        FitText {
            objectName: "doorsTime"
            width: parent.width
            text: root.stage.doorsText
            color: AppTheme.accent
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            size: column.scaled(root.timeSize)
        }
    }
}
