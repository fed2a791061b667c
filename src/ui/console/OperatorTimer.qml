import QtQuick
import Kairon

// The operator's copy of the timer: the cue, its signed time in the state colour (equal-width
// digits, a nominal size of at least 120 that shrinks to fit), the elapsed time, the projected
// end of the day with the drift, what comes next, and the badges of the output's states.
PanelBackground {
    id: timer

    required property TimerEngine engine
    required property ConsolePresenter presenter

    implicitHeight: column.implicitHeight + 28

    Column {
        id: column
        x: 14
        y: 14
        width: parent.width - 28
        spacing: 4

        ElidedText {
            objectName: "consoleCueName"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: timer.presenter.cueTitle
            color: timer.presenter.hasCue ? AppTheme.textSecondary : AppTheme.textMuted
            font.family: AppTheme.textFont
            font.weight: timer.presenter.hasCue ? Font.DemiBold : Font.Normal
            font.pixelSize: timer.presenter.hasCue ? 18 : 16
        }

        FitText {
            objectName: "consoleTime"
            width: parent.width
            size: Math.max(timer.width * 0.22, 120)
            text: timer.presenter.timeText
            color: timer.presenter.stateColor
            font.family: AppTheme.digitsFont
            font.weight: Font.Bold
        }

        Row {
            id: details
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 14
            component Detail: Text {
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
            Detail { id: elapsed; objectName: "consoleElapsed"; text: timer.presenter.elapsedText; color: AppTheme.textSecondary }
            Detail { id: dayEnd; objectName: "consoleDayEnd"; text: timer.presenter.dayEndText; color: AppTheme.accent }
            Detail {
                id: schedule
                objectName: "consoleSchedule"
                visible: text !== ""
                text: timer.presenter.scheduleText
                color: timer.presenter.scheduleColor
                font.weight: Font.DemiBold
            }
            Detail {
                id: drift
                objectName: "consoleDrift"
                visible: text !== ""
                text: timer.presenter.driftText
                color: AppTheme.stateOvertime
            }
            // What comes next takes the room the others leave, cut if need be.
            ElidedText {
                objectName: "consoleNext"
                visible: text !== ""
                width: Math.min(implicitWidth, column.width - elapsed.width - dayEnd.width
                                - (drift.visible ? drift.width + details.spacing : 0)
                                - (schedule.visible ? schedule.width + details.spacing : 0) - 2 * details.spacing)
                text: timer.presenter.nextText
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 13
            }
        }

        Item { width: 1; height: 6 }

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 8
            height: 24
            component Badge: Rectangle {
                required property string label
                required property color tint
                objectName: "badge" + label
                width: caption.implicitWidth + 20
                height: 22
                radius: 11
                color: Qt.alpha(tint, 0.2)
                Text {
                    id: caption
                    anchors.centerIn: parent
                    text: parent.label
                    color: parent.tint
                    font.family: AppTheme.textFont
                    font.weight: Font.Black
                    font.pixelSize: 11
                    font.letterSpacing: 1
                }
            }
            Badge { label: "BLACKOUT"; tint: AppTheme.textPrimary; visible: timer.engine.blackout }
            Badge { label: "FREEZE"; tint: AppTheme.stateWarning; visible: timer.engine.freeze }
            Badge { label: "HORLOGE"; tint: AppTheme.accent; visible: timer.engine.clockMode }
            Badge { label: "PAUSE"; tint: AppTheme.stateWarning; visible: timer.engine.isPaused }
        }
    }
}
