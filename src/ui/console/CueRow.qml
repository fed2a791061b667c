import QtQuick
import Kairon

// One cue of the console's list: its numbered badge, name and speaker (whole in a tooltip when
// cut), its planned start in the show's timetable and the start now expected when that moved,
// planned length, a hard-out cue's end time and auto-follow, what it really took once
// played, and its edit controls, shown on the selected or pointed row only (a calm list during
// the show, no stray click on a bin). A click selects the cue; a double click starts it, so a
// stray click during a show never starts a cue.
Rectangle {
    id: row

    required property int index
    required property string name
    required property string speaker
    required property string number
    required property color badgeColor
    required property string durationText
    required property string endText
    required property bool autoFollow
    required property bool completed
    required property string actualText
    required property bool active
    required property bool selected
    required property string plannedStart
    required property string expectedStart
    required property bool expectedLate
    required property string margin
    required property bool shortfall
    required property bool endsBeforeStart
    required property bool locked // the show is locked: the running order cannot change
    // A backup machine follows its main: the row is shown, never acted on.
    property bool readOnly: false
    required property int count

    signal selectRequested
    signal startRequested
    signal editRequested
    signal deleteRequested
    signal moveRequested(int offset)

    objectName: "cueRow" + index
    implicitHeight: 64
    radius: 10
    color: active ? Qt.tint(AppTheme.bgElevated, Qt.alpha(AppTheme.accent, 0.18))
                  : selected ? AppTheme.bgElevated : "transparent"
    border.width: active || selected ? 1 : 0
    border.color: active ? AppTheme.accent : AppTheme.textMuted

    MouseArea {
        id: pointer
        anchors.fill: parent
        hoverEnabled: true
        enabled: !row.readOnly
        onClicked: row.selectRequested()
        onDoubleClicked: row.startRequested()
    }

    Rectangle {
        id: badge
        objectName: "cueBadge" + row.index
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 26
        height: 26
        radius: 13
        color: row.badgeColor
        Text {
            anchors.centerIn: parent
            text: row.number
            color: "white"
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 14
        }
    }

    Column {
        anchors.left: badge.right
        anchors.leftMargin: 10
        anchors.right: controls.visible ? controls.left : parent.right
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        ElidedText {
            objectName: "cueName" + row.index
            width: parent.width
            text: row.name
            color: AppTheme.textPrimary
            font.family: AppTheme.textFont
            font.weight: Font.Bold
            font.pixelSize: 16
        }
        Row {
            width: parent.width
            spacing: 10
            clip: true
            Text {
                objectName: "cuePlannedStart" + row.index
                visible: row.plannedStart !== ""
                text: row.plannedStart
                color: AppTheme.textPrimary
                font.family: AppTheme.digitsFont
                font.weight: Font.DemiBold
                font.pixelSize: 14
            }
            Text {
                objectName: "cueExpectedStart" + row.index
                visible: row.expectedStart !== ""
                text: row.expectedStart
                color: row.expectedLate ? AppTheme.stateWarning : AppTheme.success
                font.family: AppTheme.digitsFont
                font.weight: Font.DemiBold
                font.pixelSize: 14
            }
            Text {
                objectName: "cueDuration" + row.index
                text: row.durationText
                color: AppTheme.textSecondary
                font.family: AppTheme.digitsFont
                font.pixelSize: 14
            }
            Text {
                objectName: "cueEnd" + row.index
                visible: row.endText !== ""
                text: row.endText
                color: AppTheme.accent
                font.family: AppTheme.digitsFont
                font.pixelSize: 14
            }
            Text {
                objectName: "cueEndsBeforeStart" + row.index
                visible: row.endsBeforeStart
                anchors.verticalCenter: parent.verticalCenter
                text: "Fin avant le début"
                color: AppTheme.stateDanger
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: 12
            }
            Text {
                objectName: "cueMargin" + row.index
                visible: row.margin !== ""
                anchors.verticalCenter: parent.verticalCenter
                text: row.margin
                color: row.shortfall ? AppTheme.stateDanger : AppTheme.success
                font.family: AppTheme.textFont
                font.weight: Font.DemiBold
                font.pixelSize: 12
            }
            ElidedText {
                objectName: "cueSpeaker" + row.index
                visible: row.speaker !== ""
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, parent.width * 0.45)
                text: row.speaker
                color: AppTheme.textSecondary
                font.family: AppTheme.textFont
                font.weight: Font.Medium
                font.pixelSize: 13
            }
            Row {
                visible: row.autoFollow
                spacing: 3
                anchors.verticalCenter: parent.verticalCenter
                Icon { symbol: "arrow.right.circle"; size: 13; color: AppTheme.accent; anchors.verticalCenter: parent.verticalCenter }
                Text { text: "Auto-follow"; color: AppTheme.accent; font.family: AppTheme.textFont; font.pixelSize: 12; anchors.verticalCenter: parent.verticalCenter }
            }
            Text {
                objectName: "cueActual" + row.index
                visible: row.completed
                anchors.verticalCenter: parent.verticalCenter
                text: row.actualText
                color: AppTheme.textMuted
                font.family: AppTheme.textFont
                font.pixelSize: 12
            }
        }
    }

    Row {
        id: controls
        anchors.right: parent.right
        anchors.rightMargin: 6
        anchors.verticalCenter: parent.verticalCenter
        spacing: 0
        visible: row.selected || pointer.containsMouse || hovered(children)

        component Control: IconButton {
            side: 26
            fill: "transparent"
            focusPolicy: Qt.NoFocus
        }
        Control { objectName: "cueUp" + row.index; symbol: "chevron.up"; iconSize: 12; visible: !row.locked; enabled: row.index > 0; onClicked: row.moveRequested(-1) }
        Control { objectName: "cueDown" + row.index; symbol: "chevron.down"; iconSize: 12; visible: !row.locked; enabled: row.index < row.count - 1; onClicked: row.moveRequested(1) }
        Control { objectName: "cueEdit" + row.index; symbol: "pencil"; iconSize: 13; visible: !row.readOnly; help: "Modifier le cue"; onClicked: row.editRequested() }
        Control { objectName: "cueDelete" + row.index; symbol: "trash"; iconSize: 13; visible: !row.locked; help: "Supprimer le cue"; onClicked: row.deleteRequested() }
    }

    function hovered(buttons) {
        for (let i = 0; i < buttons.length; ++i)
            if (buttons[i].hovered)
                return true;
        return false;
    }
}
