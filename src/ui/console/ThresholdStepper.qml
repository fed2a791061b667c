import QtQuick
import Kairon

// A threshold's stepper, in seconds, after the 10-pixel mark of the colour the countdown takes
// at that threshold.
Row {
    id: threshold

    required property color mark
    required property double seconds
    required property double maximum
    signal stepped(int direction)

    spacing: 8

    Rectangle {
        objectName: threshold.objectName + "Mark"
        anchors.verticalCenter: parent.verticalCenter
        width: 10
        height: 10
        radius: 2
        color: threshold.mark
    }

    ValueStepper {
        objectName: threshold.objectName + "Stepper"
        text: threshold.seconds + " s"
        canDecrease: threshold.seconds > 0
        canIncrease: threshold.seconds < threshold.maximum
        onStepped: direction => threshold.stepped(direction)
    }
}
