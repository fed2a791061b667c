import QtQuick
import QtQuick.Controls
import Kairon

// "Début du show": the box that gives the show a planned start or takes it away, and its time
// of day on two wheels, dimmed while the box is unticked. From it the console tells whether the
// show runs late or early.
Item {
    id: block

    required property ProjectSheetForm form

    implicitHeight: picker.implicitHeight

    SheetCheckBox {
        objectName: "sheetHasShowStart"
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        text: "Début du show"
        checked: block.form.hasShowStart
        onToggled: block.form.hasShowStart = checked
    }

    HourMinutePicker {
        id: picker
        objectName: "sheetShowStart"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        enabled: block.form.hasShowStart
        opacity: enabled ? 1 : 0.4
        hour: block.form.showStartHour
        minute: block.form.showStartMinute
        onEdited: (hour, minute) => block.form.setShowStart(hour, minute)
    }
}
