import QtQuick
import Kairon

// The floor monitor: the wall clock and the speaker at the top, the cue and its time in the
// centre, what comes next and the message at the bottom. It always shows the timer, whatever
// the stage display shows.
Item {
    id: root

    required property TimerEngine engine
    required property DisplayClock clock

    ConfidencePresenter {
        id: confidence
        objectName: "confidencePresenter"
        engine: root.engine
    }

    Rectangle {
        anchors.fill: parent
        color: AppTheme.bgDeep
    }

    Item {
        id: page
        anchors.fill: parent
        anchors.leftMargin: 30
        anchors.rightMargin: 30
        anchors.topMargin: 24
        anchors.bottomMargin: 24

        Text {
            id: wallClock
            objectName: "wallClock"
            anchors.left: parent.left
            anchors.top: parent.top
            text: root.clock.timeText
            color: AppTheme.textSecondary
            font.family: AppTheme.digitsFont
            font.weight: Font.DemiBold
            font.pixelSize: Math.round(root.width * 0.05)
        }

        Text {
            objectName: "speaker"
            anchors.right: parent.right
            anchors.left: wallClock.right
            anchors.leftMargin: 30
            anchors.baseline: wallClock.baseline
            visible: confidence.hasCue
            text: confidence.speaker
            color: AppTheme.accent
            horizontalAlignment: Text.AlignRight
            elide: Text.ElideRight
            font.family: AppTheme.textFont
            font.weight: Font.Medium
            font.pixelSize: Math.round(root.width * 0.04)
        }

        Column {
            id: centre
            width: parent.width
            y: Math.round(wallClock.height + (bottomRow.y - wallClock.height - height) / 2)

            Text {
                objectName: "cueName"
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.min(implicitWidth, parent.width)
                visible: confidence.hasCue
                text: confidence.cueName
                color: AppTheme.textSecondary
                elide: Text.ElideRight
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: Math.round(root.width * 0.035)
            }

            FitText {
                objectName: "confidenceTime"
                width: parent.width
                text: confidence.timeText
                color: confidence.stateColor
                font.family: AppTheme.digitsFont
                font.weight: Font.Bold
                size: root.width * 0.16
            }
        }

        Item {
            id: bottomRow
            width: parent.width
            height: Math.max(next.height, message.height)
            anchors.bottom: parent.bottom

            Row {
                id: next
                objectName: "next"
                anchors.left: parent.left
                anchors.verticalCenter: parent.verticalCenter
                spacing: Math.round(nextText.font.pixelSize * 0.35)
                visible: confidence.hasNext

                Icon {
                    id: arrow
                    objectName: "nextIcon"
                    anchors.verticalCenter: parent.verticalCenter
                    symbol: "arrow.right.circle.fill"
                    size: nextText.font.pixelSize * 1.1
                    color: AppTheme.textMuted
                }

                Text {
                    id: nextText
                    objectName: "nextText"
                    width: Math.min(implicitWidth, bottomRow.width * 0.5 - arrow.width - next.spacing)
                    text: confidence.nextText
                    color: AppTheme.textMuted
                    elide: Text.ElideRight
                    font.family: AppTheme.textFont
                    font.weight: Font.Medium
                    font.pixelSize: Math.round(root.width * 0.03)
                }
            }

            Text {
                id: message
                objectName: "message"
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, parent.width * 0.48)
                visible: confidence.hasMessage
                text: confidence.message
                color: confidence.messageColor
                horizontalAlignment: Text.AlignRight
                elide: Text.ElideRight
                font.family: AppTheme.textFont
                font.weight: Font.Bold
                font.pixelSize: Math.round(root.width * 0.03)
            }
        }
    }
}
