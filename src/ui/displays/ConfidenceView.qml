import QtQuick
import Kairon

// The floor monitor: the wall clock and the speaker at the top, with the show's offset against
// its timetable under the clock; the cue and its time in the centre; what comes next and the
// whole message at the bottom. It always shows the timer, whatever the stage display shows.
Item {
    id: root

    required property TimerEngine engine
    required property DisplayClock clock

    ConfidencePresenter {
        id: confidence
        objectName: "confidencePresenter"
        engine: root.engine
        clock: root.clock
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

        // How the show runs against its timetable, for the speaker to pace the talk; only for a
        // show with a start time.
        Text {
            id: schedule
            objectName: "confidenceSchedule"
            anchors.left: parent.left
            anchors.top: wallClock.bottom
            width: Math.min(implicitWidth, parent.width)
            visible: text !== ""
            text: confidence.scheduleText
            color: confidence.scheduleColor
            elide: Text.ElideRight
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: Math.round(root.width * 0.03)
        }

        FontMetrics {
            id: nameMetrics
            font.family: AppTheme.textFont
            font.weight: Font.DemiBold
            font.pixelSize: Math.round(root.width * 0.035)
        }

        FontMetrics {
            id: timeMetrics
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
            font.pixelSize: Math.round(root.width * 0.16)
        }

        // Centred between the top and bottom rows, and smaller when a long message leaves them
        // less room than its size: the time is never hidden.
        FittedColumn {
            id: centre
            objectName: "centre"
            bandTop: schedule.visible ? schedule.y + schedule.height : wallClock.height
            bandBottom: bottomRow.y
            bandCentre: (bandTop + bandBottom) / 2
            textHeight: (confidence.hasCue ? nameMetrics.height : 0) + timeMetrics.height

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
                font.pixelSize: Math.round(centre.scaled(root.width * 0.035))
            }

            FitText {
                objectName: "confidenceTime"
                width: parent.width
                text: confidence.timeText
                color: confidence.stateColor
                font.family: AppTheme.digitsFont
                font.weight: Font.Bold
                size: centre.scaled(root.width * 0.16)
            }
        }

        // What comes next at the left and the message at the right, side by side; in a window
        // no wider than tall, the message goes under it and takes the whole width.
        Item {
            id: bottomRow

            readonly property bool stacked: root.height >= root.width
            readonly property real nextHeight: next.visible ? next.height : 0
            readonly property int gap: Math.round(nextText.font.pixelSize * 0.5)

            width: parent.width
            height: stacked ? nextHeight + (next.visible && message.visible ? gap : 0) + message.drawnHeight
                            : Math.max(nextHeight, message.drawnHeight)
            anchors.bottom: parent.bottom

            Row {
                id: next
                objectName: "next"
                anchors.left: parent.left
                y: bottomRow.stacked ? 0 : Math.round((bottomRow.height - height) / 2)
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
                    width: Math.min(implicitWidth, bottomRow.width * (bottomRow.stacked ? 1 : 0.5)
                                                   - arrow.width - next.spacing)
                    text: confidence.nextText
                    color: AppTheme.textMuted
                    elide: Text.ElideRight
                    font.family: AppTheme.textFont
                    font.weight: Font.Medium
                    font.pixelSize: Math.round(root.width * 0.03)
                }
            }

            // Whole: wrapped on up to three lines, then smaller, and never higher than 30 % of
            // the window.
            WrappedFitText {
                id: message
                objectName: "message"
                anchors.right: parent.right
                // What it draws is centred in the item, which may be taller: that goes at the
                // bottom when stacked, else in the middle of the row.
                y: Math.round((bottomRow.stacked ? bottomRow.height - drawnHeight
                                                 : (bottomRow.height - drawnHeight) / 2)
                              - (height - drawnHeight) / 2)
                maxWidth: parent.width * (bottomRow.stacked ? 1 : 0.48)
                maxHeight: root.height * 0.3
                lines: 3
                size: root.width * 0.03
                visible: confidence.hasMessage
                text: confidence.message
                color: confidence.messageColor
                horizontalAlignment: Text.AlignRight
                font.family: AppTheme.textFont
                font.weight: Font.Bold
            }
        }
    }
}
