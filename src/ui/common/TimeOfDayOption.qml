import QtQuick
import Kairon

// A box that gives something an optional time of day, and that time on two wheels, dimmed while
// the box is unticked: a show's planned start, a cue's fixed start.
Item {
    id: option

    property alias text: box.text
    property alias checked: box.checked
    property alias hour: picker.hour
    property alias minute: picker.minute
    property alias boxName: box.objectName
    property alias pickerName: picker.objectName

    signal toggled(bool checked)
    signal edited(int hour, int minute)

    implicitHeight: picker.implicitHeight

    SheetCheckBox {
        id: box
        anchors.left: parent.left
        anchors.verticalCenter: parent.verticalCenter
        onToggled: option.toggled(checked)
    }

    HourMinutePicker {
        id: picker
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        enabled: box.checked
        opacity: enabled ? 1 : 0.4
        onEdited: (hour, minute) => option.edited(hour, minute)
    }
}
